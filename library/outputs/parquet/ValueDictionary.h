// The different values of a column and where each stands among them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "library/columns/Buffer.h"

namespace library {

// Gives each value a number, in the order in which they come first, and keeps the values as a page
// has them. Values: has the types Key, a value that is looked up, and Entry, what one that is known
// is compared by; static
//   std::uint32_t Hash(const Key&),
//   Entry Keep(const Key&, Buffer& page), which appends the value to the page, and
//   bool Same(const Entry&, const Key&, const Buffer& page).
// Open addressing; grows.
template <class Values>
class ValueDictionary {
 public:
  using Key = typename Values::Key;
  using Entry = typename Values::Entry;

  // Throws std::bad_alloc.
  std::uint32_t NumberOf(const Key& key) {
    const std::uint32_t hash = Values::Hash(key);
    std::size_t at = hash & mask_;
    while (slots_[at].number != kFree) {
      if (slots_[at].hash == hash && Values::Same(entries_[slots_[at].number], key, page_)) {
        return slots_[at].number;
      }
      at = (at + 1) & mask_;
    }
    return Add(key, hash, at);
  }

  const std::vector<Entry>& entries() const { return entries_; }
  const Buffer& page() const { return page_; }

  // Forgets all values; keeps the memory.
  void Clear() {
    std::fill(slots_.begin(), slots_.end(), Slot{});
    entries_.clear();
    page_.clear();
  }
  // Forgets all but the first `entries`, which take `bytes` of the page. No value is looked up
  // until the next Clear.
  void Shorten(std::size_t entries, std::size_t bytes) {
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(entries), entries_.end());
    page_.Shorten(bytes);
  }

 private:
  static constexpr std::size_t kFirstSlots = 64;
  static constexpr std::uint32_t kFree = std::numeric_limits<std::uint32_t>::max();

  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t number = kFree;
  };

  [[gnu::noinline]] std::uint32_t Add(const Key& key, std::uint32_t hash, std::size_t at) {
    const auto number = static_cast<std::uint32_t>(entries_.size());
    entries_.push_back(Values::Keep(key, page_));
    slots_[at] = {hash, number};
    if (entries_.size() * 2 > slots_.size()) Grow();
    return number;
  }
  void Grow() {
    std::vector<Slot> before(slots_.size() * 4);
    before.swap(slots_);
    mask_ = slots_.size() - 1;
    for (const Slot& slot : before) {
      if (slot.number == kFree) continue;
      std::size_t at = slot.hash & mask_;
      while (slots_[at].number != kFree) at = (at + 1) & mask_;
      slots_[at] = slot;
    }
  }

  std::vector<Slot> slots_ = std::vector<Slot>(kFirstSlots);
  std::size_t mask_ = kFirstSlots - 1;
  std::vector<Entry> entries_;
  Buffer page_;
};

}  // namespace library
