#include "detection/TypeSettling.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "model/FormatCode.h"

namespace textwizard {
namespace {

struct Counts {
  std::uint64_t string = 0, numeric = 0, date = 0, dollar = 0, percent = 0, comma = 0, dot = 0;
};

TxtWzVar With(const Counts& counts) {
  TxtWzVar variable;
  variable.formatType = kFormatAuto;
  variable.width = 6;
  variable.stringCount = counts.string;
  variable.numericCount = counts.numeric;
  variable.dateCount = counts.date;
  variable.dollarCount = counts.dollar;
  variable.percentCount = counts.percent;
  variable.commaCount = counts.comma;
  variable.dotCount = counts.dot;
  return variable;
}

std::uint32_t TypeOf(const Counts& counts, double minPercentage, std::int32_t dateKey = 0,
                     bool hasExponent = false) {
  static const RegExMappings table;
  TxtWzVar variable = With(counts);
  variable.dateKey = dateKey;
  variable.hasExponent = hasExponent;
  SettleType(variable, minPercentage, table);
  return variable.formatType;
}

TEST(SettleType, TheClassThatReachesTheThresholdWins) {
  EXPECT_EQ(TypeOf({.string = 4, .numeric = 96}, 95), kFormatF);
  EXPECT_EQ(TypeOf({.string = 5, .numeric = 95}, 95), kFormatF);
  EXPECT_EQ(TypeOf({.string = 6, .numeric = 94}, 95), kFormatA);
  EXPECT_EQ(TypeOf({.string = 1, .dollar = 99}, 95), kFormatDollar);
  EXPECT_EQ(TypeOf({.string = 1, .comma = 99}, 95), kFormatComma);
  EXPECT_EQ(TypeOf({.string = 1, .dot = 99}, 95), kFormatDot);
  EXPECT_EQ(TypeOf({.string = 1, .percent = 99}, 95), kFormatPct);
  EXPECT_EQ(TypeOf({.string = 1, .date = 99}, 95, 1002), kFormatADate);
  EXPECT_EQ(TypeOf({.string = 99, .numeric = 1}, 95), kFormatA);
}

TEST(SettleType, NumericAmountsDoNotAddUp) {
  EXPECT_EQ(TypeOf({.numeric = 50, .comma = 50}, 95), kFormatA);
  EXPECT_EQ(TypeOf({.numeric = 40, .comma = 60}, 60), kFormatComma);
}

TEST(SettleType, AnExponentMakesEAboveFiftyPercentOnly) {
  EXPECT_EQ(TypeOf({.numeric = 10}, 95, 0, true), kFormatE);
  EXPECT_EQ(TypeOf({.numeric = 10}, 50.1, 0, true), kFormatE);
  EXPECT_EQ(TypeOf({.numeric = 10}, 50, 0, true), kFormatF);
}

TEST(SettleType, UpToFiftyPercentOnlyUnanimityDecides) {
  EXPECT_EQ(TypeOf({.numeric = 10}, 50), kFormatF);
  EXPECT_EQ(TypeOf({.string = 1, .numeric = 99}, 50), kFormatA);
  EXPECT_EQ(TypeOf({.date = 10}, 10, 1004), kFormatEDate);
  EXPECT_EQ(TypeOf({.string = 10}, 50), kFormatA);
  EXPECT_EQ(TypeOf({.dollar = 10}, 50), kFormatA);
  EXPECT_EQ(TypeOf({.comma = 10}, 50), kFormatA);
  EXPECT_EQ(TypeOf({.dot = 10}, 50), kFormatA);
  EXPECT_EQ(TypeOf({.percent = 10}, 50), kFormatA);
  EXPECT_EQ(TypeOf({.string = 1, .date = 1000}, 0, 1004), kFormatA);
}

TEST(SettleType, AtJustAboveFiftyPercentTheFirstInOrderWins) {
  EXPECT_EQ(TypeOf({.numeric = 45, .dollar = 55}, 51), kFormatDollar);
  EXPECT_EQ(TypeOf({.string = 55, .numeric = 45}, 51), kFormatA);
}

TEST(SettleType, WithoutValuesAString) {
  EXPECT_EQ(TypeOf({}, 95), kFormatA);
  EXPECT_EQ(TypeOf({}, 50), kFormatA);
  EXPECT_EQ(TypeOf({}, 0), kFormatA);
}

TEST(SettleType, AnUnknownDateRowGivesF8Point2) {
  static const RegExMappings table;
  for (const double minPercentage : {95.0, 50.0}) {
    TxtWzVar variable = With({.date = 5});
    variable.dateKey = 1006;
    SettleType(variable, minPercentage, table);
    EXPECT_EQ(variable.formatType, kFormatF);
    EXPECT_EQ(variable.width, 8u);
    EXPECT_EQ(variable.decimals, 2);
  }
}

struct Size {
  std::uint32_t width;
  std::int32_t decimals;
  bool operator==(const Size&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Size& size) {
  return out << size.width << "." << size.decimals;
}

Size Normalised(std::uint32_t type, std::uint32_t width, std::int32_t decimals) {
  TxtWzVar variable;
  variable.formatType = type;
  variable.width = width;
  variable.decimals = decimals;
  NormaliseFormat(variable);
  return {variable.width, variable.decimals};
}

TEST(NormaliseFormat, NumbersKeepRoomForTheirPoint) {
  for (const std::uint32_t type : {kFormatF, kFormatComma, kFormatDot}) {
    EXPECT_EQ(Normalised(type, 8, 2), (Size{8, 2}));
    EXPECT_EQ(Normalised(type, 8, 7), (Size{8, 7}));
    EXPECT_EQ(Normalised(type, 8, 8), (Size{8, 7}));
    EXPECT_EQ(Normalised(type, 1, 1), (Size{1, 0}));
    EXPECT_EQ(Normalised(type, 0, 0), (Size{0, 0}));
  }
}

TEST(NormaliseFormat, AmountsKeepRoomForTheirSign) {
  for (const std::uint32_t type : {kFormatDollar, kFormatPct}) {
    EXPECT_EQ(Normalised(type, 8, 6), (Size{8, 6}));
    EXPECT_EQ(Normalised(type, 8, 7), (Size{8, 6}));
    EXPECT_EQ(Normalised(type, 1, 1), (Size{1, 0}));
  }
}

TEST(NormaliseFormat, NHasNoDecimals) { EXPECT_EQ(Normalised(kFormatN, 8, 5), (Size{8, 0})); }

TEST(NormaliseFormat, EKeepsRoomForItsExponentAndNeverHasLessThanNoDecimals) {
  EXPECT_EQ(Normalised(kFormatE, 12, 5), (Size{12, 5}));
  EXPECT_EQ(Normalised(kFormatE, 11, 5), (Size{11, 4}));
  EXPECT_EQ(Normalised(kFormatE, 7, 3), (Size{7, 0}));
  EXPECT_EQ(Normalised(kFormatE, 5, 3), (Size{5, 0}));
}

TEST(NormaliseFormat, DatesHaveMinimumWidths) {
  const std::pair<std::uint32_t, std::uint32_t> minima[] = {
      {kFormatDate, 9},   {kFormatDTime, 9},     {kFormatTime, 5},  {kFormatJDate, 5},
      {kFormatMTime, 5},  {kFormatDateTime, 17}, {kFormatADate, 8}, {kFormatWkyr, 8},
      {kFormatEDate, 8},  {kFormatSDate, 8},     {kFormatMoyr, 6},  {kFormatQyr, 6},
      {kFormatYmdhms, 16}};
  for (const auto& [type, minimum] : minima) {
    EXPECT_EQ(Normalised(type, minimum - 1, 1), (Size{minimum, 1})) << type;
    EXPECT_EQ(Normalised(type, minimum + 1, 0), (Size{minimum + 1, 0})) << type;
  }
}

TEST(NormaliseFormat, DayAndMonthNamesAndSkippedFieldsStay) {
  for (const std::uint32_t type :
       std::initializer_list<std::uint32_t>{kFormatWkday, kFormatMonth, kFormatSkip}) {
    EXPECT_EQ(Normalised(type, 1, 1), (Size{1, 1}));
  }
}

TEST(NormaliseFormat, AnyOtherTypeBecomesF8Point2) {
  for (const std::uint32_t type : {2u, 6u, 15u, 33u, 40u, 84u, 87u, 5000u}) {
    TxtWzVar variable;
    variable.formatType = type;
    variable.width = 20;
    NormaliseFormat(variable);
    EXPECT_EQ(variable.formatType, kFormatF) << type;
    EXPECT_EQ(variable.width, 8u) << type;
    EXPECT_EQ(variable.decimals, 2) << type;
  }
}

TEST(NormaliseFormat, AStringIsAsWideAsTheWiderOfItsTwoWidths) {
  TxtWzVar variable;
  variable.formatType = kFormatA;
  variable.width = 5;
  variable.maxStringLength = 12;
  variable.decimals = 3;
  NormaliseFormat(variable);
  EXPECT_EQ(variable.width, 12u);
  EXPECT_EQ(variable.maxStringLength, 12u);
  EXPECT_EQ(variable.decimals, 0);
  variable.width = 20;
  NormaliseFormat(variable);
  EXPECT_EQ(variable.maxStringLength, 20u);
  // Digits that went on for longer than a string may be.
  variable.width = 40'000;
  NormaliseFormat(variable);
  EXPECT_EQ(variable.maxStringLength, 32767u);
}

class EmptySource : public QANT_DataSource {
 public:
  EmptySource() : QANT_DataSource(nullptr) {}
  QANT_InputCaseIterator* MakeIterator(OBS*) const override { return nullptr; }
};

TxtWzVar Variable(const std::string& name, std::uint32_t type, std::uint32_t width,
                  std::int32_t decimals = 0) {
  TxtWzVar variable;
  variable.SetVarName(name.c_str());
  variable.formatType = type;
  variable.width = variable.maxStringLength = width;
  variable.decimals = decimals;
  return variable;
}

// What a variable gives in a host: its host variable, and the record's string width afterwards.
struct Defined {
  explicit Defined(TxtWzVar variable, FileEncoding encoding = kEncodingNone) {
    DefineVariable(&source, variable, encoding);
    maxStringLength = variable.maxStringLength;
    if (source.GetNVariables() > 0) made = source.GetVariable(0);
  }
  EmptySource source;
  const QANT_Variable* made = nullptr;
  std::uint32_t maxStringLength = 0;
};

TEST(DefineVariable, ANumberGetsItsNameAndBothFormats) {
  const Defined x(Variable("Income", kFormatDollar, 12, 2));
  ASSERT_TRUE(x.made);
  EXPECT_EQ(x.made->GetName(), "Income");
  EXPECT_EQ(x.made->GetType(), 0);
  EXPECT_EQ(x.made->GetFormat(), (QANT_Format{4, 12, 2}));
  EXPECT_EQ(x.made->GetWriteFormat(), (QANT_Format{4, 12, 2}));
}

TEST(DefineVariable, ASkippedFieldMakesNone) {
  EXPECT_EQ(Defined(Variable("x", kFormatSkip, 5)).made, nullptr);
}

TEST(DefineVariable, AStringsFormatGrowsByEncodingButNotItsBytes) {
  struct Case {
    const char* codePage;
    FileEncoding encoding;
    int formatWidth;
  };
  const Case cases[] = {
      {nullptr, kEncodingNone, 20},
      {nullptr, kEncodingLocale, 60},
      {nullptr, kEncodingUtf8, 20},
      {nullptr, kEncodingUtf16BigEndian, 60},
      {nullptr, kEncodingUtf16LittleEndian, 60},
      {"ISO-8859-1", kEncodingNone, 20},
      {"ISO-8859-1", kEncodingLocale, 20},
      {"ISO-8859-1", kEncodingUtf8, 20},
      {"ISO-8859-1", kEncodingUtf16BigEndian, 40},
      {"ISO-8859-1", kEncodingUtf16LittleEndian, 40},
  };
  for (const Case& c : cases) {
    const embedded::InCodePage page(c.codePage);
    const Defined x(Variable("s", kFormatA, 20), c.encoding);
    ASSERT_TRUE(x.made);
    EXPECT_EQ(x.made->GetType(), 20);
    EXPECT_EQ(x.made->GetFormat(), (QANT_Format{1, c.formatWidth, 0})) << c.encoding;
    EXPECT_EQ(x.maxStringLength, static_cast<std::uint32_t>(c.formatWidth)) << c.encoding;
  }
}

TEST(DefineVariable, AGrownStringFormatIsCapped) {
  EXPECT_EQ(Defined(Variable("s", kFormatA, 10922), kEncodingLocale).maxStringLength, 32766u);
  EXPECT_EQ(Defined(Variable("s", kFormatA, 10923), kEncodingLocale).maxStringLength, 32767u);
  EXPECT_EQ(Defined(Variable("s", kFormatA, 32767), kEncodingLocale).made->GetType(), 32767);
}

TEST(DefineVariable, TheDisplayIsWidenedForNameAndFormat) {
  // Eight columns are there already.
  EXPECT_EQ(Defined(Variable("x", kFormatF, 8, 2)).made->GetDisplayWidth(), 8);
  EXPECT_EQ(Defined(Variable("averylongname", kFormatF, 8, 2)).made->GetDisplayWidth(), 8);
  EXPECT_EQ(Defined(Variable("x", kFormatF, 12, 2)).made->GetDisplayWidth(), 14);
  EXPECT_EQ(Defined(Variable("averylongname", kFormatF, 12, 2)).made->GetDisplayWidth(), 15);
  EXPECT_EQ(Defined(Variable(std::string(40, 'n'), kFormatF, 12, 2)).made->GetDisplayWidth(), 34);
  // A string takes 24 columns at most, a number what it needs.
  EXPECT_EQ(Defined(Variable("x", kFormatA, 255)).made->GetDisplayWidth(), 26);
  EXPECT_EQ(Defined(Variable("x", kFormatF, 40)).made->GetDisplayWidth(), 42);
  // Of the widened format.
  EXPECT_EQ(Defined(Variable("x", kFormatA, 5), kEncodingLocale).made->GetDisplayWidth(), 17);
}

}  // namespace
}  // namespace textwizard
