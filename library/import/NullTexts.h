// The texts that mean a missing number.
#pragma once

#include <bitset>
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
    if (!firsts_.test(static_cast<unsigned char>(text.front())) || text.size() > longest_) {
      return false;
    }
    return Find(text);
  }

 private:
  bool Find(std::string_view text) const;

  std::bitset<256> firsts_;
  std::size_t longest_ = 0;
  std::vector<std::string> texts_;
};

}  // namespace library
