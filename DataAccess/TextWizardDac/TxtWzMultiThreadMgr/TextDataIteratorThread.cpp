#include "TxtWzMultiThreadMgr/TextDataIteratorThread.h"

#include <algorithm>
#include <utility>

#include "HostFramework/Text.h"
#include "TxtWzMultiThreadMgr/PatientWait.h"
#include "TxtWzMultiThreadMgr/StoreText.h"
#include "reading/CaseReading.h"
#include "reading/ImportSource.h"
#include "watch/PassTeller.h"

namespace textwizard {
namespace {

// Bytes behind a string's width that tell whether the character at its end is whole: one that does
// not fit is left out (docs/decisions.md).
constexpr std::size_t kLongestCharacter = 8;

// Place of a variable's flag among those of all variables.
constexpr std::size_t FlagIndex(BatchNote::Kind kind, std::size_t variable) {
  return variable * 2 + kind;
}

std::size_t TextLimit(std::size_t firstRecord) {
  constexpr std::size_t kMost = TextDataIteratorThread::kLargestBatchText;
  constexpr std::size_t kRecords = TextDataIteratorThread::kRecordsOfFirstLength;
  return firstRecord > kMost / kRecords
             ? kMost
             : std::max(TextDataIteratorThread::kBatchText, firstRecord * kRecords);
}

}  // namespace

TextDataIteratorThread::TextDataIteratorThread(const WorkerPlan& plan, std::size_t firstRecord)
    : sfThread(1),
      fPlan(plan),
      fTextLimit(TextLimit(firstRecord)),
      fSplitter(plan.fieldRules, SplitUse::kReading, this),
      fDecoder(plan.source.settings().encoding),
      fFlagNoted(plan.variableCount * 2) {
  if (plan.teller) {
    fWatch = std::make_unique<CaseWatch>(*plan.source.observer(), plan.source, fSplitter);
  }
}

TextDataIteratorThread::~TextDataIteratorThread() { join(); }

TextDataIteratorThread::State TextDataIteratorThread::state() {
  const sfGuard guard(fStateMutex);
  return fState;
}

void TextDataIteratorThread::SetState(State state) {
  const sfGuard guard(fStateMutex);
  if (fState == kStopped) {
    RaiseCommand(kStop);
  } else {
    fState = state;
  }
}

void TextDataIteratorThread::RaiseCommand(Command command) {
  std::int32_t now = fCommand.load();
  while (now < command && !fCommand.compare_exchange_weak(now, command)) {
  }
}

void TextDataIteratorThread::Stop() {
  const sfGuard guard(fControlMutex);
  if (!running() || stopRequested()) return;
  fStopRequested.store(true);
  RaiseCommand(kStop);
  // A worker that met the command between two batches leaves with the state as it was.
  for (PatientWait wait; state() == kConverting && !exited();) wait.Pause();
  {
    const sfGuard stateGuard(fStateMutex);
    fState = kStopped;
  }
  fDoneSemaphore.post();
  fWorkSemaphore.post();
  fFreeSemaphore.post();
}

bool TextDataIteratorThread::SendBatch(RecordBatch& batch) {
  std::int32_t now = fCommand.load();
  if (now >= kStop) return false;
  fHolder.Assume();
  std::swap(fRecords, batch);
  while (now < kStop) {
    if (fCommand.compare_exchange_weak(now, kConvert)) {
      fWorkSemaphore.post();
      return true;
    }
  }
  return false;
}

void TextDataIteratorThread::threadMain() {
  fRole.Assume();
  fRunning.store(true);
  while (fCommand.load() <= kConvert) {
    fWorkSemaphore.wait();
    SetState(kConverting);
    if (fCommand.load() != kConvert) break;
    ConvertBatch();
    SetState(kConverted);
    fDoneSemaphore.post();
  }
  RaiseCommand(kExited);
}

void TextDataIteratorThread::ConvertBatch() {
  fHolder.Assume();
  fConvertIndex = 0;
  bool failed = false;
  fCases.Begin(fRecords.firstCase());
  try {
    if (fPlan.known) {
      failed = !CountColumns();
    } else {
      PrepareBatch();
      fPlan.caseIsLine ? ConvertRecords() : ConvertCases();
      if (fPlan.batchObserver) MakeProduct();
    }
  } catch (...) {
    // Lack of memory, in whatever form a library reports it.
    failed = true;
  }
  fCases.End(fConvertIndex, failed);
  for (const BatchNote& note : fCases.notes()) {
    fFlagNoted[FlagIndex(note.kind, note.variable)] = 0;
  }
}

bool TextDataIteratorThread::CountColumns() {
  if (!fColumnCounter) fColumnCounter = std::make_unique<ColumnCounter>(fPlan);
  fPlan.known->Get(fCases.begun);
  if (!fColumnCounter->Count(fRecords, fPlan.columnNumbers, fCases)) return false;
  fConvertIndex = fRecords.recordCount();
  return true;
}

void TextDataIteratorThread::PrepareBatch() {
  fTextMarked = false;
  if (fPlan.keepsPlaces) fPlaces.Start(fRecords.places(), fRecords.text());
  if (!fPlan.detection) {
    fCases.MakeRoom(fRecords.caseCount(), fPlan.caseBytes / sizeof(OBS));
    if (fWatch) PrepareWatch();
    return;
  }
  if (!fRegEx) {
    fRegEx.emplace();
    fCounters.emplace(*fRegEx, fPlan.detectionRules);
  }
  fCases.counters.resize(fPlan.autoVariables.size());
  for (TxtWzVar& variable : fCases.counters) variable.ClearAllValues();
  if (!fPlan.evidence) return;
  fCases.evidence.resize(fPlan.autoVariables.size());
  for (DetectionEvidence& evidence : fCases.evidence) evidence.Clear();
}

void TextDataIteratorThread::PrepareWatch() {
  if (!fCases.watched) {
    fCases.watched = std::make_unique<WatchedBatch>(fPlan.source.GetNVariables());
  }
  fCases.watched->Clear(!fPlan.teller->limitReached());
  fWatch->StartBatch(*fCases.watched, true);
}

void TextDataIteratorThread::ConvertRecords() {
  const bool byteText = fSplitter.CutsByBytes(fRecords.text());
  fBatchRecords.Start(fRecords);
  const std::uint32_t count = WantedCases();
  for (; fConvertIndex < count; ++fConvertIndex) {
    const std::string_view raw = StartRecord(byteText);
    const bool goesOn = fPlan.keepsPlaces && fPlaces.Step(raw);
    if (fPlan.detection) {
      fPlan.evidence ? DetectRecord<true>() : DetectRecord<false>();
    } else if (!fWatch) {
      ConvertRecord<false>();
    } else {
      ConvertRecord<true>();
      const bool asItStands = goesOn && fRecord.data() == raw.data();
      if (!asItStands || !fWatch->EndPlainLine(fRecord.size(), fPlaces.end())) EndWatched(raw);
    }
  }
  if (fPlan.keepsPlaces) fCases.runLines = fPlaces.runLines();
}

std::uint32_t TextDataIteratorThread::WantedCases() const {
  const std::int64_t allowed = std::max<std::int64_t>(fPlan.caseLimit - fRecords.firstCase(), 0);
  return static_cast<std::uint32_t>(std::min<std::int64_t>(fRecords.caseCount(), allowed));
}

void TextDataIteratorThread::EndWatched(std::string_view raw) {
  TakeWatched(raw);
  fWatch->EndLine(fWatched);
}

void TextDataIteratorThread::TakeWatched(std::string_view raw) {
  const bool decoded = fRecords.decoded();
  fWatched.place = fPlaces.place();
  fWatched.text = fRecord;
  fWatched.raw = decoded ? fPlaces.raw() : raw;
  fWatched.mark = decoded ? fRecords.mark() : ByteOrderMark::kNone;
  fWatched.nulsBegin = fPlaces.nulsBegin();
  fWatched.nulsEnd = fPlaces.nulsEnd();
}

void TextDataIteratorThread::MakeProduct() {
  // Without its product no case can be delivered.
  const std::uint32_t count = std::exchange(fConvertIndex, 0);
  if (count > 0) {
    fCases.product = fPlan.batchObserver->MakeProduct(fCases.cases(), count, fRecords.firstCase());
  }
  fConvertIndex = count;
}

std::string_view TextDataIteratorThread::StartRecord(bool byteText) {
  const std::string_view raw = fBatchRecords.Next();
  fRecord = fRecords.decoded() ? raw : fDecoder.Decode8(raw);
  if (byteText && fRecord.data() == raw.data()) {
    if (!fTextMarked) fSplitter.SetByteText(fRecords.text());
    fTextMarked = true;
    fSplitter.SetRecordOfText(fRecord);
  } else {
    fTextMarked = false;
    fSplitter.SetRecord(fRecord);
  }
  return raw;
}

template <bool kWatched>
void TextDataIteratorThread::ConvertRecord() {
  OBS* const nextCase = fCases.Case(fConvertIndex);
  fCurrentCase = reinterpret_cast<unsigned char*>(nextCase);
  if (fPlan.clearCases) ClearCase(fPlan.source, nextCase);
  for (const FieldTask *task = fPlan.fields.data(), *end = task + fPlan.fields.size();
       task != end;) {
    const std::size_t cut = GetNextVars(static_cast<std::size_t>(end - task));
    for (std::size_t i = 0; i < cut; ++i, ++task) {
      if (task->use != FieldUse::kDiscard) ConvertVar<kWatched>(fFields[i], *task);
    }
  }
}

// Once a value: called, it would cost as much again as watching may cost.
template <bool kWatched>
[[gnu::always_inline]] inline void TextDataIteratorThread::ConvertVar(std::string_view field,
                                                                      const FieldTask& task) {
  if (task.use == FieldUse::kString) {
    // Of a string that fits and begins with no blank there is nothing to tell.
    if (kWatched && field.size() - 1 < task.cellWidth && field.front() != ' ') {
      return SetFittingValue(field, task);
    }
    const StringValue value = ConvertString(field, task.cellWidth, fPlan.stringRules);
    if (value.truncated) NoteFlag(BatchNote::kStringTruncated, task.variable);
    SetColumnValue(value.text, task);
    if constexpr (kWatched) fWatch->TakeString(task.variable, field, task.cellWidth);
    return;
  }
  double value = kSystemMissing;
  // A null text that is no value is found when it cannot be read.
  const bool isNull = kWatched && task.nullsAreValues && fWatch->TakesNull(field);
  if (!isNull && !ConvertNumber(field, task.formatType, &value)) {
    value = kSystemMissing;
    if (!kWatched || !fWatch->TakesNull(field)) {
      NoteFlag(BatchNote::kMissingStored, task.variable);
      if constexpr (kWatched) fWatch->TakeUnread(task.variable, field);
    }
  } else if (kWatched && !isNull && field.size() >= kRoundedDigits) {
    fWatch->TakeLong(task.variable, field, task.formatType, value);
  }
  std::memcpy(fCurrentCase + task.offset, &value, sizeof value);
}

inline void TextDataIteratorThread::SetFittingValue(std::string_view text, const FieldTask& task) {
  unsigned char* const cells = fCurrentCase + task.offset;
  if (task.cellBytes <= kReadableCells && fRecords.Contains(text)) {
    return StoreReadableText(text, cells, task.cellBytes);
  }
  StoreText(text, cells, task.cellBytes);
}

inline void TextDataIteratorThread::SetColumnValue(std::string_view text, const FieldTask& task) {
  if (text.size() <= task.cellWidth) return SetFittingValue(text, task);
  unsigned char* const cells = fCurrentCase + task.offset;
  const std::size_t seen = std::min(text.size(), task.cellWidth + kLongestCharacter);
  QANTMBCopyToFixed_A(reinterpret_cast<char*>(cells), static_cast<int>(task.cellWidth), text.data(),
                      static_cast<int>(seen));
  std::memset(cells + task.cellWidth, ' ', task.cellBytes - task.cellWidth);
}

template <bool kWatched>
struct TextDataIteratorThread::CaseEngine {
  TextDataIteratorThread& worker;
  // Fields of the case that are cut already.
  std::size_t cut = 0;
  std::size_t next = 0;
  // The rest of the record in hand is cut field by field.
  bool single = false;

