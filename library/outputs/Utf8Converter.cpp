#include "library/outputs/Utf8Converter.h"

#include <cstdint>
#include <cstring>

namespace library {

bool IsAscii(std::string_view text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080U;
  std::size_t at = 0;
  for (; at + sizeof(std::uint64_t) <= text.size(); at += sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + at, sizeof word);
    if ((word & kHighBits) != 0) return false;
  }
  for (; at < text.size(); ++at) {
    if ((static_cast<unsigned char>(text[at]) & 0x80U) != 0) return false;
  }
  return true;
}

Utf8Converter::Utf8Converter(const char* codePage) : converter_(QANTMBConverterNew_A(codePage)) {}

std::string_view Utf8Converter::ToUtf8(std::string_view text) {
  if (IsAscii(text)) return text;
  QANTMBCodePageToU8(converter_.get(), converted_, text);
  return converted_;
}

}  // namespace library
