// Several bare files understood as one data set, for those who read them one by one or in parts.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "library/capi/ImportRecipe.h"
#include "library/capi/ImportSession.h"
#include "library/files/DataSetPlan.h"
#include "library/import/ImportMessages.h"
#include "library/parts/SummaryFile.h"

namespace library {

struct DataSetOptions {
  // As bytes of the file system.
  std::vector<std::string> paths;
  // What the dictionary calls the data (UTF-8); empty: the paths.
  std::string name;
  FileAlignment by = FileAlignment::kAuto;
  bool skipMisfits = false;
  std::string sourceColumn;  // UTF-8; empty for none
  // Of whole files among them, which are not read again for their types.
  std::vector<FilePartSummary> summaries;
};

// Throws Failure and std::bad_alloc. One thread.
class DataSetSession : private ImportMessages {
 public:
  // Understands the files, and makes the dictionary of all. `settings` and `options` are those of
  // each file; a part plays no role.
  DataSetSession(DataSetOptions set, BareImportSettings settings, const SessionOptions& options);

  // All texts are UTF-8. The commands of the files that are read, one behind the other.
  const std::string& commands() const { return commands_; }
  // JSON: file, cases, variables with their evidence, and what differs between the files.
  const std::string& dictionary() const { return dictionary_; }
  // JSON: how the file was read whose structure most have.
  const std::string& reading() const { return reading_; }
  // JSON: of each file what it is, how it was when it was looked at, and its place.
  const std::string& files() const { return files_; }
  std::size_t count() const { return recipes_.size(); }
  // By which the file's import is opened; empty where it is not read.
  const std::string& recipe(std::size_t file) const { return recipes_.at(file); }

 private:
  void Plan(BareImportSettings settings);
  void CheckSummaries() const;
  void Open();
  ImportRecipe RecipeOf(const DataSetFile& file, const std::string& name,
                        const std::vector<DataSetVariable>& variables);
  void TellFiles();
  void TellDictionary(const QANT_DataSource& source);
  std::vector<std::string> EvidenceTexts() const;
  void PlaceWitnesses(nlohmann::json* told) const;
  void Post(std::string_view hostText, int kind) override;
  [[noreturn]] void Fail(const std::string& problem);

  const DataSetOptions set_;
  const SessionOptions options_;
  std::atomic<bool> cancelled_{false};
  InputFiles inputs_;
  DataSetPlan plan_;
  // Of each file: its types are from its summary.
  std::vector<bool> summarized_;
  std::string errors_;
  std::string commands_;
  std::string dictionary_;
  std::string reading_;
  std::string files_;
  std::vector<std::string> recipes_;
};

}  // namespace library
