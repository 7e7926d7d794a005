#include "command/SyntaxScanner.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <system_error>

#include "HostFramework/Text.h"

namespace textwizard {
namespace {

constexpr const char* kWhiteSpace = " \r\n\t";
constexpr const char* kLineEnds = "\r\n";

bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

bool IsWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// The text without a leading plus sign, which the standard's readers do not take.
std::string_view WithoutPlus(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
}

// The next `length` bytes at `p` as far as the limit allows; steps over them all and over the one
// character that ended them.
std::string_view TakeAndStep(const char*& p, std::size_t length, std::size_t limit) {
  const std::string_view taken =
      length <= limit ? std::string_view(p, length) : WholeCharacters(p, limit);
  p += length;
  if (*p != '\0') ++p;
  return taken;
}

}  // namespace

bool IsKeyword(const std::string& word, const char* keyword) {
  return QANTMBstricmp_A(word.c_str(), keyword) == 0;
}

std::int64_t LeadingInteger(std::string_view text) {
  text = WithoutPlus(text);
  std::int64_t value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    using Limits = std::numeric_limits<std::int64_t>;
    return text[0] == '-' ? Limits::min() : Limits::max();
  }
  return value;
}

double LeadingNumber(std::string_view text, bool* whole) {
  text = WithoutPlus(text);
  double value = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (whole) *whole = result.ec == std::errc() && result.ptr == end && std::isfinite(value);
  return value;
}

std::string_view WholeCharacters(const char* text, std::size_t bytes) {
  std::size_t length = 0;
  while (length < bytes && text[length] != '\0') {
    const int step = IsAscii(text[length]) ? 1 : QANTMBmbclen_A(text + length);
    if (length + static_cast<std::size_t>(step) > bytes) break;
    length += static_cast<std::size_t>(step);
  }
  return {text, length};
}

std::size_t SpanUpTo(const char* text, const char* set) {
  const char* p = text;
  while (*p != '\0') {
    if (!IsAscii(*p)) {
      p += QANTMBmbclen_A(p);
    } else if (std::strchr(set, *p)) {
      break;
    } else {
      ++p;
    }
  }
  return static_cast<std::size_t>(p - text);
}

void SyntaxScanner::SkipWhiteSpace(const char*& p) {
  while (IsWhiteSpace(*p)) ++p;
}

std::string_view SyntaxScanner::GetNextWord(const char*& p) {
  SkipWhiteSpace(p);
  return TakeAndStep(p, SpanUpTo(p, kWhiteSpace), kNoLimit);
}

std::string_view SyntaxScanner::ParseWord(std::size_t limit) {
  SkipWhiteSpace();
  return TakeAndStep(cursor_, SpanUpTo(cursor_, kWhiteSpace), limit);
}

std::string_view SyntaxScanner::ParseDelims(std::size_t limit) {
  return TakeAndStep(cursor_, SpanUpTo(cursor_, kLineEnds), limit);
}

int SyntaxScanner::ParseInt() {
  SkipWhiteSpace();
  const char* start = cursor_;
  while (*cursor_ >= '0' && *cursor_ <= '9') ++cursor_;
  const std::int64_t value = LeadingInteger({start, static_cast<std::size_t>(cursor_ - start)});
  if (*cursor_ != '\0') cursor_ += QANTMBmbclen_A(cursor_);
  constexpr std::int64_t kLargest = std::numeric_limits<int>::max();
  return static_cast<int>(value < kLargest ? value : kLargest);
}

double SyntaxScanner::ParseNumber() { return LeadingNumber(ParseWord()); }

std::string_view SyntaxScanner::GetDelimiters(const char*& p) {
  if (*p != '\'' && *p != '"') return {};
  const char* last = std::strrchr(p, *p);
  if (last == p) return {};
  const std::string_view value(p, static_cast<std::size_t>(last - p) + 1);
  p = last + 1;
  return value;
}

void SyntaxScanner::StripQuotes(std::string& value) {
  if (value.empty() || (value[0] != '\'' && value[0] != '"')) return;
  const char quote[] = {value[0], '\0'};
  value.erase(0, 1);
  value.resize(SpanUpTo(value.c_str(), quote));
}

void SyntaxScanner::StripSpaces(std::string& value) {
  const char* p = value.c_str();
  value = std::string(GetNextWord(p));
}

}  // namespace textwizard
