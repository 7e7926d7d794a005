#include "watch/Rounding.h"

#include <array>
#include <charconv>

namespace textwizard {
namespace {

// No double has more significant digits.
constexpr std::size_t kMostDigits = 767;

constexpr bool IsDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

// The significant digits of a number's text, one after another.
class Digits {
 public:
  // Before the exponent, when there is one.
  explicit Digits(std::string_view text) : text_(text.substr(0, text.find_first_of("eEdD"))) {
    constexpr std::string_view kSignificant = "123456789";
    const std::size_t first = text_.find_first_of(kSignificant);
    if (first == std::string_view::npos) {
      text_ = {};
      return;
    }
    text_ = text_.substr(first, text_.find_last_of(kSignificant) + 1 - first);
    for (const char c : text_) count_ += IsDigit(c) ? 1U : 0U;
  }
  std::size_t count() const { return count_; }
  // The next digit; there is one.
  char Next() {
    while (!IsDigit(text_[at_])) ++at_;
    return text_[at_++];
  }

 private:
  std::string_view text_;
  std::size_t count_ = 0;
  std::size_t at_ = 0;
};

}  // namespace

bool IsRounded(std::string_view text, double value) {
  Digits written(text);
  if (written.count() < kRoundedDigits) return false;
  if (written.count() > kMostDigits) return true;
  // Digits, point, sign and exponent.
  std::array<char, kMostDigits + 16> buffer;
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                    std::chars_format::scientific, static_cast<int>(written.count()) - 1);
  if (error != std::errc()) return true;
  Digits kept(std::string_view(buffer.data(), static_cast<std::size_t>(end - buffer.data())));
  if (kept.count() != written.count()) return true;
  for (std::size_t i = 0; i < written.count(); ++i) {
    if (kept.Next() != written.Next()) return true;
  }
  return false;
}

}  // namespace textwizard
