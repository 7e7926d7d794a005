#include <algorithm>

#include "reading/FieldSplitter.h"

namespace textwizard {
namespace {

// The longest character that is decoded, in bytes.
constexpr int kLongestCharacter = 8;

}  // namespace

FieldRules::FieldRules(const ImportSettings& settings)
    : leadingSpaces_(settings.leadingSpaces), multipleSpaces_(settings.multipleSpaces) {
  if (settings.qualifierSet) {
    std::uint32_t ch = 0;
    if (QANTMBU32Get_A(&ch, settings.qualifier.c_str(), 0, kLongestCharacter) > 0) qualifier_ = ch;
  }
  SetWideDelimiters(settings.delimiters.c_str());
}

int FieldRules::SetWideDelimiters(const char* delimiters) {
  delimiters_.fill(0);
  int count = 0;
  while (delimiters && *delimiters && count < static_cast<int>(kMaxDelimiters)) {
    std::uint32_t ch = 0;
    const int length = QANTMBU32Get_A(&ch, delimiters, 0, kLongestCharacter);
    // The slot of bytes that are no character is counted and stays empty.
    auto& slot = delimiters_[static_cast<std::size_t>(count++)];
    if (length < 1) break;
    slot = ch;
    delimiters += length;
  }
  return count;
}

bool FieldRules::IsDelimiter(std::uint32_t ch) const {
  const auto end = std::find(delimiters_.begin(), delimiters_.end(), 0U);
  return std::find(delimiters_.begin(), end, ch) != end;
}

}  // namespace textwizard
