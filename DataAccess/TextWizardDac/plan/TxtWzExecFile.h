// The import plan: everything the parser learned from a command, its variables and the pattern
// table of type detection. Built by the parser as the class of its line arrangement, executed once
// against a data source. One thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "HostFramework/DataSource.h"
#include "HostFramework/Messages.h"
#include "detection/RegExMappings.h"
#include "model/ImportSettings.h"
#include "model/TwExecInput.h"
#include "model/TxtWzVar.h"
#include "plan/TxtWzFile.h"

namespace textwizard {

class DetectionEvidence;
class QANT_TextWizardSrc;

class TxtWzExecFile : public TxtWzFile {
 public:
  // No index of a variable: SearchUpperVarName found none.
  static constexpr std::uint32_t kNoVariable = 0xFFFFFFFF;

  TxtWzExecFile();
  ~TxtWzExecFile() override;

  // Copies the settings into `source`, builds its dictionary and gives it copies of the variables.
  // Always 1. `input` is not used. Throws the integer 2269 when reading the file fails.
  virtual int Execute(QANT_TextWizardSrc* source, TwExecInput* input);
  // Gives the data source what only this arrangement has. Always 1.
  virtual int SetDataSource(QANT_TextWizardSrc* source) = 0;

  // Takes ownership of `variable`. Always 1.
  int AddVariable(std::unique_ptr<TxtWzVar> variable);
  // Makes the first n variables, in definition order, the plan's slots.
  void SetVarCount(std::size_t n);
  void SetFileName(const char* name);
  const std::string& fileName() const { return dataFileName_; }
  // Index of the first variable with that upper-case name, or kNoVariable.
  std::uint32_t SearchUpperVarName(const char* upperName) const;
  std::size_t variableCount() const { return definedVars_.size(); }
  // The slots; the plan keeps ownership of the variables.
  const std::vector<TxtWzVar*>& slots() const { return slots_; }

  // The rule of IMPORTCASE, for a host that picks cases by the plan itself; iterators keep the
  // limit on their own and leave the random share to whoever reads them.
  void StartSampling();
  bool MoreCases();
  bool SampleCase();

  // Settles the type of every AUTO variable and makes the host's variables. 1 when done, 0 when
  // the user interrupted the sampling pass: then no variable is made. (Workers that were
  // interrupted leave what they have counted, and that decides.) Throws the integer 2269 when
  // reading the file fails.
  int SetDictionary(QANT_DataSource* source);

  // Classification of one value, for a host that asks the plan about a text of its own; detection
  // itself goes by DetectionCounters. None changes the value.
  // The value without the blanks (no other white space) of one side.
  static std::string TrimLeft(const std::string& value);
  static std::string TrimRight(const std::string& value);
  // True when it holds nothing but blanks.
  static bool IsEmptyString(const std::string& value);
  bool IsNumeric(const std::string& value) const;
  bool IsPercentage(const std::string& value) const;
  bool IsDollar(const std::string& value) const;
  bool IsComma(const std::string& value) const;
  bool IsDot(const std::string& value) const;
  // Key of the first date or time pattern that matches, 0 when none does.
  int IsDateTime(const std::string& value) const;
  // Widens width and decimals of the slot's variable for `value`.
  void UpdateVarSizes(int slot, const std::string& value, const std::string& decimalChars);

  ImportSettings settings;
  // Host handles that messages of the sampling pass are reported with.
  void* errorContext = nullptr;
  ErrorCallback errorMonitorHandle = nullptr;

 protected:
  // Owned here; declared in definition order.
  std::vector<std::unique_ptr<TxtWzVar>> definedVars_;

 private:
  // Gives the source copies of the slots' variables as they are now.
  void GiveVariables(QANT_TextWizardSrc& source) const;
  // Counts the values of the AUTO variables; false when the user interrupted.
  // `evidence` becomes what was seen of each slot's values when the host watches detection.
  bool DetectTypes(QANT_DataSource* source, std::vector<DetectionEvidence>& evidence);
  void Tell(const DetectionEvidence& evidence, const TxtWzVar& variable,
            const QANT_DataSource& source) const;

  std::vector<TxtWzVar*> slots_;
  std::string dataFileName_;
  // Upper-case name (text of the variable itself) -> lowest definition index.
  std::unordered_map<std::string_view, std::uint32_t> upperNameIndex_;
  std::int64_t caseCounter_ = 0;
  RegExMappings patterns_;
};

}  // namespace textwizard
