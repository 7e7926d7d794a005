#include "library/import/RunLine.h"

#include <algorithm>
#include <string_view>

#include <fmt/ranges.h>

#include "library/input/ColumnPadder.h"
#include "library/report/ImportWatch.h"

namespace library {
namespace {

// A word as a shell reads it back.
std::string Quoted(const std::string& word) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789%+,-./:=@_";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
  std::string quoted = "'";
  for (const char byte : word) {
    if (byte == '\'') {
      quoted += "'\\''";
    } else {
      quoted += byte;
    }
  }
  return quoted + "'";
}

}  // namespace

std::vector<std::string> RunOptionsFor(const BareImport& import,
                                       const std::vector<std::string>& nulls) {
  std::vector<std::string> options;
  const auto add = [&](const char* name, const std::string& value) {
    options.emplace_back(name);
    options.push_back(value);
  };
  if (import.host.decimal == DecimalCharacter::kComma) add("--decimal", "comma");
  if (!import.host.codePage.empty()) add("--code-page", import.host.codePage);
  if (!import.host.localeCodePage.empty()) add("--locale-code-page", import.host.localeCodePage);
  if (!import.transcoding.empty()) add("--transcode", import.transcoding);
  if (!import.paddedAt.empty()) {
    add("--pad-columns", PlacesText(import.paddedAt));
  }
  if (!import.shownMark.empty()) {
    add("--byte-order-mark", import.shownMark.front() == '\xFE' ? "utf-16be" : "utf-16le");
  }
  if (import.rewriting.joinQuotedLines) options.emplace_back("--join-quoted-lines");
  if (import.rewriting.backslashEscapes) options.emplace_back("--backslash-escapes");
  if (import.rewriting.keepStrayQualifiers) options.emplace_back("--keep-stray-qualifiers");
  if (nulls != DefaultNullTexts()) add("--null", fmt::format("{}", fmt::join(nulls, ",")));
  return options;
}

std::string RunLine(const std::vector<std::string>& options, const std::string& commandFile) {
  std::string line = "textwizard run " + Quoted(commandFile);
  for (const std::string& option : options) line += " " + Quoted(option);
  return line;
}

}  // namespace library
