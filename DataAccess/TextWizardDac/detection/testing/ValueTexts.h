// Series of values to measure type detection with.
#pragma once

#include <cstdio>
#include <iterator>
#include <string>

namespace textwizard {

// The n-th of a fixed series of values that look random.
inline unsigned Draw(unsigned n) {
  n = (n ^ 61U) ^ (n >> 16);
  n *= 9U;
  n ^= n >> 4;
  n *= 0x27d4eb2dU;
  return n ^ (n >> 15);
}

inline std::string ShortString(unsigned n) {
  static constexpr const char* kWords[] = {"north", "Elm Street", "pending", "Dr. Novak", "blue",
                                           "n/a",   "unit-7b",    "Zoe",     "in stock",  "Oslo"};
  return kWords[Draw(n) % std::size(kWords)];
}

inline std::string NumberText(unsigned n) {
  char text[32];
  const unsigned draw = Draw(n);
  switch (draw % 3) {
    case 0:
      std::snprintf(text, sizeof text, "%u", draw % 1'000'000);
      break;
    case 1:
      std::snprintf(text, sizeof text, "%u.%02u", draw % 100'000, draw % 100);
      break;
    default:
      std::snprintf(text, sizeof text, "-%u.%04u", draw % 1'000, draw % 10'000);
  }
  return text;
}

// Dates in even columns, date-times in odd ones.
inline std::string DateText(unsigned n) {
  char text[64];
  const unsigned draw = Draw(n);
  if (n % 2 == 0) {
    std::snprintf(text, sizeof text, "%02u/%02u/%04u", draw % 12 + 1, draw % 28 + 1,
                  1950 + draw % 100);
  } else {
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u", 1950 + draw % 100,
                  draw % 12 + 1, draw % 28 + 1, draw % 24, draw % 60, draw % 59);
  }
  return text;
}

// Layouts that change from value to value, so that the adopted one seldom fits.
inline std::string MixedDateText(unsigned n) {
  char text[64];
  const unsigned draw = Draw(n);
  switch (draw % 4) {
    case 0:
      return DateText(2 * n);
    case 1:
      return DateText(2 * n + 1);
    case 2:
      std::snprintf(text, sizeof text, "%02u-mar-%04u %02u:%02u", draw % 28 + 1, 1950 + draw % 100,
                    draw % 24, draw % 60);
      return text;
    default:
      std::snprintf(text, sizeof text, "%02u:%02u:%02u", draw % 24, draw % 60, draw % 60);
      return text;
  }
}

using Maker = std::string (*)(unsigned);

}  // namespace textwizard
