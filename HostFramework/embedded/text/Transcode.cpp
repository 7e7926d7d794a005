#include "HostFramework/embedded/text/Transcode.h"

#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>

namespace embedded {
namespace {

// ICU's own callbacks drop characters that are invisible by default; the page lacks these as well.
void U_CALLCONV PutQuestionMark(const void* /*context*/, UConverterFromUnicodeArgs* args,
                                const UChar* /*units*/, int32_t /*length*/, UChar32 /*code*/,
                                UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;
  *error = U_ZERO_ERROR;
  const UChar question = u'?';
  const UChar* source = &question;
  ucnv_cbFromUWriteUChars(args, &source, source + 1, 0, error);
}

// ICU's verdict on bytes, after which it goes on behind them. Any other error is final.
bool IsInvalidText(UErrorCode error) {
  switch (error) {
    case U_INVALID_CHAR_FOUND:
    case U_TRUNCATED_CHAR_FOUND:
    case U_ILLEGAL_CHAR_FOUND:
    case U_ILLEGAL_ESCAPE_SEQUENCE:
    case U_UNSUPPORTED_ESCAPE_SEQUENCE:
      return true;
    default:
      return false;
  }
}

}  // namespace

Character Utf16Source::Next() {
  if (rest_.size() < 2) {
    rest_ = {};
    return {Character::kIncomplete, 1};
  }
  const char16_t unit = Unit(0);
  Character character{unit, 2};
  if (U16_IS_SURROGATE(unit)) {
    character.code = Character::kInvalid;
    if (U16_IS_SURROGATE_LEAD(unit) && rest_.size() >= 4) {
      if (const char16_t trail = Unit(1); U16_IS_TRAIL(trail)) {
        character = {static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, trail)), 4};
      }
    }
  }
  rest_.remove_prefix(static_cast<std::size_t>(character.length));
  return character;
}

IcuSource::IcuSource(UConverter* converter, std::string_view text)
    : converter_(converter), source_(text.data()), end_(text.data() + text.size()) {
  ucnv_resetToUnicode(converter_);
  Fill();
}

void IcuSource::Fill() {
  next_ = count_ = 0;
  while (count_ == 0 && !invalidNext_ && !finished_) {
    UChar* target = units_.data();
    UErrorCode error = U_ZERO_ERROR;
    ucnv_toUnicode(converter_, &target, target + units_.size(), &source_, end_, nullptr, true,
                   &error);
    count_ = static_cast<std::size_t>(target - units_.data());
    if (IsInvalidText(error)) {
      invalidNext_ = true;
    } else if (error != U_BUFFER_OVERFLOW_ERROR) {
      finished_ = true;
    }
  }
}

char16_t IcuSource::Take() {
  const char16_t unit = units_[next_++];
  if (next_ == count_ && !invalidNext_) Fill();
  return unit;
}

Character IcuSource::Next() {
  if (next_ == count_) {
    invalidNext_ = false;
    Fill();
    return {Character::kInvalid, 1};
  }
  const char16_t unit = Take();
  if (!U16_IS_SURROGATE(unit)) return {unit, 1};
  if (!U16_IS_SURROGATE_LEAD(unit) || next_ == count_ || !U16_IS_TRAIL(units_[next_])) {
    return {Character::kInvalid, 1};
  }
  return {static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, Take())), 1};
}

IcuTarget::IcuTarget(UConverter* converter) : converter_(converter) {
  ucnv_resetFromUnicode(converter_);
  UErrorCode error = U_ZERO_ERROR;
  ucnv_setFromUCallBack(converter_, PutQuestionMark, nullptr, nullptr, nullptr, &error);
}

IcuTarget::~IcuTarget() {
  UErrorCode error = U_ZERO_ERROR;
  ucnv_setFromUCallBack(converter_, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
}

std::string_view IcuTarget::Put(const UChar* units, std::size_t count, bool last, Code& code) {
  char* target = code.data();
  UErrorCode error = U_ZERO_ERROR;
  ucnv_fromUnicode(converter_, &target, target + code.size(), &units, units + count, nullptr, last,
                   &error);
  return {code.data(), static_cast<std::size_t>(target - code.data())};
}

std::string_view IcuTarget::Encode(const Character& character, Code& code) {
  UChar units[U16_MAX_LENGTH];
  std::size_t count = 0;
  // Of bytes that are no character a page gets its question mark.
  const char32_t value = character.IsCharacter() ? character.code : U'?';
  U16_APPEND_UNSAFE(units, count, static_cast<UChar32>(value));
  return Put(units, count, false, code);
}

std::string_view IcuTarget::Finish(Code& code) { return Put(nullptr, 0, true, code); }

}  // namespace embedded
