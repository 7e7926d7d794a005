// The options about problems, ledger, evidence and digest, which `run` and `import` share.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "library/report/ImportWatch.h"
#include "library/report/ProblemWriter.h"

namespace cli {

struct ReportOptions {
  static constexpr std::int64_t kProblemLimit = 1000000;

  // Outputs: a file, "-" for standard output, or empty for none; "%d" stands for the number of the
  // command.
  std::string problems;
  std::optional<library::ProblemFormat> problemsFormat;  // else by the ending of `problems`
  std::int64_t problemLimit = kProblemLimit;
  std::string rejects;

  bool strict = false;
  bool explain = false;
  bool digest = false;
  bool verify = false;

  // How cases are read. Null texts are UTF-8.
  std::vector<std::string> nullTexts = library::DefaultNullTexts();
  bool keepStrayQualifiers = false;
};

// Adds the options to `command`; parsing fills `options`, which outlives it.
void AddReportOptions(CLI::App& command, ReportOptions& options);
// One of them: --null.
void AddNullTexts(CLI::App& command, ReportOptions& options);

// The format of the problems: what was asked for, or the one that the file's ending names; CSV for
// standard output. Nothing when the ending names none.
std::optional<library::ProblemFormat> ProblemFormatOf(const ReportOptions& options);

// What is wrong with options that are right one by one; empty when nothing is.
std::string WhatIsWrong(const ReportOptions& options);

}  // namespace cli
