#include "HostFramework/embedded/text/CodePage.h"

#include <algorithm>
#include <map>
#include <memory>
#include <new>
#include <utility>

#include <unicode/uniset.h>

#include "HostFramework/Threads.h"
#include "HostFramework/embedded/text/CodePageNames.h"

namespace embedded {
namespace {

constexpr std::size_t kRow = 256;

// ICU rotates these in the pages of the DOS family; they are ASCII in host text all the same.
bool MayDifferFromAscii(unsigned byte) { return byte == 0x1A || byte == 0x1C || byte == 0x7F; }

bool IsStatelessSupersetOfAscii(IcuConverter& icu) {
  switch (icu.Type()) {
    case UCNV_SBCS:
    case UCNV_DBCS:
    case UCNV_MBCS:
    case UCNV_LATIN_1:
    case UCNV_US_ASCII:
      break;
    default:
      return false;
  }
  for (unsigned byte = 0; byte < 0x80; ++byte) {
    if (MayDifferFromAscii(byte)) continue;
    const char text = static_cast<char>(byte);
    char code[kLongestCode];
    if (icu.Decode(&text, 1).code != byte) return false;
    if (icu.Encode(byte, code) != 1 || code[0] != text) return false;
  }
  return true;
}

struct Pages {
  sfMutex mutex;
  std::map<std::string, std::unique_ptr<const CodePage>> pages SF_GUARDED_BY(mutex);
};

Pages& ThePages() {
  static Pages* const pages = new Pages;
  return *pages;
}

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

const CodePage& CodePage::Utf8() {
  static const CodePage* const page = new CodePage();
  return *page;
}

const CodePage* CodePage::Find(const char* name) {
  for (const std::string& candidate : CodePageCandidates(name)) {
    if (const CodePage* page = Open(candidate.c_str())) return page;
  }
  return nullptr;
}

const CodePage* CodePage::Open(const char* name) {
  IcuConverter icu(name);
  if (!icu.IsOpen()) return nullptr;
  if (icu.Type() == UCNV_UTF8) return &Utf8();
  Pages& known = ThePages();
  const sfGuard guard(known.mutex);
  const std::string key = icu.Name();
  if (const auto found = known.pages.find(key); found != known.pages.end()) {
    return found->second.get();
  }
  if (!IsStatelessSupersetOfAscii(icu)) return nullptr;
  std::unique_ptr<const CodePage> page(new CodePage(icu));
  return known.pages.emplace(key, std::move(page)).first->second.get();
}

char32_t CodePage::Entry(const Character& character) {
  if (character.IsCharacter()) return character.code;
  if (character.code == Character::kIncomplete) return kLonger;
  return character.length == 1 ? kInvalid1 : kInvalid2;
}

CodePage::CodePage(IcuConverter& icu) : name_(icu.Name()), kind_(Kind::kSingleByte) {
  for (unsigned lead = 0; lead < kRow; ++lead) {
    char text[2] = {static_cast<char>(lead), 0};
    singles_[lead] = lead < 0x80 ? lead : Entry(icu.Decode(text, 1));
    if (singles_[lead] != kLonger) continue;
    kind_ = Kind::kMultiByte;
    rows_[lead] = static_cast<std::uint32_t>(pairs_.size());
    for (unsigned trail = 0; trail < kRow; ++trail) {
      text[1] = static_cast<char>(trail);
      pairs_.push_back(Entry(icu.Decode(text, 2)));
    }
  }

  codes_.resize(0x10000);
  UErrorCode error = U_ZERO_ERROR;
  icu::UnicodeSet known;
  ucnv_getUnicodeSet(icu.get(), known.toUSet(), UCNV_ROUNDTRIP_AND_FALLBACK_SET, &error);
  if (known.isBogus()) throw std::bad_alloc();
  for (std::int32_t range = 0; range < known.getRangeCount(); ++range) {
    const auto last = static_cast<char32_t>(known.getRangeEnd(range));
    if (last > 0xFFFF) encodesByIcu_ = true;
    const auto first = static_cast<char32_t>(known.getRangeStart(range));
    for (char32_t code = std::max<char32_t>(first, 0x80); code <= std::min<char32_t>(last, 0xFFFF);
         ++code) {
      char bytes[kLongestCode];
      const std::size_t length = icu.Encode(code, bytes);
      if (length > 2) encodesByIcu_ = true;
      if (length == 0 || length > 2) continue;
      unsigned value = static_cast<unsigned char>(bytes[0]);
      if (length == 2) value = value << 8 | static_cast<unsigned char>(bytes[1]);
      codes_[code] = static_cast<std::uint16_t>(value);
    }
  }
}

Character CodePage::DecodeByIcu(const char* text, std::size_t available) const {
  const std::size_t length = strnlen(text, std::min(available, kLongestCode));
  const Character character = ThreadConverter(*this).Decode(text, length);
  // A NUL ends the text, so what it cuts off never continues.
  if (character.code == Character::kIncomplete && length < std::min(available, kLongestCode)) {
    return {Character::kInvalid, character.length};
  }
  return character;
}

std::size_t CodePage::Encode(char32_t code, char* out) const {
  if (code < 0x80) {
    out[0] = static_cast<char>(code);
    return 1;
  }
  if (IsUtf8()) return EncodeUtf8(code, out);
  if (const unsigned value = code < codes_.size() ? codes_[code] : 0u; value != 0) {
    if (value < 0x100) {
      out[0] = static_cast<char>(value);
      return 1;
    }
    out[0] = static_cast<char>(value >> 8);
    out[1] = static_cast<char>(value & 0xFF);
    return 2;
  }
  return encodesByIcu_ ? ThreadConverter(*this).Encode(code, out) : 0;
}

std::size_t CodePage::WholePrefix(const char* text, std::size_t length, std::size_t room) const {
  if (length <= room) return length;
  if (IsSingleByte()) return room;
  if (IsUtf8()) {
    // A character that crosses the limit starts at most three bytes before it.
    for (std::size_t back = 1; back <= std::min<std::size_t>(room, 3); ++back) {
      const std::size_t start = room - back;
      const Character character = DecodeUtf8(text + start, length - start);
      if (character.IsCharacter() && static_cast<std::size_t>(character.length) > back) {
        return start;
      }
      if (!IsContinuation(text[start])) break;
    }
    return room;
  }
  std::size_t at = 0;
  while (at < room) {
    at += AsciiPrefix(text + at, room - at);
    if (at == room) break;
    const Character character = Decode(text + at, length - at);
    const std::size_t step =
        character.IsCharacter() ? static_cast<std::size_t>(character.length) : 1;
    if (step > room - at) break;
    at += step;
  }
  return at;
}

std::size_t CodePage::IncompleteTail(const char* text, std::size_t length) const {
  if (IsSingleByte()) return 0;
  if (IsUtf8()) {
    for (std::size_t back = 1; back <= std::min<std::size_t>(length, 3); ++back) {
      const char* start = text + length - back;
      if (DecodeUtf8(start, back).code == Character::kIncomplete) return back;
      if (!IsContinuation(*start)) break;
    }
    return 0;
  }
  std::size_t at = 0;
  while (at < length) {
    at += AsciiPrefix(text + at, length - at);
    if (at == length) break;
    const Character character = Decode(text + at, length - at);
    if (character.code == Character::kIncomplete) return length - at;
    at += character.IsCharacter() ? static_cast<std::size_t>(character.length) : 1;
  }
  return 0;
}

IcuConverter& ThreadConverter(const CodePage& page) {
  thread_local const CodePage* of = nullptr;
  thread_local IcuConverter converter;
  if (of != &page) {
    IcuConverter opened(page.name().c_str());
    // The page was made with such a converter, so only memory can be lacking.
    if (!opened.IsOpen()) throw std::bad_alloc();
    converter = std::move(opened);
    of = &page;
  }
  return converter;
}

}  // namespace embedded
