#include "cli/import/ImportSubcommand.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fmt/ranges.h>

#include "cli/files/FilesImport.h"
#include "cli/import/FileImport.h"
#include "cli/import/ImportOptions.h"
#include "cli/parts/PartSubcommands.h"
#include "cli/run/SharedOptions.h"
#include "library/files/FileNames.h"
#include "library/input/Transcoding.h"
#include "library/sniff/CharacterRanges.h"

namespace cli {
namespace {

constexpr char kExamples[] =
    R"(Everything is found: encoding, delimiter, quotes, where the data begins and ends, names and types.
What is given is taken as given.

Examples:
  textwizard import data.csv
      shows how the file is read, its table, what is wrong with it
  textwizard import data.csv.gz -o data.parquet --command data.sps
      writes the data, and the command that repeats the import exactly
  textwizard import data.csv --types visited=EDATE10,zip=A5 --null -99,none
      with types and missing values that are given
  textwizard import 'data/*.csv' -o all.parquet --source-column file
      files of one structure as one data set, and how they differ
  textwizard import stations.txt --fixed 1-8,9-20,21- --header no
      fixed columns of characters
  curl -s https://example.org/data.csv | textwizard import -

Exit status: 0 the file is imported, 1 it cannot be, 2 wrong usage or an output that cannot be
written, 130 interrupted.
)";

using Options = std::shared_ptr<ImportOptions>;

// An option whose text `read` takes; what is wrong with it is wrong usage.
template <typename Read>
CLI::Option* AddText(CLI::App& command, const char* name, const char* help, Read read) {
  return command.add_option_function<std::string>(
      name,
      [name, read](const std::string& text) {
        std::string error;
        if (!read(text, &error)) throw CLI::ValidationError(name, error);
      },
      help);
}

void AddFileOptions(CLI::App& command, const Options& options) {
  constexpr char kGroup[] = "How the file is built (else found)";
  library::SniffSettings& sniff = options->settings.sniff;
  const auto positive =
      CLI::Range(std::int64_t{1}, std::numeric_limits<std::int64_t>::max()).description("");
  AddText(command, "--encoding", "Such as UTF-8, windows-1252, UTF-16LE",
          [&sniff](const std::string& name, std::string* error) {
            if (!library::IsEncodingName(name)) *error = "there is no encoding " + name;
            sniff.encoding = name;
            return error->empty();
          })
      ->type_name("NAME")
      ->group(kGroup);
  AddText(command, "--delimiter", "Such as ';', '\\t', '::'; or tab, blank, none",
          [&sniff](const std::string& text, std::string* error) {
            return ReadDelimiter(text, &sniff.delimiter.emplace(), error);
          })
      ->type_name("TEXT")
      ->group(kGroup);
  AddText(command, "--qualifier", "What quotes fields: a character, or none",
          [&sniff](const std::string& text, std::string* error) {
            return ReadQualifier(text, &sniff.qualifier.emplace(), error);
          })
      ->type_name("CHARACTER")
      ->group(kGroup);
  command
      .add_option_function<std::string>(
          "--decimal",
          [&sniff](const std::string& name) {
            sniff.decimal = name == "comma" ? library::DecimalCharacter::kComma
                                            : library::DecimalCharacter::kPoint;
          },
          "Decimal character of the numbers")
      ->type_name("point|comma")
      ->check(CLI::IsMember({"point", "comma"}).description(""))
      ->group(kGroup);
  command
      .add_option_function<std::int64_t>(
          "--first-line", [&sniff](const std::int64_t& line) { sniff.firstLine = line; },
          "The line in which the data begins, from 1")
      ->type_name("N")
      ->check(positive)
      ->group(kGroup);
  command
      .add_option_function<std::string>(
          "--header", [&sniff](const std::string& text) { sniff.header = text == "yes"; },
          "Whether names stand above the data")
      ->type_name("yes|no")
      ->check(CLI::IsMember({"yes", "no"}).description(""))
      ->group(kGroup);
  AddText(command, "--fixed", "Fixed columns, in characters of the line: 1-8,9-20,21-",
          [&sniff](const std::string& text, std::string* error) {
            sniff.fixed = library::ParseCharacterRanges(text, error);
            return sniff.fixed.has_value();
          })
      ->type_name("FROM-TO,...")
      ->group(kGroup);
}

void AddColumnOptions(CLI::App& command, const Options& options) {
  constexpr char kGroup[] = "Columns (else found)";
  library::BareImportSettings& settings = options->settings;
  AddText(command, "--types", "Formats of columns: visited=ADATE10,zip=A5",
          [&settings](const std::string& text, std::string* error) {
            return ReadTypes(text, &settings.types, error);
          })
      ->type_name("NAME=FORMAT,...")
      ->group(kGroup);
  AddText(command, "--names", "The names of all columns",
          [&settings](const std::string& text, std::string* error) {
            return ReadNames(text, &settings.names, error);
          })
      ->type_name("A,B,...")
      ->group(kGroup);
  command.add_option("--sample", settings.sampleLines, "Types from the first N lines only")
      ->type_name("N")
      ->check(CLI::Range(std::int64_t{1}, std::numeric_limits<std::int64_t>::max()).description(""))
      ->group(kGroup);
}

// What was asked for that only an import of cases gives: a part that is summed up has nothing but
// its summary. The option's name, or nothing.
const char* GivenOfCases(const RunOptions& run) {
  const ReportOptions& report = run.report;
  const std::pair<const char*, bool> options[] = {
      {"--cases", !run.cases.empty()},
      {"--output", !run.outputs.empty()},
      {"--dictionary", !run.dictionary.empty()},
      {"--messages", !run.messages.empty()},
      {"--command", !run.commandOutput.empty()},
      {"--problems", !report.problems.empty()},
      {"--rejects", !report.rejects.empty()},
      {"--strict", report.strict},
      {"--explain", report.explain},
      {"--digest", report.digest},
      {"--verify", report.verify},
  };
  for (const auto& [name, isGiven] : options) {
    if (isGiven) return name;
  }
  return nullptr;
}

// The file, or one of the steps by which several import it.
int Import(const Options& options, RunOptions run, const PartStep& step) {
  const bool isPart = run.parts.single.has_value();
  if (isPart) {
    if (run.commandOutput.empty()) throw CLI::RequiredError("--command, which --part reads,");
    if (!options->given.empty()) {
      throw CLI::ValidationError("FILE", "the command of --part names it");
    }
    run.commandFile = run.commandOutput;
    run.commandOutput.clear();
    return RunPart(run);
  }
  if (options->given.empty()) throw CLI::RequiredError("FILE");
  std::vector<std::string> names;
  std::string problem;
  if (!library::ExpandFileNames(options->given, &names, &problem)) {
    throw CLI::ValidationError("FILE", problem);
  }
  options->file = names.front();
  const bool isDataSet =
      names.size() > 1 || options->by || options->skipMisfits || !options->sourceColumn.empty();
  if (step.summarized.count == 0 && isDataSet) {
    return ImportFiles(*options, names, fmt::format("{}", fmt::join(options->given, " ")));
  }
  if (names.size() > 1) {
    throw CLI::ValidationError("--parts", "a part is of one file; sum up each file by itself");
  }
  if (step.summarized.count == 0) return ImportFile(*options);
  if (options->settings.sampleLines > 0) {
    throw CLI::ValidationError("--parts",
                               "the summary of a part is of all its lines, not of --sample");
  }
  if (const char* option = GivenOfCases(run)) {
    throw CLI::ValidationError(option, "--parts reads no cases: it writes the summary of a part");
  }
  return SummarizePart(*options, step);
}

}  // namespace

