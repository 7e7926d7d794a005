#include "library/import/NullTexts.h"

#include <algorithm>

namespace library {

NullTexts::NullTexts(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    if (text.empty()) continue;
    lengths_[static_cast<unsigned char>(text.front())] |= std::uint64_t{1}
                                                          << std::min(text.size(), kLongest);
    texts_.push_back(text);
  }
}

bool NullTexts::Find(std::string_view text) const {
  return std::find(texts_.begin(), texts_.end(), text) != texts_.end();
}

}  // namespace library
