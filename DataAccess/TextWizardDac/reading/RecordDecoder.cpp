#include "reading/RecordDecoder.h"

namespace textwizard {
namespace {

using Conversion = void (*)(QANTMBConverter*, std::string&, std::string_view);

// What turns a record of the encoding into host text; null when it stays as it is.
Conversion ConversionOf(FileEncoding encoding) {
  if (encoding == kEncodingLocale) {
    return qUTF8mode() ? QANTMBCodePageToU8 : QANTMBCodePageToGeneric;
  }
  if (encoding == kEncodingUtf8 && !qUTF8mode()) return QANTMBU8ToCodePage;
  return nullptr;
}

// Whether the conversion leaves every ASCII text as it is: true of a code page that has ASCII as
// its first half, not of one with shifts or another first half.
bool KeepsAscii(Conversion conversion) {
  std::string all;
  for (char ch = 1; ch > 0 && ch < 127; ++ch) all.push_back(ch);
  all.push_back(127);
  std::string converted;
  conversion(nullptr, converted, all);
  return converted == all;
}

// 16-bit units that are ASCII all, as bytes; false when some are not. `low` is the place of a
// unit's low byte.
bool NarrowAscii(std::string_view raw, std::size_t low, char* out) {
  unsigned high = 0;
  unsigned bits = 0;
  for (std::size_t i = 0; i + 1 < raw.size(); i += 2) {
    const auto byte = static_cast<unsigned char>(raw[i + low]);
    high |= static_cast<unsigned char>(raw[i + 1 - low]);
    bits |= byte;
    out[i / 2] = static_cast<char>(byte);
  }
  return high == 0 && bits < 0x80;
}

}  // namespace

RecordDecoder::RecordDecoder(FileEncoding encoding)
    : conversion_(ConversionOf(encoding)), keepsAscii_(conversion_ && KeepsAscii(conversion_)) {}

std::string_view RecordDecoder::Decode8(std::string_view raw) {
  if (Keeps(raw)) return raw;
  conversion_(nullptr, buffer_, raw);
  return buffer_;
}

std::string_view RecordDecoder::Decode16(std::string_view raw, ByteOrderMark mark) {
  if (raw.empty()) return {};
  const bool littleEndian = mark == ByteOrderMark::kUtf16LittleEndian;
  const bool utf8 = qUTF8mode();
  // A unit of two bytes takes at most three bytes of UTF-8 (surrogates two each); a code page gets
  // three for every byte, and for the two bytes of a terminator.
  const std::size_t room = utf8 ? raw.size() / 2 * 3 : (raw.size() + 2) * 3;
  if (buffer_.size() < room) buffer_.resize(room);
  if (utf8 && NarrowAscii(raw, littleEndian ? 0 : 1, buffer_.data())) {
    return {buffer_.data(), raw.size() / 2};
  }
  const auto convert = utf8 ? (littleEndian ? QANTMB16to8 : QANTMB16Revto8)
                            : (littleEndian ? QANTMB16toGeneric : QANTMB16RevtoGeneric);
  return {buffer_.data(), convert(buffer_.data(), room, raw.data(), raw.size())};
}

}  // namespace textwizard
