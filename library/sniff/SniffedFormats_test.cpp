// Formats that read what was sampled.

#include <string>
#include <string_view>

#include <gmock/gmock.h>

#include "library/sniff/testing/SniffTest.h"

namespace library {
namespace {

using testing::ElementsAre;

class SniffedFormatsTest : public SniffTest {
 protected:
  // The format of one column of values below the name x, beside a column of numbers.
  static std::string Format(const std::vector<std::string>& values) {
    std::string text = "x;n\n";
    for (std::size_t i = 0; i < values.size(); ++i) {
      text += values[i] + ";" + std::to_string(i + 1) + "\n";
    }
    SniffSettings settings;
    settings.delimiter = ";";
    settings.firstLine = 2;
    const SniffResult result = Sniffed(text, settings);
    return result.columns.empty() ? "" : result.columns[0].format;
  }
};

TEST_F(SniffedFormatsTest, NumbersFitInWidthAndDecimals) {
  EXPECT_EQ(Format({"1", "22", "333"}), "F3");
  EXPECT_EQ(Format({"1.5", "-22.25", "3"}), "F6.2");
  EXPECT_EQ(Format({"1.5", "NA", "", "2.5"}), "F3.1");
}

TEST_F(SniffedFormatsTest, AmountsHaveFormatsOfTheirOwn) {
  EXPECT_EQ(Format({"1,234,567", "89", "1,000"}), "COMMA9");
  EXPECT_EQ(Format({"$1,234.50", "$9.00"}), "DOLLAR9.2");
  EXPECT_EQ(Format({"12%", "5.5%"}), "PCT5.1");
}

TEST_F(SniffedFormatsTest, WhatANumberWouldLoseStaysText) {
  EXPECT_EQ(Format({"00123", "04567"}), "A5");
  EXPECT_EQ(Format({"12345678901234567", "98765432109876543"}), "A17");
  EXPECT_EQ(Format({"49.354838709677416", "0.1"}), "F18.15");
}

TEST_F(SniffedFormatsTest, DatesAreReadByTheHostsFormats) {
  EXPECT_EQ(Format({"2020-01-02", "2021-12-31"}), "SDATE10");
  EXPECT_EQ(Format({"2020-01-02 03:04:05", "2021-12-31 23:59:59"}), "YMDHMS19");
  EXPECT_EQ(Format({"2020-01-02T03:04:05", "2021-12-31T23:59:59"}), "YMDHMS19");
  EXPECT_EQ(Format({"31.12.2019", "01.02.2020"}), "EDATE10");
  EXPECT_EQ(Format({"12/31/2019", "02/01/2020"}), "ADATE10");
  EXPECT_EQ(Format({"12:30", "23:59"}), "TIME5");
}

TEST_F(SniffedFormatsTest, WhatNothingReadsIsText) {
  EXPECT_EQ(Format({"12", "x", "13"}), "A2");
  EXPECT_EQ(Format({"Sat", "Sun", "Mar"}), "A3");
  EXPECT_EQ(Format({"0x12", "0x13"}), "A4");
  EXPECT_EQ(Format({"1.1.1", "1.2.1"}), "A5");
  EXPECT_EQ(Format({"äöü"}), "A6");
}

TEST_F(SniffedFormatsTest, ACommaIsTheDecimalCharacterWhereFractionsShowIt) {
  const SniffResult comma = Sniffed("a;b\n1,5;x\n2,75;y\n13,25;z\n");
  EXPECT_EQ(comma.decimal.value, DecimalCharacter::kComma);
  EXPECT_EQ(comma.decimal.evidence, "1,5 in line 2");
  EXPECT_EQ(comma.columns[0].format, "F5.2");
  EXPECT_EQ(Sniffed("a;b\n1.5;x\n2.75;y\n").decimal.value, DecimalCharacter::kPoint);
  EXPECT_EQ(Sniffed("a;b\n1;x\n2;y\n").decimal.value, DecimalCharacter::kPoint);
  SniffSettings settings;
  settings.decimal = DecimalCharacter::kComma;
  EXPECT_TRUE(Sniffed("a;b\n1;x\n2;y\n", settings).decimal.given);
}

}  // namespace
}  // namespace library
