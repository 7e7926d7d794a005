// Type detection on the caller's thread: the records of a file through the single-thread iterator
// into the counters of the plan's variables.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/Messages.h"
#include "detection/DetectionCounters.h"
#include "detection/DetectionEvidence.h"
#include "model/ImportSettings.h"
#include "model/TxtWzVar.h"
#include "reading/QANT_TextWizardIterator.h"

namespace textwizard {

// Runs once. What it is given outlives it; variables grow while it runs, and a wider or narrower
// variable of fixed columns is cut so from its next value on.
class SamplingPass {
 public:
  // `iterator` stands at the start of the file. Progress goes to `monitor`. `evidence`: one for
  // each slot, null when nobody wants them.
  SamplingPass(QANT_TextWizardIterator& iterator, const ImportSettings& settings,
               const std::vector<TxtWzVar*>& slots, const RegExMappings& table,
               ErrorMonitor& monitor, DetectionEvidence* evidence = nullptr);

  // False when the user interrupted the pass. Throws the integer 2269 when the file cannot be read
  // on.
  bool Run();

  // Records between two reports of progress, and two questions whether to go on.
  static constexpr std::int64_t kProgressStep = 1000;
  // Reports the number of the record that comes next; or that none does.
  static void ReportProgress(ErrorMonitor& monitor, std::int64_t next);
  static void ReportEnd(ErrorMonitor& monitor) { ReportProgress(monitor, kProgressEnd); }

 private:
  // Ends the host's display of progress.
  static constexpr std::int64_t kProgressEnd = -1;

  bool ReadRecord();
  bool NextField(const TxtWzVar& variable);
  void CountRecord();
  void EndRecord(std::size_t slot);

  QANT_TextWizardIterator& iterator_;
  const ImportSettings& settings_;
  const std::vector<TxtWzVar*>& slots_;
  ErrorMonitor& monitor_;
  DetectionEvidence* const evidence_;
  DetectionCounters counters_;
  // Empty fields take no slot: runs of blanks that separate values collapse.
  const bool blanksCollapse_;

  // The field in hand: of the iterator's own record, of the lines that make a case of fixed
  // columns, or of a text that joins several records.
  std::string_view field_;
  std::string_view lines_;
  std::string record_;
  const char* cursor_ = nullptr;
  std::string fieldText_;
};

}  // namespace textwizard
