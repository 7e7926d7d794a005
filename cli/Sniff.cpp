#include "cli/Sniff.h"

#include <memory>
#include <string>

#include <fmt/format.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include "HostFramework/embedded/text/HostText.h"
#include "cli/ExitStatus.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/SniffScreen.h"
#include "library/input/InputFiles.h"
#include "library/sniff/SniffJson.h"
#include "library/sniff/Sniffer.h"

namespace cli {
namespace {

constexpr char kExamples[] = R"(Examples:
  textwizard sniff data.csv
  textwizard sniff --json data.csv.gz

Exit status: 0 shown, 1 the file is no text, damaged, or cannot be read, 2 wrong usage.
)";

struct SniffOptions {
  std::string file;
  bool json = false;
};

int Sniff(const SniffOptions& options) {
  Console console({});
  embedded::SetCodePage(nullptr);
  library::InputFiles files;
  const library::InputFiles::Input& input = files.Open(options.file);
  if (!input.problem.empty()) {
    console.Error(fmt::format("{}: {}{}{}", options.file, input.problem,
                              input.wayOut.empty() ? "" : "; ", input.wayOut));
    return kExitCommandFailed;
  }
  std::string problem;
  const auto source = library::FileSource::Open(input.path, &problem);
  if (!source) {
    console.Error(fmt::format("{}: {}", options.file, problem));
    return kExitCommandFailed;
  }
  library::SniffResult result;
  if (!library::Sniff(*source, {}, &result, &problem)) {
    console.Error(fmt::format("{}: {}", options.file, problem));
    return kExitCommandFailed;
  }
  if (options.json) {
    console.PrintResult(library::SniffJson(options.file, result)
                            .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
  } else {
    const std::size_t width = ScreenWidth(STDOUT_FILENO);
    const Style style = Style::Of(STDOUT_FILENO);
    std::string name = options.file == "-" ? "standard input" : options.file;
    if (input.compression != library::Compression::kNone) {
      name += fmt::format(" ({})", library::CompressionName(input.compression));
    }
    console.Print(SniffSettingsText(name, result, width, style));
    console.Print("\n" + SniffColumnsText(result, width, style));
  }
  return console.Flush() ? kExitSuccess : kExitUsage;
}

}  // namespace

void AddSniff(CLI::App& program, int* status) {
  CLI::App* sniff = program.add_subcommand("sniff", "Says how a bare file is built");
  const auto options = std::make_shared<SniffOptions>();
  sniff
      ->add_option("FILE", options->file,
                   "The file to look at, also compressed; - for standard input")
      ->type_name("FILE|-")
      ->required();
  sniff->add_flag("--json", options->json, "As JSON");
  sniff->footer(kExamples);
  sniff->callback([options, status] { *status = Sniff(*options); });
}

}  // namespace cli
