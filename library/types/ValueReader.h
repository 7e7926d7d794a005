// Which readings a value has: found by the conversion that reads the cases, tried where the text's
// shape leaves a chance.
#pragma once

#include <cstdint>
#include <string_view>

#include "library/types/Reading.h"

namespace library {

// What the digits of a number need, under one decimal character.
struct NumberShape {
  // Characters in front of the decimal character, sign and grouping included.
  int whole = 0;
  // Digits behind it.
  int fraction = 0;
  bool grouped = false;
  bool exponent = false;
};

struct ValueReadings {
  ReadingSet set;
  // By kPoint and kComma, where the set has them; of percentages and dollar amounts by the first.
  NumberShape point;
  NumberShape comma;
  // What a number would lose: a zero in front of other digits; digits that a double does not keep.
  bool leadingZero = false;
  bool losesDigits = false;
  // Digits of the fraction of a second; whether there are seconds at all.
  int secondFraction = 0;
  bool hasSeconds = false;
  // A date's month is a name; its year has two digits.
  bool monthInLetters = false;
  bool shortYear = false;
  // What stands between the parts of a date of digits; 0 elsewhere.
  char separator = 0;
  // A date and time of digits whose day and month would be a date the other way round, too.
  bool eitherOrder = false;
};

// What a text's shape says of its readings, so that texts of one shape need to be looked at once.
struct ValuePlan {
  enum Kind : std::uint8_t {
    kNothing,  // none
    kSame,     // those of `found`, whatever the digits are
    kNumber,   // found by reading the number
    kTries,    // those of `tries` that convert
    kNames,    // found by reading the names
  };
  Kind kind = kNothing;
  // Every text of the shape has this plan.
  bool ofShape = false;
  ReadingSet tries;
  // What is told of texts that have a reading.
  ValueReadings found;
};

// Nothing but a chance to read more values than are told is given up by rules: texts that a format
// reads and hardly anyone means so (version numbers, codes and lists that could be dates; Roman
// numerals that could be months; numbers of minutes, days and months) have no such reading. `text`
// is host text, not empty, without blanks and tabs around it. Any thread; allocates nothing.
ValuePlan PlanOf(std::string_view text);
// Reads `text` by the plan of a text of the same shape (ValueShape), or of its own. What is in the
// set converts.
ValueReadings ReadBy(const ValuePlan& plan, std::string_view text);
inline ValueReadings ReadValue(std::string_view text) { return ReadBy(PlanOf(text), text); }

}  // namespace library
