#include "tests/differential/NaiveCodePage.h"

#include <stdexcept>
#include <string_view>
#include <vector>

#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>
#include <unicode/utf16.h>

namespace naive {
namespace {

// Stands for bytes that are no character until the text is host text: nothing that is decoded ends
// up as this half of a pair.
constexpr UChar kNoCharacter = 0xDFFF;

void PutNoCharacter(const void*, UConverterToUnicodeArgs* args, const char*, int32_t,
                    UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;
  *error = U_ZERO_ERROR;
  ucnv_cbToUWriteUChars(args, &kNoCharacter, 1, 0, error);
}

void PutSubstitute(const void*, UConverterFromUnicodeArgs* args, const UChar*, int32_t, UChar32,
                   UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;
  *error = U_ZERO_ERROR;
  const bool utf8 = ucnv_getType(args->converter) == UCNV_UTF8;
  const std::string substitute = utf8 ? "\xEF\xBF\xBD" : "?";
  ucnv_cbFromUWriteBytes(args, substitute.data(), static_cast<int32_t>(substitute.size()), 0,
                         error);
}

void RequireSuccess(UErrorCode error) {
  if (U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
}

std::u16string DecodedByIcu(UConverter* converter, const std::string& text) {
  std::u16string units(text.size() * 2 + 8, u'\0');
  UErrorCode error = U_ZERO_ERROR;
  const int32_t length = ucnv_toUChars(converter, units.data(), static_cast<int32_t>(units.size()),
                                       text.data(), static_cast<int32_t>(text.size()), &error);
  RequireSuccess(error);
  units.resize(static_cast<std::size_t>(length));
  return units;
}

// ICU has these three in another order in some pages; in host text they are what they are in ASCII.
constexpr std::u16string_view kControls = u"\x1A\x1C\x7F";

// `from` and `to` give the same characters in two orders.
void Reorder(std::u16string& units, std::u16string_view from, std::u16string_view to) {
  if (from == to) return;
  for (char16_t& unit : units) {
    const std::size_t place = from.find(unit);
    if (place != from.npos) unit = to[place];
  }
}

std::u16string Decoded(UConverter* converter, const std::string& text) {
  std::u16string units = DecodedByIcu(converter, text);
  Reorder(units, DecodedByIcu(converter, "\x1A\x1C\x7F"), kControls);
  return units;
}

std::string Encoded(UConverter* converter, std::u16string units) {
  Reorder(units, kControls, DecodedByIcu(converter, "\x1A\x1C\x7F"));
  std::string text(units.size() * 8 + 8, '\0');
  UErrorCode error = U_ZERO_ERROR;
  const int32_t length = ucnv_fromUChars(converter, text.data(), static_cast<int32_t>(text.size()),
                                         units.data(), static_cast<int32_t>(units.size()), &error);
  RequireSuccess(error);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

struct Character {
  // One unit or two.
  std::u16string units;
  std::string bytes;
};

// The text character by character; what is no character comes in runs as the page's rules cut it.
std::vector<Character> Characters(UConverter* converter, const std::string& text) {
  std::vector<UChar> units(text.size() * 2 + 8);
  std::vector<int32_t> offsets(units.size());
  UChar* out = units.data();
  const char* in = text.data();
  UErrorCode error = U_ZERO_ERROR;
  ucnv_reset(converter);
  ucnv_toUnicode(converter, &out, out + units.size(), &in, in + text.size(), offsets.data(), true,
                 &error);
  RequireSuccess(error);
  const auto count = static_cast<std::size_t>(out - units.data());
  std::vector<Character> characters;
  for (std::size_t i = 0; i < count;) {
    const std::size_t first = i;
    const auto from = static_cast<std::size_t>(offsets[i]);
    // A character may be two units.
    for (++i; i < count && offsets[i] == offsets[i - 1];) ++i;
    const auto end = i < count ? static_cast<std::size_t>(offsets[i]) : text.size();
    characters.push_back(
        {std::u16string(units.data() + first, i - first), text.substr(from, end - from)});
  }
  return characters;
}

bool IsNoCharacter(const std::u16string& units) { return units.front() == kNoCharacter; }

}  // namespace

CodePageText::Converter CodePageText::Open(const char* page) {
  UErrorCode error = U_ZERO_ERROR;
  Converter converter(ucnv_open(page, &error));
  ucnv_setToUCallBack(converter.get(), PutNoCharacter, nullptr, nullptr, nullptr, &error);
  ucnv_setFromUCallBack(converter.get(), PutSubstitute, nullptr, nullptr, nullptr, &error);
  RequireSuccess(error);
  return converter;
}

CodePageText::CodePageText(const char* host, Records records, const char* locale)
    : utf8Host_(host == nullptr),
      records_(records),
      page_(Open(utf8Host_ ? "UTF-8" : host)),
      host_(Open(utf8Host_ ? "UTF-8" : host)),
      utf8_(Open("UTF-8")),
      source_(Open(utf8Host_ ? locale : host)) {
  UErrorCode error = U_ZERO_ERROR;
  ucnv_setToUCallBack(page_.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
  RequireSuccess(error);
}

std::size_t CodePageText::DecodeByPage(const std::string& text, std::size_t at, char32_t* ch,
                                       bool* unfinished) const {
  ucnv_reset(page_.get());
  UChar units[4];
  UChar* out = units;
  const char* in = text.data() + at;
  const char* const end = text.data() + text.size();
  *unfinished = false;
  while (in != end) {
    UErrorCode error = U_ZERO_ERROR;
    ucnv_toUnicode(page_.get(), &out, units + 4, &in, in + 1, nullptr, false, &error);
    if (U_FAILURE(error)) return 0;
    if (out == units) continue;
    std::u16string unit(units, 1);
    Reorder(unit, DecodedByIcu(host_.get(), "\x1A\x1C\x7F"), kControls);
    *ch = unit[0];
    if (out == units + 2) *ch = static_cast<char32_t>(U16_GET_SUPPLEMENTARY(units[0], units[1]));
    return static_cast<std::size_t>(in - text.data()) - at;
  }
  *unfinished = true;
  return 0;
}

std::size_t CodePageText::Decode(const std::string& text, std::size_t at, char32_t* ch) const {
  if (utf8Host_) return HostText::Decode(text, at, ch);
  bool unfinished = false;
  return DecodeByPage(text, at, ch, &unfinished);
}

std::size_t CodePageText::UnfinishedTail(const std::string& text) const {
  if (utf8Host_) return HostText::UnfinishedTail(text);
  for (std::size_t at = 0; at < text.size();) {
    char32_t ch = 0;
    bool unfinished = false;
    const std::size_t length = DecodeByPage(text, at, &ch, &unfinished);
    if (unfinished) return text.size() - at;
    at += length == 0 ? 1 : length;
  }
  return 0;
}

std::string CodePageText::ToHost(UConverter* from, const std::string& text) const {
  return Encoded(host_.get(), Decoded(from, text));
}

std::vector<Piece> CodePageText::Pieces(const std::string& raw) const {
  const bool fromUtf8 = records_ == Records::kUtf8 && !utf8Host_;
  if (records_ != Records::kLocale && !fromUtf8) return HostText::Pieces(raw);
  UConverter* const from = fromUtf8 ? utf8_.get() : source_.get();
  const std::u16string controls = DecodedByIcu(from, "\x1A\x1C\x7F");
  std::vector<Piece> pieces;
  for (auto& [units, bytes] : Characters(from, raw)) {
    const bool none = IsNoCharacter(units);
    Reorder(units, controls, kControls);
    // Some pages have two codes for a character: text that stays in its page keeps its own.
    const bool stays = records_ == Records::kLocale && !utf8Host_;
    const std::string text = stays ? (none ? "?" : bytes) : Encoded(host_.get(), units);
    // Only a question mark itself is one in a page that has the character.
    const bool lacks = !utf8Host_ && text == "?" && units != u"?";
    pieces.push_back({text, bytes.size(), none || lacks});
  }
  return pieces;
}

std::string CodePageText::FromRecord(const std::string& raw) const {
  std::string text;
  for (const Piece& piece : Pieces(raw)) text += piece.text;
  return text;
}

std::string CodePageText::FromUtf8(const std::string& text) const {
  return ToHost(utf8_.get(), text);
}

bool CodePageText::Append(std::string& text, char32_t ch) const {
  std::u16string units;
  if (ch == kInvalid) {
    units += kNoCharacter;
  } else if (ch < 0x10000) {
    units += static_cast<char16_t>(ch);
  } else {
    units += U16_LEAD(ch);
    units += U16_TRAIL(ch);
  }
  const std::string encoded = Encoded(host_.get(), units);
  text += encoded;
  return !IsNoCharacter(units) && (utf8Host_ || encoded != "?" || ch == U'?');
}

}  // namespace naive
