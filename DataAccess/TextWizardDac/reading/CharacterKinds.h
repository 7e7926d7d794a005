// What the characters of the host's text do to a record.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "HostFramework/Text.h"
#include "reading/ByteScan.h"
#include "reading/FieldRules.h"

namespace textwizard {

enum class CharacterKind : std::uint8_t { kData, kQualifier, kDelimiter, kBlankDelimiter };

// The kind of every character, and of which text the bytes tell it without decoding. The rules
// outlive it. Constant between calls of UseRules; the host keeps its code page while it lives.
class CharacterKinds {
 public:
  explicit CharacterKinds(const FieldRules& rules) : rules_(rules), utf8_(qUTF8mode()) {}

  // Takes the rules in, at first and after they changed. `converter` belongs to the caller's
  // thread.
  void UseRules(QANTMBConverter* converter);

  // Of a character that was decoded.
  CharacterKind Of(std::uint32_t ch) const;
  // Of a byte that is a character by itself; another one is data.
  CharacterKind OfByte(char byte) const { return kinds_[static_cast<unsigned char>(byte)]; }
  // The bytes that are not data.
  const ByteSet& cutting() const { return cutting_; }
  // The byte's number is that of a delimiter other than the blank, whatever character the byte is
  // or begins.
  bool HasDelimitersNumber(char byte) const {
    return delimiterNumbers_[static_cast<unsigned char>(byte)];
  }
  // The host's text is UTF-8.
  bool utf8() const { return utf8_; }

  // True when no character of `text` needs decoding to be cut: ASCII, or any text of a code page
  // whose every byte is a character, or valid UTF-8 in UTF-8 mode with every delimiter and the
  // qualifier in ASCII. Never true of text with a NUL.
  bool CutsByBytes(std::string_view text) const;
  // True when the same holds of `text` but for bytes that are no character in UTF-8, which cut
  // nothing either.
  bool CutsBrokenTextByBytes(std::string_view text) const {
    return utf8_ && asciiIsPlain_ && rulesAreAscii_ && text.find('\0') == std::string_view::npos;
  }

 private:
  const FieldRules& rules_;
  const bool utf8_;
  std::array<CharacterKind, 256> kinds_{};
  std::array<bool, 256> delimiterNumbers_{};
  ByteSet cutting_;
  // Every byte 1 to 127 is a character; every byte 1 to 255 is.
  bool asciiIsPlain_ = false;
  bool bytesArePlain_ = false;
  // Every delimiter and the qualifier are ASCII.
  bool rulesAreAscii_ = false;
};

}  // namespace textwizard
