#include "library/report/RejectsFile.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace library {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

}  // namespace

RejectsFile::RejectsFile(ByteSource& data, ByteSink& sink) : data_(data), sink_(sink) {
  NoteMark();
}

void RejectsFile::NoteMark() {
  char first[2] = {};
  std::size_t read = 0;
  if (!data_.ReadAt(0, first, sizeof first, &read, &problem_) || read < sizeof first) return;
  const std::string_view bytes(first, sizeof first);
  if (bytes == "\xFF\xFE") width_ = Width::kLittleEndian;
  if (bytes == "\xFE\xFF") width_ = Width::kBigEndian;
}

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
    if (!atLineStart_ || (afterReturn_ && IsLineFeedAt(span.begin))) sink_.Append(LineFeed());
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
  const std::size_t size = written.size();
  char end = written.back();
  if (width_ != Width::kEightBit) {
    // The reader takes a line end in either byte order.
    const char before = size >= 2 ? written[size - 2] : '\0';
    const bool low = end == '\0';
    end = size >= 2 && (low || before == '\0') ? (low ? before : end) : '\0';
  }
  atLineStart_ = end == '\n' || end == '\r';
  afterReturn_ = end == '\r';
}

std::string_view RejectsFile::LineFeed() const {
  using std::string_view_literals::operator""sv;
  switch (width_) {
    case Width::kLittleEndian:
      return "\n\0"sv;
    case Width::kBigEndian:
      return "\0\n"sv;
    case Width::kEightBit:
      break;
  }
  return "\n"sv;
}

bool RejectsFile::IsLineFeedAt(std::int64_t offset) {
  char unit[2] = {};
  const std::string_view wanted = LineFeed();
  std::size_t read = 0;
  return data_.ReadAt(static_cast<std::uint64_t>(offset), unit, wanted.size(), &read, &problem_) &&
         std::string_view(unit, read) == wanted;
}

}  // namespace library
