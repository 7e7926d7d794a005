#include "reading/FieldRules.h"

#include <algorithm>

#include "HostFramework/Text.h"

namespace textwizard {
namespace {

// The longest character that is decoded, in bytes.
constexpr int kLongestCharacter = 8;

}  // namespace

FieldRules::FieldRules(const ImportSettings& settings)
    : leadingSpaces_(settings.leadingSpaces),
      multipleSpaces_(settings.multipleSpaces),
      keepsStrayQualifiers_(settings.keepsStrayQualifiers) {
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

bool HoldsCharacter(const std::string& set, std::string_view character) {
  std::uint32_t wanted = 0;
  const int size = static_cast<int>(character.size());
  if (QANTMBU32Get_A(&wanted, character.data(), 0, size) <= 0) return false;
  for (const char* at = set.c_str(); *at != '\0';) {
    std::uint32_t ch = 0;
    const int length = QANTMBmbclen_A(at);
    if (QANTMBU32Get_A(&ch, at, 0, length) > 0 && ch == wanted) return true;
    at += length;
  }
  return false;
}

}  // namespace textwizard
