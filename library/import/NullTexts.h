// The texts that mean a missing number.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace library {

// Asked for every field: most texts differ from all of them in their first byte or their length.
class NullTexts {
 public:
  // Host text without blanks around it; empty ones are no matter.
  explicit NullTexts(const std::vector<std::string>& texts);

  // Whether `text` (not empty, without blanks around it) is one of them.
  bool Has(std::string_view text) const {
    const std::uint64_t lengths = lengths_[static_cast<unsigned char>(text.front())];
    return ((lengths >> std::min<std::size_t>(text.size(), kLongest)) & 1U) != 0 && Find(text);
  }

 private:
  // This long or longer.
  static constexpr std::size_t kLongest = 63;

  bool Find(std::string_view text) const;

  // By the first byte: bits of the lengths that there are.
  std::array<std::uint64_t, 256> lengths_{};
  std::vector<std::string> texts_;
};

}  // namespace library
