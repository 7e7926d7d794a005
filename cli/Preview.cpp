#include "cli/Preview.h"

#include <limits>
#include <memory>
#include <string_view>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "HostFramework/FileMessages.h"
#include "HostFramework/embedded/command/PipeSpools.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "cli/ExitStatus.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/Interrupt.h"
#include "cli/terminal/VisibleText.h"
#include "library/import/WizardRecords.h"
#include "library/input/FileKind.h"
#include "library/outputs/Utf8Converter.h"

namespace cli {
namespace {

// What the wizard knows by name.
constexpr char kEncodings[] = "UTF-8, UTF-16, UTF-16LE, UTF-16BE and Locale";

constexpr std::string_view kUtf32Marks[] = {{"\xFF\xFE\0\0", 4}, {"\0\0\xFE\xFF", 4}};

constexpr char kExamples[] = R"(Examples:
  textwizard preview survey.csv
  textwizard preview --encoding UTF-16LE --records 5 orders.txt
  textwizard preview --encoding Locale --code-page windows-1252 old.txt
  zcat survey.csv.gz | textwizard preview -

A byte-order mark in the file decides before --encoding does.
Exit status: 0 shown, 1 the file cannot be opened, 2 wrong usage.
)";

// A sentence on an error answer of the wizard's about `path`.
std::string Explained(const DACErrorResponse& error, const std::string& path,
                      const PreviewOptions& options) {
  if (error.GetCode() == kWizardUnknownEncoding) {
    return fmt::format("{} is no encoding that the wizard knows: it knows {}.", options.encoding,
                       kEncodings);
  }
  // The path of a pipe that could not be copied says why.
  const bool copied = path != options.dataFile;
  const std::string why = library::WhyNotOpened(path);
  if (copied && !why.empty()) return fmt::format("The file cannot be opened: {}.", path);
  if (!why.empty()) return fmt::format("The file cannot be opened: {}.", why);
  const std::string head = library::FileHead(path);
  for (const std::string_view mark : kUtf32Marks) {
    if (!head.starts_with(mark)) continue;
    return "The file begins with a byte-order mark of UTF-32, which is not read: convert it to "
           "UTF-8.";
  }
  return "The file cannot be read.";
}

void PrintRecords(library::WizardRecords& records, const PreviewOptions& options,
                  Console& console) {
  const std::size_t numberWidth = std::to_string(options.records).size();
  library::Utf8Converter hostText;
  long long shown = 0;
  library::WizardRecord record;
  for (; shown < options.records; ++shown) {
    if (embedded::AttentionRequested()) return;
    if (!records.Next(&record)) break;
    console.Print(fmt::format("{:>{}}  {}{}\n", shown + 1, numberWidth,
                              VisibleText(hostText.ToUtf8(record.text)),
                              record.isCut ? "  [the record is cut]" : ""));
  }
  if (shown == 0 && options.records > 0) console.Note("the file has no records");
}

}  // namespace

int Preview(const PreviewOptions& options) {
  Console console({});
  HandleInterrupts();
  std::string problem;
  if (!SetHost(options.host, &problem)) {
    console.Error(problem);
    return kExitUsage;
  }
  // As `run` does: standard input and pipes are copied first.
  embedded::PipeSpools spools;
  const std::string path = spools.PathOf(options.dataFile);
  if (embedded::AttentionRequested()) return kExitInterrupted;
  DACErrorResponse error;
  const auto records = library::WizardRecords::Open(path, options.encoding, &error);
  if (records == nullptr && error.GetCode() == 0) {
    console.Error(fmt::format("{}: the wizard did not answer", options.dataFile));
    return kExitCommandFailed;
  }
  if (records == nullptr) {
    // The wizard's text is the file, of which the user knows its own name.
    const std::string& text = error.GetText() == path ? options.dataFile : error.GetText();
    console.Error(fmt::format("{} {}", error.GetCode(), text));
    console.Note(Explained(error, path, options));
    return kExitCommandFailed;
  }
  if (const library::FileKind kind = library::FileKindOf(library::FileHead(path)); kind.what) {
    console.Warning(
        fmt::format("{} is {}, and no text; {}", options.dataFile, kind.what, kind.wayOut));
  }
  PrintRecords(*records, options, console);
  const bool written = console.Flush();
  if (embedded::AttentionRequested()) return kExitInterrupted;
  return written ? kExitSuccess : kExitUsage;
}

void AddPreview(CLI::App& program, int* status) {
  CLI::App* preview =
      program.add_subcommand("preview", "Shows the first records of a file, as the wizard does");
  const auto options = std::make_shared<PreviewOptions>();
  preview->add_option("DATA-FILE", options->dataFile, "The file to show; - is standard input")
      ->type_name("FILE|-")
      ->required();
  preview
      ->add_option("--encoding", options->encoding,
                   "UTF-8 (default), UTF-16, UTF-16LE, UTF-16BE, Locale")
      ->type_name("NAME");
  preview
      ->add_option("--code-page", options->host.codePage,
                   "Work in that code page, which is also what Locale means (default: UTF-8)")
      ->type_name("NAME");
  preview->add_option("--records", options->records, "Records shown (default: 20)")
      ->type_name("N")
      ->check(CLI::Range(0LL, std::numeric_limits<long long>::max()).description(""));
  preview->footer(kExamples);
  preview->callback([options, status] { *status = Preview(*options); });
}

}  // namespace cli
