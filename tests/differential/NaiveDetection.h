// Type detection written as plainly as the rules are: the standard's number parser and the bare
// regular expressions, one after another. Shares only the record of a variable and the table of
// patterns with the component. The fuzz target compares the component's with it.
#pragma once

#include <string>

#include <unicode/regex.h>

#include "detection/RegExMappings.h"
#include "model/TxtWzVar.h"

namespace naive {

struct CountingRules {
  bool worker = false;
  bool oneCasePerLine = true;
  bool fixed = false;
  bool leadingSpaces = false;
  bool multipleSpaces = false;
  // Workers: every such character is replaced before a number is parsed; 0 is none.
  char swapped = 0;
};

// Values are host text without NULs. Locale: the process's at the time of the calls. One thread.
class Detection {
 public:
  // The table's matchers are used and so not for anybody else at the same time.
  explicit Detection(const textwizard::RegExMappings& table) : table_(table) {}

  static bool IsNumeric(std::string value, char swapped);
  // The whole value matches. Nothing is trimmed.
  static bool Matches(icu::RegexMatcher* matcher, const std::string& value);
  bool MatchesRow(int key, const std::string& value) const;
  int IsDateTime(std::string value, bool trimmed) const;

  // Counts one field that is not empty.
  void Count(std::string field, const CountingRules& rules, textwizard::TxtWzVar& variable) const;
  static void Merge(const textwizard::TxtWzVar& from, textwizard::TxtWzVar& into);
  // The format of a variable whose type is to be found.
  void Settle(textwizard::TxtWzVar& variable, double percentage) const;

 private:
  bool CountDate(const std::string& field, const CountingRules& rules,
                 textwizard::TxtWzVar& variable) const;

  const textwizard::RegExMappings& table_;
};

}  // namespace naive
