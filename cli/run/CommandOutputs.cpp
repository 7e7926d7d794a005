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
  for (const auto& file : cases_) {
    sinks_.push_back(&file->Begin(source, options));
    batches_.emplace_back(source.GetObsAreaSize(), *sinks_.back());
  }
}

void CommandOutputs::Flush() {
  for (library::CaseBatch& batch : batches_) batch.Flush();
}

double CommandOutputs::seconds() const {
  double seconds = 0;
  for (const library::CaseBatch& batch : batches_) seconds += batch.seconds();
  return seconds;
}

const OutputFile* CommandOutputs::failed() const {
  for (const auto& file : cases_) {
    if (!file->file().ok()) return &file->file();
  }
  return nullptr;
}

const OutputFile* CommandOutputs::Publish(const QANT_DataSource& source,
                                          const std::string& dataFile, long long cases) {
  if (dictionary_ != nullptr) library::WriteDictionary(source, dataFile, cases, *dictionary_);
  for (library::CaseSink* sink : sinks_) sink->Finish();
  for (const auto& file : cases_) file->Finish({});
  for (const auto& step : {&OutputFile::Finish, &OutputFile::Publish}) {
    for (const auto& file : cases_) {
      if (!(file->file().*step)()) return &file->file();
    }
    if (dictionary_ != nullptr && !(dictionary_.get()->*step)()) return dictionary_.get();
  }
  return nullptr;
}

}  // namespace cli
