// A data source, its cases and problems for tests of what the program reports.
#pragma once

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/DataSource.h"
#include "HostFramework/ImportObserver.h"
#include "library/outputs/ByteSink.h"
#include "library/report/ReportVariable.h"

namespace library {

// A source whose variables the test makes and whose cases it fills itself.
class ReportSource : public QANT_DataSource {
 public:
  ReportSource() : QANT_DataSource(nullptr) {}
  QANT_InputCaseIterator* MakeIterator(OBS*) const override { return nullptr; }

  ReportSource& Number(const char* name, int format = 5, int width = 8, int decimals = 2) {
    return Make(name, 0, format, width, decimals);
  }
  ReportSource& String(const char* name, int bytes) { return Make(name, bytes, 1, bytes, 0); }

 private:
  ReportSource& Make(const char* name, int bytes, int format, int width, int decimals) {
    QANT_Variable* variable = MakeVariable(this, bytes, nullptr);
    variable->SetName(name);
    variable->SetFormat(format, width, decimals);
    variable->SetWriteFormat(format, width, decimals);
    return *this;
  }
};

// Cases of a source one behind the other; each starts with every number missing and every string
// blank.
class ReportCases {
 public:
  ReportCases(const QANT_DataSource& source, std::size_t count)
      : source_(source), perCase_(source.GetObsAreaSize() / sizeof(OBS)), cells_(count * perCase_) {
    for (std::size_t index = 0; index < count; ++index) ClearCase(source, At(index));
  }
  ReportCases& Set(std::size_t index, std::size_t variable, double value) {
    std::memcpy(CellOf(index, variable), &value, sizeof value);
    return *this;
  }
  ReportCases& Set(std::size_t index, std::size_t variable, std::string_view text) {
    std::memcpy(CellOf(index, variable), text.data(), text.size());
    return *this;
  }
  OBS* At(std::size_t index) { return cells_.data() + index * perCase_; }

 private:
  unsigned char* CellOf(std::size_t index, std::size_t variable) {
    return At(index)[source_.GetVariable(variable)->ObsIndex()].bytes;
  }

  const QANT_DataSource& source_;
  std::size_t perCase_;
  std::vector<OBS> cells_;
};

// Keeps what is written.
class TextSink : public ByteSink {
 public:
  void Append(std::string_view bytes) override { text += bytes; }
  std::string text;
};

// A problem of case 1 in line 2 at byte 10.
inline ImportProblem Problem(ImportProblemKind kind, std::int32_t variable, std::string_view text,
                             std::int64_t amount = 0) {
  return {.kind = kind,
          .variable = variable,
          .caseNumber = 1,
          .line = 2,
          .byte = 10,
          .amount = amount,
          .text = text};
}

}  // namespace library
