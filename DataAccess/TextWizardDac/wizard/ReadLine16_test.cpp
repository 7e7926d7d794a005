#include "wizard/ReadLine16.h"

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

// A stream over 16-bit units in the order of `mode`, with `tail` behind them.
class Units {
 public:
  Units(int mode, const std::u16string& units, const std::string& tail = "") {
    for (const char16_t unit : units) {
      const char low = static_cast<char>(unit & 0xFF);
      const char high = static_cast<char>(unit >> 8);
      bytes_ += mode == kWizardUtf16BigEndian ? high : low;
      bytes_ += mode == kWizardUtf16BigEndian ? low : high;
    }
    bytes_ += tail;
    stream_ = bytes_.empty() ? std::tmpfile() : fmemopen(bytes_.data(), bytes_.size(), "rb");
    mode_ = mode;
  }
  ~Units() { std::fclose(stream_); }

  // The next line, as units; "<end>" at the end of the file.
  std::u16string Line(int size = 200) {
    std::vector<char> buffer(static_cast<std::size_t>(size), 'x');
    if (!ReadLine16(mode_, buffer.data(), size, stream_)) return u"<end>";
    std::u16string line;
    for (std::size_t at = 0;; at += 2) {
      char16_t unit = 0;
      std::memcpy(&unit, buffer.data() + at, 2);
      if (unit == 0) return line;
      line += unit;
    }
  }

 private:
  std::string bytes_;
  FILE* stream_;
  int mode_;
};

class ReadLine16Orders : public testing::TestWithParam<int> {};

TEST_P(ReadLine16Orders, ALineEndsAtAReturnAFeedOrThePair) {
  Units file(GetParam(), u"a\rb\nc\r\n\r\rd");
  EXPECT_EQ(file.Line(), u"a");
  EXPECT_EQ(file.Line(), u"b");
  EXPECT_EQ(file.Line(), u"c");
  EXPECT_EQ(file.Line(), u"");
  EXPECT_EQ(file.Line(), u"");
  EXPECT_EQ(file.Line(), u"d");
  EXPECT_EQ(file.Line(), u"<end>");
}

TEST_P(ReadLine16Orders, EndOfFileBeforeAnyUnitIsNull) {
  Units file(GetParam(), u"");
  EXPECT_EQ(file.Line(), u"<end>");
}

TEST_P(ReadLine16Orders, EndOfFileAfterSomeUnitsReturnsThem) {
  Units file(GetParam(), u"ab");
  EXPECT_EQ(file.Line(), u"ab");
  EXPECT_EQ(file.Line(), u"<end>");
}

TEST_P(ReadLine16Orders, SurrogatesKeepBothUnitsAndLoneOnesStay) {
  Units file(GetParam(), u"\U0001F600\xD800z\n");
  const std::u16string expected = {0xD83D, 0xDE00, 0xD800, u'z'};
  EXPECT_EQ(file.Line(), expected);
}

TEST_P(ReadLine16Orders, AFullBufferEndsTheLineWithoutItsLineEnd) {
  Units file(GetParam(), u"abcd\ne");
  // Room for two units and the terminator.
  EXPECT_EQ(file.Line(6), u"ab");
  EXPECT_EQ(file.Line(6), u"cd");
  EXPECT_EQ(file.Line(6), u"");
  EXPECT_EQ(file.Line(6), u"e");
  EXPECT_EQ(file.Line(6), u"<end>");
}

TEST_P(ReadLine16Orders, ABufferWithoutRoomReadsNothing) {
  Units file(GetParam(), u"a");
  EXPECT_EQ(file.Line(2), u"");
  EXPECT_EQ(file.Line(4), u"a");
  EXPECT_EQ(file.Line(2), u"<end>");
}

TEST_P(ReadLine16Orders, ALastOddByteIsKept) {
  Units file(GetParam(), u"a", "b");
  const char16_t expected = GetParam() == kWizardUtf16BigEndian ? 0x62FF : 0xFF62;
  EXPECT_EQ(file.Line(), (std::u16string{u'a', expected}));
}

INSTANTIATE_TEST_SUITE_P(BothOrders, ReadLine16Orders,
                         testing::Values(kWizardUtf16BigEndian, kWizardUtf16LittleEndian));

TEST(ReadLine16, InOtherModesOnlyTheEndOfTheFileOrAFullBufferEndsALine) {
  Units file(kWizardBytes, {u'a', u'\n', u'\r', u'b', 0x0D00, 0x0A00, 0x0D00, u'c', 0x0A00});
  EXPECT_EQ(file.Line(), (std::u16string{u'a', u'\n', u'\r', u'b', 0x0A00, 0x0A00, u'c', 0x0A00}));
  EXPECT_EQ(file.Line(), u"<end>");
}

}  // namespace
}  // namespace textwizard
