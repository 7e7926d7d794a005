// Each type's values, what is missing, what a type cannot hold, and batches put together.
#include "library/columns/ColumnBuilder.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/Formats.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/columns/ColumnBatch.h"

namespace library {
namespace {

constexpr double kDay = 86400.0;
// 1970-01-01 00:00:00 as the host counts.
constexpr double kEpoch = 12219379200.0;

std::vector<OBS> NumberCases(const std::vector<double>& values) {
  std::vector<OBS> cases;
  for (const double value : values) cases.push_back(std::bit_cast<OBS>(value));
  return cases;
}

ColumnField NumberField(ColumnType type) {
  ColumnField field;
  field.name = field.variable = "v";
  field.type = type;
  return field;
}

struct Built {
  ColumnBatch batch;
  ColumnMisfits misfits;
};

Built Build(ColumnType type, const std::vector<double>& values) {
  const std::vector<OBS> cases = NumberCases(values);
  Built built;
  built.batch = BuildColumns({NumberField(type)}, cases.data(), cases.size(), 1, 0, &built.misfits);
  return built;
}

template <class Value>
std::vector<Value> ValuesOf(const ColumnBatch& batch) {
  const Value* const values = batch.columns[0].values.As<Value>();
  return {values, values + batch.cases};
}

TEST(ColumnTypes, FollowTheFormat) {
  EXPECT_EQ(TypeOf(kFormatF, 0), ColumnType::kFloat64);
  EXPECT_EQ(TypeOf(kFormatDollar, 0), ColumnType::kFloat64);
  for (const int date : {kFormatDate, kFormatADate, kFormatEDate, kFormatSDate, kFormatJDate,
                         kFormatMoyr, kFormatQyr, kFormatWkyr}) {
    EXPECT_EQ(TypeOf(date, 0), ColumnType::kDate32) << date;
  }
  EXPECT_EQ(TypeOf(kFormatDateTime, 0), ColumnType::kTimestampMicros);
  EXPECT_EQ(TypeOf(kFormatYmdhms, 0), ColumnType::kTimestampMicros);
  for (const int time : {kFormatTime, kFormatDTime, kFormatMTime}) {
    EXPECT_EQ(TypeOf(time, 0), ColumnType::kDurationMicros) << time;
  }
  EXPECT_EQ(TypeOf(kFormatWkday, 0), ColumnType::kInt8);
  EXPECT_EQ(TypeOf(kFormatMonth, 0), ColumnType::kInt8);
  EXPECT_EQ(TypeOf(1, 20), ColumnType::kUtf8);
}

TEST(ColumnTypes, TextIsLargeWhereABatchOfItMayPassTwoGibibytes) {
  EXPECT_EQ(TypeOf(1, 10922), ColumnType::kUtf8);
  EXPECT_EQ(TypeOf(1, 10923), ColumnType::kLargeUtf8);
  EXPECT_EQ(TypeOf(1, 32767), ColumnType::kLargeUtf8);
}

TEST(ColumnBuilder, NumbersStayTheDoublesTheyAre) {
  const Built built = Build(ColumnType::kFloat64, {1.5, 0.1, -3e300});
  EXPECT_EQ(ValuesOf<double>(built.batch), (std::vector<double>{1.5, 0.1, -3e300}));
  EXPECT_TRUE(built.batch.columns[0].validity.empty());
  EXPECT_EQ(built.batch.columns[0].missing, 0);
}

TEST(ColumnBuilder, MissingNumbersAndWhatIsNotFiniteAreMissing) {
  const double infinity = std::numeric_limits<double>::infinity();
  const Built built =
      Build(ColumnType::kFloat64, {1, kSystemMissing, 2, infinity, -infinity, std::nan("")});
  EXPECT_EQ(built.batch.columns[0].missing, 4);
  for (const std::size_t row : {1U, 3U, 4U, 5U}) EXPECT_TRUE(built.batch.IsMissing(0, row)) << row;
  for (const std::size_t row : {0U, 2U}) EXPECT_FALSE(built.batch.IsMissing(0, row)) << row;
  EXPECT_TRUE(built.misfits.counts.empty());
}

TEST(ColumnBuilder, WholeNumbersUpTo2To53AreIntegersAndOthersMisfits) {
  const double most = 9007199254740992.0;
  const Built built = Build(ColumnType::kInt64, {7, -most, most, 0.5, most * 2});
  EXPECT_EQ(ValuesOf<std::int64_t>(built.batch)[0], 7);
  EXPECT_EQ(ValuesOf<std::int64_t>(built.batch)[1], -9007199254740992);
  EXPECT_EQ(ValuesOf<std::int64_t>(built.batch)[2], 9007199254740992);
  EXPECT_TRUE(built.batch.IsMissing(0, 3));
  EXPECT_TRUE(built.batch.IsMissing(0, 4));
  ASSERT_EQ(built.misfits.counts, (std::vector<std::int64_t>{2}));
  ASSERT_EQ(built.misfits.first.size(), 1U);
  EXPECT_EQ(built.misfits.first[0].caseNumber, 4);
  EXPECT_EQ(built.misfits.first[0].value, 0.5);
}

TEST(ColumnBuilder, DatesAreDaysSince1970) {
  // 1582-10-15 lies 141,427 days before 1970-01-01, 9999-12-31 lies 2,932,896 days behind it.
  const Built built = Build(ColumnType::kDate32, {kEpoch, kDay, 3074324 * kDay, kEpoch + 1});
  EXPECT_EQ(ValuesOf<std::int32_t>(built.batch),
            (std::vector<std::int32_t>{0, -141427, 2932896, 0}));
  EXPECT_TRUE(built.batch.IsMissing(0, 3));
  EXPECT_EQ(built.misfits.counts, (std::vector<std::int64_t>{1}));
}

TEST(ColumnBuilder, DateTimesAreMicrosecondsSince1970) {
  const Built built =
      Build(ColumnType::kTimestampMicros, {kEpoch, kEpoch + 86399.25, kEpoch - 0.5, kDay});
  EXPECT_EQ(ValuesOf<std::int64_t>(built.batch),
            (std::vector<std::int64_t>{0, 86399250000, -500000, -141427LL * 86400 * 1000000}));
  EXPECT_TRUE(built.misfits.counts.empty());
}

TEST(ColumnBuilder, TimesAreMicrosecondsAndWhatMicrosecondsCannotSayIsAMisfit) {
  const Built built = Build(ColumnType::kDurationMicros, {-3661.000001, 0.1, 1e-7, 9.3e12});
  EXPECT_EQ(ValuesOf<std::int64_t>(built.batch)[0], -3661000001);
  EXPECT_EQ(ValuesOf<std::int64_t>(built.batch)[1], 100000);
  EXPECT_TRUE(built.batch.IsMissing(0, 2));
  EXPECT_TRUE(built.batch.IsMissing(0, 3));
  EXPECT_EQ(built.misfits.counts, (std::vector<std::int64_t>{2}));
}

TEST(ColumnBuilder, EveryDateTimeOfSixDigitsReadsBackToItsDouble) {
  std::mt19937_64 random(5);
  for (int i = 0; i < 100000; ++i) {
    const std::int64_t micros = static_cast<std::int64_t>(random() % 265621248000000000ULL);
    const auto seconds = static_cast<double>(static_cast<long double>(micros) / 1e6L);
    const Built built = Build(ColumnType::kDurationMicros, {seconds});
    ASSERT_FALSE(built.batch.IsMissing(0, 0)) << micros;
    const std::int64_t found = ValuesOf<std::int64_t>(built.batch)[0];
    ASSERT_EQ(static_cast<double>(static_cast<long double>(found) / 1e6L), seconds) << micros;
  }
}

TEST(ColumnBuilder, WeekdaysAndMonthsAreSmallIntegers) {
  const Built built = Build(ColumnType::kInt8, {1, 12, kSystemMissing});
  EXPECT_EQ(ValuesOf<std::int8_t>(built.batch), (std::vector<std::int8_t>{1, 12, 0}));
  EXPECT_EQ(built.batch.columns[0].missing, 1);
}

ColumnField TextField(ColumnType type, std::size_t bytes) {
  ColumnField field;
  field.name = field.variable = "t";
  field.type = type;
  field.bytes = bytes;
  return field;
}

std::vector<OBS> TextCases(const std::vector<std::string>& texts, std::size_t bytes) {
  const std::size_t cells = (bytes + 7) / 8;
  std::vector<OBS> cases(texts.size() * cells);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::string padded = texts[i];
    padded.resize(cells * 8, ' ');
    std::memcpy(cases[i * cells].bytes, padded.data(), padded.size());
  }
  return cases;
}

// The host works in UTF-8.
class ColumnBuilderText : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{"UTF-8"};
};

