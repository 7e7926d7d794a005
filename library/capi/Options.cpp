#include "library/capi/Options.h"

#include <algorithm>
#include <cstring>
#include <string>

#include <fmt/format.h>

#include "library/sniff/CharacterRanges.h"

namespace library {
namespace {

constexpr std::int32_t kMostWorkers = 1024;
constexpr std::int64_t kProblemLimit = 1000000;
// A struct that grew would have to grow much.
constexpr std::size_t kLargestStruct = 65536;

[[noreturn]] void Refuse(std::string text) {
  throw Failure{.status = TEXTWIZARD_USAGE, .text = std::move(text)};
}

// What the caller gave of the struct as this library knows it.
template <class Options>
Options Given(const Options* options) {
  Options given{};
  if (options == nullptr) return given;
  std::size_t size = 0;
  std::memcpy(&size, options, sizeof size);
  if (size < sizeof size || size > kLargestStruct) {
    Refuse(fmt::format("the options' size is {}: set it to sizeof of the struct", size));
  }
  std::memcpy(static_cast<void*>(&given), options, std::min(size, sizeof given));
  return given;
}

std::string TextOrEmpty(const char* text) { return text == nullptr ? "" : text; }

std::optional<std::string> TextIfGiven(const char* text) {
  return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

}  // namespace

SessionOptions SessionOptionsOf(const textwizard_options* options) {
  const textwizard_options given = Given(options);
  SessionOptions session;
  session.host.codePage = TextOrEmpty(given.code_page);
  session.host.localeCodePage = TextOrEmpty(given.locale_code_page);
  if (given.decimal != 0 && given.decimal != '.' && given.decimal != ',') {
    Refuse(
        fmt::format("decimal is character {}: give '.' or ','", static_cast<int>(given.decimal)));
  }
  session.host.decimalComma = given.decimal == ',';
  if (given.workers < 0 || given.workers > kMostWorkers) {
    Refuse(fmt::format("workers is {}: give 0 to {}", given.workers, kMostWorkers));
  }
  session.workers = given.workers;
  if (given.null_texts != nullptr) {
    session.nullTexts.assign(given.null_texts, given.null_texts + given.null_text_count);
  }
  session.keepStrayQualifiers = given.keep_stray_qualifiers != 0;
  session.problemLimit =
      given.problem_limit == 0 ? kProblemLimit : std::max<std::int64_t>(given.problem_limit, 0);
  session.strict = given.strict != 0;
  session.integers = given.integers > 0;
  if (given.message != nullptr) {
    session.message = [message = given.message, context = given.context](int kind,
                                                                         const std::string& text) {
      message(context, static_cast<textwizard_message_kind>(kind), text.c_str());
    };
  }
  if (given.progress != nullptr) {
    session.progress = [progress = given.progress, context = given.context](
                           std::int64_t cases, std::int64_t bytes, std::int64_t all) {
      return progress(context, cases, bytes, all) == 0;
    };
  }
  return session;
}

SniffSettings SniffSettingsOf(const textwizard_file_options* options) {
  const textwizard_file_options given = Given(options);
  SniffSettings settings;
  settings.encoding = TextIfGiven(given.encoding);
  settings.delimiter = TextIfGiven(given.delimiter);
  settings.qualifier = TextIfGiven(given.qualifier);
  if (given.first_line < 0 || given.sample_lines < 0) Refuse("lines are counted from 1");
  if (given.first_line > 0) settings.firstLine = given.first_line;
  if (given.sample_lines > 0) settings.sampleLines = given.sample_lines;
  if (given.header != 0) settings.header = given.header > 0;
  if (given.fixed != nullptr) {
    std::string problem;
    settings.fixed = ParseCharacterRanges(given.fixed, &problem);
    if (!settings.fixed) Refuse(problem);
  }
  return settings;
}

}  // namespace library
