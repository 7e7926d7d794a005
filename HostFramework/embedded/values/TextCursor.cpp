#include "HostFramework/embedded/values/TextCursor.h"

#include <algorithm>

#include <unicode/uchar.h>

#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/Utf8.h"

namespace embedded {
namespace {

constexpr char32_t kDottedCapitalI = 0x130;
constexpr char32_t kDotlessSmallI = 0x131;

}  // namespace

char32_t FoldCase(char32_t character) {
  if (character == kDottedCapitalI || character == kDotlessSmallI) return 'i';
  return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(character), U_FOLD_CASE_DEFAULT));
}

// The character here and its length; 0 and length 1 for a byte that starts no character.
char32_t TextCursor::Decode(int* length) const {
  std::uint32_t character = 0;
  const int most = static_cast<int>(std::min(Rest().size(), kLongestCode));
  *length = QANTMBU32Get_A(&character, at_, 0, most);
  if (*length > 0 && *length <= most) return character;
  *length = 1;
  return 0;
}

bool TextCursor::WideBlank() {
  int length;
  if (!u_isUWhiteSpace(static_cast<UChar32>(Decode(&length)))) return false;
  at_ += length;
  return true;
}

int TextCursor::WideDigit() {
  int length;
  const int digit = u_charDigitValue(static_cast<UChar32>(Decode(&length)));
  if (digit >= 0) at_ += length;
  return digit;
}

char32_t TextCursor::WideCharacter() {
  int length;
  const char32_t character = Decode(&length);
  at_ += length;
  return FoldCase(character);
}

}  // namespace embedded
