// Command text: whatever a command file holds, it is cut into commands, each of which parses to a
// plan or to exactly one error, and to the same when it is parsed again.

#include <memory>
#include <string>
#include <string_view>

#include "HostFramework/embedded/command/Adapter.h"
#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/text/HostText.h"
#include "command/TxtWzParser.h"
#include "entry/CommandEntry.h"
#include "fuzz/FuzzTarget.h"
#include "plan/TxtWzExecFile.h"

namespace {

// The error of the command text, or the number of its variables.
std::string Outcome(const std::string& text) {
  textwizard::TxtWzParser parser(text.c_str(), nullptr);
  const std::unique_ptr<textwizard::TxtWzExecFile> plan = parser.ParseToExecutor();
  fuzz::Require((plan != nullptr) == (parser.GetErrorMesToken() == nullptr),
                "a plan and an error, or neither");
  return plan ? std::to_string(plan->slots().size()) : parser.GetErrorMesToken();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  embedded::SetCodePage(nullptr);
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  while (reader.Next(command)) {
    fuzz::Require(command.ok == command.error.empty(), "an error without a text");
    if (!command.ok) continue;
    embedded::Adapter adapter(command.tokens, nullptr, nullptr, 2, 0);
    const std::string normalised = textwizard::BuildCommandText(*adapter.GetTokenSource());
    fuzz::Require(Outcome(normalised) == Outcome(normalised), "another outcome");
  }
  // The text as the parser may meet it from any host.
  const std::string raw(text);
  fuzz::Require(Outcome(raw) == Outcome(raw), "another outcome");
  return 0;
}
