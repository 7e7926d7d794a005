#include "cli/run/ReportOptions.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <limits>

#include <fmt/format.h>

namespace cli {
namespace {

constexpr char kCsv[] = "csv";
constexpr char kJsonLines[] = "jsonl";

// The texts between commas; none of an empty list.
std::vector<std::string> Listed(const std::string& list) {
  std::vector<std::string> texts;
  for (std::size_t begin = 0; begin < list.size();) {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    if (end > begin) texts.push_back(list.substr(begin, end - begin));
    begin = end + 1;
  }
  return texts;
}

}  // namespace

void AddNullTexts(CLI::App& command, ReportOptions& options) {
  command
      .add_option_function<std::string>(
          "--null", [&options](const std::string& list) { options.nullTexts = Listed(list); },
          "Texts that mean a missing number (default: NA,N/A,NULL,null,NaN,nan,.,-)")
      ->type_name("TEXT,...")
      ->group("Reading");
}

void AddReportOptions(CLI::App& command, ReportOptions& options) {
  command
      .add_option("--problems", options.problems,
                  "Write every problem: its place, the text, what would help")
      ->type_name("FILE|-")
      ->group("Problems");
  command
      .add_option_function<std::string>(
          "--problems-format",
          [&options](const std::string& name) {
            options.problemsFormat =
                name == kCsv ? library::ProblemFormat::kCsv : library::ProblemFormat::kJsonLines;
          },
          "Format of the problems: csv, jsonl (default: by the ending)")
      ->type_name("NAME")
      ->check(CLI::IsMember({kCsv, kJsonLines}).description(""))
      ->group("Problems");
  command
      .add_option("--problem-limit", options.problemLimit,
                  "Problems written at most (default: 1000000); all are counted")
      ->type_name("N")
      ->check(CLI::Range(std::int64_t{0}, std::numeric_limits<std::int64_t>::max()).description(""))
      ->group("Problems");
  command
      .add_option("--rejects", options.rejects,
                  "Write the records of cases with a problem, to be mended and imported")
      ->type_name("FILE|-")
      ->group("Problems");
  command.add_flag("--strict", options.strict, "A problem makes the command fail")
      ->group("Problems");
  command.add_flag("--explain", options.explain, "Show what is known about each AUTO variable")
      ->group("Problems");
  command
      .add_flag("--digest", options.digest,
                "Show the digest of the cases: equal cases have equal digests")
      ->group("Problems");
  command
      .add_flag("--verify", options.verify,
                "Read twice, in different ways, and compare cases, problems and ledger")
      ->group("Problems");
  AddNullTexts(command, options);
  command
      .add_flag("--keep-stray-qualifiers", options.keepStrayQualifiers,
                "A qualifier inside an unqualified field is a character of it")
      ->group("Reading");
}

std::optional<library::ProblemFormat> ProblemFormatOf(const ReportOptions& options) {
  if (options.problemsFormat) return options.problemsFormat;
  if (options.problems == "-") return library::ProblemFormat::kCsv;
  std::string ending = std::filesystem::path(options.problems).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char character) { return std::tolower(character); });
  if (ending == ".csv") return library::ProblemFormat::kCsv;
  if (ending == ".jsonl") return library::ProblemFormat::kJsonLines;
  return std::nullopt;
}

std::string WhatIsWrong(const ReportOptions& options) {
  if (options.problems.empty()) {
    return options.problemsFormat ? "--problems-format needs --problems" : "";
  }
  if (ProblemFormatOf(options)) return {};
  return fmt::format(
      "--problems {}: the ending is none of .csv and .jsonl; name the format with "
      "--problems-format",
      options.problems);
}

}  // namespace cli
