#include "HostFramework/embedded/text/IcuConverter.h"

#include <algorithm>
#include <new>

#include <unicode/ucnv_err.h>
#include <unicode/utf16.h>

namespace embedded {

IcuConverter::IcuConverter(const char* name) {
  // ICU takes no name, and the empty one, for its own default converter.
  if (name == nullptr || *name == '\0') return;
  UErrorCode error = U_ZERO_ERROR;
  converter_.reset(ucnv_open(name, &error));
  if (error == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  if (U_FAILURE(error)) converter_.reset();
  if (!IsOpen()) return;
  ucnv_setToUCallBack(get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
  ucnv_setFromUCallBack(get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
  if (U_FAILURE(error)) converter_.reset();
}

std::string IcuConverter::Name() const {
  UErrorCode error = U_ZERO_ERROR;
  const char* name = IsOpen() ? ucnv_getName(get(), &error) : nullptr;
  return name != nullptr && U_SUCCESS(error) ? name : "";
}

Character IcuConverter::Decode(const char* text, std::size_t available) {
  if (!IsOpen()) return {Character::kInvalid, 1};
  // The limit grows byte by byte: more bytes than the character has are never looked at, and a
  // text that ends inside it is told from one that continues wrongly.
  const std::size_t longest = std::min(available, kLongestCode);
  for (std::size_t length = 1;; ++length) {
    ucnv_resetToUnicode(get());
    const char* source = text;
    UErrorCode error = U_ZERO_ERROR;
    const UChar32 code = ucnv_getNextUChar(get(), &source, text + length, &error);
    if (U_SUCCESS(error)) {
      return {static_cast<char32_t>(code), static_cast<int>(length)};
    }
    if (error == U_TRUNCATED_CHAR_FOUND || error == U_INDEX_OUTOFBOUNDS_ERROR) {
      if (length < longest) continue;
      return {Character::kIncomplete, static_cast<int>(length)};
    }
    char invalid[kLongestCode * 2];
    auto size = static_cast<int8_t>(sizeof invalid);
    error = U_ZERO_ERROR;
    ucnv_getInvalidChars(get(), invalid, &size, &error);
    return {Character::kInvalid, U_SUCCESS(error) ? std::max<int>(size, 1) : 1};
  }
}

std::size_t IcuConverter::Encode(char32_t code, char* out) {
  if (!IsOpen()) return 0;
  UChar units[U16_MAX_LENGTH];
  std::size_t count = 0;
  U16_APPEND_UNSAFE(units, count, static_cast<UChar32>(code));
  ucnv_resetFromUnicode(get());
  char* target = out;
  const UChar* source = units;
  UErrorCode error = U_ZERO_ERROR;
  ucnv_fromUnicode(get(), &target, out + kLongestCode, &source, units + count, nullptr, true,
                   &error);
  return U_SUCCESS(error) ? static_cast<std::size_t>(target - out) : 0;
}

}  // namespace embedded
