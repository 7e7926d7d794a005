#include "library/import/NullTexts.h"

#include <algorithm>

namespace library {

NullTexts::NullTexts(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    if (text.empty()) continue;
    firsts_.set(static_cast<unsigned char>(text.front()));
    longest_ = std::max(longest_, text.size());
    texts_.push_back(text);
  }
}

bool NullTexts::Find(std::string_view text) const {
  return std::find(texts_.begin(), texts_.end(), text) != texts_.end();
}

}  // namespace library
