#include "library/report/RejectsFile.h"

#include <algorithm>
#include <string>

namespace library {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

}  // namespace

void RejectsFile::CopyHead(std::int64_t end) {
  end_ = end;
  CopyPending();
  // A mark alone ends no line, but is none either.
  atLineStart_ = true;
}

void RejectsFile::CopyCase(const ImportCaseSpan& span) {
  // Neighbours are copied together.
  const bool joins = span.begin == end_ && end_ - begin_ < static_cast<std::int64_t>(kBlockBytes);
  if (!joins) {
    CopyPending();
    if (!atLineStart_ || (afterReturn_ && IsLineFeedAt(span.begin))) sink_.Append(ends_.feed);
    begin_ = span.begin;
  }
  end_ = span.end;
}

void RejectsFile::Finish() { CopyPending(); }

void RejectsFile::CopyPending() {
  while (begin_ < end_ && problem_.empty()) {
    block_.resize(std::min(kBlockBytes, static_cast<std::size_t>(end_ - begin_)));
    std::size_t read = 0;
    if (!data_.ReadAt(static_cast<std::uint64_t>(begin_), block_.data(), block_.size(), &read,
                      &problem_)) {
      return;
    }
    if (read < block_.size()) {
      problem_ = "the data file became shorter while it was read";
      return;
    }
    sink_.Append(block_);
    NoteEnd(block_);
    begin_ += static_cast<std::int64_t>(read);
  }
  begin_ = end_;
}

void RejectsFile::NoteEnd(std::string_view written) {
  const auto endsWith = [&](const std::string& end) {
    if (written.ends_with(end)) return true;
    // The reader takes a line end of 16-bit units in either byte order.
    return end.size() == 2 && written.size() >= 2 && written.back() == end.front() &&
           written[written.size() - 2] == end.back();
  };
  afterReturn_ = endsWith(ends_.carriageReturn);
  atLineStart_ = afterReturn_ || endsWith(ends_.feed);
}

bool RejectsFile::IsLineFeedAt(std::int64_t offset) {
  std::string unit(ends_.feed.size(), '\0');
  std::size_t read = 0;
  return data_.ReadAt(static_cast<std::uint64_t>(offset), unit.data(), unit.size(), &read,
                      &problem_) &&
         read == unit.size() && unit == ends_.feed;
}

}  // namespace library
