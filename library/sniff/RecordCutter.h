// Records into fields as an import with the dialect will cut them: by the component's own splitter.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "library/rewriting/QuoteRewriter.h"
#include "library/rewriting/StandIns.h"
#include "library/sniff/Dialect.h"
#include "reading/FieldSplitter.h"

namespace library {

// What qualifiers did in the records cut so far.
struct QuoteCounts {
  std::int64_t qualified = 0;  // fields that begin with a qualifier
  std::int64_t needed = 0;     // those with a delimiter or a line break within
  std::int64_t doubled = 0;    // doubled qualifiers in them
  std::int64_t stray = 0;      // unqualified fields with qualifiers within
  std::int64_t behind = 0;     // qualified fields with text behind the closing qualifier
};

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

  const QuoteCounts& quotes() const { return quotes_; }

 private:
  std::string_view Prepare(std::string_view record);
  std::string_view Keep(std::string_view field);
  bool CountQuotes(std::string_view raw, std::string_view field);

  const Dialect dialect_;
  // Characters of one delimiter.
  const std::size_t stride_;
  textwizard::ImportSettings settings_;
  textwizard::FieldRules rules_;
  textwizard::FieldSplitter splitter_;
  // With backslash escapes: what the splitter is shown instead.
  std::optional<QuoteRewriter> rewriter_;
  TextRestorer restorer_;
  QuoteCounts quotes_;
  // The rewritten record, and the fields that are no views of the record.
  std::string rewritten_;
  std::deque<std::string> kept_;
  std::size_t keptCount_ = 0;
};

}  // namespace library
