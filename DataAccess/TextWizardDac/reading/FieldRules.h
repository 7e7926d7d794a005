// What cuts records into fields: the delimiters, the qualifier and the space options of a command.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "model/ImportSettings.h"

namespace textwizard {

// The characters that cut a record, decoded once. Constant after construction, unless its owner
// sets other delimiters between records.
class FieldRules {
 public:
  static constexpr std::size_t kMaxDelimiters = 10;

  FieldRules() = default;
  explicit FieldRules(const ImportSettings& settings);

  // Decodes the delimiter characters (host text; null is none): at most ten, stopping at bytes that
  // are not a character. Returns the number of slots filled.
  int SetWideDelimiters(const char* delimiters);
  bool IsDelimiter(std::uint32_t ch) const;
  bool IsQualifier(std::uint32_t ch) const { return ch != 0 && ch == qualifier_; }

  const std::array<std::uint32_t, kMaxDelimiters + 1>& delimiters() const { return delimiters_; }
  std::uint32_t qualifier() const { return qualifier_; }
  bool leadingSpaces() const { return leadingSpaces_; }
  bool multipleSpaces() const { return multipleSpaces_; }
  bool keepsStrayQualifiers() const { return keepsStrayQualifiers_; }

 private:
  std::uint32_t qualifier_ = 0;
  std::array<std::uint32_t, kMaxDelimiters + 1> delimiters_{};
  bool leadingSpaces_ = false;
  bool multipleSpaces_ = false;
  bool keepsStrayQualifiers_ = false;
};

// Whether the one character that `character` is (host text) is among those of `set`. False for
// bytes that are no character, which `set` may hold, too.
bool HoldsCharacter(const std::string& set, std::string_view character);

}  // namespace textwizard
