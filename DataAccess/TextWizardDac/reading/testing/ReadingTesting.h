// What the tests of reading share: imports of files in memory, and where messages go.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HostFramework/DataSource.h"
#include "HostFramework/FileStream.h"
#include "HostFramework/Messages.h"
#include "HostFramework/embedded/data/CaseBuffer.h"
#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "model/FormatCode.h"
#include "model/testing/MessageKeeper.h"
#include "reading/QANT_TextWizardIterator.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard::testing_support {

inline constexpr const char* kPath = "data.txt";

inline TxtWzVar MakeVar(const char* name, std::uint32_t format, std::uint32_t width,
                        std::int32_t decimals = 0) {
  TxtWzVar variable;
  variable.SetVarName(name);
  variable.formatType = format;
  variable.width = variable.maxStringLength = width;
  variable.decimals = decimals;
  return variable;
}

inline TxtWzVar MakeFixedVar(const char* name, std::uint32_t format, std::uint32_t record,
                             std::uint32_t start, std::uint32_t width) {
  TxtWzVar variable = MakeVar(name, format, width);
  variable.recordNumber = record;
  variable.startColumn = start;
  return variable;
}

inline TxtWzVar Number(const char* name) { return MakeVar(name, kFormatF, 8); }
inline TxtWzVar String(const char* name, std::uint32_t width) {
  return MakeVar(name, kFormatA, width);
}
inline TxtWzVar Skipped(const char* name) { return MakeVar(name, kFormatSkip, 8); }

inline ImportSettings Delimited(const char* delimiters, Arrangement arrangement = kDelimitedLines) {
  ImportSettings settings;
  settings.arrangement = arrangement;
  settings.delimiters = delimiters;
  return settings;
}

// A file in memory, and the source of an import of it that has been executed.
class TestImport {
 public:
  TestImport(std::string file, const ImportSettings& settings,
             const std::vector<TxtWzVar>& variables,
             std::shared_ptr<embedded::StreamFaults> faults = nullptr)
      : files_(kPath, std::move(file), std::move(faults)),
        source_(std::make_unique<QANT_TextWizardSrc>(kPath, 0, 0, nullptr)) {
    std::vector<std::unique_ptr<TxtWzVar>> owned;
    for (const TxtWzVar& variable : variables) {
      owned.push_back(std::make_unique<TxtWzVar>(variable));
      if (variable.formatType == kFormatSkip) continue;
      const auto width = variable.formatType == kFormatA ? variable.maxStringLength : 0U;
      QANT_DataSource::MakeVariable(source_.get(), static_cast<int>(width), nullptr);
    }
    source_->SetSettings(settings);
    source_->SetVariables(std::move(owned));
    buffer_ = std::make_unique<embedded::CaseBuffer>(*source_);
  }

  QANT_TextWizardSrc& source() { return *source_; }
  embedded::CaseBuffer& buffer() { return *buffer_; }
  OBS* obs() { return buffer_->obs(); }
  TxtWzVar& variable(std::size_t index) { return *source_->variables()[index]; }

  // The values of the case in the buffer: a string's text between bars, so that its blanks show; a
  // number's shortest digits; "." for a missing number.
  std::string Case() const {
    std::string text;
    for (std::size_t i = 0; i < source_->GetNVariables(); ++i) {
      if (!text.empty()) text += " ";
      if (source_->GetVariable(i)->GetType() > 0) {
        text += "|" + std::string(buffer_->Text(i)) + "|";
      } else if (buffer_->Number(i) == kSystemMissing) {
        text += ".";
      } else {
        std::string digits = std::to_string(buffer_->Number(i));
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.back() == '.') digits.pop_back();
        text += digits;
      }
    }
    return text;
  }

  // All cases that a new iterator of one thread delivers.
  std::vector<std::string> Cases(ErrorMonitor* monitor = nullptr) {
    QANT_TextWizardIterator iterator(*source_, obs());
    iterator.SetErrorMonitor(monitor);
    std::vector<std::string> cases;
    while (iterator.Next()) cases.push_back(Case());
    return cases;
  }

 private:
  embedded::ScopedMemoryFiles files_;
  std::unique_ptr<QANT_TextWizardSrc> source_;
  std::unique_ptr<embedded::CaseBuffer> buffer_;
};

using Strings = std::vector<std::string>;

}  // namespace textwizard::testing_support
