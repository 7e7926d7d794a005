#include "cli/files/FilesImport.h"

#include <cstddef>
#include <map>
#include <utility>

#include <fmt/format.h>
#include <unistd.h>

#include "cli/files/AsOneLine.h"
#include "cli/files/DataSetRun.h"
#include "cli/import/BareDataImport.h"
#include "cli/terminal/SniffScreen.h"
#include "cli/terminal/VisibleText.h"

namespace cli {
namespace {

using library::DataSetFile;

// Lines about how files differ that are shown.
constexpr std::size_t kMostDriftLines = 20;

class FilesImport : public BareDataImport {
 public:
  FilesImport(const ImportOptions& options, const std::vector<std::string>& names,
              const std::string& dataName)
      : BareDataImport(options), names_(names), dataName_(dataName) {
    run().asOne = true;
    run().sourceColumn = options.sourceColumn;
  }

 private:
  std::vector<std::string> Names() const override { return names_; }
  bool Understand(std::string* problem) override;
  void SetRunOptions() override;
  void ShowFindings() override;
  CommandEnd Read(library::ImportStats* stats) override;
  std::string CommandText() const override { return library::CommandsText(plan_); }
  const char* CommandWord() const override { return "the commands"; }
  std::string RunLineFor(const std::string& name) const override {
    return AsOneLine(plan_, options().sourceColumn, options().run.report.nullTexts, name);
  }
  std::string Kinds() const;

  const std::vector<std::string>& names_;
  const std::string& dataName_;
  library::DataSetPlan plan_;
};

bool FilesImport::Understand(std::string* problem) {
  library::DataSetSettings settings;
  settings.file = options().settings;
  settings.file.nulls = run().report.nullTexts;
  settings.file.threads = run().workers;
  settings.file.partBytes = run().parts.partBytes;
  settings.by = options().by.value_or(library::FileAlignment::kAuto);
  settings.skipMisfits = options().skipMisfits;
  StageProgress progress(console(), "finding types, files");
  settings.progress = [&](std::size_t done, std::size_t files) {
    progress.Tick(static_cast<long long>(done), static_cast<long long>(files));
  };
  return library::PlanDataSet(names_, files(), settings, &plan_, problem);
}

void FilesImport::SetRunOptions() {
  AddColumns(plan_.columns);
  if (run().sourceColumn.empty()) return;
  run().labels.push_back(run().sourceColumn);
  run().integerVariables.push_back(false);
}

// "1000 files: 997 with data, 1 with names only, 1 empty, 1 left out".
std::string FilesImport::Kinds() const {
  std::map<DataSetFile::Kind, std::size_t> counts;
  for (const DataSetFile& file : plan_.files) ++counts[file.kind];
  std::string text = fmt::format("{} files", plan_.files.size());
  const char* separator = ": ";
  for (const auto& [kind, count] : counts) {
    const char* name = kind == DataSetFile::Kind::kData         ? "with data"
                       : kind == DataSetFile::Kind::kHeaderOnly ? "with names only"
                       : kind == DataSetFile::Kind::kEmpty      ? "empty"
                                                                : "left out";
    text += fmt::format("{}{} {}", separator, count, name);
    separator = ", ";
  }
  return text;
}

void FilesImport::ShowFindings() {
  const std::size_t width = ScreenWidth(STDOUT_FILENO);
  const DataSetFile& reference = plan_.files[plan_.reference];
  if (shows()) {
    console().Print(Kinds() + (plan_.by == library::FileAlignment::kName
                                   ? "; columns go by name\n"
                                   : "; columns go by place\n"));
    console().Print(SniffSettingsText(plan_.names[plan_.reference], reference.import.sniff, width) +
                    "\n");
  }
  if (run().quiet) return;
  const std::vector<std::string> lines =
      library::DriftLines(plan_.drift, plan_.names, kMostDriftLines);
  if (lines.empty()) return;
  if (shows()) console().Print("The files differ:");
  for (const std::string& line : lines) {
    const std::string text = VisibleText(line);
    if (shows()) {
      console().Print(WrappedText("  " + text, width));
    } else {
      console().Warning(text);
    }
  }
  if (shows()) console().Print("");
}

CommandEnd FilesImport::Read(library::ImportStats* stats) {
  DataSetRun data{run(), console(), messages(), files(), library::CommandsOf(plan_), dataName_};
  for (library::DataSetCommand& command : data.commands) {
    command.rewriting.keepStrayQualifiers |= run().report.keepStrayQualifiers;
  }
  for (std::size_t i = 0; i < plan_.files.size(); ++i) {
    const DataSetFile& file = plan_.files[i];
    if (file.kind == DataSetFile::Kind::kLeftOut) {
      data.leftOut.push_back({plan_.names[i], file.problem});
    }
  }
  data.remarks = library::RemarksOf(plan_);
  if (!plan_.drift.empty()) data.drift = library::DriftJson(plan_.drift, plan_.names).dump();
  data.typed = true;
  return RunDataSet(std::move(data), stats);
}

}  // namespace

int ImportFiles(const ImportOptions& options, const std::vector<std::string>& names,
                const std::string& dataName) {
  return FilesImport(options, names, dataName).Run();
}

}  // namespace cli
