#include "reading/QANT_TextWizardIterator.h"

#include <algorithm>

#include "HostFramework/Sampling.h"
#include "model/FormatCode.h"
#include "model/MessageText.h"
#include "reading/FixedFields.h"
#include "reading/ImportSource.h"
#include "reading/ValueConverter.h"

namespace textwizard {

QANT_TextWizardIterator::QANT_TextWizardIterator(const ImportSource& source, OBS* obs)
    : QANT_InputCaseIterator(source, obs),
      source_(source),
      settings_(source.settings()),
      index_(source.index()),
      decimalCharacter_(source.decimalCharacter()),
      rules_(source.settings()),
      reader_(source.stream()),
      decoder_(source.settings().encoding),
      fields_(rules_, SplitUse::kReading, this),
      suppliedFields_(rules_, SplitUse::kSuppliedRecord, this) {
  unsigned column = 0;
  for (const auto& variable : source.variables()) {
    columns_.push_back({variable.get(), column});
    if (variable->formatType == kFormatSkip) continue;
    lineColumns_.push_back(columns_.back());
    stringRooms_.push_back(StringRoom(*variable, column));
    ++column;
  }
  std::stable_sort(lineColumns_.begin(), lineColumns_.end(), [](const Column& a, const Column& b) {
    return a.variable->recordNumber < b.variable->recordNumber;
  });
}

QANT_TextWizardIterator::~QANT_TextWizardIterator() = default;

// Positions and cases.

bool QANT_TextWizardIterator::Seek(long long n) {
  requestedCase_ = n;
  return true;
}

bool QANT_TextWizardIterator::SeekBegin() { return reader_.SeekBegin(); }

void QANT_TextWizardIterator::SkipStartingLines() {
  // Where values run across lines, a case goes on in the record read last: the line where the data
  // begins is read here, too, and is then the current record.
  const bool readsOn = settings_.arrangement == kDelimitedCount;
  reader_.SkipLines(readsOn ? 0 : 1, settings_.firstCase);
  if (readsOn) TakeRecord(decoder_.Decode(reader_.record(), reader_.mark()));
}

bool QANT_TextWizardIterator::MoreCases() const { return settings_.AllowsCaseAfter(currentCase_); }

bool QANT_TextWizardIterator::SampleCase() {
  if (settings_.importMode != kImportPercent) return true;
  if (!randomSeeded_) {
    SeedSampling();
    randomSeeded_ = true;
  }
  return SampleNextCase(settings_.sampleFraction);
}

void QANT_TextWizardIterator::DropRecord() {
  TakeRecord({});
  suppliedRecord_ = {};
  suppliedFields_.SetRecord({});
  moreData_ = true;
}

void QANT_TextWizardIterator::Position() {
  if (currentCase_ == 0) {
    DropRecord();
    SeekBegin();
    HandleByteOrderMark();
    SkipStartingLines();
  }
  if (requestedCase_ == currentCase_) return;
  std::int64_t position = 0;
  if (!index_.GetPos(requestedCase_, &currentCase_, &position)) return;
  DropRecord();
  reader_.SeekTo(position);
}

bool QANT_TextWizardIterator::Next() {
  if (ended_ && requestedCase_ == currentCase_) return false;
  ended_ = false;
  outOfMemory_ = false;
  // Nothing is thrown to the host.
  try {
    return ReadOn();
  } catch (...) {
    outOfMemory_ = true;
  }
  try {
    return EndOfData();
  } catch (...) {
    // Not even the report could be made: the end is all that is left to tell.
    return false;
  }
}

bool QANT_TextWizardIterator::ReadOn() {
  Position();
  while (currentCase_ <= requestedCase_) {
    if (!MoreCases() || !ReadCase()) return EndOfData();
    index_.Add(currentCase_, reader_.recordPosition());
    ++currentCase_;
  }
  requestedCase_ = currentCase_;
  return true;
}

bool QANT_TextWizardIterator::NextBuffer() {
  Position();
  while (currentCase_ <= requestedCase_ && MoreCases()) ++currentCase_;
  const bool passed = currentCase_ > requestedCase_;
  requestedCase_ = currentCase_;
  return passed;
}

bool QANT_TextWizardIterator::EndOfData() {
  requestedCase_ = currentCase_;
  ended_ = true;
  if (!readFailed()) {
    source_.NotePassEnd(currentCase_, GetErrorMonitor());
  } else if (ErrorMonitor* const monitor = GetErrorMonitor()) {
    monitor->Report(ReadFailedError(source_.GetFileSpec()));
  }
  return false;
}

bool QANT_TextWizardIterator::ReadCase() {
  switch (settings_.arrangement) {
    case kDelimitedLines:
      return ProcessDlmLines();
    // Cases of no values and of no lines have no end: there are none.
    case kDelimitedCount:
      return !columns_.empty() && ProcessDlmCount();
    case kFixedColumns:
      return settings_.recordsPerCase != 0 && ProcessFixedLines();
  }
  return false;
}

// Messages.

void QANT_TextWizardIterator::OnUndecodable(const UndecodableRun& run) {
  if (ErrorMonitor* const monitor = GetErrorMonitor()) {
    undecodableWarnings_.Report(*monitor, currentCase_ + 1, run.position, run.count);
  }
}

void QANT_TextWizardIterator::ReportLogMessage(const std::string& text) {
  textwizard::ReportLogMessage(GetErrorMonitor(), text);
}

// Records and fields.

void QANT_TextWizardIterator::TakeRecord(std::string_view record) {
  record_ = record;
  fields_.SetRecord(record);
}

bool QANT_TextWizardIterator::GetRecord(bool keepEmpty) {
  const bool found = reader_.Read8(keepEmpty);
  TakeRecord(decoder_.Decode8(reader_.record()));
  return found;
}

bool QANT_TextWizardIterator::GetRecord16(bool keepEmpty) {
  const bool found = reader_.Read16(keepEmpty);
  TakeRecord(decoder_.Decode16(reader_.record(), reader_.mark()));
  return found;
}

int QANT_TextWizardIterator::SetWideDelimiters(const char* delimiters) {
  const int count = rules_.SetWideDelimiters(delimiters);
  fields_.UseRules();
  suppliedFields_.UseRules();
  return count;
}

bool QANT_TextWizardIterator::GetNextVar(std::string& field, const char*& cursor) {
  fields_.SetOffset(static_cast<std::size_t>(cursor - record_.data()));
  std::string_view text;
  const bool found = fields_.Next(text);
  field.assign(text);
  cursor = record_.data() + fields_.offset();
  return found;
}

bool QANT_TextWizardIterator::GetNextVar(std::string& field, const char*& cursor,
                                         const std::string& record) {
  const auto offset = static_cast<std::size_t>(cursor - record.data());
  // Going on where the latest call ended, the record is known already.
  if (offset == 0 || offset != suppliedFields_.offset() ||
      suppliedRecord_.data() != record.data() || suppliedRecord_.size() != record.size()) {
    suppliedRecord_ = record;
    suppliedFields_.SetRecord(record);
    suppliedFields_.SetOffset(offset);
  }
  std::string_view text;
  const bool found = suppliedFields_.Next(text);
  field.assign(text);
  cursor = record.data() + suppliedFields_.offset();
  return found;
}

bool QANT_TextWizardIterator::GetVarBuffer(std::string& field, const TxtWzVar* variable,
                                           const std::string& record) const {
  std::string_view text;
  const bool found = CutFixedField(record, *variable, text);
  field.assign(text);
  return found;
}

// Values.

std::size_t QANT_TextWizardIterator::StringRoom(const TxtWzVar& variable, unsigned column) const {
  if (variable.formatType != kFormatA) return 0;
  // A field of fixed columns ends where the format does, which may be wider than the cells: what
  // it shows behind them belongs to other columns and is not lost.
  const QANT_Variable* const target = source_.GetVariable(column);
  if (source_.settings().arrangement == kFixedColumns || !target) return variable.maxStringLength;
  return static_cast<std::size_t>(target->GetType());
}

bool QANT_TextWizardIterator::ConvertVar(std::string_view field, TxtWzVar* variable,
                                         unsigned column) {
  if (!GetObsPointer()) return true;
  const int target = static_cast<int>(column);
  if (variable->formatType == kFormatA) {
    const StringRules rules{.leadingSpaces = rules_.leadingSpaces()};
    const StringValue value = ConvertString(field, stringRooms_[column], rules);
    if (value.truncated) variable->stringTruncated = true;
    SetColumnValue(target, value.text);
    return true;
  }
  double value = kSystemMissing;
  if (!ConvertNumber(field, variable->formatType, &value)) variable->missingStored = true;
  SetColumnValue(target, value);
  return true;
}

// `flagged` (may be null) learns of a number that is missing.
void QANT_TextWizardIterator::StoreMissing(const Column& column, TxtWzVar* flagged) {
  if (!GetObsPointer()) return;
  if (column.variable->formatType == kFormatA) {
    ConvertVar({}, column.variable, column.number);
    return;
  }
  SetColumnValue(static_cast<int>(column.number), kSystemMissing);
  if (flagged) flagged->missingStored = true;
}

// Cases.

bool QANT_TextWizardIterator::ProcessDlmLines() {
  if (!ReadRecord(false)) return false;
  for (const Column& column : columns_) {
    std::string_view field;
    fields_.Next(field);
    if (column.variable->formatType != kFormatSkip) {
      ConvertVar(field, column.variable, column.number);
    }
  }
  return true;
}

bool QANT_TextWizardIterator::ProcessDlmCount() {
  if (columns_.empty() || !moreData_) return true;
  bool linesLeft = true;
  for (const Column& column : columns_) {
    std::string_view field;
    bool found = fields_.Next(field);
    while (!found && linesLeft) {
      linesLeft = ReadRecord(false);
      found = linesLeft && fields_.Next(field);
    }
    if (!found && &column == columns_.data()) {
      moreData_ = false;
      return false;
    }
    if (column.variable->formatType == kFormatSkip) continue;
    if (found) {
      ConvertVar(field, column.variable, column.number);
    } else {
      StoreMissing(column, column.variable);
    }
  }
  return true;
}

bool QANT_TextWizardIterator::ProcessFixedLines() {
  bool ended = false;
  auto column = lineColumns_.cbegin();
  for (std::uint32_t line = 1; line <= settings_.recordsPerCase; ++line) {
    if (!ended) ended = !ReadRecord(true);
    if (ended && line == 1) return false;
    while (column != lineColumns_.cend() && column->variable->recordNumber < line) ++column;
    if (ended && column == lineColumns_.cend()) break;
    // The flag of a missing number lands by the line's place, not on the number's variable: the
    // variable map shows it there.
    TxtWzVar* const flagged = line <= columns_.size() ? columns_[line - 1].variable : nullptr;
    for (; column != lineColumns_.cend() && column->variable->recordNumber == line; ++column) {
      std::string_view field;
      if (!ended && CutFixedField(record_, *column->variable, field)) {
        ConvertVar(field, column->variable, column->number);
      } else {
        StoreMissing(*column, flagged);
      }
    }
    if (line == UINT32_MAX) break;
  }
  return true;
}

// The text of cases, for dictionary building.

std::string_view QANT_TextWizardIterator::NextLine() {
  return ReadRecord(false) ? record_ : kEndOfDataText;
}

std::string QANT_TextWizardIterator::ProcessDlmLinesBuffer() { return std::string(NextLine()); }

std::string QANT_TextWizardIterator::ProcessFixedLinesBuffer() {
  std::string text;
  for (std::uint32_t line = 0; line < settings_.recordsPerCase; ++line) {
    if (!ReadRecord(true)) {
      if (line == 0) text = kEndOfDataText;
      break;
    }
    text.append(record_);
  }
  return text;
}

// Every record that is read for a case stands in the text whole, once when it is read and once when
// it is used up, beside the case's fields.
std::string QANT_TextWizardIterator::ProcessDlmCountBuffer() {
  std::string text;
  bool readSucceeded = true;
  for (std::size_t i = 0; moreData_ && i < columns_.size(); ++i) {
    std::string_view field;
    while (!fields_.Next(field) && readSucceeded) {
      text.append(record_);
      readSucceeded = ReadRecord(false);
      text.append(record_);
    }
    if (!readSucceeded && i == 0) {
      moreData_ = false;
      text = kEndOfDataText;
    }
    if (field.empty()) continue;
    text.append(field);
    const std::uint32_t delimiter = rules_.delimiters().front();
    if (delimiter != 0) text.push_back(static_cast<char>(delimiter));
  }
  if (text.empty()) text = kEndOfDataText;
  return text;
}

}  // namespace textwizard
