// Cases as JSON Lines: one object a case, the names as keys in the order of the variables.
#pragma once

#include <vector>

#include "library/outputs/CaseWriter.h"
#include "library/outputs/OutputFile.h"

namespace library {

// Numbers are JSON numbers, dates and times strings, missing values null.
class JsonLinesWriter : public CaseWriter {
 public:
  JsonLinesWriter(std::vector<CaseColumn> columns, OutputFile& file);
  void WriteHeader() override {}
  void WriteCase(const OBS* obs) override;

 private:
  std::vector<CaseColumn> columns_;
  OutputFile& file_;
  Utf8Converter hostText_;
};

}  // namespace library
