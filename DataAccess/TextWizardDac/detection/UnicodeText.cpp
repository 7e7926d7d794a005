#include "detection/UnicodeText.h"

#include <limits>
#include <new>

#include <unicode/ustring.h>

#include "HostFramework/Text.h"

namespace textwizard {

namespace {

// What stands for bytes that are not valid UTF-8.
constexpr UChar32 kReplacement = 0xFFFD;

}  // namespace

std::string_view ToUtf8(std::string_view hostText, std::string& buffer) {
  if (qUTF8mode()) return hostText;
  QANTMBCodePageToU8(nullptr, buffer, hostText);
  return buffer;
}

void CheckMemory(UErrorCode status) {
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
}

const icu::UnicodeString& UnicodeText::Assign(std::string_view hostText) {
  const std::string_view utf8 = ToUtf8(hostText, utf8_);
  text_.remove();
  // The matcher counts in 32 bits; a longer text is left empty and so matches no pattern.
  if (utf8.size() >= std::numeric_limits<std::int32_t>::max()) return text_;
  // UTF-8 never has fewer bytes than the text has 16-bit units.
  const auto capacity = static_cast<std::int32_t>(utf8.size());
  char16_t* units = text_.getBuffer(capacity);
  if (!units) CheckMemory(U_MEMORY_ALLOCATION_ERROR);
  std::int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8WithSub(units, capacity, &length, utf8.data(), capacity, kReplacement, nullptr,
                       &status);
  text_.releaseBuffer(U_FAILURE(status) ? 0 : length);
  return text_;
}

}  // namespace textwizard
