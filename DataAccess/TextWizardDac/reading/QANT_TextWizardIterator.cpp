#include "reading/QANT_TextWizardIterator.h"

#include <algorithm>
#include <utility>

#include "HostFramework/Sampling.h"
#include "model/FormatCode.h"
#include "model/MessageText.h"
#include "reading/CaseReading.h"
#include "reading/ImportSource.h"
#include "reading/ValueConverter.h"

namespace textwizard {

struct QANT_TextWizardIterator::CaseEngine {
  QANT_TextWizardIterator& it;

  bool NextRecord(bool keepEmpty) { return it.ReadRecord(keepEmpty); }
  CaseWatch* watch() { return it.watch_ ? &it.watch_->cases() : nullptr; }
  std::uint32_t PositionOf(const Column& column) const { return column.position; }
  bool CutColumn(const Column& column, std::string_view& field) {
    return column.place.Cut(it.record_, field);
  }
  void TakeColumn(std::string_view field, const Column& column) { it.ConvertColumn(field, column); }
  // The flag of a missing number lands by the line's place, not on the number's variable: the
  // variable map shows it there.
  void StoreMissing(const Column& column, std::uint32_t line) {
    const bool exists = line <= it.columns_.size();
    it.StoreMissing(column, exists ? it.columns_[line - 1].variable : nullptr);
  }
  std::size_t offset() const { return it.fields_.offset(); }
  bool NextField(std::string_view& field, std::size_t /*left*/) { return it.fields_.Next(field); }
  bool IsImported(const Column& column) const { return column.variable->formatType != kFormatSkip; }
  void TakeField(std::string_view field, const Column& column) { it.ConvertField(field, column); }
  void StoreMissing(const Column& column) { it.StoreMissing(column, column.variable); }
};

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
    columns_.push_back({variable.get(), column, static_cast<std::uint32_t>(columns_.size()), 0,
                        variable->recordNumber, FixedColumn(*variable)});
    if (variable->formatType == kFormatSkip) continue;
    const QANT_Variable* const target = source.GetVariable(column);
    if (target) columns_.back().width = static_cast<std::size_t>(target->GetType());
    lineColumns_.push_back(columns_.back());
    stringRooms_.push_back(StringRoom(*variable, column));
    if (variable->recordNumber > settings_.recordsPerCase) ++unreachable_;
    ++column;
  }
  std::stable_sort(lineColumns_.begin(), lineColumns_.end(),
                   [](const Column& a, const Column& b) { return a.line < b.line; });
  ImportObserver* const observer = obs ? source.observer() : nullptr;
  if (observer && observer->WantsProblems()) {
    watch_ = std::make_unique<PassWatch>(*observer, source, fields_, reader_);
  }
  if (observer && observer->WantsBatches()) {
    gatherer_ = std::make_unique<CaseGatherer>(*observer, source.GetObsAreaSize());
  }
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
  const std::int64_t markBytes = reader_.position();
  const bool found = reader_.SkipLines(readsOn ? 0 : 1, settings_.firstCase);
  if (readsOn) TakeRecord(decoder_.Decode(reader_.record(), reader_.mark()));
  if (!watch_) return;
  const bool inRecord = readsOn && found && settings_.firstCase > 0;
  watch_->Begin(markBytes, inRecord ? reader_.recordPosition() : reader_.position());
  if (inRecord && !record_.empty()) watch_->cases().TakeRecord(watch_->Record(record_));
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
  // Of a line, which may be within a case (docs/decisions.md).
  if (!index_.GetPos(requestedCase_, &currentCase_, &position)) return;
  DropRecord();
  reader_.SeekTo(position);
}

