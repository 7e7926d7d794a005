// A data source and a case for tests of what the program does with them.
#pragma once

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/DataSource.h"

namespace library {

// A source whose variables the test makes and whose cases it fills itself.
class TestSource : public QANT_DataSource {
 public:
  TestSource() : QANT_DataSource(nullptr) {}
  QANT_InputCaseIterator* MakeIterator(OBS*) const override { return nullptr; }

  TestSource& Number(const char* name, int format = 5, int width = 8, int decimals = 2) {
    return Make(name, 0, format, width, decimals);
  }
  TestSource& String(const char* name, int bytes) { return Make(name, bytes, 1, bytes, 0); }

 private:
  TestSource& Make(const char* name, int bytes, int format, int width, int decimals) {
    QANT_Variable* variable = MakeVariable(this, bytes, nullptr);
    variable->SetName(name);
    variable->SetFormat(format, width, decimals);
    variable->SetWriteFormat(format, width, decimals);
    return *this;
  }
};

// One case of a source: every number missing and every string blank at first.
class TestCase {
 public:
  explicit TestCase(const QANT_DataSource& source)
      : source_(source), cells_(source.GetObsAreaSize() / sizeof(OBS) + 1) {
    ClearCase(source, cells_.data());
  }
  TestCase& Set(std::size_t variable, double value) {
    std::memcpy(cells_[source_.GetVariable(variable)->ObsIndex()].bytes, &value, sizeof value);
    return *this;
  }
  TestCase& Set(std::size_t variable, std::string_view text) {
    std::memcpy(cells_[source_.GetVariable(variable)->ObsIndex()].bytes, text.data(), text.size());
    return *this;
  }
  const OBS* obs() const { return cells_.data(); }

 private:
  const QANT_DataSource& source_;
  std::vector<OBS> cells_;
};

}  // namespace library
