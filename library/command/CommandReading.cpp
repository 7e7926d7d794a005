#include "library/command/CommandReading.h"

#include <algorithm>
#include <memory>

#include "command/TxtWzParser.h"
#include "library/command/CommandWords.h"
#include "model/FormatCode.h"

namespace library {

using namespace textwizard;

bool ReadCommand(const std::vector<embedded::CommandToken>& tokens, std::string_view source,
                 CommandSettings* settings, std::string* error) {
  const CommandWords words(tokens, source);
  TxtWzParser parser(words.text().c_str(), nullptr);
  const std::unique_ptr<TxtWzExecFile> plan = parser.ParseToExecutor();
  if (plan == nullptr) {
    *error = parser.GetErrorMesToken() != nullptr ? parser.GetErrorMesToken() : "";
    return false;
  }
  *settings = {};
  settings->file = plan->fileName();
  settings->import = plan->settings;
  for (const TxtWzVar* variable : plan->slots()) {
    CommandVariable& read = settings->variables.emplace_back();
    read.name = variable->name;
    read.skipped = variable->formatType == kFormatSkip;
    read.format = {variable->formatType, variable->width,
                   static_cast<std::uint32_t>(std::max(0, variable->decimals))};
    read.from = variable->startColumn;
    read.to = variable->startColumn + std::max(variable->width, 1U) - 1;
  }
  return true;
}

}  // namespace library
