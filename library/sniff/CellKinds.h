// What one value is, as far as understanding a file needs it: the component's classifier says so,
// and where it knows no layout, the conversion that reads the cases.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "detection/RegExMappings.h"
#include "detection/ValueClassifier.h"
#include "watch/NullTexts.h"

namespace library {

enum class CellKind : std::uint8_t {
  kEmpty,        // nothing, or blanks
  kMissing,      // a text that means a missing value
  kNumber,       // digits, perhaps with a point or an exponent
  kCommaNumber,  // the same with a comma as the decimal character
  kAmount,       // grouped digits, a dollar amount, a percentage
  kDate,
  kTime,
  kText,
};
inline constexpr std::size_t kCellKinds = 8;

constexpr bool IsTyped(CellKind kind) {
  return kind >= CellKind::kNumber && kind <= CellKind::kTime;
}

// One thread; construction takes some milliseconds.
class CellKinds {
 public:
  CellKinds();

  // Blanks around the value do not count.
  CellKind Of(std::string_view value);

  textwizard::ValueClassifier& classifier() { return classifier_; }

 private:
  CellKind OfNumeric(std::string_view value);
  static CellKind OfOthers(std::string_view value);

  textwizard::RegExMappings table_;
  textwizard::ValueClassifier classifier_;
  const textwizard::NullTexts nulls_;
};

}  // namespace library
