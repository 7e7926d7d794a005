#include "reading/CharacterKinds.h"

#include <algorithm>

namespace textwizard {

CharacterKind CharacterKinds::Of(std::uint32_t ch) const {
  using enum CharacterKind;
  if (rules_.IsDelimiter(ch)) return ch == ' ' ? kBlankDelimiter : kDelimiter;
  return rules_.IsQualifier(ch) ? kQualifier : kData;
}

void CharacterKinds::UseRules(QANTMBConverter* converter) {
  rulesAreAscii_ = rules_.qualifier() < 0x80 &&
                   std::all_of(rules_.delimiters().begin(), rules_.delimiters().end(),
                               [](std::uint32_t ch) { return ch < 0x80; });
  // Asks of every byte whether it is a character by itself. In a multibyte code page a byte that
  // starts a longer character is none.
  kinds_.fill(CharacterKind::kData);
  cutting_ = {};
  asciiIsPlain_ = bytesArePlain_ = true;
  for (unsigned byte = 1; byte < 256; ++byte) {
    delimiterNumbers_[byte] = byte != ' ' && rules_.IsDelimiter(byte);
    const char text[2] = {static_cast<char>(byte), '\0'};
    std::uint32_t ch = 0;
    if (QANTMBU32GetC_A(converter, &ch, text, 0, 1) != 1) {
      bytesArePlain_ = false;
      if (byte < 0x80) asciiIsPlain_ = false;
      continue;
    }
    kinds_[byte] = Of(ch);
    if (kinds_[byte] == CharacterKind::kData) continue;
    if (cutting_.count == ByteSet::kMax) {
      asciiIsPlain_ = bytesArePlain_ = false;
      continue;
    }
    cutting_.bytes[cutting_.count++] = static_cast<std::uint8_t>(byte);
  }
}

bool CharacterKinds::CutsByBytes(std::string_view text) const {
  if (!asciiIsPlain_) return false;
  if (bytesArePlain_) return text.find('\0') == std::string_view::npos;
  return IsAscii(text) || (utf8_ && rulesAreAscii_ && IsUtf8(text));
}

}  // namespace textwizard
