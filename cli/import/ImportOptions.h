// The options of `textwizard import`.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/run/RunOptions.h"
#include "library/files/DataSetPlan.h"
#include "library/import/BareImport.h"

namespace cli {

struct ImportOptions {
  // The data: a path as the shell gives it; "-" is standard input.
  std::string file;
  // Paths and patterns as they were given: `file` is the one that they come to, unless they are
  // several files or something is asked for that is of several.
  std::vector<std::string> given = {};
  std::optional<library::FileAlignment> by = {};
  bool skipMisfits = false;
  // UTF-8; empty for none.
  std::string sourceColumn = {};
  // Outputs, display and problems; what an import finds out is set by it.
  RunOptions run;
  // What is given instead of found; its null texts are those of `run`.
  library::BareImportSettings settings;
};

// These read the text of an option. False when it says nothing that the option can be; *error is
// then what is wrong, as a sentence's end.

// A delimiter as it stands, with \t, \\ and \xHH; or one of the words tab, blank, none.
bool ReadDelimiter(const std::string& text, std::string* delimiter, std::string* error);
// One character, or none.
bool ReadQualifier(const std::string& text, std::string* qualifier, std::string* error);
// "NAME=FORMAT,...": a format is what follows the last equals sign.
bool ReadTypes(const std::string& text, std::vector<std::pair<std::string, std::string>>* types,
               std::string* error);
// "A,B,...": none empty.
bool ReadNames(const std::string& text, std::vector<std::string>* names, std::string* error);

}  // namespace cli
