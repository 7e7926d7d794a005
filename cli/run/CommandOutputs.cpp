#include "cli/run/CommandOutputs.h"

#include "library/outputs/DictionaryJson.h"

namespace cli {

using library::CasesFile;
using library::OutputFile;

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
  for (const auto& file : cases_) sinks_.push_back(&file->Begin(source, options));
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
  if (dictionary_ != nullptr) {
    const library::DictionaryReport found = report.ForDictionary();
    library::WriteDictionary(source, dataFile, cases, *dictionary_, &found);
  }
  for (library::CaseSink* sink : sinks_) sink->Finish();
  for (const auto& file : cases_) file->Finish({});
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
