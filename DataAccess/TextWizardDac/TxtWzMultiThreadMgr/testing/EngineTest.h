// What the tests of the multi-threaded engine share: a file, sources with their variables, monitors
// that keep what they are told, and a pass over all cases.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/DataSource.h"
#include "HostFramework/Messages.h"
#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "model/FormatCode.h"
#include "model/ImportSettings.h"
#include "model/TxtWzVar.h"
#include "model/testing/MessageKeeper.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard::engine_test {

// The host works in UTF-8 whatever the locale of the test run.
inline const bool kUtf8Host = embedded::SetCodePage(nullptr);

// A file of the given bytes for as long as the object lives; one at a time.
class DataFile {
 public:
  explicit DataFile(std::string bytes, std::shared_ptr<embedded::StreamFaults> faults = nullptr)
      : files_(path_, std::move(bytes), std::move(faults)) {}
  const std::string& path() const { return path_; }

 private:
  const std::string path_ = "data.txt";
  embedded::ScopedMemoryFiles files_;
};

struct Column {
  std::uint32_t format = kFormatF;
  // Bytes of a string; the field width of a number.
  std::uint32_t width = 8;
  // Strings: the format's width, when it differs from the cells' (0: same).
  std::uint32_t formatWidth = 0;
  // Fixed columns: the first byte, and the record of the case.
  std::uint32_t start = 0;
  std::uint32_t line = 1;
};

inline std::vector<Column> Numbers(std::size_t n) { return std::vector<Column>(n); }

inline ImportSettings CommaSettings() {
  ImportSettings settings;
  settings.delimiters = ",";
  settings.qualifierSet = true;
  settings.qualifier = "\"";
  settings.encoding = kEncodingUtf8;
  return settings;
}

// A source over `path` with the variables that a dictionary pass would have made.
template <class Source = QANT_TextWizardSrc>
std::unique_ptr<Source> MakeSource(const std::string& path, int workers,
                                   const std::vector<Column>& columns,
                                   const ImportSettings& settings,
                                   DACAdapterBase* adapter = nullptr) {
  auto source = std::make_unique<Source>(path.c_str(), workers, 0, adapter);
  source->SetSettings(settings);
  std::vector<std::unique_ptr<TxtWzVar>> variables;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const Column& column = columns[i];
    auto variable = std::make_unique<TxtWzVar>();
    variable->SetVarName(("v" + std::to_string(i + 1)).c_str());
    variable->formatType = column.format;
    variable->width = column.width;
    variable->startColumn = column.start;
    variable->recordNumber = column.line;
    const bool isString = column.format == kFormatA;
    if (isString) {
      variable->maxStringLength = column.formatWidth ? column.formatWidth : column.width;
    }
    if (column.format != kFormatSkip) {
      QANT_DataSource::MakeVariable(source.get(), isString ? static_cast<int>(column.width) : 0,
                                    nullptr)
          ->SetName(variable->name.c_str());
    }
    variables.push_back(std::move(variable));
  }
  source->SetVariables(std::move(variables));
  return source;
}

// A case buffer for `source`.
class CaseBuffer {
 public:
  explicit CaseBuffer(const QANT_DataSource& source)
      : bytes_(source.GetObsAreaSize()), cells_(bytes_ / sizeof(OBS) + 1) {
    ClearCase(source, cells_.data());
  }
  OBS* obs() { return cells_.data(); }
  std::string Bytes() const { return {reinterpret_cast<const char*>(cells_.data()), bytes_}; }
  double Number(std::size_t cell) const {
    double value;
    std::memcpy(&value, cells_.data() + cell, sizeof value);
    return value;
  }
  std::string Text(std::size_t cell, std::size_t width) const {
    return {reinterpret_cast<const char*>(cells_.data() + cell), width};
  }

 private:
  std::size_t bytes_;
  std::vector<OBS> cells_;
};

// All that a pass over a source brings to light.
struct Pass {
  std::vector<std::string> cases;
  std::vector<std::string> warnings;
  std::vector<std::string> errors;
  // Two for each variable: a missing value was stored, a string was truncated.
  std::vector<bool> flags;
  long long rowCount = -1;
  bool operator==(const Pass&) const = default;
};

inline Pass ReadAll(const QANT_TextWizardSrc& source, QANT_InputCaseIterator& iterator,
                    const CaseBuffer& buffer) {
  MessageKeeper monitor;
  iterator.SetErrorMonitor(&monitor);
  Pass pass;
  while (iterator.Next()) pass.cases.push_back(buffer.Bytes());
  pass.warnings = monitor.Texts(kMessageWarning);
  pass.errors = monitor.Texts(kMessageError);
  for (const auto& variable : source.variables()) {
    pass.flags.push_back(variable->missingStored);
    pass.flags.push_back(variable->stringTruncated);
  }
  pass.rowCount = source.RowCount();
  iterator.SetErrorMonitor(nullptr);
  return pass;
}

// The pass that the source's own choice of iterator makes.
inline Pass ReadAll(const QANT_TextWizardSrc& source) {
  CaseBuffer buffer(source);
  const std::unique_ptr<QANT_InputCaseIterator> iterator(source.MakeIterator(buffer.obs()));
  return ReadAll(source, *iterator, buffer);
}

// One line a case: the number of the case, from 1.
inline std::string NumberedLines(std::int64_t from, std::int64_t to) {
  std::string text;
  for (std::int64_t i = from; i <= to; ++i) text += std::to_string(i) + "\n";
  return text;
}

}  // namespace textwizard::engine_test
