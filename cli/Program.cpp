#include "cli/Program.h"

#include <clocale>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>

#include <fcntl.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include "cli/ExitStatus.h"
#include "cli/Preview.h"
#include "cli/Sniff.h"
#include "cli/Version.h"
#include "cli/import/ImportSubcommand.h"
#include "cli/parts/PartSubcommands.h"
#include "cli/run/RunSubcommand.h"
#include "cli/wizard/WizardSubcommand.h"
#include "cli/wizard/worker/Worker.h"

namespace cli {
namespace {

constexpr int kOptionColumn = 32;

constexpr char kExamples[] = R"(Examples:
  textwizard import data.csv
  textwizard run import.sps
  textwizard run import.sps --cases cases.csv
  textwizard run --help
  textwizard preview survey.csv
  textwizard sniff survey.csv
  textwizard wizard survey.csv
)";

// Gives each standard stream that was closed a descriptor on which it fails, so that no file which
// is opened later takes its number and with it what is meant for the stream.
void FillStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) != -1) continue;
    // The lowest number that is free: `stream`.
    static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
  }
}

// Shows the help or the version that was asked for.
int Show(const CLI::App& program, const CLI::ParseError& request) {
  program.exit(request);
  if (std::cout.flush()) return kExitSuccess;
  std::fprintf(stderr, "error: cannot write standard output\n");
  return kExitUsage;
}

// Says what is wrong with the arguments, and where help is.
int ReportWrongUsage(const CLI::App& program, const CLI::ParseError& error) {
  std::string command = program.get_name();
  std::string what = error.what();
  const auto subcommands = program.get_subcommands();
  for (const CLI::App* subcommand : subcommands) command += " " + subcommand->get_name();
  if (const auto unknown = program.remaining(); subcommands.empty() && !unknown.empty()) {
    what = "unknown subcommand: " + unknown.front();
  }
  std::fprintf(stderr, "error: %s\nTry '%s --help'.\n", what.c_str(), command.c_str());
  return kExitUsage;
}

// Registers the subcommands, parses the arguments and runs the subcommand they name.
int ParseAndRun(int argc, char** argv) {
  int status = kExitSuccess;
  CLI::App program("Imports text data files, bare or by GET DATA commands.", "textwizard");
  program.set_version_flag("--version", std::string("textwizard ") + Version());
  program.get_formatter()->column_width(kOptionColumn);
  program.footer(kExamples);
  program.require_subcommand(1);
  AddImport(program, &status);
  AddRun(program, &status);
  AddMerge(program, &status);
  AddPreview(program, &status);
  AddSniff(program, &status);
  AddWizard(program, &status);
  AddWizardWorker(program, &status);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == kExitSuccess) return Show(program, error);
    return ReportWrongUsage(program, error);
  }
  return status;
}

}  // namespace

int RunProgram(int argc, char** argv) {
  FillStandardStreams();
  try {
    // The user's month names and codeset, and no more: how numbers are read, and so what types are
    // found, must not depend on where a command is run (--decimal says it), and every category
    // takes time to load.
    std::setlocale(LC_CTYPE, "");
    std::setlocale(LC_TIME, "");
    return ParseAndRun(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "error: %s\n", error.what());
    return kExitUsage;
  }
}

}  // namespace cli
