// What is refused at a look is no value: the shortest texts of each format, and bytes that look
// like something else at a text's ends.
#include "HostFramework/embedded/values/ValueShape.h"

#include <random>
#include <string>

#include "HostFramework/embedded/values/DateInput.h"
#include "HostFramework/embedded/values/DateTimeInput.h"
#include "HostFramework/embedded/values/NumberInput.h"
#include "HostFramework/embedded/values/TimeInput.h"
#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

// The readers behind the look.
struct Reader {
  int format;
  bool (*read)(std::string_view text, double* value);
};

template <int kFormat>
bool ReadNumberOf(std::string_view text, double* value) {
  return ReadNumber(text, kFormat, '.', value);
}

constexpr Reader kReaders[] = {{kF, ReadNumberOf<kF>},     {kE, ReadNumberOf<kE>},
                               {kPct, ReadNumberOf<kPct>}, {kComma, ReadNumberOf<kComma>},
                               {kDot, ReadNumberOf<kDot>}, {kDollar, ReadNumberOf<kDollar>},
                               {kN, ReadNumberOf<kN>},     {kDate, ReadDate},
                               {kEDate, ReadDate},         {kADate, ReadADate},
                               {kSDate, ReadSDate},        {kJDate, ReadJDate},
                               {kQyr, ReadQuarter},        {kMoyr, ReadMonthOfYear},
                               {kWkyr, ReadWeek},          {kWkday, ReadWeekday},
                               {kMonth, ReadMonthNumber},  {kDateTime, ReadDateTime},
                               {kYmdhms, ReadYmdhms},      {kTime, ReadTime},
                               {kDTime, ReadDTime},        {kMTime, ReadMTime}};

TEST(ValueShape, TheShortestTextsAreRead) {
  struct Case {
    int format;
    const char* text;
  };
  for (const Case& shortest : {Case{kF, "5"},
                               Case{kF, "5."},
                               Case{kPct, "5%"},
                               Case{kComma, "5"},
                               Case{kDollar, "$5"},
                               Case{kN, "5"},
                               Case{kDate, "1I20"},
                               Case{kEDate, "1I20"},
                               Case{kADate, "I1 20"},
                               Case{kSDate, "20I1"},
                               Case{kJDate, "20001"},
                               Case{kQyr, "1Q20"},
                               Case{kMoyr, "I20"},
                               Case{kWkyr, "1WK20"},
                               Case{kWkday, "1"},
                               Case{kMonth, "I"},
                               Case{kTime, "0:0"},
                               Case{kDTime, "0 0:0"},
                               Case{kMTime, "0:0"},
                               Case{kDateTime, "1I20T0:0"},
                               Case{kYmdhms, "20I1T0:0"},
                               Case{kYmdhms, "20I1 0 0"},
                               Case{kYmdhms, "20I1T0.0"}}) {
    EXPECT_TRUE(Read(shortest.text, shortest.format)) << shortest.text;
  }
}

// The second byte of a digit of double width is a letter in this code page.
TEST(ValueShape, SecondBytesOfLongerCodesAreNoLetters) {
  const HostEncoding encoding("Shift_JIS");
  EXPECT_EQ(Read("4\x82\x51", kF), 42.0);
  EXPECT_EQ(Read("\x82\x53\x82\x51", kN), 42.0);
  EXPECT_EQ(Read("31.01.202\x82\x4F", kEDate), Day1970(18292));
  EXPECT_EQ(Read("10:3\x82\x4F", kTime), 37800.0);
  EXPECT_EQ(Read("4Q", kF), kNoValue);
}

TEST(ValueShape, RefusesOnlyWhatIsNoValue) {
  const HostEncoding utf8("UTF-8");
  constexpr std::string_view kCharacters =
      "0123456789012345678901234567890123456789+-.,:/$%  TQWKIVX";
  std::mt19937_64 random(1582);
  int values = 0, refused = 0, kept = 0;
  for (int i = 0; i < 300'000; ++i) {
    std::string text;
    for (int length = 1 + static_cast<int>(random() % 16); length > 0; --length) {
      text += kCharacters[random() % kCharacters.size()];
    }
    if (text.front() == ' ' || text.back() == ' ') continue;
    for (const Reader& reader : kReaders) {
      double value;
      const bool mayBe = ValueShape::MayBe(text, reader.format);
      ++(mayBe ? kept : refused);
      if (!reader.read(text, &value)) continue;
      EXPECT_TRUE(mayBe) << text << " under " << reader.format;
      ++values;
    }
  }
  EXPECT_GT(values, 100'000);
  EXPECT_GT(refused, kept);
}

TEST(ValueShape, LeavesFormatsWithoutValuesToTheReader) {
  for (const int format : {0, 1, 2, 87, 9999, -1}) EXPECT_TRUE(ValueShape::MayBe("x", format));
}

}  // namespace
}  // namespace embedded