void AddImport(CLI::App& program, int* status) {
  CLI::App* import = program.add_subcommand("import", "Imports a bare file, without a command");
  const auto options = std::make_shared<ImportOptions>();
  // Shares the life of the whole.
  const std::shared_ptr<RunOptions> run(options, &options->run);

  const auto step = std::make_shared<PartStep>();

  import
      ->add_option("FILE", options->given,
                   "The data, also compressed; - is standard input. Several files and quoted "
                   "patterns of one structure are one data set")
      ->type_name("FILE|-");
  AddOutputOptions(*import, run);
  import->add_option("--command", run->commandOutput, "Write the GET DATA command")
      ->type_name("FILE|-")
      ->group("Outputs");
  import
      ->add_option_function<std::string>(
          "--names-as",
          [run](const std::string& what) { run->namesAsVariables = what == "variables";
},
          "Columns of the outputs are named as in the header (default), or as the variables")
      ->type_name("labels|variables")
      ->check(CLI::IsMember({"labels", "variables"}).description(""))
      ->group("Outputs");
AddBareFileOptions(*import, options);
AddFilesOptions(*import, options);
AddDisplayOptions(*import, run);
AddSummaryOptions(*import, run, step);
AddPartOptions(*import, run);
import->footer(kExamples);
  import->callback([options, run, step, status] { *status = Import(options, *run, *step);
  }  // namespace cli
);
}

void AddFilesOptions(CLI::App& command, const std::shared_ptr<ImportOptions>& options) {
  constexpr char kGroup[] = "Several files";
  command
      .add_option_function<std::string>(
          "--by",
          [options](const std::string& by) {
            options->by =
                by == "name" ? library::FileAlignment::kName : library::FileAlignment::kPosition;
          },
          "Which column of one file is which of another: by its name, or by its place (default: by "
          "name where there are names)")
      ->type_name("name|position")
      ->check(CLI::IsMember({"name", "position"}).description(""))
      ->group(kGroup);
  command
      .add_flag("--skip-misfits", options->skipMisfits,
                "A file that does not fit is a problem and left out, not an error")
      ->group(kGroup);
  command
      .add_option("--source-column", options->sourceColumn,
                  "A last variable of that name that has each case's file")
      ->type_name("NAME")
      ->group(kGroup);
}

void AddBareFileOptions(CLI::App& command, const std::shared_ptr<ImportOptions>& options) {
  AddFileOptions(command, options);
  AddColumnOptions(command, options);
}

}  // namespace cli
