#include "cli/import/FileImport.h"

#include <string>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "cli/import/BareDataImport.h"
#include "cli/terminal/SniffScreen.h"
#include "library/import/Explanation.h"
#include "library/import/RemarkText.h"
#include "library/import/RunLine.h"

namespace cli {
namespace {

class FileImport : public BareDataImport {
 public:
  explicit FileImport(const ImportOptions& options) : BareDataImport(options) {}

 private:
  std::vector<std::string> Names() const override { return {options().file}; }
  bool Understand(std::string* problem) override;
  void SetRunOptions() override;
  void ShowFindings() override;
  CommandEnd Read(library::ImportStats* stats) override;
  std::string CommandText() const override { return import_.command; }
  const char* CommandWord() const override { return "the command"; }
  std::string RunLineFor(const std::string& name) const override {
    return library::RunLine(library::RunOptionsFor(import_, options().run.report.nullTexts), name);
  }
  std::string FileText();

  library::BareImport import_;
};

bool FileImport::Understand(std::string* problem) {
  library::BareImportSettings settings = options().settings;
  settings.nulls = run().report.nullTexts;
  settings.threads = run().workers;
  settings.partBytes = run().parts.partBytes;
  StageProgress progress(console(), "finding types");
  settings.progress = [&](std::int64_t bytes, std::int64_t size) { progress.Tick(bytes, size); };
  if (library::UnderstandFile(options().file, files(), settings, &import_, problem)) return true;
  *problem = fmt::format("{}: {}", options().file, *problem);
  return false;
}

// What the import has found out that a run is told by options.
void FileImport::SetRunOptions() {
  run().joinQuotedLines = import_.rewriting.joinQuotedLines;
  run().backslashEscapes = import_.rewriting.backslashEscapes;
  import_.rewriting.keepStrayQualifiers |= run().report.keepStrayQualifiers;
  run().report.keepStrayQualifiers = import_.rewriting.keepStrayQualifiers;
  run().byteOrderMark = import_.shownMark;
  AddColumns(import_.columns);
}

// Where the file is not what its name says.
std::string FileImport::FileText() {
  const library::InputFiles::Input& input = files().Open(options().file);
  std::string name = options().file == "-" ? "standard input" : options().file;
  if (input.compression == library::Compression::kNone) return name;
  return fmt::format("{} ({})", name, library::CompressionName(input.compression));
}

void FileImport::ShowFindings() {
  if (!shows()) return;
  const std::size_t width = ScreenWidth(STDOUT_FILENO);
  console().Print(SniffSettingsText(FileText(), import_.sniff, width, Style::Of(STDOUT_FILENO)) +
                  "\n");
}

CommandEnd FileImport::Read(library::ImportStats* stats) {
  embedded::CommandReader reader(import_.command);
  embedded::ParsedCommand command;
  if (!reader.Next(command) || !command.ok) {
    messages().PostError(options().file + ": the command cannot be read back");
    return CommandEnd::kFailed;
  }
  const RunContext::Found found{files(), import_.standIns, library::RemarksOf(import_),
                                run().report.explain ? library::ExplanationOf(import_) : ""};
  const RunContext context{run(), import_.command, console(), messages(), &found};
  return RunSingleCommand(context, 1, command, stats);
}

}  // namespace

int ImportFile(const ImportOptions& options) { return FileImport(options).Run(); }

}  // namespace cli
