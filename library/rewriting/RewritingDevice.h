// A file whose line breaks and escapes inside qualified fields are replaced while it is read, and
// what has to be known about them afterwards.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "HostFramework/Threads.h"
#include "HostFramework/embedded/data/StreamDevice.h"
#include "library/rewriting/QuoteRewriter.h"

namespace library {

// A place in a file, and how the walk stands there. From there on the bytes before it are not
// needed.
struct QuoteAnchor {
  std::int64_t offset = 0;  // a whole number of units, behind the mark
  QuotePosition position;
};

// The walk over one file, remembered at intervals, so that it can be taken up anywhere. Any thread:
// synchronises itself.
class QuoteIndex {
 public:
  // Bytes between two places that are remembered; even.
  explicit QuoteIndex(QuoteRewriter rewriter, std::int64_t spacing = std::int64_t{1} << 20)
      : QuoteIndex(std::move(rewriter), {}, spacing) {}
  // What is asked for at the anchor or behind it is found from there; what is before it, from the
  // beginning each time.
  QuoteIndex(QuoteRewriter rewriter, const std::optional<QuoteAnchor>& anchor,
             std::int64_t spacing = std::int64_t{1} << 20);

  const QuoteRewriter& rewriter() const { return rewriter_; }
  // Where the anchor is; 0 without one.
  std::int64_t anchor() const { return anchor_; }
  // Where the walk stands in front of byte `offset`: a whole number of units, behind the mark.
  // Reads what it has to from `file`, the file whatever handle of it; at the end of the file it is
  // the position there. False when reading failed.
  bool Find(std::int64_t offset, embedded::StreamDevice& file, QuotePosition* position);
  // The walk stands at `position` in front of `offset`: remembered where it helps.
  void Note(std::int64_t offset, const QuotePosition& position);
  // A remembered place behind `offset`, before which nothing is replaced from `offset` on; `offset`
  // itself where none is known. A whole number of units where `offset` is one.
  std::int64_t UntouchedUntil(std::int64_t offset) const;

 private:
  const QuoteRewriter rewriter_;
  const std::int64_t anchor_;
  const std::int64_t spacing_;
  mutable sfMutex mutex_;
  // Place i is in front of i x spacing_ bytes behind the anchor.
  std::vector<QuotePosition> places_ SF_GUARDED_BY(mutex_);
};

// Shows a file's bytes rewritten. Same size, same offsets.
class RewritingDevice : public embedded::StreamDevice {
 public:
  // `index` is that of the same file.
  RewritingDevice(std::unique_ptr<embedded::StreamDevice> file, std::shared_ptr<QuoteIndex> index);

  std::ptrdiff_t ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) override;
  std::int64_t Size() const override { return file_->Size(); }
  std::unique_ptr<embedded::StreamDevice> Duplicate() const override;

 private:
  std::ptrdiff_t ReadUnits(std::int64_t offset, char* buffer, std::size_t bytes);

  const std::unique_ptr<embedded::StreamDevice> file_;
  const std::shared_ptr<QuoteIndex> index_;
  // Where the latest read ended, and how the walk stands there.
  std::int64_t place_ = -1;
  QuotePosition position_;
  // Bytes that are the file's own.
  std::int64_t untouchedFrom_ = 0;
  std::int64_t untouchedUntil_ = 0;
};

// Shows a byte-order mark that the file lacks in front of its bytes: everything stands as many
// bytes later.
class MarkedDevice : public embedded::StreamDevice {
 public:
  MarkedDevice(std::unique_ptr<embedded::StreamDevice> file, std::string mark);

  std::ptrdiff_t ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) override;
  std::int64_t Size() const override;
  std::unique_ptr<embedded::StreamDevice> Duplicate() const override;

 private:
  const std::unique_ptr<embedded::StreamDevice> file_;
  const std::string mark_;
};

// How many line ends in front of a place do not end a record: with them a count of records' lines
// becomes the number of a physical line. One thread; cheap when asked in the order of the file.
class JoinedLines {
 public:
  JoinedLines(std::unique_ptr<embedded::StreamDevice> file, std::shared_ptr<QuoteIndex> index);
  // In front of byte `offset`; 0 when the file cannot be read there.
  std::int64_t Before(std::int64_t offset);
  // Where the walk stands in front of byte `offset`; false when the file cannot be read.
  bool PositionAt(std::int64_t offset, QuotePosition* position);
  // Where the walk stands at the end of the file; false when it cannot be read.
  bool AtEnd(QuotePosition* position);
  // The physical line (from 1) in which line `line` of the rewritten file begins.
  std::int64_t PhysicalLine(std::int64_t line);

 private:
  const std::unique_ptr<embedded::StreamDevice> file_;
  const std::shared_ptr<QuoteIndex> index_;
  RewritingDevice rewritten_;
  std::int64_t place_ = -1;
  QuotePosition position_;
  // A line of the rewritten file, and where it begins.
  std::int64_t line_ = 1;
  std::int64_t lineBegin_ = 0;
};

}  // namespace library
