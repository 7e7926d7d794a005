// What one value is, as far as understanding a file needs it: the component's classifier and the
// host's own value input say so.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "detection/RegExMappings.h"
#include "detection/ValueClassifier.h"

namespace library {

enum class ValueKind : std::uint8_t {
  kEmpty,        // nothing, or blanks
  kMissing,      // a text that means a missing value
  kNumber,       // digits, perhaps with a point or an exponent
  kCommaNumber,  // the same with a comma as the decimal character
  kAmount,       // grouped digits, a dollar amount, a percentage
  kDate,
  kTime,
  kText,
};
inline constexpr std::size_t kValueKinds = 8;

constexpr bool IsTyped(ValueKind kind) {
  return kind >= ValueKind::kNumber && kind <= ValueKind::kTime;
}

// The texts that mean a missing value.
bool IsMissingText(std::string_view text);

// One thread; construction takes some milliseconds.
class ValueKinds {
 public:
  ValueKinds();

  // Blanks around the value do not count.
  ValueKind Of(std::string_view value);

  textwizard::ValueClassifier& classifier() { return classifier_; }

 private:
  ValueKind OfNumeric(std::string_view value);
  bool IsHostDate(std::string_view value) const;

  textwizard::RegExMappings table_;
  textwizard::ValueClassifier classifier_;
};

}  // namespace library
