#include "cli/CaseSampler.h"

#include <charconv>
#include <cstdlib>
#include <ctime>
#include <string>

#include "HostFramework/DACAdapter.h"
#include "HostFramework/Text.h"

namespace cli {
namespace {

using embedded::CommandToken;

// Largest number that the process's random numbers reach.
constexpr double kLargestDraw = 2147483647.0;

bool IsWord(const CommandToken& token, const char* word) {
  return QANTMBstricmp_A(token.text.c_str(), word) == 0;
}

// True when the token at `index` names a subcommand.
bool NamesSubcommand(const std::vector<CommandToken>& tokens, std::size_t index, const char* name) {
  const bool afterSlash =
      index == 0 || (tokens[index - 1].kind != kDACTokenLiteral && tokens[index - 1].text == "/");
  return afterSlash && tokens[index].kind != kDACTokenLiteral && IsWord(tokens[index], name);
}

}  // namespace

std::optional<double> SampleFraction(const std::vector<CommandToken>& tokens) {
  for (std::size_t index = 0; index < tokens.size(); ++index) {
    if (NamesSubcommand(tokens, index, "VARIABLES")) break;
    if (!NamesSubcommand(tokens, index, "IMPORTCASE")) continue;
    // IMPORTCASE = PERCENT n
    if (index + 3 >= tokens.size() || !IsWord(tokens[index + 2], "PERCENT")) break;
    const std::string& number = tokens[index + 3].text;
    int percent = 0;
    const auto parsed = std::from_chars(number.data(), number.data() + number.size(), percent);
    if (parsed.ec == std::errc()) return percent / 100.0;
    break;
  }
  return std::nullopt;
}

CaseSampler::CaseSampler(std::optional<double> fraction, std::optional<unsigned> seed)
    : fraction_(fraction) {
  if (fraction_) std::srand(seed.value_or(static_cast<unsigned>(std::time(nullptr))));
}

bool CaseSampler::Keep() { return !fraction_ || !(std::rand() / kLargestDraw > *fraction_); }

}  // namespace cli
