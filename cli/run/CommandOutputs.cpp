#include "cli/run/CommandOutputs.h"

#include "library/outputs/DictionaryJson.h"
#include "library/outputs/MakeCaseWriter.h"

namespace cli {

using library::OutputFile;

bool CommandOutputs::Open(std::string* error) {
  return Open(options_.cases, &cases_, error) && Open(options_.dictionary, &dictionary_, error);
}

bool CommandOutputs::Open(const std::string& name, std::unique_ptr<OutputFile>* file,
                          std::string* error) const {
  if (name.empty()) return true;
  *file = OutputFile::Open(NameForCommand(name, number_), error);
  return *file != nullptr;
}

void CommandOutputs::Begin(const QANT_DataSource& source) {
  if (cases_ == nullptr) return;
  writer_ = library::MakeCaseWriter(*CaseFormatOf(options_),
                                    library::ColumnsOf(source, options_.values), *cases_);
  writer_->WriteHeader();
  batch_.emplace(source.GetObsAreaSize(), *writer_);
}

const OutputFile* CommandOutputs::Publish(const QANT_DataSource& source,
                                          const std::string& dataFile, long long cases) {
  if (dictionary_ != nullptr) library::WriteDictionary(source, dataFile, cases, *dictionary_);
  for (const auto& step : {&OutputFile::Finish, &OutputFile::Publish}) {
    for (OutputFile* file : {cases_.get(), dictionary_.get()}) {
      if (file != nullptr && !(file->*step)()) return file;
    }
  }
  return nullptr;
}

}  // namespace cli
