#include "library/rewriting/RewritingDevice.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace library {
namespace {

using embedded::StreamDevice;

constexpr std::size_t kBlock = std::size_t{1} << 16;
// Of the buffer for reads that do not begin and end with a unit.
constexpr std::size_t kOddBytes = 4096;

// Reads all of `bytes` bytes, fewer only at the end of the file; negative when reading failed.
std::ptrdiff_t ReadWhole(StreamDevice& file, std::int64_t offset, char* buffer, std::size_t bytes) {
  std::size_t got = 0;
  while (got < bytes) {
    const std::ptrdiff_t more =
        file.ReadAt(offset + static_cast<std::int64_t>(got), buffer + got, bytes - got);
    if (more < 0) return more;
    if (more == 0) break;
    got += static_cast<std::size_t>(more);
  }
  return static_cast<std::ptrdiff_t>(got);
}

// Walks on from `from` to `to`, or to the end of the file.
bool WalkTo(const QuoteRewriter& rewriter, StreamDevice& file, std::int64_t from, std::int64_t to,
            QuotePosition& position) {
  const std::unique_ptr<char[]> block(new char[kBlock]);
  const auto unit = static_cast<std::ptrdiff_t>(rewriter.unitBytes());
  while (from < to) {
    const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(to - from, kBlock));
    std::ptrdiff_t got = ReadWhole(file, from, block.get(), wanted);
    if (got < 0) return false;
    got -= got % unit;
    if (got == 0) return true;
    rewriter.Advance({block.get(), static_cast<std::size_t>(got)}, position);
    from += got;
  }
  return true;
}

}  // namespace

QuoteIndex::QuoteIndex(QuoteRewriter rewriter, const std::optional<QuoteAnchor>& anchor,
                       std::int64_t spacing)
    : rewriter_(std::move(rewriter)),
      anchor_(anchor ? anchor->offset : 0),
      spacing_(spacing),
      places_{anchor ? anchor->position : rewriter_.Begin()} {}

bool QuoteIndex::Find(std::int64_t offset, StreamDevice& file, QuotePosition* position) {
  const std::int64_t mark = rewriter_.rules().markBytes;
  if (offset < anchor_) {
    *position = rewriter_.Begin();
    return WalkTo(rewriter_, file, mark, offset, *position);
  }
  const auto wanted = static_cast<std::size_t>((offset - anchor_) / spacing_);
  std::int64_t from = 0;
  {
    const sfGuard guard(mutex_);
    while (places_.size() <= wanted) {
      const auto last = static_cast<std::int64_t>(places_.size()) - 1;
      QuotePosition next = places_.back();
      if (!WalkTo(rewriter_, file, std::max(anchor_ + last * spacing_, mark),
                  anchor_ + (last + 1) * spacing_, next)) {
        return false;
      }
      places_.push_back(next);
    }
    *position = places_[wanted];
    from = anchor_ + static_cast<std::int64_t>(wanted) * spacing_;
  }
  return WalkTo(rewriter_, file, std::max(from, mark), offset, *position);
}

void QuoteIndex::Note(std::int64_t offset, const QuotePosition& position) {
  if (offset <= anchor_ || (offset - anchor_) % spacing_ != 0) return;
  const sfGuard guard(mutex_);
  if (anchor_ + static_cast<std::int64_t>(places_.size()) * spacing_ == offset) {
    places_.push_back(position);
  }
}

std::int64_t QuoteIndex::UntouchedUntil(std::int64_t offset) const {
  const auto replacesNothing = [](const QuotePosition& from, const QuotePosition& to) {
    return from.feeds == to.feeds && from.returns == to.returns && from.escapes == to.escapes;
  };
  if (offset < anchor_) return offset;
  const sfGuard guard(mutex_);
  auto place = static_cast<std::size_t>((offset - anchor_) / spacing_);
  while (place + 1 < places_.size() && replacesNothing(places_[place], places_[place + 1])) ++place;
  return std::max(offset, anchor_ + static_cast<std::int64_t>(place) * spacing_);
}

