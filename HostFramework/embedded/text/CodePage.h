// A code page that host text can be in: UTF-8, or a stateless superset of ASCII.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/embedded/text/IcuConverter.h"
#include "HostFramework/embedded/text/Utf8.h"

namespace embedded {

// Tables of all codes of one and two bytes, taken from ICU once; only longer codes and characters
// outside the basic plane go to an ICU converter, one of the calling thread's. Constant, shared by
// all threads, and never destroyed, so a pointer to a page is its identity.
class CodePage {
 public:
  static const CodePage& Utf8();
  // The page of that name, or of one that people use it for (see CodePageCandidates). Null for an
  // unknown name and a page that is not a stateless superset of ASCII. Throws std::bad_alloc. Takes
  // a lock; any thread.
  static const CodePage* Find(const char* name);

  CodePage(const CodePage&) = delete;
  CodePage& operator=(const CodePage&) = delete;

  const std::string& name() const { return name_; }
  bool IsUtf8() const { return kind_ == Kind::kUtf8; }
  bool IsSingleByte() const { return kind_ == Kind::kSingleByte; }

  // Decodes the first of `available` (at least 1) bytes; never reads past a NUL.
  Character Decode(const char* text, std::size_t available) const {
    const auto lead = static_cast<unsigned char>(*text);
    if (lead < 0x80) return {lead, 1};
    if (IsUtf8()) return DecodeUtf8(text, available);
    return DecodeByTable(text, available);
  }
  // Writes the character's code and returns its length, 0 when the page lacks it. `out` has room
  // for kLongestCode bytes.
  std::size_t Encode(char32_t code, char* out) const;
  // What stands for bytes that are no character and for characters that the page lacks.
  std::string_view Substitute() const { return IsUtf8() ? "\xEF\xBF\xBD" : "?"; }

  // Length of the longest beginning of text[0, length) that takes at most `room` bytes and ends at
  // the end of a character. A byte that starts no character counts as one.
  std::size_t WholePrefix(const char* text, std::size_t length, std::size_t room) const;
  // Number of bytes at the end of text[0, length) that are the beginning of a character.
  std::size_t IncompleteTail(const char* text, std::size_t length) const;

 private:
  enum class Kind { kUtf8, kSingleByte, kMultiByte };
  // Entries of the tables that are no character: bytes that are none, of which one or two are
  // replaced by one substitute, and the beginning of a longer code.
  static constexpr char32_t kInvalid1 = 0xFFFFFFFF;
  static constexpr char32_t kInvalid2 = 0xFFFFFFFE;
  static constexpr char32_t kLonger = 0xFFFFFFFD;

  CodePage() : name_("UTF-8"), kind_(Kind::kUtf8) {}
  explicit CodePage(IcuConverter& icu);

  // The page that ICU has under exactly this name, as Find.
  static const CodePage* Open(const char* name);

  static char32_t Entry(const Character& character);
  Character DecodeByTable(const char* text, std::size_t available) const {
    const auto lead = static_cast<unsigned char>(text[0]);
    const char32_t code = singles_[lead];
    if (code < kLonger) return {code, 1};
    if (code != kLonger) return {Character::kInvalid, 1};
    if (available < 2) return {Character::kIncomplete, 1};
    const char32_t pair = pairs_[rows_[lead] + static_cast<unsigned char>(text[1])];
    if (pair < kLonger) return {pair, 2};
    if (pair == kLonger) return DecodeByIcu(text, available);
    return {Character::kInvalid, pair == kInvalid1 ? 1 : 2};
  }
  Character DecodeByIcu(const char* text, std::size_t available) const;

  std::string name_;
  Kind kind_;
  // Some characters are not in codes_: their codes are longer, or they lie outside the basic plane.
  bool encodesByIcu_ = false;
  std::array<char32_t, 256> singles_{};
  // Where the row of a lead byte begins in pairs_.
  std::array<std::uint32_t, 256> rows_{};
  std::vector<char32_t> pairs_;
  // The code of a character of the basic plane, high byte first; 0 when there is none of at most
  // two bytes.
  std::vector<std::uint16_t> codes_;
};

// The calling thread's ICU converter of `page`, kept until it asks for another page's. Throws
// std::bad_alloc.
IcuConverter& ThreadConverter(const CodePage& page);

}  // namespace embedded
