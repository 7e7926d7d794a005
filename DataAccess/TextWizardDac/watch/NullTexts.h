// Texts by which a file says that a value is missing.
#pragma once

#include <array>
#include <cstddef>
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
    return !field.empty() && begins_[static_cast<unsigned char>(field.front())] && IsOne(field);
  }

 private:
  bool IsOne(std::string_view field) const;

  // Rising.
  std::vector<std::string> texts_;
  // Bytes that a field begins with which may be one of them.
  std::array<bool, 256> begins_{};
};

}  // namespace textwizard
