#include "detection/SamplingPass.h"

#include "model/FormatCode.h"
#include "model/MessageText.h"
#include "reading/FixedFields.h"

namespace textwizard {

SamplingPass::SamplingPass(QANT_TextWizardIterator& iterator, const ImportSettings& settings,
                           const std::vector<TxtWzVar*>& slots, const RegExMappings& table,
                           ErrorMonitor& monitor, DetectionEvidence* evidence)
    : iterator_(iterator),
      settings_(settings),
      slots_(slots),
      monitor_(monitor),
      evidence_(evidence),
      counters_(table, DetectionRules(settings, DetectionPass::kSampling)),
      blanksCollapse_(settings.arrangement != kFixedColumns && iterator.IsDelimiter(' ')) {}

bool SamplingPass::Run() {
  iterator_.HandleByteOrderMark();
  iterator_.SkipStartingLines();
  bool interrupted = false;
  std::int64_t next = 1;
  while (!interrupted && (settings_.caseLimit <= 0 || next <= settings_.caseLimit) &&
         ReadRecord()) {
    CountRecord();
    ++next;
    if (next % kProgressStep == 0) {
      ReportProgress(monitor_, next);
      monitor_.AttentionCheck(&interrupted);
    }
  }
  ReportEnd(monitor_);
  if (iterator_.readFailed()) throw int{kReadFailed};
  return !interrupted;
}

bool SamplingPass::ReadRecord() {
  switch (settings_.arrangement) {
    case kDelimitedLines:
      return iterator_.NextLine() != kEndOfDataText;
    case kDelimitedCount:
      record_ = iterator_.ProcessDlmCountBuffer();
      cursor_ = record_.data();
      break;
    case kFixedColumns:
      lines_ = iterator_.NextFixedLines();
      return lines_ != kEndOfDataText;
  }
  return record_ != kEndOfDataText;
}

bool SamplingPass::NextField(const TxtWzVar& variable) {
  switch (settings_.arrangement) {
    case kDelimitedLines:
      return iterator_.NextField(field_);
    case kFixedColumns:
      return CutFixedField(lines_, variable, field_);
    case kDelimitedCount:
      break;
  }
  const bool found = iterator_.GetNextVar(fieldText_, cursor_, record_);
  field_ = fieldText_;
  return found;
}

void SamplingPass::CountRecord() {
  for (std::size_t slot = 0; slot < slots_.size();) {
    TxtWzVar& variable = *slots_[slot];
    if (!NextField(variable)) return EndRecord(slot);
    if (variable.formatType == kFormatAuto) {
      if (!field_.empty()) {
        const CountedAs as = counters_.Count(field_, variable);
        if (evidence_ && !evidence_[slot].Takes(field_, as, counters_)) {
          evidence_[slot].Add(field_, as, iterator_.textLine(), counters_);
        }
      } else if (blanksCollapse_) {
        continue;
      } else if (evidence_) {
        evidence_[slot].AddEmpty();
      }
    }
    ++slot;
  }
}

// The record is used up before the field of `slot`.
void SamplingPass::EndRecord(std::size_t slot) {
  if (!evidence_ || settings_.arrangement != kDelimitedLines || blanksCollapse_) return;
  // Behind a delimiter that ends the record is one more field, an empty one.
  if (slots_[slot]->formatType == kFormatAuto && iterator_.EndsInDelimiter()) {
    evidence_[slot].AddEmpty();
  }
}

void SamplingPass::ReportProgress(ErrorMonitor& monitor, std::int64_t next) {
  monitor.Report({std::to_string(next), kMessageProgress, 0});
}

}  // namespace textwizard
