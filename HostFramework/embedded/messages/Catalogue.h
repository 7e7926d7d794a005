// The message catalogue: numbered texts, checked when they are loaded.
//
// A catalogue is a text file in the host's text with one message a line: the number, one blank, the
// text. A text begins with its number in square brackets. Empty lines are skipped, and so are a
// UTF-8 byte-order mark and the carriage returns of line ends.
//
// The texts of some numbers are printf formats with fixed placeholders (kMessagePlaceholders; %i
// stands for %d, %% is a percent sign).
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace embedded {

// Texts by number. Immutable once parsed, so any thread may read it.
class Catalogue {
 public:
  // Takes the good lines of `text`. Every other line, such as one whose placeholders are not its
  // number's, is left out and named in *problems, one line each.
  static Catalogue Parse(std::string_view text, std::string* problems);
  // Null when the number has no text.
  const std::string* Find(long id) const;

 private:
  std::map<long, std::string> texts_;
};

// Puts the catalogue file `path` in use, for texts asked for from now on. False, with *error (which
// may be null) saying what is wrong, when it cannot be read, and then the catalogue in use stays;
// or when it has bad lines, and then its good lines are in use. Any thread.
bool LoadCatalogue(const char* path, std::string* error);

// What is wrong with the catalogue in use; empty when nothing is. Loads the host's own catalogue
// when none was loaded yet. Any thread.
std::string CatalogueProblems();

// Path of the host's own catalogue: ../share/textwizard/lorvane.err beside the directory that the
// host's library was loaded from.
std::string DefaultCataloguePath();

}  // namespace embedded