  CaseWatch* watch() {
    worker.fRole.Assume();
    return kWatched ? worker.fWatch.get() : nullptr;
  }
  bool NextRecord(bool /*keepEmpty*/) {
    worker.fRole.Assume();
    worker.fHolder.Assume();
    single = false;
    return worker.NextRecord<kWatched>();
  }
  std::uint32_t PositionOf(const FieldTask& task) const { return task.variable; }
  bool CutColumn(const ColumnTask& task, std::string_view& field) {
    worker.fRole.Assume();
    return task.place.Cut(worker.fRecord, field);
  }
  void TakeColumn(std::string_view field, const ColumnTask& task) {
    worker.fRole.Assume();
    worker.fHolder.Assume();
    worker.ConvertColumn<kWatched>(field, task);
  }
  void StoreMissing(const FieldTask& task, std::uint32_t line) {
    worker.fRole.Assume();
    worker.fHolder.Assume();
    worker.StoreMissing(task, line);
  }
  std::size_t offset() {
    worker.fRole.Assume();
    const bool isCut = next < cut && worker.fFields[next].data() != nullptr;
    return isCut ? worker.fSplitter.OffsetOf(worker.fFields[next]) : worker.fSplitter.offset();
  }
  bool NextField(std::string_view& field, std::size_t left) {
    worker.fRole.Assume();
    worker.fHolder.Assume();
    if (next == cut) {
      next = cut = 0;
      if (kWatched && (single || !worker.CutsViews())) return worker.fSplitter.Next(field);
      // Not those of the next case: of what the splitter tells, the case in hand is told.
      const std::size_t begin = worker.fSplitter.offset();
      cut = worker.GetNextVars(left);
      if (kWatched && !worker.AreViews(cut)) {
        // The watch wants to know which field they are of, and where it is.
        worker.fSplitter.TakeQuotes();
        worker.fSplitter.SetOffset(begin);
        cut = 0;
        single = true;
        return worker.fSplitter.Next(field);
      }
    }
    field = worker.fFields[next++];
    if (field.data() != nullptr) return true;
    next = cut = 0;
    return false;
  }
  bool IsImported(const FieldTask& task) const { return task.use != FieldUse::kDiscard; }
  void TakeField(std::string_view field, const FieldTask& task) {
    worker.fRole.Assume();
    worker.fHolder.Assume();
    worker.ConvertVar<kWatched>(field, task);
  }
  void StoreMissing(const FieldTask& task) { StoreMissing(task, task.variable + 1); }
};

void TextDataIteratorThread::ConvertCases() {
  fBatchRecords.Start(fRecords);
  fRecordsLeft = fRecords.recordCount();
  fRecord = {};
  fTextOffset = 0;
  if (fPlan.fieldsPerCase > 0 || fWatch) {
    fWatched.clean = fByteText = fSplitter.CutsByBytes(fRecords.text());
  }
  if (fPlan.fieldsPerCase > 0) fSplitter.SetRecord(fRecord);
  const std::uint32_t count = WantedCases();
  for (; fConvertIndex < count; ++fConvertIndex) {
    fWatch ? ConvertCase<true>() : ConvertCase<false>();
    if (fPlan.keepsPositions) fCases.positions.push_back(fRecordPosition);
  }
  if (fPlan.keepsPlaces) fCases.runLines = fPlaces.runLines();
}

template <bool kWatched>
void TextDataIteratorThread::ConvertCase() {
  OBS* const nextCase = fCases.Case(fConvertIndex);
  fCurrentCase = reinterpret_cast<unsigned char*>(nextCase);
  if (fPlan.clearCases) ClearCase(fPlan.source, nextCase);
  CaseEngine<kWatched> engine{*this};
  if (fPlan.fieldsPerCase > 0) {
    ReadCountedCase(engine, fPlan.fields);
  } else {
    ReadFixedCase(engine, fPlan.columns, fPlan.recordsPerCase, fPlan.unreachable);
  }
}

std::string_view TextDataIteratorThread::StartNextRecord() {
  if (fPlan.fieldsPerCase > 0) return StartRecord(fByteText);
  const std::string_view raw = fBatchRecords.Next();
  fRecord = fRecords.decoded() ? raw : fDecoder.Decode8(raw);
  return raw;
}

template <bool kWatched>
bool TextDataIteratorThread::NextRecord() {
  if (fRecordsLeft == 0) {
    fRecordPosition = fRecords.dataEndPosition();
    return false;
  }
  const bool isFirst = fRecordsLeft-- == fRecords.recordCount();
  const std::string_view raw = StartNextRecord();
  // What is before is an earlier batch's; there is none in fixed columns.
  const std::size_t offset = isFirst ? fRecords.fieldOffset() : 0;
  if (offset > 0) fSplitter.SetOffset(offset);
  fTextOffset = isFirst ? fRecords.textOffset() : 0;
  if (fPlan.keepsPlaces) {
    fPlaces.Step(raw);
    fRecordPosition = fPlaces.begin();
  }
  if constexpr (kWatched) {
    TakeWatched(raw);
    offset > 0 ? fWatch->ResumeRecord(fWatched) : fWatch->TakeRecord(fWatched);
  }
  return true;
}

template <bool kWatched>
inline void TextDataIteratorThread::ConvertColumn(std::string_view field, const ColumnTask& task) {
  // A field without a place in memory would pass for none.
  if (kWatched && field.empty()) field = {"", 0};
  if (task.use == FieldUse::kString) {
    SetColumnValue(field, task);
    if constexpr (kWatched) {
      // What the format shows behind the column belongs to other columns.
      field = field.substr(0, task.cellWidth);
      fWatch->TakeString(task.variable, field, task.cellWidth);
    }
  } else {
    ConvertVar<kWatched>(field, task);
  }
  if constexpr (kWatched) fWatch->EndColumn(task.variable, field, task.place.start);
}

// The flag of a missing number lands by the line's place, as that of one thread does.
void TextDataIteratorThread::StoreMissing(const FieldTask& task, std::uint32_t line) {
  if (task.use == FieldUse::kString) {
    return StoreText({}, fCurrentCase + task.offset, task.cellBytes);
  }
  std::memcpy(fCurrentCase + task.offset, &kSystemMissing, sizeof kSystemMissing);
  if (line <= fPlan.variableCount) NoteFlag(BatchNote::kMissingStored, line - 1);
}

template <bool kWatched>
void TextDataIteratorThread::DetectRecord() {
  TxtWzVar* counters = fCases.counters.data();
  [[maybe_unused]] DetectionEvidence* evidence = fCases.evidence.data();
  [[maybe_unused]] bool usedUp = false;
  for (const FieldTask *task = fPlan.fields.data(), *end = task + fPlan.fields.size();
       task != end;) {
    const std::size_t cut = GetNextVars(static_cast<std::size_t>(end - task));
    for (std::size_t i = 0; i < cut; ++i, ++task) {
      const std::string_view field = fFields[i];
      if (task->use == FieldUse::kDetect) {
        if (!field.empty()) {
          AutoDetectVar<kWatched>(field, *counters, evidence);
        } else if (kWatched && !usedUp) {
          // Behind a delimiter that ends the record is one more field, an empty one.
          usedUp = field.data() == nullptr;
          if (!usedUp || fSplitter.EndsInDelimiter()) evidence->AddEmpty();
        }
        ++counters;
        if constexpr (kWatched) ++evidence;
      } else if (kWatched && field.data() == nullptr) {
        usedUp = true;
      }
    }
  }
  if constexpr (kWatched) fSplitter.TakeQuotes();
}

template <bool kWatched>
[[gnu::always_inline]] inline void TextDataIteratorThread::AutoDetectVar(
    std::string_view field, TxtWzVar& counters, DetectionEvidence* evidence) {
  const CountedAs as = fCounters->Count(field, counters);
  if (kWatched && !evidence->Takes(field, as, *fCounters)) {
    evidence->Add(field, as, fPlaces.place().line, *fCounters);
  }
}

void TextDataIteratorThread::NoteFlag(BatchNote::Kind kind, std::uint32_t variable) {
  std::uint8_t& noted = fFlagNoted[FlagIndex(kind, variable)];
  if (noted) return;
  fCases.Add({variable, fConvertIndex, kind});
  noted = 1;
}

void TextDataIteratorThread::OnUndecodable(const UndecodableRun& run) {
  fRole.Assume();
  fHolder.Assume();
  if (fWatch) {
    if (fWatch->examining()) return;
    fWatch->NoteUndecodable();
  }
  fCases.AddUndecodable(fConvertIndex, {run.position + fTextOffset, run.count});
}

}  // namespace textwizard