RewritingDevice::RewritingDevice(std::unique_ptr<StreamDevice> file,
                                 std::shared_ptr<QuoteIndex> index)
    : file_(std::move(file)), index_(std::move(index)) {}

std::unique_ptr<StreamDevice> RewritingDevice::Duplicate() const {
  std::unique_ptr<StreamDevice> copy = file_->Duplicate();
  if (!copy) return nullptr;
  return std::make_unique<RewritingDevice>(std::move(copy), index_);
}

std::ptrdiff_t RewritingDevice::ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) {
  const std::int64_t mark = index_->rewriter().rules().markBytes;
  if (offset < mark) {
    return file_->ReadAt(offset, buffer, std::min(bytes, static_cast<std::size_t>(mark - offset)));
  }
  // What is before the anchor is walked over by itself.
  if (offset < index_->anchor()) {
    bytes = static_cast<std::size_t>(
        std::min(static_cast<std::int64_t>(bytes), index_->anchor() - offset));
  }
  const std::size_t unit = index_->rewriter().unitBytes();
  const std::size_t into = static_cast<std::size_t>(offset) % unit;
  if (into == 0 && bytes >= unit) return ReadUnits(offset, buffer, bytes - bytes % unit);
  // Parts of units.
  std::array<char, kOddBytes> units;
  const std::size_t wanted = std::min(into + bytes, units.size());
  const std::ptrdiff_t got =
      ReadUnits(offset - static_cast<std::int64_t>(into), units.data(), wanted + wanted % unit);
  if (got <= static_cast<std::ptrdiff_t>(into)) return got < 0 ? got : 0;
  const std::size_t copied = std::min(static_cast<std::size_t>(got) - into, bytes);
  std::memcpy(buffer, units.data() + into, copied);
  return static_cast<std::ptrdiff_t>(copied);
}

// Reads from a unit's first byte on, whole units; at most `bytes` of them, which are one or more.
std::ptrdiff_t RewritingDevice::ReadUnits(std::int64_t offset, char* buffer, std::size_t bytes) {
  const QuoteRewriter& rewriter = index_->rewriter();
  const auto unit = static_cast<std::ptrdiff_t>(rewriter.unitBytes());
  if (offset < untouchedFrom_ || offset >= untouchedUntil_) {
    untouchedFrom_ = offset;
    untouchedUntil_ = index_->UntouchedUntil(offset);
  }
  // Where the walk has been and replaced nothing there is no need to walk again.
  const bool untouched = offset < untouchedUntil_;
  if (untouched) {
    bytes = std::min(bytes, static_cast<std::size_t>(untouchedUntil_ - offset));
  }
  std::ptrdiff_t got = file_->ReadAt(offset, buffer, bytes);
  if (got <= 0 || (untouched && got % unit == 0)) return got;
  if (got % unit != 0) {
    const std::ptrdiff_t more = file_->ReadAt(offset + got, buffer + got, 1);
    if (more < 0) return more;
    got += more;
  }
  const bool goesOn = offset == place_ && offset != index_->anchor();
  if (!goesOn && !index_->Find(offset, *file_, &position_)) return -1;

  // Half a unit at the end of the file is left as it is.
  std::ptrdiff_t whole = got - got % unit;
  std::array<char, 2> next{};
  std::ptrdiff_t following = 0;
  if (whole > 0 && rewriter.Escapes(buffer + whole - unit)) {
    following = ReadWhole(*file_, offset + whole, next.data(), static_cast<std::size_t>(unit));
    if (following < 0) {
      // What can be shown is; the next read meets the failure.
      if (whole == unit) return following;
      following = unit;
      got = whole -= unit;
      std::memcpy(next.data(), buffer + whole, static_cast<std::size_t>(unit));
    }
  }
  rewriter.Rewrite(buffer, static_cast<std::size_t>(whole),
                   {next.data(), static_cast<std::size_t>(following)}, position_);
  place_ = offset + whole;
  index_->Note(place_, position_);
  return got;
}

