#include "cli/CommandTokens.h"

#include <charconv>

#include "HostFramework/DACAdapter.h"
#include "HostFramework/Text.h"

namespace cli {
namespace {

using embedded::CommandToken;

bool IsWord(const CommandToken& token, const char* word) {
  return QANTMBstricmp_A(token.text.c_str(), word) == 0;
}

// True when the token at `index` names a subcommand.
bool NamesSubcommand(const std::vector<CommandToken>& tokens, std::size_t index, const char* name) {
  const bool afterSlash =
      index == 0 || (tokens[index - 1].kind != kDACTokenLiteral && tokens[index - 1].text == "/");
  return afterSlash && tokens[index].kind != kDACTokenLiteral && IsWord(tokens[index], name);
}

// The first word of the value of subcommand `name`, which stands behind its "="; null when there
// is none. VARIABLES is the last subcommand.
const CommandToken* ValueOf(const std::vector<CommandToken>& tokens, const char* name) {
  for (std::size_t index = 0; index + 2 < tokens.size(); ++index) {
    if (NamesSubcommand(tokens, index, "VARIABLES")) break;
    if (NamesSubcommand(tokens, index, name)) return &tokens[index + 2];
  }
  return nullptr;
}

}  // namespace

std::optional<double> SampleFraction(const std::vector<CommandToken>& tokens) {
  // PERCENT n
  const CommandToken* const mode = ValueOf(tokens, "IMPORTCASE");
  if (mode == nullptr || mode == &tokens.back() || !IsWord(*mode, "PERCENT")) return std::nullopt;
  const std::string& number = (mode + 1)->text;
  int percent = 0;
  const auto parsed = std::from_chars(number.data(), number.data() + number.size(), percent);
  if (parsed.ec != std::errc()) return std::nullopt;
  return percent / 100.0;
}

std::string DataFile(const std::vector<CommandToken>& tokens) {
  const CommandToken* const file = ValueOf(tokens, "FILE");
  return file != nullptr ? file->text : std::string();
}

}  // namespace cli
