#include "cli/run/CommandOutputs.h"

#include <string_view>
#include <utility>

#include "library/outputs/DictionaryJson.h"

namespace cli {

using library::CasesFile;
using library::OutputFile;

namespace {

// The dictionary as a text.
class KeptText : public library::ByteSink {
 public:
  void Append(std::string_view bytes) override { text += bytes; }
  std::string text;
};

using Metadata = std::vector<std::pair<std::string, std::string>>;

Metadata MetadataOf(const QANT_DataSource& source, const std::string& dataFile, long long cases,
                    const library::DictionaryReport& report) {
  KeptText dictionary;
  library::WriteDictionary(source, dataFile, cases, dictionary, &report);
  // Without its line end.
  dictionary.text.pop_back();
  return {{"textwizard.dictionary", std::move(dictionary.text)},
          {"textwizard.ledger", report.ledger}};
}

}  // namespace

bool CommandOutputs::Open(std::string* error) {
  for (const CasesTarget& target : CasesTargets(options_)) {
    auto file = CasesFile::Open(NameForCommand(target.name, number_), *target.format, error);
    if (file == nullptr) return false;
    cases_.push_back(std::move(file));
  }
  return Open(options_.dictionary, &dictionary_, error);
}

bool CommandOutputs::Open(const std::string& name, std::unique_ptr<OutputFile>* file,
                          std::string* error) const {
  if (name.empty()) return true;
  *file = OutputFile::Open(NameForCommand(name, number_), error);
  return *file != nullptr;
}

void CommandOutputs::Begin(const QANT_DataSource& source) {
  library::CasesFileOptions options;
  options.values = options_.values;
  options.arrowBody = options_.arrowBody;
  options.threads = options_.workers;
  options.labels = options_.labels;
  options.namesAsVariables = options_.namesAsVariables;
  options.integers = options_.integerVariables;
  options.severalFiles = options_.asOne;
  if (options_.integers) options.integers = library::WholeNumberFormats(source);
  for (const auto& file : cases_) sinks_.push_back(&file->Begin(source, options));
}

std::vector<CasesFile*> CommandOutputs::problemTables() const {
  std::vector<CasesFile*> tables;
  for (const auto& file : cases_) {
    if (library::HoldsProblems(file->format())) tables.push_back(file.get());
  }
  return tables;
}

std::vector<library::Misfit> CommandOutputs::End() {
  for (library::CaseSink* sink : sinks_) sink->Finish();
  std::vector<library::Misfit> misfits;
  for (const auto& file : cases_) {
    // The columns of all files have the same types.
    if (misfits.empty()) misfits = file->Misfits();
  }
  for (CasesFile* table : problemTables()) {
    for (const library::Misfit& misfit : misfits) table->AddProblem(library::RowOf(misfit));
  }
  return misfits;
}

const OutputFile* CommandOutputs::failed() const {
  for (const auto& file : cases_) {
    if (!file->file().ok()) return &file->file();
  }
  return nullptr;
}

const OutputFile* CommandOutputs::Publish(const QANT_DataSource& source,
                                          const std::string& dataFile, long long cases,
                                          const CommandReport& report) {
  const library::DictionaryReport found = report.ForDictionary();
  if (dictionary_ != nullptr) {
    library::WriteDictionary(source, dataFile, cases, *dictionary_, &found);
  }
  Metadata metadata;
  for (const auto& file : cases_) {
    const bool holds = library::HoldsMetadata(file->format());
    if (holds && metadata.empty()) metadata = MetadataOf(source, dataFile, cases, found);
    file->Finish(holds ? metadata : Metadata());
  }
  std::vector<OutputFile*> files = report.Files();
  for (const auto& file : cases_) files.push_back(&file->file());
  if (dictionary_ != nullptr) files.push_back(dictionary_.get());
  return Publish(files);
}

const OutputFile* CommandOutputs::Publish(const std::vector<OutputFile*>& files) {
  for (const auto& step : {&OutputFile::Finish, &OutputFile::Publish}) {
    for (OutputFile* file : files) {
      if (!(file->*step)()) return file;
    }
  }
  return nullptr;
}

}  // namespace cli