MarkedDevice::MarkedDevice(std::unique_ptr<StreamDevice> file, std::string mark)
    : file_(std::move(file)), mark_(std::move(mark)) {}

std::ptrdiff_t MarkedDevice::ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) {
  const auto mark = static_cast<std::int64_t>(mark_.size());
  if (offset < 0) return -1;
  if (offset >= mark) return file_->ReadAt(offset - mark, buffer, bytes);
  const std::size_t copied = mark_.copy(buffer, bytes, static_cast<std::size_t>(offset));
  return static_cast<std::ptrdiff_t>(copied);
}

std::int64_t MarkedDevice::Size() const {
  const std::int64_t size = file_->Size();
  return size < 0 ? size : size + static_cast<std::int64_t>(mark_.size());
}

std::unique_ptr<StreamDevice> MarkedDevice::Duplicate() const {
  std::unique_ptr<StreamDevice> copy = file_->Duplicate();
  if (!copy) return nullptr;
  return std::make_unique<MarkedDevice>(std::move(copy), mark_);
}

JoinedLines::JoinedLines(std::unique_ptr<StreamDevice> file, std::shared_ptr<QuoteIndex> index)
    : file_(std::move(file)), index_(std::move(index)), rewritten_(file_->Duplicate(), index_) {}

bool JoinedLines::PositionAt(std::int64_t offset, QuotePosition* position) {
  return index_->Find(offset, *file_, position);
}

bool JoinedLines::AtEnd(QuotePosition* position) {
  return index_->Find(file_->Size(), *file_, position);
}

std::int64_t JoinedLines::PhysicalLine(std::int64_t line) {
  if (line < line_) line_ = 1, lineBegin_ = 0;
  const auto unit = static_cast<std::ptrdiff_t>(index_->rewriter().unitBytes());
  const std::unique_ptr<char[]> block(new char[kBlock]);
  std::int64_t at = lineBegin_;
  bool afterReturn = false;
  while (line_ < line) {
    const std::ptrdiff_t got = ReadWhole(rewritten_, at, block.get(), kBlock);
    if (got < unit) break;
    for (std::ptrdiff_t i = 0; i + unit <= got && line_ < line; i += unit) {
      const unsigned character = index_->rewriter().UnitAt(block.get() + i);
      const bool isPair = character == '\n' && afterReturn;
      afterReturn = character == '\r';
      if (character != '\n' && !afterReturn) continue;
      line_ += isPair ? 0 : 1;
      lineBegin_ = at + i + unit;
    }
    at += got - got % unit;
  }
  // A line feed that belongs to the line end before.
  char next[2] = {};
  if (afterReturn &&
      ReadWhole(rewritten_, lineBegin_, next, static_cast<std::size_t>(unit)) == unit &&
      index_->rewriter().UnitAt(next) == '\n') {
    lineBegin_ += unit;
  }
  return line + Before(lineBegin_);
}

std::int64_t JoinedLines::Before(std::int64_t offset) {
  const QuoteRewriter& rewriter = index_->rewriter();
  offset -= offset % static_cast<std::int64_t>(rewriter.unitBytes());
  offset = std::max(offset, rewriter.rules().markBytes);
  // Farther than this the index is quicker.
  constexpr std::int64_t kNear = std::int64_t{1} << 20;
  const bool near = place_ >= 0 && place_ <= offset && offset - place_ <= kNear;
  const bool found = near ? WalkTo(rewriter, *file_, place_, offset, position_)
                          : index_->Find(offset, *file_, &position_);
  place_ = found ? offset : -1;
  return found ? position_.joinedLines : 0;
}

}  // namespace library
