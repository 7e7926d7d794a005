// The options of `textwizard run`.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/run/CommandFile.h"
#include "cli/run/HostOptions.h"
#include "cli/run/ReportOptions.h"
#include "library/outputs/CaseWriter.h"
#include "library/outputs/CasesFile.h"
#include "library/parts/PartOptions.h"
#include "library/rewriting/RewritingOptions.h"

namespace cli {

struct RunOptions {
  std::string commandFile;  // "-" is standard input

  // Outputs: a file, "-" for standard output, or empty for none. "%d" stands for the number of the
  // command.
  std::string cases;
  std::string dictionary;
  std::string messages;
  std::string commandOutput;                  // of an import: the command it made
  std::optional<library::CaseFormat> format;  // else by the ending of `cases`
  std::vector<std::string> outputs;           // of cases, too; the format by each ending
  library::ArrowBody arrowBody = library::ArrowBody::kPlain;
  library::ValueStyle values = library::ValueStyle::kDisplay;
  // Of the columns. Labels (UTF-8) and whole numbers are of the variables in the dictionary's
  // order; `integers`: also every number whose format has no decimals.
  bool integers = false;
  std::vector<bool> integerVariables = {};
  std::vector<std::string> labels = {};
  bool namesAsVariables = false;

  ReportOptions report;

  HostOptions host;
  bool joinQuotedLines = false;
  bool backslashEscapes = false;
  std::string transcoding;  // the data file's encoding, from which it is converted to UTF-8
  // Where the columns of such a file are padded (library/input/ColumnPadder.h).
  std::vector<std::int64_t> paddedAt = {};
  std::string byteOrderMark;  // shown to the component where the file lacks it
  int workers = 0;            // 0: as many as suit; see WorkersOf
  std::optional<unsigned> seed;
  // Part after part, or one part alone; then summaries (files) of what stands before it.
  library::PartOptions parts = {};
  std::vector<std::string> before = {};

  // The commands' cases are one data set, in the order of the commands; with a last variable of
  // that name (UTF-8) that has each case's file, unless it is empty.
  bool asOne = false;
  std::string sourceColumn = {};
  // Of some commands, how their files are read instead: texts of FileReadings.h.
  std::vector<std::string> with = {};

  // What is shown.
  long long show = 10;
  bool stats = false;
  bool quiet = false;
  bool noProgress = false;
};

// What is taken for data that the command language has no words for.
library::RewritingOptions RewritingOf(const RunOptions& options);

// What is wrong with options that are right one by one: outputs that would overwrite one another,
// the command file or the data of any of its `commands`, standard input that would be read twice, a
// file of cases without a known format. Empty when nothing is.
std::string WhatIsWrong(const RunOptions& options, const std::vector<ListedCommand>& commands);

// True when more than one of the commands can be run.
bool SeveralRun(const std::vector<ListedCommand>& commands);

// A file of cases: its name, which may hold "%d", and its format: what was asked for, or the one
// that the file's ending names; CSV for standard output. Nothing when the ending names none.
struct CasesTarget {
  const char* option;
  std::string name;
  std::optional<library::CaseFormat> format;
};
std::vector<CasesTarget> CasesTargets(const RunOptions& options);
// Conversion threads of an import with these outputs; 0 for one per processor.
int WorkersOf(const RunOptions& options);

// True when output `name` names another file for every command.
bool IsPerCommand(const std::string& name);
// The name of an output for command `number` (from 1).
std::string NameForCommand(const std::string& name, int number);

// True when a file goes to standard output.
bool WritesStandardOutput(const RunOptions& options);

}  // namespace cli
