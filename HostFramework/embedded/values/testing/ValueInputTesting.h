// What the tests of value input share.
#pragma once

#include <clocale>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string_view>

#include <gtest/gtest.h>

#include "HostFramework/Formats.h"
#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/HostText.h"

namespace embedded {

// Converts and returns the value, or nothing when the text is not a value (result 2). Anything
// else, and a failure that touches the value, fails the test.
inline std::optional<double> Read(std::string_view text, int format) {
  constexpr double kUntouched = -12345.678;
  double value = kUntouched;
  const int result = IocvConvertInput(text.data(), text.size(), format, 0, &value);
  if (result == 0) return value;
  EXPECT_EQ(result, 2) << "'" << text << "' under format " << format;
  EXPECT_EQ(value, kUntouched) << "'" << text << "' under format " << format;
  return std::nullopt;
}

inline constexpr std::optional<double> kNoValue = std::nullopt;

inline constexpr double kDaySeconds = 86400;

// Midnight of a day that is given by its number since 1970-01-01, a number anyone can look up.
inline constexpr double Day1970(std::int64_t days) {
  return 12219379200.0 + static_cast<double>(days) * kDaySeconds;
}

// Reads numbers with a decimal comma while it lives.
class DecimalComma {
 public:
  DecimalComma() { iocvsetdeccharcomma_(); }
  ~DecimalComma() { iocvsetdecchardot_(); }
  DecimalComma(const DecimalComma&) = delete;
  DecimalComma& operator=(const DecimalComma&) = delete;
};

// Host text is in this encoding while it lives, and in the plain one of the tests afterwards.
class HostEncoding {
 public:
  explicit HostEncoding(const char* name) { EXPECT_TRUE(SetCodePage(name)) << name; }
  ~HostEncoding() { SetCodePage("US-ASCII"); }
  HostEncoding(const HostEncoding&) = delete;
  HostEncoding& operator=(const HostEncoding&) = delete;
};

// The process is in this locale while it lives, and in "C" afterwards.
class ProcessLocale {
 public:
  explicit ProcessLocale(const char* name) {
    EXPECT_NE(std::setlocale(LC_ALL, name), nullptr)
        << name << " is not there; tools/install-packages generates it";
  }
  ~ProcessLocale() { std::setlocale(LC_ALL, "C"); }
  ProcessLocale(const ProcessLocale&) = delete;
  ProcessLocale& operator=(const ProcessLocale&) = delete;
};

}  // namespace embedded
