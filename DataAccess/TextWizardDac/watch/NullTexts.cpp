#include "watch/NullTexts.h"

#include <algorithm>

namespace textwizard {

NullTexts::NullTexts(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    const std::string_view bare = WithoutBlanks(text);
    if (!bare.empty()) texts_.emplace_back(bare);
  }
  std::sort(texts_.begin(), texts_.end());
  for (const std::string& text : texts_) begins_[static_cast<unsigned char>(text.front())] = true;
  begins_[' '] = begins_['\t'] = !texts_.empty();
}

bool NullTexts::IsOne(std::string_view field) const {
  return std::binary_search(texts_.begin(), texts_.end(), WithoutBlanks(field),
                            [](std::string_view a, std::string_view b) { return a < b; });
}

}  // namespace textwizard
