#include "watch/NullTexts.h"

#include <algorithm>

namespace textwizard {

NullTexts::NullTexts(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    const std::string_view bare = WithoutBlanks(text);
    if (!bare.empty()) texts_.emplace_back(bare);
  }
  std::sort(texts_.begin(), texts_.end());
  for (const std::string& text : texts_) {
    const std::uint64_t length = std::uint64_t{1} << std::min(text.size(), kLongest);
    lengths_[static_cast<unsigned char>(text.front())] |= length;
    lengths_[' '] |= length;
    lengths_['\t'] |= length;
  }
}

bool NullTexts::IsOne(std::string_view bare) const {
  return std::binary_search(texts_.begin(), texts_.end(), bare,
                            [](std::string_view a, std::string_view b) { return a < b; });
}

}  // namespace textwizard
