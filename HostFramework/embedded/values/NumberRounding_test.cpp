// The reader's own arithmetic gives what the standard library's parser gives, bit by bit.
#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>

#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

// The standard's answer; nothing when it reports a number out of range, in either direction.
std::optional<double> Standard(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  EXPECT_EQ(end, text.data() + text.size()) << text;
  if (error != std::errc()) return std::nullopt;
  return value;
}

std::uint64_t Bits(double value) { return std::bit_cast<std::uint64_t>(value); }

class NumberRounding : public testing::Test {
 protected:
  // `text` must be a number in the standard's form. It is read under formats that read it in
  // different ways. Returns false after a failure, so that a loop can end.
  bool Check(const std::string& text) {
    const std::optional<double> expected = Standard(text);
    CheckUnder(text, kFormatF, expected);
    CheckUnder(text, kFormatComma, expected);
    std::string withComma = text;
    std::replace(withComma.begin(), withComma.end(), '.', ',');
    CheckUnder(withComma, kFormatDot, expected);
    return !HasFailure();
  }

  void CheckUnder(const std::string& text, int format, const std::optional<double>& expected) {
    double value = 0;
    const int result = IocvConvertInput(text.data(), text.size(), format, 0, &value);
    if (expected) {
      EXPECT_EQ(result, 0) << text << " under " << format;
      EXPECT_EQ(Bits(value), Bits(*expected)) << text << " under " << format << " gave " << value;
    } else if (result == 0) {
      EXPECT_EQ(value, 0.0) << text;
      ++tiny_;
    } else {
      EXPECT_EQ(result, 2) << text;
      ++large_;
    }
  }

  std::string Digits(int count) {
    std::string digits(static_cast<std::size_t>(count), '0');
    for (char& digit : digits) digit = static_cast<char>('0' + Below(10));
    return digits;
  }

  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

  std::mt19937_64 random_{20200131};
  int tiny_ = 0;
  int large_ = 0;
};

TEST_F(NumberRounding, RandomDecimals) {
  for (int i = 0; i < 2'000'000; ++i) {
    std::string text = Below(2) ? "-" : "";
    const int whole = Below(12);
    text += Digits(whole);
    if (Below(3) || whole == 0) text += "." + Digits(Below(10) + (whole == 0));
    ASSERT_TRUE(Check(text));
  }
}

TEST_F(NumberRounding, RandomDigitsWithExponents) {
  for (int i = 0; i < 1'000'000; ++i) {
    std::string text = Digits(1 + Below(25));
    if (Below(2)) text += "." + Digits(Below(25));
    text += (Below(2) ? "e" : "E") + std::to_string(Below(700) - 350);
    ASSERT_TRUE(Check(text));
  }
  EXPECT_GT(tiny_, 1000);
  EXPECT_GT(large_, 1000);
}

TEST_F(NumberRounding, ShortestAndLongTextsOfRandomDoubles) {
  char text[1200];
  for (int i = 0; i < 300'000; ++i) {
    const double value = std::bit_cast<double>(random_() & 0x7FEF'FFFF'FFFF'FFFF);
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    ASSERT_TRUE(Check(std::string(text, end)));
    std::snprintf(text, sizeof text, "%.*e", Below(25), value);
    ASSERT_TRUE(Check(text));
  }
}

// The midpoint of two neighbouring doubles is written with all its digits, alone, with a tail that
// moves it up, and with its last digit made smaller.
TEST_F(NumberRounding, MidpointsOfNeighbours) {
  static_assert(sizeof(long double) > sizeof(double), "a midpoint needs one bit more");
  char text[1500];
  for (int i = 0; i < 20'000; ++i) {
    // Every tenth is a denormal, whose midpoints have the most digits.
    const std::uint64_t mask = i % 10 == 0 ? 0x000F'FFFF'FFFF'FFFF : 0x7FDF'FFFF'FFFF'FFFF;
    const double value = std::bit_cast<double>(random_() & mask);
    const double next = std::bit_cast<double>(Bits(value) + 1);
    const long double middle = (static_cast<long double>(value) + next) / 2;
    std::snprintf(text, sizeof text, "%.1100Lf", middle);
    const std::string exact = text;
    const std::size_t last = exact.find_last_not_of('0');
    ASSERT_NE(last, std::string::npos);
    ASSERT_LT(last, exact.size() - 1) << "the midpoint was cut";
    const std::string midpoint = exact.substr(0, last + 1);
    ASSERT_TRUE(Check(midpoint));
    ASSERT_TRUE(Check(exact + "1"));
    if (midpoint.back() != '.') {
      std::string below = midpoint;
      --below.back();
      ASSERT_TRUE(Check(below));
      ASSERT_TRUE(Check(below + std::string(1000, '9')));
    }
  }
}

TEST_F(NumberRounding, EdgesOfTheExactArithmetic) {
  for (const char* digits :
       {"1", "9007199254740991", "9007199254740992", "9007199254740993", "9007199254740994",
        "18014398509481983", "999999999999999999", "9999999999999999999", "18446744073709551615",
        "18446744073709551616", "99999999999999999999", "10000000000000000000000"}) {
    for (int exponent = -345; exponent <= 310; ++exponent) {
      ASSERT_TRUE(Check(std::string(digits) + "e" + std::to_string(exponent)));
      ASSERT_TRUE(Check("0." + std::string(digits) + "e" + std::to_string(exponent)));
      ASSERT_TRUE(Check(std::string(30, '0') + digits + "e" + std::to_string(exponent)));
    }
  }
}

// Grouping, the other decimal character and the letter D change the text and not the number.
TEST_F(NumberRounding, SeparatorsDoNotChangeTheNumber) {
  for (int i = 0; i < 500'000; ++i) {
    const std::string whole = std::to_string(random_() >> Below(64));
    const std::string fraction = Digits(Below(12));
    const std::string exponent = std::to_string(Below(40) - 20);
    std::string grouped = whole;
    for (std::size_t at = whole.size(); at > 3;) grouped.insert(at -= 3, 1, '.');
    const std::string written = grouped + "," + fraction + "D" + exponent;
    double value = 0;
    ASSERT_EQ(IocvConvertInput(written.data(), written.size(), kFormatDot, 0, &value), 0)
        << written;
    const auto expected = Standard(whole + "." + fraction + "e" + exponent);
    ASSERT_TRUE(expected);
    ASSERT_EQ(Bits(value), Bits(*expected)) << written;
  }
}

}  // namespace
}  // namespace embedded
