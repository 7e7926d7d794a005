// A batch of records on its way from the reader thread to a worker: one text in which line ends
// stand between the records, and a zero byte behind it.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "TxtWzMultiThreadMgr/StoreText.h"
#include "reading/ByteScan.h"
#include "reading/RecordReader.h"
#include "watch/RecordPlaces.h"

namespace textwizard {

// Belongs to one thread at a time: it is filled by the reader and read by the worker that it was
// handed to. Its memory is kept from batch to batch.
class RecordBatch {
 public:
  // Starts a batch with room for `bytes` of text; false, and the batch is empty, when there is no
  // memory for it.
  bool Begin(std::size_t bytes);
  // Empty lines are records from now on. Before the first record.
  void KeepEmpty() { fKeepsEmpty = true; }
  // Keeps where the records lie in the file from now on, beginning with this batch. Before the
  // first record; throws when there is no memory for it.
  void KeepPlaces() {
    if (!fPlaces) fPlaces = std::make_unique<RecordPlaces>();
    fPlaces->Clear();
  }
  // Adds a record and a LF; false when it does not fit. Only one that is host text already may be
  // empty, unless all may.
  bool Append(std::string_view record) {
    if (record.size() + 1 >= fRoom - fUsed) return false;
    // The LF of an empty record would belong to a CR.
    if (record.empty()) {
      for (std::size_t at = fUsed; at > 0 && fText[at - 1] == '\r'; --at) fText[at - 1] = '\n';
    }
    // The view of an empty record may be of nothing at all.
    std::copy(record.begin(), record.end(), fText.get() + fUsed);
    fUsed += record.size();
    fText[fUsed++] = '\n';
    ++fRecordCount;
    return true;
  }
  // Makes room for `bytes` of text in all; false, and the batch stays as it is, when there is no
  // memory for them.
  bool Grow(std::size_t bytes);
  // Adds the records that `reader` can copy at once, at most `most` and `bytes` of text, as they
  // stand in the file.
  void AppendRun(RecordReader& reader, std::uint32_t most, std::size_t bytes = SIZE_MAX - 1) {
    std::uint32_t count = 0;
    const std::size_t begin = fUsed;
    const std::size_t room = std::min(fRoom - fUsed, bytes + 1);
    fUsed += reader.ReadRun(fText.get() + fUsed, room, most, &count, fKeepsEmpty);
    fRecordCount += count;
    if (fPlaces && count > 0) {
      fPlaces->AddRun(begin, reader.recordPosition(), reader.nextLine());
    }
  }
  // The place of the record that was appended at byte `text`; see RecordPlaces.
  void AddPlace(std::size_t text, const RecordPlace& place, const NulRuns& nuls,
                std::string_view raw) {
    fPlaces->AddRecord(text, place, nuls, raw);
  }
  // Ends the text. `firstCase`: cases before the batch. `decoded`: the records are host text
  // already.
  void End(std::int64_t firstCase, bool decoded, ByteOrderMark mark = ByteOrderMark::kNone) {
    fText[fUsed] = '\0';
    fFirstCase = firstCase;
    fCaseCount = fRecordCount;
    fDecoded = decoded;
    fMark = mark;
  }
  // Ends the text of cases that need not be records. Of a case that the data ends in,
  // `recordPosition` is the file position where its next record was looked for.
  void SetCases(std::uint32_t count, std::int64_t recordPosition) {
    fCaseCount = count;
    fDataEndPosition = recordPosition;
  }
  // The fields of the first record before that byte of its host text are those of an earlier batch;
  // `leftOut`: so is the text before it.
  void SetFieldOffset(std::size_t offset, bool leftOut) {
    fFieldOffset = leftOut ? 0 : offset;
    fTextOffset = leftOut ? offset : 0;
  }

  std::string_view text() const { return {fText.get(), fUsed}; }
  std::uint32_t recordCount() const { return fRecordCount; }
  std::uint32_t caseCount() const { return fCaseCount; }
  std::int64_t dataEndPosition() const { return fDataEndPosition; }
  bool keepsEmpty() const { return fKeepsEmpty; }
  std::size_t fieldOffset() const { return fFieldOffset; }
  std::size_t textOffset() const { return fTextOffset; }
  std::int64_t firstCase() const { return fFirstCase; }
  bool decoded() const { return fDecoded; }
  // Of the file that decoded records come from.
  ByteOrderMark mark() const { return fMark; }
  // Only once they are kept.
  const RecordPlaces& places() const { return *fPlaces; }
  // `text` is a part of the batch text, behind which kReadableCells more bytes can be read.
  bool Contains(std::string_view text) const {
    const auto address = [](const char* at) { return reinterpret_cast<std::uintptr_t>(at); };
    return address(text.data()) - address(fText.get()) < fUsed;
  }

 private:
  // The text and kReadableCells bytes.
  std::unique_ptr<char[]> fText;
  std::size_t fCapacity = 0;
  std::size_t fRoom = 0;
  std::size_t fUsed = 0;
  std::uint32_t fRecordCount = 0;
  std::uint32_t fCaseCount = 0;
  std::int64_t fFirstCase = 0;
  std::int64_t fDataEndPosition = 0;
  bool fKeepsEmpty = false;
  std::size_t fFieldOffset = 0;
  std::size_t fTextOffset = 0;
  bool fDecoded = false;
  ByteOrderMark fMark = ByteOrderMark::kNone;
  std::unique_ptr<RecordPlaces> fPlaces;
};

// Walks the records of a batch text. One thread.
class BatchRecords {
 public:
  // Starts at the first record of `batch`, which stays as it is until the walk is over.
  void Start(const RecordBatch& batch) {
    fText = batch.text();
    fDecoded = batch.decoded();
    fKeepsEmpty = batch.keepsEmpty();
    fCursor = 0;
    fMarkCount = 0;
  }
  // The next record; the batch has one.
  std::string_view Next() {
    // A record that was decoded may be empty; of a raw one, line ends have been left over that make
    // no record: the LF of a CR LF, and empty lines.
    if (!fDecoded && !fKeepsEmpty) {
      while (fText[fCursor] == '\n' || fText[fCursor] == '\r') ++fCursor;
    }
    const std::size_t begin = fCursor;
    const std::size_t end = LineEnd();
    fCursor = end + 1;
    // There is a byte behind the text.
    if (fKeepsEmpty && fText.data()[end] == '\r' && fText.data()[end + 1] == '\n') ++fCursor;
    return fText.substr(begin, end - begin);
  }

 private:
  static constexpr std::size_t kMarkWords = 64;

  // The place of the first line end at fCursor or behind it.
  std::size_t LineEnd() {
    std::size_t word = fCursor / 64;
    std::uint64_t marks = MarksAt(word) >> fCursor % 64 << fCursor % 64;
    while (marks == 0) marks = MarksAt(++word);
    return 64 * word + static_cast<std::size_t>(std::countr_zero(marks));
  }
  std::uint64_t MarksAt(std::size_t word) {
    if (word - fFirstMark >= fMarkCount) MarkFrom(word);
    return fMarks[word - fFirstMark];
  }
  [[gnu::noinline]] void MarkFrom(std::size_t word);

  std::string_view fText;
  bool fDecoded = false;
  bool fKeepsEmpty = false;
  std::size_t fCursor = 0;
  // Marks of line ends: fMarkCount words of 64 bytes from fFirstMark on.
  std::size_t fFirstMark = 0;
  std::size_t fMarkCount = 0;
  std::array<std::uint64_t, kMarkWords> fMarks;
};

}  // namespace textwizard
