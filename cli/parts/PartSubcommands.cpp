#include "cli/parts/PartSubcommands.h"

#include <string>

#include "cli/import/ImportSubcommand.h"
#include "cli/parts/SummaryInput.h"

namespace cli {
namespace {

constexpr char kGroup[] = "Parts";

constexpr char kExamples[] =
    R"(A file that several machines import together: each sums up its part, one merges the summaries into
the command, each imports its part. The outcome is that of one import of the whole. Summaries of
several files become commands of one data set, a file each, which 'run --as-one' reads.

Examples, for two parts:
  textwizard import data.csv --parts 1/2 --summary 1.summary
  textwizard import data.csv --parts 2/2 --summary 2.summary
  textwizard merge 1.summary 2.summary --command data.sps
  textwizard import --part 0-5000 --command data.sps -o 1.parquet --digest
  textwizard import --part 5000-9999 --command data.sps --before 1.summary -o 2.parquet --digest

Exit status: 0 merged, 1 the summaries do not go together or the file has changed, 2 wrong usage or a
file that cannot be written, 130 interrupted.
)";

}  // namespace

void AddPartOptions(CLI::App& command, const std::shared_ptr<RunOptions>& options) {
  CLI::Option* const part =
      command
          .add_option_function<std::string>(
              "--part",
              [options](const std::string& text) {
                std::string error;
                library::PartRange range;
                if (!ReadPartRange(text, &range, &error)) {
                  throw CLI::ValidationError("--part", error);
                }
                if (!options->parts.single) options->parts.single.emplace();
                options->parts.single->range = range;
              },
              "Only the cases that begin with the lines from byte FROM on and before byte TO")
          ->type_name("FROM-TO")
          ->group(kGroup);
  command
      .add_option(
          "--before", options->before,
          "The summary of what stands before the part, so that it need not be read; several "
          "are merged")
      ->type_name("SUMMARY")
      ->take_all()
      ->expected(1)
      ->needs(part)
      ->group(kGroup);
}

void AddSummaryOptions(CLI::App& command, const std::shared_ptr<RunOptions>& options,
                       const std::shared_ptr<PartStep>& step) {
  command
      .add_option_function<std::string>(
          "--part-size",
          [options](const std::string& text) {
            std::string error;
            if (!ReadSize(text, &options->parts.partBytes, &error)) {
              throw CLI::ValidationError("--part-size", error);
            }
          },
          "Work part by part, as many machines would: the outcome is the same")
      ->type_name("SIZE")
      ->group(kGroup);
  CLI::Option* const parts = command
                                 .add_option_function<std::string>(
                                     "--parts",
                                     [step](const std::string& text) {
                                       std::string error;
                                       if (!ReadPartNumber(text, &step->summarized, &error)) {
                                         throw CLI::ValidationError("--parts", error);
                                       }
                                     },
                                     "Only sum up part K of N, for 'textwizard merge'")
                                 ->type_name("K/N")
                                 ->group(kGroup);
  CLI::Option* const summary = command.add_option("--summary", step->summary, "Where to")
                                   ->type_name("FILE")
                                   ->needs(parts)
                                   ->group(kGroup);
  parts->needs(summary);
}

void AddMerge(CLI::App& program, int* status) {
  CLI::App* merge =
      program.add_subcommand("merge", "Merges the summaries of a file's parts into its command");
  const auto options = std::make_shared<ImportOptions>();
  const auto step = std::make_shared<PartStep>();
  merge->add_option("SUMMARY", step->summaries, "What 'import --parts' wrote, in any order")
      ->type_name("FILE")
      ->required();
  merge
      ->add_option("-o,--output", step->merged,
                   "Write the merged summary, which may be of some "
                   "parts only")
      ->type_name("FILE");
  merge
      ->add_option("--command", options->run.commandOutput,
                   "Write the GET DATA command (default: to standard output)")
      ->type_name("FILE|-");
  merge->add_flag("--quiet", options->run.quiet, "Nothing but messages");
  AddBareFileOptions(*merge, options);
  AddFilesOptions(*merge, options);
  merge->footer(kExamples);
  // Those of the summaries.
  AddNullTexts(*merge, options->run.report);
  merge->callback([options, step, status] { *status = MergeSummaries(*options, *step); });
}

}  // namespace cli
