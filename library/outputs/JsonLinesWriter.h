// Cases as JSON Lines: one object a case, the names as keys in the order of the variables.
#pragma once

#include <string>
#include <vector>

#include "library/outputs/CaseWriter.h"

namespace library {

// Numbers are JSON numbers, dates and times strings, missing values null.
class JsonLinesWriter : public CaseWriter {
 public:
  explicit JsonLinesWriter(std::vector<CaseColumn> columns);
  void WriteHeader(TextBlock&) const override {}
  void WriteCase(const OBS* obs, Utf8Converter& hostText, TextBlock& out) const override;

 private:
  const std::vector<CaseColumn> columns_;
  // What stands before the value of each column: its name, and what separates it from the one
  // before.
  std::vector<std::string> keys_;
};

}  // namespace library
