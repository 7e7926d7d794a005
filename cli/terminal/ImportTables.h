// What a person sees of one command: its variables, its first cases, the counts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "HostFramework/DataSource.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/TerminalTable.h"
#include "library/outputs/CaseSink.h"
#include "library/outputs/CaseWriter.h"

namespace cli {

// The table of the variables: name, format, width, for a terminal of `terminalWidth` columns. Long
// dictionaries are cut after the first variables, and the text says so.
std::string VariableTable(const QANT_DataSource& source, std::size_t terminalWidth);

// "5 cases, 7 variables".
std::string Counts(long long cases, std::size_t variables);

// Keeps the text of the first cases, no more columns of them than a terminal can show.
class FirstCases : public library::CaseSink {
 public:
  enum class Layout : std::uint8_t {
    kPlain,  // as many of the first columns as fit
    kTyped,  // formats under the names; where not all columns fit, the first and the last ones
  };
  FirstCases(const QANT_DataSource& source, library::ValueStyle style, long long limit,
             std::size_t terminalWidth, Layout layout = Layout::kPlain);

  // False where no case is to be shown.
  bool wanted() const { return limit_ > 0; }
  std::unique_ptr<library::CasePart> Make(const OBS* cases, std::size_t count,
                                          std::int64_t firstCase) const override;
  void Take(std::unique_ptr<library::CasePart> part) override;
  void Finish() override {}
  // The table, or an empty text when no case was taken.
  std::string Text(const Style& style = Style()) const;

 private:
  struct Part;
  void Keep(const OBS* obs);

  const long long limit_;
  const Layout layout_;
  const std::size_t cells_;  // of a case
  long long taken_ = 0;
  std::size_t terminalWidth_;
  std::size_t variables_;
  // Variables between the columns that are kept and not shown.
  std::size_t unseen_ = 0;
  std::vector<library::CaseColumn> columns_;
  TerminalTable table_;
  library::Utf8Converter hostText_;
};

}  // namespace cli