bool QANT_TextWizardIterator::Next() {
  if (ended_ && requestedCase_ == currentCase_) return false;
  if (std::exchange(mayUseFeed_, false) && requestedCase_ == 0) StartFeed();
  if (feed_ && requestedCase_ == currentCase_) return NextOfFeed();
  if (feed_ && LeaveFeed()) return true;
  if (watch_ && requestedCase_ != currentCase_) watch_->Leave();
  ended_ = false;
  outOfMemory_ = false;
  // Nothing is thrown to the host.
  try {
    return gatherer_ ? ReadBatch() : ReadOn();
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
    if (watch_) watch_->StartBatch();
    if (!MoreCases() || !ReadCase()) return EndOfData();
    if (watch_) watch_->Deliver(1, currentCase_);
    index_.Add(currentCase_, reader_.recordPosition());
    ++currentCase_;
  }
  requestedCase_ = currentCase_;
  return true;
}

void QANT_TextWizardIterator::StartFeed() {
  try {
    // A 16-bit unit that ends the data within a case does not end it for the case that follows.
    if (settings_.arrangement == kDelimitedCount || settings_.recordsPerCase > 1) {
      SeekBegin();
      HandleByteOrderMark();
      if (reader_.isUtf16()) return;
    }
    feed_ = source_.MakeCaseFeed(*this);
  } catch (...) {
    // No memory for threads: perhaps there is some for the cases.
  }
}

bool QANT_TextWizardIterator::NextOfFeed() {
  const bool found = feed_->Next();
  try {
    if (found && !gatherer_) index_.Add(currentCase_, feed_->recordPosition());
    requestedCase_ = currentCase_ = feed_->caseCount();
    ended_ = !found;
    return found;
  } catch (...) {
    outOfMemory_ = true;
  }
  feed_->EndTelling();
  try {
    return EndOfData();
  } catch (...) {
    // Not even the report could be made: the end is all that is left to tell.
    return false;
  }
}

bool QANT_TextWizardIterator::LeaveFeed() {
  feed_->EndTelling();
  std::int64_t nearest = 0;
  std::int64_t position = 0;
  const bool known = index_.GetPos(requestedCase_, &nearest, &position);
  if (!known && requestedCase_ < currentCase_) {
    // There is no such case.
    requestedCase_ = currentCase_;
    ended_ = false;
    return true;
  }
  feed_.reset();
  if (watch_) watch_->Leave();
  // The width of the file's characters is not known here.
  SeekBegin();
  HandleByteOrderMark();
  // Cases that the index could not take are read from the first one on.
  if (!known) currentCase_ = 0;
  return false;
}

bool QANT_TextWizardIterator::ReadBatch() {
  if (!batchesEnded_) Position();
  const std::int64_t first = currentCase_;
  gatherer_->Clear();
  if (watch_) watch_->StartBatch();
  while (!batchesEnded_ && !gatherer_->IsFull()) {
    try {
      batchesEnded_ = !MoreCases() || !ReadCase();
    } catch (...) {
      batchesEnded_ = batchesFailed_ = true;
    }
    if (batchesEnded_) break;
    gatherer_->Add(GetObsPointer());
    ++currentCase_;
  }
  if (gatherer_->count() == 0) {
    outOfMemory_ = batchesFailed_;
    return EndOfData();
  }
  const std::int64_t behind = std::exchange(currentCase_, first);
  gatherer_->Deliver(first);
  if (watch_) watch_->Deliver(gatherer_->count(), first);
  requestedCase_ = currentCase_ = behind;
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
  if (watch_) watch_->End(!readFailed(), !readFailed() && MoreCases());
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
  if (watch_) {
    if (watch_->cases().examining()) return;
    watch_->cases().NoteUndecodable();
  }
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
  // it shows behind them belongs to other columns and is not lost (docs/decisions.md).
  const QANT_Variable* const target = source_.GetVariable(column);
  if (source_.settings().arrangement == kFixedColumns || !target) return variable.maxStringLength;
  return static_cast<std::size_t>(target->GetType());
}

bool QANT_TextWizardIterator::ConvertVar(std::string_view field, TxtWzVar* variable,
                                         unsigned column) {
  if (!GetObsPointer()) return true;
  if (variable->formatType == kFormatA) {
    const StringRules rules{.leadingSpaces = rules_.leadingSpaces()};
    const StringValue value = ConvertString(field, stringRooms_[column], rules);
    if (value.truncated) variable->stringTruncated = true;
    SetColumnValue(static_cast<int>(column), value.text);
    return true;
  }
  double value = kSystemMissing;
  if (!ConvertNumber(field, variable->formatType, &value)) variable->missingStored = true;
  SetColumnValue(static_cast<int>(column), value);
  return true;
}

