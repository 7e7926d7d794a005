#include "reading/TextOrigin.h"

#include <algorithm>

namespace textwizard {
namespace {

// The longest character of any encoding, in bytes.
constexpr std::size_t kLongestCharacter = 8;

// U+FFFD in the two 8-bit encodings that have it.
constexpr std::string_view kReplacementUtf8 = "\xEF\xBF\xBD";
constexpr std::string_view kReplacementGb = "\x84\x31\xA4\x37";
constexpr unsigned kReplacementUnit = 0xFFFD;

constexpr bool IsHighSurrogate(unsigned unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(unsigned unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

}  // namespace

TextOrigin::TextOrigin(FileEncoding encoding)
    : converter_(QANTMBConverterNew_A(nullptr)),
      decoder_(encoding),
      substitute_(qUTF8mode() ? kReplacementUtf8 : std::string_view("?")) {
  if (!qUTF8mode() || encoding != kEncodingLocale) return;
  // Which of the two the locale's page is, if any.
  constexpr std::string_view kAcuteUtf8 = "\xC3\xA9";
  constexpr std::string_view kFirstGb = "\x81\x30\x81\x30";
  if (decoder_.Decode8(kAcuteUtf8) == kAcuteUtf8) replacement_ = kReplacementUtf8;
  if (decoder_.Decode8(kFirstGb) == "\xC2\x80") replacement_ = kReplacementGb;
}

TextOrigin::~TextOrigin() { QANTMBConverterDelete_A(converter_); }

void TextOrigin::Start(std::string_view raw, std::string_view host, ByteOrderMark mark,
                       bool halfUnit) {
  raw_ = raw;
  host_ = host;
  littleEndian_ = mark == ByteOrderMark::kUtf16LittleEndian;
  halfUnit_ = halfUnit;
  if (littleEndian_ || mark == ByteOrderMark::kUtf16BigEndian) {
    kind_ = raw.empty() ? Kind::kAscii16 : Kind::kUnits;
  } else {
    kind_ = raw.data() == host.data() ? Kind::kSame : Kind::kConverted;
  }
  Rewind();
}

void TextOrigin::Rewind() { rawAt_ = hostAt_ = 0; }

std::size_t TextOrigin::RawOffset(std::size_t at) {
  if (kind_ == Kind::kSame) return at;
  if (kind_ == Kind::kAscii16) return 2 * at;
  if (at < hostAt_) Rewind();
  while (hostAt_ < at) {
    const Step step = NextStep();
    if (hostAt_ + step.host > at) break;
    rawAt_ += step.raw;
    hostAt_ += step.host;
  }
  return rawAt_;
}

std::int64_t TextOrigin::Substitutes(std::size_t from, std::size_t to) {
  if (kind_ == Kind::kAscii16) return 0;
  if (from < hostAt_) Rewind();
  std::int64_t count = 0;
  while (hostAt_ < to) {
    const Step step = NextStep();
    if (hostAt_ >= from && step.substitute) ++count;
    rawAt_ += step.raw;
    hostAt_ += step.host;
  }
  return count;
}

std::size_t TextOrigin::HostLength() const {
  std::uint32_t ch = 0;
  const std::size_t limit = std::min(host_.size() - hostAt_, kLongestCharacter);
  const int length =
      QANTMBU32GetC_A(converter_, &ch, host_.data() + hostAt_, 0, static_cast<int>(limit));
  return static_cast<std::size_t>(std::max(length, 0));
}

TextOrigin::Step TextOrigin::NextStep() {
  if (kind_ == Kind::kUnits) return NextUnit();
  if (kind_ == Kind::kConverted) return NextConverted();
  const std::size_t length = HostLength();
  return length > 0 ? Step{length, length, false} : Step{1, 1, true};
}

TextOrigin::Step TextOrigin::NextUnit() const {
  const auto unit = [this](std::size_t at) -> unsigned {
    if (at + 2 > raw_.size()) return 0;
    const auto first = static_cast<unsigned char>(raw_[at]);
    const auto second = static_cast<unsigned char>(raw_[at + 1]);
    return littleEndian_ ? second * 256U + first : first * 256U + second;
  };
  const unsigned first = unit(rawAt_);
  const bool pair = IsHighSurrogate(first) && IsLowSurrogate(unit(rawAt_ + 2));
  Step step{pair ? 4U : 2U, std::max<std::size_t>(HostLength(), 1), false};
  const bool half = halfUnit_ && rawAt_ + step.raw >= raw_.size();
  const bool stands = host_.substr(hostAt_, step.host) == substitute_;
  // The substitute may also be what the file has.
  const unsigned itself = substitute_ == kReplacementUtf8 ? kReplacementUnit : unsigned{'?'};
  step.substitute = half || (stands && first != itself);
  if (half) --step.raw;
  return step;
}

// What the first `length` bytes that are left became, when they are one character or stand for one
// together; empty when they do not explain the text.
std::string_view TextOrigin::ReadingOf(std::string_view raw, std::string_view host,
                                       std::size_t length) {
  piece_ = decoder_.Decode8(raw.substr(0, length));
  if (piece_.empty() || !host.starts_with(piece_)) return {};
  // What follows must become what follows. Where it is cut off, its last character may not be read.
  constexpr std::size_t kAhead = 48;
  constexpr std::size_t kUnsure = 3 * kLongestCharacter;
  const std::string_view behind = raw.substr(length);
  std::string_view text = decoder_.Decode8(behind.substr(0, kAhead));
  host.remove_prefix(piece_.size());
  if (behind.size() > kAhead) {
    text = text.substr(0, text.size() - std::min(text.size(), kUnsure));
    host = host.substr(0, text.size());
  }
  return host == text ? std::string_view(piece_) : std::string_view();
}

TextOrigin::Step TextOrigin::NextConverted() {
  const std::string_view raw = raw_.substr(rawAt_);
  const std::string_view host = host_.substr(hostAt_);
  if (!raw.empty() && static_cast<unsigned char>(raw.front()) < 0x80 &&
      raw.front() == host.front()) {
    return {1, 1, false};
  }
  for (std::size_t length = 1; length <= std::min(raw.size(), kLongestCharacter); ++length) {
    const std::string_view text = ReadingOf(raw, host, length);
    if (text.empty()) continue;
    const bool itself = raw.substr(0, length) == replacement_;
    return {length, text.size(), text == substitute_ && !itself};
  }
  // No reading of the bytes explains the text: a byte for a character keeps the walk going.
  return {std::min<std::size_t>(raw.size(), 1), std::max<std::size_t>(HostLength(), 1), false};
}

}  // namespace textwizard
