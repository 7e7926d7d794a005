#include "cli/Preview.h"

#include <limits>
#include <memory>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "HostFramework/FileMessages.h"
#include "HostFramework/embedded/packages/PackageRegistry.h"
#include "HostFramework/embedded/text/HostText.h"
#include "cli/ExitStatus.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/VisibleText.h"

namespace cli {
namespace {

constexpr const char* kWizardPackage = "TextWizardDACPkg";

// The wizard's calls.
constexpr unsigned short kOpen = 1002;
constexpr unsigned short kRecord = 1004;
constexpr unsigned short kClose = 1005;

// The answer to kRecord at the end of the file.
constexpr std::uint32_t kNoRecord = 1006;

// Where the first line of a file is longer than the wizard reads of one, records are cut to what
// its buffer of 2,000,000 bytes holds: at least so many bytes of text.
constexpr std::size_t kCutRecord = 999999;

constexpr char kExamples[] = R"(Examples:
  textwizard preview survey.csv
  textwizard preview --encoding UTF-16LE --records 5 orders.txt

A byte-order mark in the file decides before --encoding does.
Exit status: 0 shown, 1 the file cannot be opened, 2 wrong usage.
)";

void PrintRecords(embedded::PackageConnection& wizard, const FileOpenRequest& file,
                  const PreviewOptions& options, Console& console) {
  const std::size_t numberWidth = std::to_string(options.records).size();
  long long shown = 0;
  TextWizardDacStringResponse record;
  for (; shown < options.records; ++shown) {
    if (wizard.Call(kRecord, file, record) != 0 || record.GetError().GetCode() == kNoRecord) break;
    const bool cut = record.GetNumber() != 0 && record.GetText().size() >= kCutRecord;
    console.Print(fmt::format("{:>{}}  {}{}\n", shown + 1, numberWidth,
                              VisibleText(record.GetText()), cut ? "  [the record is cut]" : ""));
  }
  if (shown == 0 && options.records > 0) console.Note("the file has no records");
}

}  // namespace

int Preview(const PreviewOptions& options) {
  Console console({});
  embedded::SetCodePage(nullptr);
  const auto wizard = embedded::PackageConnection::Open(kWizardPackage);
  if (!wizard) {
    console.Error(fmt::format("the component registers no package {}", kWizardPackage));
    return kExitUsage;
  }
  const FileOpenRequest file(options.dataFile, options.encoding, false);
  FileOpenResponse response;
  if (wizard->Call(kOpen, file, response) != 0) {
    console.Error(fmt::format("{}: the wizard did not answer", options.dataFile));
    return kExitCommandFailed;
  }
  if (response.HasError()) {
    const DACErrorResponse& error = response.GetError();
    console.Error(fmt::format("{} {}", error.GetCode(), error.GetText()));
    return kExitCommandFailed;
  }
  PrintRecords(*wizard, file, options, console);
  wizard->Call(kClose, file, response);
  return console.Flush() ? kExitSuccess : kExitUsage;
}

void AddPreview(CLI::App& program, int* status) {
  CLI::App* preview =
      program.add_subcommand("preview", "Shows the first records of a file, as the wizard does");
  const auto options = std::make_shared<PreviewOptions>();
  preview->add_option("DATA-FILE", options->dataFile, "The file to show")
      ->type_name("FILE")
      ->required();
  preview
      ->add_option("--encoding", options->encoding,
                   "UTF-8 (default), UTF-16, UTF-16LE, UTF-16BE, Locale")
      ->type_name("NAME");
  preview->add_option("--records", options->records, "Records shown (default: 20)")
      ->type_name("N")
      ->check(CLI::Range(0LL, std::numeric_limits<long long>::max()).description(""));
  preview->footer(kExamples);
  preview->callback([options, status] { *status = Preview(*options); });
}

}  // namespace cli
