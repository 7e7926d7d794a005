// The cases of a recipe's file delivered as those of the data set that it is one of.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "library/capi/ImportRecipe.h"
#include "library/files/DataSetSource.h"
#include "library/files/FilePlace.h"
#include "library/files/FileSinks.h"

namespace library {

// One thread but for what the sinks say of theirs.
class PlacedFile {
 public:
  // `file` is the source of the recipe's command, while the host is as the recipe says; throws
  // Failure where it does not go with the data set.
  PlacedFile(const RecipeDataSet& set, const QANT_DataSource& file);

  // The data set's variables.
  const QANT_DataSource& source() const { return all_; }
  // What takes the file's cases and problems in a pass and hands them on, until the next pass.
  CaseSink& Cases(std::vector<CaseSink*> sinks);
  ProblemSink& Problems(ProblemSink& sink);
  // Makes the account of a pass one of the data set.
  void Place(PassAccount* account) const { place_.Place(account); }
  // JSON: a list of one, as a data set's dictionary has them of all files. Of an account that has
  // its place.
  std::string FilesText(const PassAccount& account) const;

 private:
  const std::string name_;
  const std::int64_t casesBefore_;
  DataSetSource all_;
  FilePlace place_;
  std::vector<CaseSink*> caseSinks_;
  std::vector<ProblemSink*> problemSinks_;
  std::optional<FileCases> cases_;
  std::optional<FileProblems> problems_;
};

}  // namespace library
