#include "cli/run/RunSubcommand.h"

#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/files/AsOneRun.h"
#include "cli/parts/PartSubcommands.h"
#include "cli/run/RunOptions.h"
#include "cli/run/SharedOptions.h"
#include "library/input/ColumnPadder.h"
#include "library/input/Transcoding.h"

namespace cli {
namespace {

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
  textwizard run month.sps --as-one --cases year.csv
      several commands of the same variables, one file of cases
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

  run->add_option("COMMAND-FILE", options->commandFile, "GET DATA commands; - is standard input")
      ->type_name("FILE|-")
      ->required();

  AddOutputOptions(*run, options);

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
  run->add_option("--transcode", options->transcoding,
                  "Read the file as UTF-8, converted from that encoding, which no command can name")
      ->type_name("NAME")
      ->check(CLI::Validator(
          [](const std::string& name) {
            return library::IsEncodingName(name) ? "" : "there is no encoding " + name;
          },
          ""))
      ->group("Reading");
  run->add_option_function<std::string>(
         "--pad-columns",
         [options](const std::string& text) {
           std::string problem;
           const auto places = library::ParsePlaces(text, &problem);
           if (!places) throw CLI::ValidationError("--pad-columns", problem);
           options->paddedAt = *places;
         },
         "Read a copy of the file (UTF-8) with blanks in front of these characters of every line "
         "(from 1): character N then stands at byte 4(N-1), whatever stands before it")
      ->type_name("N,...")
      ->group("Reading");
  run->add_option("--seed", options->seed, "Makes the draw of IMPORTCASE PERCENT repeatable")
      ->type_name("N")
      ->group("Reading");

  CLI::Option* const asOne =
      run->add_flag("--as-one", options->asOne,
                    "The commands' cases are one data set, in the order of the commands")
          ->group("Several files");
  run->add_option("--source-column", options->sourceColumn,
                  "A last variable of that name that has each case's file")
      ->type_name("NAME")
      ->needs(asOne)
      ->group("Several files");
  run->add_option("--with", options->with,
                  "How the files of some commands are read instead, such as 3,5-7:decimal=comma; "
                  "words: decimal=comma, locale-code-page=NAME, byte-order-mark=utf-16le, "
                  "transcode=NAME, pad-columns=13/18, "
                  "join-quoted-lines, backslash-escapes, keep-stray-qualifiers, none")
      ->type_name("N,...:WORD,...")
      ->take_all()
      ->expected(1)
      ->needs(asOne)
      ->group("Several files");

  AddDisplayOptions(*run, options);
  AddPartOptions(*run, options);
  run->footer(kExamples);
  run->callback(
      [options, status] { *status = options->asOne ? RunAsOne(*options) : RunPart(*options); });
}

}  // namespace cli
