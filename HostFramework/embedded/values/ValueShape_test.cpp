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

constexpr Reader kReaders[] = {{kFormatF, ReadNumberOf<kFormatF>},
                               {kFormatE, ReadNumberOf<kFormatE>},
                               {kFormatPct, ReadNumberOf<kFormatPct>},
                               {kFormatComma, ReadNumberOf<kFormatComma>},
                               {kFormatDot, ReadNumberOf<kFormatDot>},
                               {kFormatDollar, ReadNumberOf<kFormatDollar>},
                               {kFormatN, ReadNumberOf<kFormatN>},
                               {kFormatDate, ReadDate},
                               {kFormatEDate, ReadDate},
                               {kFormatADate, ReadADate},
                               {kFormatSDate, ReadSDate},
                               {kFormatJDate, ReadJDate},
                               {kFormatQyr, ReadQuarter},
                               {kFormatMoyr, ReadMonthOfYear},
                               {kFormatWkyr, ReadWeek},
                               {kFormatWkday, ReadWeekday},
                               {kFormatMonth, ReadMonthNumber},
                               {kFormatDateTime, ReadDateTime},
                               {kFormatYmdhms, ReadYmdhms},
                               {kFormatTime, ReadTime},
                               {kFormatDTime, ReadDTime},
                               {kFormatMTime, ReadMTime}};

TEST(ValueShape, TheShortestTextsAreRead) {
  struct Case {
    int format;
    const char* text;
  };
  for (const Case& shortest : {Case{kFormatF, "5"},
                               Case{kFormatF, "5."},
                               Case{kFormatPct, "5%"},
                               Case{kFormatComma, "5"},
                               Case{kFormatDollar, "$5"},
                               Case{kFormatN, "5"},
                               Case{kFormatDate, "1I20"},
                               Case{kFormatEDate, "1I20"},
                               Case{kFormatADate, "I1 20"},
                               Case{kFormatSDate, "20I1"},
                               Case{kFormatJDate, "20001"},
                               Case{kFormatQyr, "1Q20"},
                               Case{kFormatMoyr, "I20"},
                               Case{kFormatWkyr, "1WK20"},
                               Case{kFormatWkday, "1"},
                               Case{kFormatMonth, "I"},
                               Case{kFormatTime, "0:0"},
                               Case{kFormatDTime, "0 0:0"},
                               Case{kFormatMTime, "0:0"},
                               Case{kFormatDateTime, "1I20T0:0"},
                               Case{kFormatYmdhms, "20I1T0:0"},
                               Case{kFormatYmdhms, "20I1 0 0"},
                               Case{kFormatYmdhms, "20I1T0.0"}}) {
    EXPECT_TRUE(Read(shortest.text, shortest.format)) << shortest.text;
  }
}

// The second byte of a digit of double width is a letter in this code page.
TEST(ValueShape, SecondBytesOfLongerCodesAreNoLetters) {
  const HostEncoding encoding("Shift_JIS");
  EXPECT_EQ(Read("4\x82\x51", kFormatF), 42.0);
  EXPECT_EQ(Read("\x82\x53\x82\x51", kFormatN), 42.0);
  EXPECT_EQ(Read("31.01.202\x82\x4F", kFormatEDate), Day1970(18292));
  EXPECT_EQ(Read("10:3\x82\x4F", kFormatTime), 37800.0);
  EXPECT_EQ(Read("4Q", kFormatF), kNoValue);
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
