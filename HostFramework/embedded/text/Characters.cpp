// Host text character by character.
#include <algorithm>
#include <cstring>

#include <unicode/uchar.h>

#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/Converter.h"
#include "HostFramework/embedded/text/Settings.h"

namespace {

using embedded::Character;
using embedded::CodePage;
using embedded::HostPage;
using embedded::kLongestCode;

bool IsAscii(char byte) { return static_cast<signed char>(byte) >= 0; }

int Result(const Character& character, std::uint32_t* ch) {
  if (!character.IsCharacter()) return -1;
  *ch = character.code;
  return character.length;
}

int DecodeOne(const CodePage& page, std::uint32_t* ch, const char* text, int max) {
  if (max <= 0) return 0;
  if (*text == '\0') {
    *ch = 0;
    return 0;
  }
  return Result(page.Decode(text, static_cast<std::size_t>(max)), ch);
}

// Bytes that the character at `text` (not at its end) takes; a byte that starts none counts as one.
std::size_t Step(const CodePage& page, const char* text) {
  if (IsAscii(*text)) return 1;
  const Character character = page.Decode(text, kLongestCode);
  return character.IsCharacter() ? static_cast<std::size_t>(character.length) : 1;
}

// Takes the character at `text`, without its case; a byte that starts none compares above all
// characters and equal only to itself.
std::uint32_t TakeFolded(const CodePage& page, const char*& text) {
  const auto byte = static_cast<unsigned char>(*text);
  if (byte < 0x80) {
    if (byte != 0) ++text;
    return byte >= 'A' && byte <= 'Z' ? byte + ('a' - 'A') : byte;
  }
  const Character character = page.Decode(text, kLongestCode);
  if (!character.IsCharacter()) {
    ++text;
    return UCHAR_MAX_VALUE + 1 + byte;
  }
  text += character.length;
  return static_cast<std::uint32_t>(
      u_foldCase(static_cast<UChar32>(character.code), U_FOLD_CASE_DEFAULT));
}

char AsciiUpper(char byte) {
  return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - ('a' - 'A')) : byte;
}
char AsciiLower(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

template <char (*Ascii)(char), UChar32 (*Other)(UChar32)>
char* ChangeCase(char* text) {
  const CodePage& page = HostPage();
  for (char* at = text; *at != '\0';) {
    if (IsAscii(*at)) {
      *at = Ascii(*at);
      ++at;
      continue;
    }
    const Character character = page.Decode(at, kLongestCode);
    if (!character.IsCharacter()) {
      ++at;
      continue;
    }
    const auto length = static_cast<std::size_t>(character.length);
    const auto changed = static_cast<char32_t>(Other(static_cast<UChar32>(character.code)));
    char code[kLongestCode];
    if (changed != character.code && page.Encode(changed, code) == length) {
      std::memcpy(at, code, length);
    }
    at += length;
  }
  return text;
}

}  // namespace

int QANTMBU32Get_A(std::uint32_t* ch, const char* text, int /*flags*/, int max) {
  return DecodeOne(HostPage(), ch, text, max);
}

int QANTMBU32GetC_A(QANTMBConverter* converter, std::uint32_t* ch, const char* text, int /*flags*/,
                    int max) {
  if (converter == nullptr) return DecodeOne(HostPage(), ch, text, max);
  if (converter->page() != nullptr) return DecodeOne(*converter->page(), ch, text, max);
  if (max <= 0) return 0;
  const std::size_t length = strnlen(text, std::min(static_cast<std::size_t>(max), kLongestCode));
  return length == 0 ? 0 : Result(converter->icu().Decode(text, length), ch);
}

int QANTMBmbclen_A(const char* text) {
  return *text == '\0' ? 0 : static_cast<int>(Step(HostPage(), text));
}

const char* QANTMBstrinc_A(const char* text) { return text + QANTMBmbclen_A(text); }

int QANTMBstricmp_A(const char* left, const char* right) {
  const CodePage& page = HostPage();
  for (;;) {
    const std::uint32_t l = TakeFolded(page, left);
    const std::uint32_t r = TakeFolded(page, right);
    if (l != r) return l < r ? -1 : 1;
    if (l == 0) return 0;
  }
}

std::size_t QANTMBstrcspn_A(const char* text, const char* set) {
  const CodePage& page = HostPage();
  // In UTF-8 an ASCII byte is never a part of another character; in a single-byte page no byte is.
  const std::size_t setLength = std::strlen(set);
  if (page.IsSingleByte() ||
      (page.IsUtf8() && embedded::AsciiPrefix(set, setLength) == setLength)) {
    return std::strcspn(text, set);
  }
  const char* at = text;
  while (*at != '\0') {
    const std::size_t step = Step(page, at);
    for (const char* member = set; *member != '\0';) {
      const std::size_t length = Step(page, member);
      if (length == step && std::memcmp(member, at, step) == 0) {
        return static_cast<std::size_t>(at - text);
      }
      member += length;
    }
    at += step;
  }
  return static_cast<std::size_t>(at - text);
}

char* QANTMBstrncpy_A(char* target, const char* text, std::size_t bytes) {
  // One code further tells whether a character crosses the limit.
  const std::size_t length = strnlen(text, bytes + std::min(~bytes, kLongestCode));
  const std::size_t copied = HostPage().WholePrefix(text, length, bytes);
  std::memcpy(target, text, copied);
  target[copied] = '\0';
  return target;
}

char* QANTMBstrupr_A(char* text) { return ChangeCase<AsciiUpper, u_toupper>(text); }

char* QANTMBstrlwr_A(char* text) { return ChangeCase<AsciiLower, u_tolower>(text); }

void QANTMBCopyToFixed_A(char* field, int width, const char* text, int length) {
  if (width <= 0) return;
  const CodePage& page = HostPage();
  const auto room = static_cast<std::size_t>(width);
  std::size_t whole = length > 0 ? static_cast<std::size_t>(length) : 0;
  if (embedded::AsciiPrefix(text, whole) == whole) {
    whole = std::min(whole, room);
  } else {
    whole -= page.IncompleteTail(text, whole);
    whole = page.WholePrefix(text, whole, room);
  }
  if (whole > 0) std::memcpy(field, text, whole);
  std::memset(field + whole, ' ', room - whole);
}
