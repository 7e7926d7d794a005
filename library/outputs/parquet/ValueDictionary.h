// The different values of a column and where each stands among them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

namespace library {

// Gives each value a number, in the order in which they come first. Value: a trivially copyable
// type that compares by its bytes (numbers by their bits), or std::string_view, whose bytes stay
// the caller's. Open addressing; grows.
template <class Value, class Hash>
class ValueDictionary {
 public:
  ValueDictionary() : slots_(kFirstSlots, kFree) {}

  std::uint32_t NumberOf(const Value& value) {
    std::size_t slot = Hash{}(value) & (slots_.size() - 1);
    while (slots_[slot] != kFree) {
      if (values_[slots_[slot]] == value) return slots_[slot];
      slot = (slot + 1) & (slots_.size() - 1);
    }
    const auto number = static_cast<std::uint32_t>(values_.size());
    slots_[slot] = number;
    values_.push_back(value);
    if (values_.size() * 2 > slots_.size()) Grow();
    return number;
  }
  const std::vector<Value>& values() const { return values_; }

 private:
  static constexpr std::size_t kFirstSlots = 1024;
  static constexpr std::uint32_t kFree = std::numeric_limits<std::uint32_t>::max();

  void Grow() {
    slots_.assign(slots_.size() * 4, kFree);
    for (std::uint32_t number = 0; number < values_.size(); ++number) {
      std::size_t slot = Hash{}(values_[number]) & (slots_.size() - 1);
      while (slots_[slot] != kFree) slot = (slot + 1) & (slots_.size() - 1);
      slots_[slot] = number;
    }
  }

  std::vector<std::uint32_t> slots_;
  std::vector<Value> values_;
};

}  // namespace library
