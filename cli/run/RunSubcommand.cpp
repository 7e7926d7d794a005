#include "cli/run/RunSubcommand.h"

#include <limits>
#include <map>
#include <memory>

#include <CLI/CLI.hpp>

#include "cli/run/CommandFileRunner.h"
#include "cli/run/RunOptions.h"

namespace cli {
namespace {

constexpr int kMostWorkers = 1024;

constexpr char kExamples[] =
    R"(In the name of an output, - is standard output, and %d the number of the command (from 1), so that
the commands of one file write files of their own.

Examples:
  textwizard run import.sps
      shows the variables, the first cases and the counts
  textwizard run import.sps --cases cases.csv --dictionary dictionary.json
      writes all cases and the dictionary
  textwizard run month.sps --cases 'part-%d.jsonl' --messages messages.jsonl --quiet
      several commands, a file of cases each
  zcat survey.csv.gz | textwizard run import.sps --cases - | head
      imports what import.sps names as FILE='-'

import.sps:
  GET DATA /TYPE=TXT /FILE='survey.csv' /ARRANGEMENT=DELIMITED /DELCASE=LINE /FIRSTCASE=2
    /DELIMITERS=',' /QUALIFIER='"' /VARIABLES=id F6.0 visited ADATE10 town A20 income AUTO.

Exit status: 0 every command succeeded, 1 a command failed, 2 wrong usage or a file that cannot be
read or written, 130 interrupted.
)";

}  // namespace

void AddRun(CLI::App& program, int* status) {
  CLI::App* run = program.add_subcommand("run", "Runs the GET DATA commands of a file");
  const auto options = std::make_shared<RunOptions>();
  const std::vector<std::string> formats = {"csv", "tsv", "jsonl", "arrow", "parquet", "sqlite"};

  run->add_option("COMMAND-FILE", options->commandFile, "GET DATA commands; - is standard input")
      ->type_name("FILE|-")
      ->required();

  run->add_option("--cases", options->cases, "Write every case")
      ->type_name("FILE|-")
      ->group("Outputs");
  run->add_option_function<std::string>(
         "--format",
         [options](const std::string& name) { options->format = library::CaseFormatNamed(name); },
         "Format of --cases: " + library::CaseFormatNames() + " (default: by the ending)")
      ->type_name("NAME")
      ->check(CLI::IsMember(formats).description(""))
      ->group("Outputs");
  run->add_option("-o,--output", options->outputs,
                  "Write every case in the format of the file's ending; may be given several times")
      ->type_name("FILE|-")
      ->expected(1)
      ->take_all()
      ->group("Outputs");
  run->add_option_function<std::string>(
         "--arrow-compression",
         [options](const std::string& name) {
           options->arrowBody =
               name == "lz4" ? library::ArrowBody::kLz4 : library::ArrowBody::kPlain;
         },
         "Of Arrow files (default: none, so that they can be mapped)")
      ->type_name("none|lz4")
      ->check(CLI::IsMember({"none", "lz4"}).description(""))
      ->group("Outputs");
  run->add_option_function<std::string>(
         "--values",
         [options](const std::string& name) {
           options->values =
               name == "raw" ? library::ValueStyle::kRaw : library::ValueStyle::kDisplay;
         },
         "Dates and times as ISO 8601 (default), or all as numbers")
      ->type_name("display|raw")
      ->check(CLI::IsMember({"display", "raw"}).description(""))
      ->group("Outputs");
  run->add_flag(
         "--integers", options->integers,
         "Columns of numbers without decimals are whole numbers in Arrow, Parquet and SQLite")
      ->group("Outputs");
  run->add_option("--dictionary", options->dictionary, "Write the dictionary as JSON")
      ->type_name("FILE|-")
      ->group("Outputs");
  run->add_option("--messages", options->messages, "Write the messages as JSON Lines")
      ->type_name("FILE|-")
      ->group("Outputs");

  run->add_option_function<std::string>(
         "--decimal",
         [options](const std::string& name) { options->host.decimalComma = name == "comma"; },
         "Decimal character of the data (default: point)")
      ->type_name("point|comma")
      ->check(CLI::IsMember({"point", "comma"}).description(""))
      ->group("Reading");
  run->add_option("--code-page", options->host.codePage,
                  "Work in that code page, such as windows-1252 (default: UTF-8)")
      ->type_name("NAME")
      ->group("Reading");
  run->add_option("--locale-code-page", options->host.localeCodePage,
                  "What ENCODING=LOCALE means (default: the locale's own)")
      ->type_name("NAME")
      ->group("Reading");
  run->add_flag("--join-quoted-lines", options->joinQuotedLines,
                "A line break inside a qualified field stays in the value")
      ->group("Reading");
  run->add_flag("--backslash-escapes", options->backslashEscapes,
                "A backslash inside a qualified field makes the next character an ordinary one")
      ->group("Reading");
  run->add_option_function<std::string>(
         "--byte-order-mark",
         [options](const std::string& name) {
           options->byteOrderMark = name == "utf-16be" ? "\xFE\xFF" : "\xFF\xFE";
         },
         "Read the file as if it began with that mark, which it lacks")
      ->type_name("utf-16le|utf-16be")
      ->check(CLI::IsMember({"utf-16le", "utf-16be"}).description(""))
      ->group("Reading");
  run->add_option("--workers", options->workers, "Conversion threads (default: one per processor)")
      ->type_name("N")
      ->check(CLI::Range(0, kMostWorkers).description(""))
      ->group("Reading");
  run->add_option("--seed", options->seed, "Makes the draw of IMPORTCASE PERCENT repeatable")
      ->type_name("N")
      ->group("Reading");

  run->add_option("--show", options->show, "Cases shown (default: 10)")
      ->type_name("N")
      ->check(CLI::Range(0LL, std::numeric_limits<long long>::max()).description(""))
      ->group("Display");
  run->add_flag("--stats", options->stats, "At the end one line of JSON: the figures of the run")
      ->group("Display");
  run->add_flag("--quiet", options->quiet, "No tables, no progress; messages still appear")
      ->group("Display");
  run->add_flag("--no-progress", options->noProgress, "No progress line")->group("Display");

  AddReportOptions(*run, options->report);

  run->footer(kExamples);
  run->callback([options, status] { *status = RunCommandFile(*options); });
}

}  // namespace cli
