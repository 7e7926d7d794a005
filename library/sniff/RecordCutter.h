// Records into fields as an import with the dialect will cut them: by the component's own splitter.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "library/sniff/Dialect.h"
#include "library/sniff/QuoteScanner.h"
#include "reading/FieldSplitter.h"

namespace library {

// One thread.
class RecordCutter {
 public:
  explicit RecordCutter(const Dialect& dialect);
  RecordCutter(const RecordCutter&) = delete;
  RecordCutter& operator=(const RecordCutter&) = delete;

  struct Field {
    // Without its qualifiers; good until the next Cut.
    std::string_view text;
    bool qualified = false;
  };

  // Cuts a record (UTF-8, line breaks within qualified fields included) into *fields. Stray
  // qualifiers are data, and so is what a backslash escapes. A blank delimiter at the record's end
  // makes no field. Returns how many pieces a delimiter of several characters should not have: 0
  // where it fits.
  std::size_t Cut(std::string_view record, std::vector<Field>* fields);

 private:
  std::string_view Prepare(std::string_view record);
  std::string_view Keep(std::string_view field);

  const Dialect dialect_;
  // Characters of one delimiter.
  const std::size_t stride_;
  textwizard::ImportSettings settings_;
  textwizard::FieldRules rules_;
  textwizard::FieldSplitter splitter_;
  QuoteScanner scanner_;
  std::vector<QuoteMark> marks_;
  // The record with other bytes where the splitter would misread it, and the fields that are no
  // views of the record.
  std::string prepared_;
  std::deque<std::string> kept_;
  std::size_t keptCount_ = 0;
};

}  // namespace library
