#include "TxtWzMultiThreadMgr/UndecodableNotes.h"

#include <array>

namespace textwizard {
namespace {

// Memory that is kept from batch to batch.
constexpr std::size_t kKept = std::size_t{1} << 18;

// One note before it is kept: at most four numbers, each in groups of 7 bits, the lowest first; the
// top bit says that more follow.
class PackedNote {
 public:
  void Put(std::uint64_t number) {
    for (; number >= 0x80; number >>= 7) *end_++ = static_cast<std::uint8_t>(number | 0x80);
    *end_++ = static_cast<std::uint8_t>(number);
  }
  const std::uint8_t* begin() const { return bytes_.data(); }
  const std::uint8_t* end() const { return end_; }

 private:
  std::array<std::uint8_t, 4 * (64 / 7 + 1)> bytes_;
  std::uint8_t* end_ = bytes_.data();
};

}  // namespace

void UndecodableNotes::Clear() {
  if (packed_.capacity() > kKept) packed_ = {};
  packed_.clear();
  lastRecord_ = 0;
  lastEnd_ = 0;
  cursor_ = 0;
  next_ = {};
  held_ = false;
}

std::uint64_t UndecodableNotes::Take() {
  std::uint64_t number = 0;
  for (unsigned shift = 0;; shift += 7) {
    const std::uint8_t byte = packed_[cursor_++];
    number |= std::uint64_t{byte & 0x7FU} << shift;
    if (byte < 0x80) return number;
  }
}

// A run is the distance from the run before it and its length. A length of 0, which no run has,
// stands before the number of records to step over.
void UndecodableNotes::Add(std::uint32_t record, const UndecodableRun& run) {
  PackedNote note;
  if (record != lastRecord_) {
    note.Put(0);
    note.Put(record - lastRecord_);
  }
  note.Put(run.count);
  note.Put(run.position - (record == lastRecord_ ? lastEnd_ : 0));
  packed_.insert(packed_.end(), note.begin(), note.end());
  lastRecord_ = record;
  lastEnd_ = run.position + run.count;
}

const UndecodableNotes::Note* UndecodableNotes::Next(std::uint32_t records) {
  if (!held_) {
    if (cursor_ == packed_.size()) return nullptr;
    std::size_t end = next_.run.position + next_.run.count;
    std::uint64_t count = Take();
    if (count == 0) {
      next_.record += static_cast<std::uint32_t>(Take());
      end = 0;
      count = Take();
    }
    next_.run = {end + Take(), count};
    held_ = true;
  }
  if (next_.record >= records) return nullptr;
  held_ = false;
  return &next_;
}

}  // namespace textwizard
