#include "model/UndecodableWarnings.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

#include "model/MessageText.h"

namespace textwizard {
namespace {

// Digits and sign of any number that is told.
constexpr std::size_t kLongestNumber = std::numeric_limits<int>::digits10 + 2;

// The texts around the placeholders of a printf format; none when it has others than for whole
// numbers.
std::vector<std::string> PartsOf(std::string_view format) {
  std::vector<std::string> parts(1);
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') {
      parts.back() += format[i];
      continue;
    }
    const char kind = ++i < format.size() ? format[i] : '\0';
    if (kind == '%') {
      parts.back() += '%';
    } else if (kind == 'd' || kind == 'i') {
      parts.emplace_back();
    } else {
      return {};
    }
  }
  return parts;
}

}  // namespace

void UndecodableWarnings::LoadText() {
  loaded_ = true;
  std::vector<std::string> parts =
      PartsOf(QantServerErrorText(kMessageCatalogue, kUndecodable).GetText());
  simple_ = parts.size() == 3;
  if (!simple_) return;
  head_ = std::move(parts[0]);
  middle_ = std::move(parts[1]);
  tail_ = std::move(parts[2]);
}

void UndecodableWarnings::SetCase(std::int64_t caseNumber) {
  message_.text = head_ + std::to_string(static_cast<int>(caseNumber)) + middle_;
  place_ = message_.text.size();
  digits_ = 0;
  position_ = -1;
  message_.text += tail_;
  caseNumber_ = caseNumber;
}

// Adds one to the position in the text; false, with the text undefined, when it gets longer.
bool UndecodableWarnings::CountUp() {
  char* const digits = message_.text.data() + place_;
  for (std::size_t i = digits_; i-- > 0;) {
    if (digits[i] != '9') {
      ++digits[i];
      ++position_;
      return true;
    }
    digits[i] = '0';
  }
  return false;
}

void UndecodableWarnings::SetPosition(int position) {
  // Mostly the next byte.
  if (position > 0 && position - 1 == position_ && CountUp()) return;
  position_ = position;
  std::array<char, kLongestNumber> digits;
  char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), position).ptr;
  const auto count = static_cast<std::size_t>(end - digits.data());
  message_.text.replace(place_, digits_, digits.data(), count);
  digits_ = count;
}

void UndecodableWarnings::Report(ErrorMonitor& monitor, std::int64_t caseNumber,
                                 std::size_t position, std::size_t count) {
  if (!loaded_) LoadText();
  if (simple_ && caseNumber != caseNumber_) SetCase(caseNumber);
  for (std::size_t i = 0; i < count; ++i) {
    if (simple_) {
      SetPosition(static_cast<int>(position + i));
    } else {
      message_ = UndecodableWarning(caseNumber, position + i);
    }
    monitor.Report(message_);
  }
}

}  // namespace textwizard
