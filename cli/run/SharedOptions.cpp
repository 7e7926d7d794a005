#include "cli/run/SharedOptions.h"

#include <limits>
#include <string>
#include <vector>

namespace cli {
namespace {

constexpr int kMostWorkers = 1024;

}  // namespace

void AddOutputOptions(CLI::App& command, const std::shared_ptr<RunOptions>& options) {
  const std::vector<std::string> formats = {"csv", "tsv", "jsonl", "arrow", "parquet", "sqlite"};
  command.add_option("--cases", options->cases, "Write every case")
      ->type_name("FILE|-")
      ->group("Outputs");
  command
      .add_option_function<std::string>(
          "--format",
          [options](const std::string& name) { options->format = library::CaseFormatNamed(name); },
          "Format of --cases: " + library::CaseFormatNames() + " (default: by the ending)")
      ->type_name("NAME")
      ->check(CLI::IsMember(formats).description(""))
      ->group("Outputs");
  command
      .add_option("-o,--output", options->outputs,
                  "Write every case in the format of the file's ending; may be given several times")
      ->type_name("FILE|-")
      ->expected(1)
      ->take_all()
      ->group("Outputs");
  command
      .add_option_function<std::string>(
          "--arrow-compression",
          [options](const std::string& name) {
            options->arrowBody =
                name == "lz4" ? library::ArrowBody::kLz4 : library::ArrowBody::kPlain;
          },
          "Of Arrow files (default: none, so that they can be mapped)")
      ->type_name("none|lz4")
      ->check(CLI::IsMember({"none", "lz4"}).description(""))
      ->group("Outputs");
  command
      .add_option_function<std::string>(
          "--values",
          [options](const std::string& name) {
            options->values =
                name == "raw" ? library::ValueStyle::kRaw : library::ValueStyle::kDisplay;
          },
          "Dates and times as ISO 8601 (default), or all as numbers")
      ->type_name("display|raw")
      ->check(CLI::IsMember({"display", "raw"}).description(""))
      ->group("Outputs");
  command
      .add_flag(
          "--integers", options->integers,
          "Columns of numbers without decimals are whole numbers in Arrow, Parquet and SQLite")
      ->group("Outputs");
  command.add_option("--dictionary", options->dictionary, "Write the dictionary as JSON")
      ->type_name("FILE|-")
      ->group("Outputs");
  command.add_option("--messages", options->messages, "Write the messages as JSON Lines")
      ->type_name("FILE|-")
      ->group("Outputs");
}

void AddDisplayOptions(CLI::App& command, const std::shared_ptr<RunOptions>& options) {
  command
      .add_option("--workers", options->workers,
                  "Conversion threads (default: one per processor; two more to write cases)")
      ->type_name("N")
      ->check(CLI::Range(0, kMostWorkers).description(""))
      ->group("Reading");
  command.add_option("--show", options->show, "Cases shown (default: 10)")
      ->type_name("N")
      ->check(CLI::Range(0LL, std::numeric_limits<long long>::max()).description(""))
      ->group("Display");
  command
      .add_flag("--stats", options->stats, "At the end one line of JSON: the figures of the run")
      ->group("Display");
  command.add_flag("--quiet", options->quiet, "No tables, no progress; messages still appear")
      ->group("Display");
  command.add_flag("--no-progress", options->noProgress, "No progress line")->group("Display");

  AddReportOptions(command, options->report);
}

}  // namespace cli