TEST_F(ColumnBuilderText, StringsLoseTheirPaddingAndNothingElse) {
  const std::vector<std::string> texts{"", " a", "b  c", "Zürich", "123456789012"};
  for (const ColumnType type : {ColumnType::kUtf8, ColumnType::kLargeUtf8}) {
    const std::vector<OBS> cases = TextCases(texts, 12);
    ColumnMisfits misfits;
    const ColumnBatch batch =
        BuildColumns({TextField(type, 12)}, cases.data(), texts.size(), 2, 0, &misfits);
    for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(batch.TextAt(0, type, i), texts[i]);
    EXPECT_EQ(batch.columns[0].missing, 0);
  }
}

TEST_F(ColumnBuilderText, BytesThatAreNoCharacterBecomeTheReplacementCharacter) {
  const std::vector<OBS> cases = TextCases({"a\xFF"}, 8);
  ColumnMisfits misfits;
  const ColumnBatch batch =
      BuildColumns({TextField(ColumnType::kUtf8, 8)}, cases.data(), 1, 1, 0, &misfits);
  EXPECT_EQ(batch.TextAt(0, ColumnType::kUtf8, 0), "a\xEF\xBF\xBD");
}

TEST(ColumnBatch, PartsPutTogetherAreTheWhole) {
  std::mt19937 random(11);
  for (int round = 0; round < 300; ++round) {
    std::vector<ColumnField> fields{NumberField(ColumnType::kFloat64),
                                    NumberField(ColumnType::kDate32),
                                    TextField(ColumnType::kUtf8, 8)};
    fields[1].cell = 1;
    fields[2].cell = 2;
    const std::size_t count = random() % 400;
    const bool sometimesMissing = round % 3 != 0;
    std::vector<OBS> cases;
    for (std::size_t i = 0; i < count; ++i) {
      const bool missing = sometimesMissing && random() % 50 == 0;
      cases.push_back(std::bit_cast<OBS>(missing ? kSystemMissing
                                                 : static_cast<double>(random() % 10000) / 7.0));
      cases.push_back(std::bit_cast<OBS>(
          random() % 90 == 0 ? kSystemMissing : static_cast<double>(random() % 100000) * kDay));
      cases.push_back(TextCases({std::string(random() % 9, 'x')}, 8)[0]);
    }
    ColumnMisfits misfits;
    const ColumnBatch whole = BuildColumns(fields, cases.data(), count, 3, 0, &misfits);
    ColumnBatch joined;
    for (std::size_t at = 0; at < count;) {
      const std::size_t part = std::min<std::size_t>(count - at, random() % 130);
      const ColumnBatch built = BuildColumns(fields, cases.data() + at * 3, part, 3,
                                             static_cast<std::int64_t>(at), &misfits);
      if (part > 2) {
        AppendCases(fields, built, 0, part / 2, joined);
        AppendCases(fields, built, part / 2, part, joined);
      } else {
        AppendBatch(fields, built, joined);
      }
      at += part;
    }
    ASSERT_EQ(joined.cases, count);
    for (std::size_t column = 0; column < 3 && count > 0; ++column) {
      ASSERT_EQ(joined.columns[column].missing, whole.columns[column].missing);
      for (std::size_t row = 0; row < count; ++row) {
        ASSERT_EQ(joined.IsMissing(column, row), whole.IsMissing(column, row)) << row;
      }
    }
    for (std::size_t row = 0; row < count; ++row) {
      ASSERT_EQ(joined.columns[0].values.As<double>()[row],
                whole.columns[0].values.As<double>()[row]);
      ASSERT_EQ(joined.columns[1].values.As<std::int32_t>()[row],
                whole.columns[1].values.As<std::int32_t>()[row]);
      ASSERT_EQ(joined.TextAt(2, ColumnType::kUtf8, row), whole.TextAt(2, ColumnType::kUtf8, row));
    }
  }
}

}  // namespace
}  // namespace library
