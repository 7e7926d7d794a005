// Texts by which a file says that a value is missing.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace textwizard {

// Blanks as value input knows them: spaces and tabs.
constexpr bool IsBlankCharacter(char c) { return c == ' ' || c == '\t'; }

// `text` without blanks at both ends.
constexpr std::string_view WithoutBlanks(std::string_view text) {
  while (!text.empty() && IsBlankCharacter(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlankCharacter(text.back())) text.remove_suffix(1);
  return text;
}

// Constant; any thread.
class NullTexts {
 public:
  NullTexts() = default;
  // Blanks at the ends of a text do not count; a text that is nothing else is left out.
  explicit NullTexts(const std::vector<std::string>& texts);

  // The field is one of the texts, blanks around it aside. Allocates nothing.
  bool Holds(std::string_view field) const {
    if (field.empty() || lengths_[static_cast<unsigned char>(field.front())] == 0) return false;
    const std::string_view bare = WithoutBlanks(field);
    return !bare.empty() && HoldsBare(bare);
  }
  // The same of a field that has text and no blanks around it.
  bool HoldsBare(std::string_view text) const {
    const std::uint64_t lengths = lengths_[static_cast<unsigned char>(text.front())];
    return ((lengths >> std::min(text.size(), kLongest)) & 1U) != 0 && IsOne(text);
  }

 private:
  // This long or longer.
  static constexpr std::size_t kLongest = 63;

  bool IsOne(std::string_view bare) const;

  // Rising.
  std::vector<std::string> texts_;
  // By the byte that a field begins with: bits of the lengths of those that begin so. A blank may
  // stand before any of them.
  std::array<std::uint64_t, 256> lengths_{};
};

}  // namespace textwizard
