#include "library/capi/Options.h"

#include <algorithm>
#include <cstring>
#include <string>

#include <fmt/format.h>

#include "library/capi/PartWork.h"
#include "library/input/ColumnPadder.h"
#include "library/input/Transcoding.h"
#include "library/parts/SummaryMerge.h"
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

// The parts of a list with commas between.
std::vector<std::string> Listed(const char* list) {
  std::vector<std::string> parts;
  for (std::string_view rest = list; !rest.empty();) {
    const std::size_t comma = std::min(rest.find(','), rest.size());
    parts.emplace_back(rest.substr(0, comma));
    rest.remove_prefix(std::min(comma + 1, rest.size()));
  }
  return parts;
}

std::optional<std::string> TextIfGiven(const char* text) {
  return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

PartOptions::Single PartOf(const textwizard_part& part, RewritingOptions& rewriting) {
  const textwizard_part given = Given(&part);
  if (given.from < 0 || given.to <= given.from) {
    Refuse(fmt::format("a part of bytes {} to {} is empty: a part begins before it ends",
                       given.from, given.to));
  }
  PartOptions::Single single;
  single.range = {given.from, given.to};
  if (given.before == nullptr) return single;
  std::string problem;
  const FilePartSummary before =
      SummaryFrom({static_cast<const char*>(given.before), given.before_size});
  if (PutBefore(before, &single, &rewriting, &problem)) return single;
  // What goes with the part, but of a file that is another one by now, is the file's fault.
  const bool goesWithIt = before.range.from == 0 && before.range.to == given.from;
  throw Failure{.status = goesWithIt ? TEXTWIZARD_FILE : TEXTWIZARD_USAGE, .text = problem};
}

}  // namespace

WriteSettings WriteSettingsOf(const char* path, const textwizard_write_options* options) {
  const textwizard_write_options given = Given(options);
  const auto format =
      given.format == nullptr ? CaseFormatOfFile(path) : CaseFormatNamed(given.format);
  if (!format) {
    Refuse(fmt::format("\"{}\" names no format of cases: they are {}",
                       given.format == nullptr ? path : given.format, CaseFormatNames()));
  }
  return {*format, given.arrow_lz4 != 0 ? ArrowBody::kLz4 : ArrowBody::kPlain};
}

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
  session.rewriting = {.joinQuotedLines = given.join_quoted_lines != 0,
                       .backslashEscapes = given.backslash_escapes != 0,
                       .keepStrayQualifiers = given.keep_stray_qualifiers != 0};
  const std::string mark = TextOrEmpty(given.byte_order_mark);
  if (mark == "utf-16le" || mark == "utf-16be") {
    session.shownMark = mark == "utf-16le" ? "\xFF\xFE" : "\xFE\xFF";
  } else if (!mark.empty()) {
    Refuse(fmt::format("byte_order_mark is \"{}\": give utf-16le or utf-16be", mark));
  }
  session.transcoding = TextOrEmpty(given.transcode);
  if (!session.transcoding.empty() && !IsEncodingName(session.transcoding)) {
    Refuse("there is no encoding " + session.transcoding);
  }
  if (given.pad_columns != nullptr) {
    std::string problem;
    const auto places = ParsePlaces(given.pad_columns, &problem);
    if (!places) Refuse(fmt::format("pad_columns is \"{}\": {}", given.pad_columns, problem));
    session.paddedAt = *places;
  }
  session.problemLimit =
      given.problem_limit == 0 ? kProblemLimit : std::max<std::int64_t>(given.problem_limit, 0);
  session.digest = given.no_digest == 0;
  session.strict = given.strict != 0;
  session.namesAsVariables = given.names_as_variables != 0;
  session.integersOfCommand = given.integers > 0;
  session.integersOfFile = given.integers >= 0;
  if (given.part != nullptr) session.part = PartOf(*given.part, session.rewriting);
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

DataSetOptions DataSetOptionsOf(const char* const* paths, std::size_t count,
                                const textwizard_data_set_options* options) {
  const textwizard_data_set_options given = Given(options);
  DataSetOptions set;
  set.paths.assign(paths, paths + count);
  set.name = TextOrEmpty(given.name);
  const std::string by = TextOrEmpty(given.by);
  if (by == "name") {
    set.by = FileAlignment::kName;
  } else if (by == "position") {
    set.by = FileAlignment::kPosition;
  } else if (!by.empty()) {
    Refuse(fmt::format("by is \"{}\": give \"name\" or \"position\"", by));
  }
  set.skipMisfits = given.skip_misfits != 0;
  set.sourceColumn = TextOrEmpty(given.source_column);
  for (std::size_t i = 0; i < given.summary_count; ++i) {
    set.summaries.push_back(
        SummaryFrom({static_cast<const char*>(given.summaries[i]), given.summary_sizes[i]}));
  }
  return set;
}

char DecimalOf(const textwizard_options* options) { return Given(options).decimal; }

BareImportSettings FileSettingsOf(const textwizard_file_options* options, char decimal) {
  const textwizard_file_options given = Given(options);
  BareImportSettings settings;
  settings.sniff = SniffSettingsOf(options);
  if (decimal != 0) {
    settings.sniff.decimal = decimal == ',' ? DecimalCharacter::kComma : DecimalCharacter::kPoint;
  }
  settings.sniff.sampleLines.reset();
  settings.sampleLines = given.sample_lines;
  if (given.names != nullptr) settings.names = Listed(given.names);
  if (given.types == nullptr) return settings;
  for (const std::string& type : Listed(given.types)) {
    const std::size_t equals = type.rfind('=');
    if (equals == std::string::npos || equals == 0) {
      Refuse(fmt::format("\"{}\" is no type: write types such as visited=EDATE10", type));
    }
    settings.types.emplace_back(type.substr(0, equals), type.substr(equals + 1));
  }
  return settings;
}

}  // namespace library
