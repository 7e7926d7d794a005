// Where the records of a batch lie in the file: what the reader notes beside the batch text, and
// the walk of a worker that finds each record's place by it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "watch/RecordPlace.h"

namespace textwizard {

// Belongs to one thread at a time, as its batch does. Its memory is kept from batch to batch.
class RecordPlaces {
 public:
  void Clear();
  // A record whose text begins at byte `text` of the batch text. `raw`: its 16-bit units, where the
  // host text does not tell how many bytes of the file each character took; else empty.
  void AddRecord(std::size_t text, const RecordPlace& place, const NulRuns& nuls,
                 std::string_view raw);
  // Lines that stand in the batch text as in the file, from byte `text` on: `begin` is their offset
  // in the file and `line` the first one's number, lines of earlier runs left out.
  void AddRun(std::size_t text, std::int64_t begin, std::int64_t line);

 private:
  friend class PlaceWalk;
  struct Segment {
    std::size_t text;
    bool isRun;
    RecordPlace place;
    // Ends of what belongs to it, behind what belongs to those before.
    std::size_t nulsEnd;
    std::size_t rawEnd;
  };
  std::vector<Segment> segments_;
  NulRuns nuls_;
  std::string raw_;
};

// One thread; what it walks stays as it is.
class PlaceWalk {
 public:
  // Starts before the first record of the batch text `text`.
  void Start(const RecordPlaces& places, std::string_view text);
  // Steps to the next record, which lies in the text. True when it is one of the run of the record
  // before and right behind it, with a line end of the same length.
  bool Step(std::string_view record) {
    const auto at = static_cast<std::size_t>(record.data() - text_.data());
    const std::size_t end = at + record.size();
    // There is a byte behind the text.
    const bool twoBytes = text_.data()[end] == '\r' && text_.data()[end + 1] == '\n';
    const std::uint32_t lineEndBytes = twoBytes ? 2 : 1;
    const bool goesOn = at == lineStart_ && at < runEnd_ && lineEndBytes == place_.lineEndBytes;
    if (!goesOn) return StepOver(at, end, lineEndBytes);
    recordStart_ = at;
    lineStart_ = end + lineEndBytes;
    ++runLines_;
    return true;
  }
  // --- Of the record stepped to
  // Lines are counted without those of runs in earlier batches.
  const RecordPlace& place();
  // Offset in the file where it begins: its place's.
  std::int64_t begin() const {
    return runEnd_ != 0 ? runShift_ + static_cast<std::int64_t>(recordStart_) : place_.begin;
  }
  // Offset in the file behind its line end, when it goes on a run.
  std::int64_t end() const { return runShift_ + static_cast<std::int64_t>(lineStart_); }
  const NulRun* nulsBegin() const { return places_->nuls_.data() + nulsBegin_; }
  const NulRun* nulsEnd() const { return places_->nuls_.data() + nulsEnd_; }
  std::string_view raw() const {
    return std::string_view(places_->raw_).substr(rawBegin_, rawEnd_ - rawBegin_);
  }
  // Lines of the batch's runs up to that record's.
  std::int64_t runLines() const { return runLines_; }

 private:
  bool StepOver(std::size_t at, std::size_t end, std::uint32_t lineEndBytes);
  void EnterSegment();
  void SkipEmptyLines(std::size_t at);

  const RecordPlaces* places_ = nullptr;
  std::string_view text_;
  std::size_t segment_ = 0;
  // Where the segment that follows begins in the text.
  std::size_t nextSegment_ = 0;
  std::size_t nulsBegin_ = 0;
  std::size_t nulsEnd_ = 0;
  std::size_t rawBegin_ = 0;
  std::size_t rawEnd_ = 0;
  RecordPlace place_;
  // Before the first line of the segment in hand, in its batch's runs; and its line as noted.
  std::int64_t line_ = 0;
  std::int64_t runLines_ = 0;
  // The run in hand: its end in the text, 0 outside of runs; what an offset in the text lacks to
  // one in the file.
  std::size_t runEnd_ = 0;
  std::int64_t runShift_ = 0;
  std::size_t recordStart_ = 0;
  std::size_t lineStart_ = 0;
};

}  // namespace textwizard