void QANT_TextWizardIterator::ConvertField(std::string_view field, const Column& column) {
  if (!watch_ || column.variable->formatType == kFormatA) {
    ConvertVar(field, column.variable, column.number);
    if (watch_) watch_->cases().TakeString(column.position, field, column.width);
    return;
  }
  double value = kSystemMissing;
  if (!watch_->cases().TakesNull(field)) {
    const bool read = ConvertNumber(field, column.variable->formatType, &value);
    if (!read) column.variable->missingStored = true;
    watch_->cases().TakeNumber(column.position, field, column.variable->formatType,
                               read ? &value : nullptr);
  }
  SetColumnValue(static_cast<int>(column.number), value);
}

void QANT_TextWizardIterator::ConvertColumn(std::string_view field, const Column& column) {
  if (!watch_) {
    ConvertVar(field, column.variable, column.number);
    return;
  }
  // A field without a place in memory would pass for none.
  if (field.empty()) field = {"", 0};
  if (column.variable->formatType == kFormatA) {
    ConvertVar(field, column.variable, column.number);
    // What the format shows behind the column belongs to other columns.
    field = field.substr(0, column.width);
    watch_->cases().TakeString(column.position, field, column.width);
  } else {
    ConvertField(field, column);
  }
  watch_->cases().EndColumn(column.position, field, column.variable->startColumn);
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
  if (!watch_) {
    ConvertLine();
    return true;
  }
  for (const Column& column : columns_) {
    std::string_view field;
    fields_.Next(field);
    if (column.variable->formatType != kFormatSkip) ConvertField(field, column);
  }
  watch_->cases().EndLine(watch_->Record(record_));
  return true;
}

void QANT_TextWizardIterator::ConvertLine() {
  for (auto column = columns_.cbegin(); column != columns_.cend();) {
    const auto left = static_cast<std::size_t>(columns_.cend() - column);
    const std::size_t cut = fields_.Cut(cut_.data(), std::min(left, cut_.size()));
    for (std::size_t i = 0; i < cut; ++i, ++column) {
      if (column->variable->formatType == kFormatSkip) continue;
      ConvertVar(cut_[i], column->variable, column->number);
    }
  }
}

bool QANT_TextWizardIterator::ProcessDlmCount() {
  if (columns_.empty() || !moreData_) return true;
  moreData_ = ReadCountedCase(CaseEngine{*this}, columns_);
  return moreData_;
}

bool QANT_TextWizardIterator::ProcessFixedLines() {
  return ReadFixedCase(CaseEngine{*this}, lineColumns_, settings_.recordsPerCase, unreachable_);
}

// The text of cases, for dictionary building.

std::string_view QANT_TextWizardIterator::NextLine() {
  fields_.TakeQuotes();
  const bool found = ReadRecord(false);
  textLine_ = reader_.recordLine();
  return found ? record_ : kEndOfDataText;
}

std::string QANT_TextWizardIterator::ProcessDlmLinesBuffer() { return std::string(NextLine()); }

std::string QANT_TextWizardIterator::ProcessFixedLinesBuffer() {
  std::string text;
  for (std::uint32_t line = 0; line < settings_.recordsPerCase; ++line) {
    if (!ReadRecord(true)) {
      if (line == 0) text = kEndOfDataText;
      break;
    }
    if (line == 0) textLine_ = reader_.recordLine();
    text.append(record_);
  }
  return text;
}

std::string_view QANT_TextWizardIterator::NextFixedLines() {
  if (settings_.recordsPerCase == 1) {
    if (!ReadRecord(true)) return kEndOfDataText;
    textLine_ = reader_.recordLine();
    return record_;
  }
  linesText_ = ProcessFixedLinesBuffer();
  return linesText_;
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
    if (i == 0) textLine_ = reader_.recordLine();
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
