// What another process needs to read the cases of an import as this one would.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "library/files/DataSetSource.h"
#include "library/import/HostSettings.h"
#include "library/parts/SummaryFile.h"
#include "library/rewriting/RewritingOptions.h"
#include "library/rewriting/StandIns.h"

namespace library {

// The data set that a file is one of, and the file's place in it.
struct RecipeDataSet {
  // In their order; names are UTF-8.
  std::vector<DataSetVariable> variables;
  // As problems and accounts name the file (UTF-8).
  std::string fileName;
  // What the last variable has in the file's cases, as bytes; nothing where there is no such one.
  std::optional<std::string> sourceText;
  // Of the files before it.
  std::int64_t casesBefore = 0;
};

// The command (UTF-8) with all that the command language has no words for. Texts that name bytes of
// the file system are such bytes.
struct ImportRecipe {
  std::string command;
  HostSettings host;
  RewritingOptions rewriting{};
  std::string shownMark;
  // How the data file is converted first: from an encoding, and where its columns are padded.
  std::string transcoding;
  std::vector<std::int64_t> paddedAt;
  std::optional<StandIns> standIns;
  std::vector<std::string> nullTexts;  // UTF-8
  // One of several files.
  std::optional<RecipeDataSet> dataSet;
  // Of the columns, in their order; each may be empty.
  std::vector<std::string> labels;
  std::vector<bool> integers;
  bool namesAsVariables = false;
  // The data file, and how it was; nothing where it keeps no bytes (a pipe).
  std::string file;
  std::optional<FileState> state;
};

// JSON in one line, of ASCII alone.
std::string RecipeText(const ImportRecipe& recipe);
// Throws Failure (TEXTWIZARD_USAGE) for a text that is none, or one of another version.
ImportRecipe ReadRecipe(const std::string& text);

}  // namespace library
