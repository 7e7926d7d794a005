// Decoding one character, and stepping over it.
#include <algorithm>

#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace embedded {
namespace {

constexpr std::uint32_t kUntouched = 0xABCDEF;

struct Got {
  int length;
  std::uint32_t ch;
  bool operator==(const Got&) const = default;
};

void PrintTo(const Got& got, std::ostream* out) {
  *out << "length " << got.length << " code " << std::hex << got.ch;
}

// The character at the start of `text`, which is in memory of exactly its size.
Got Get(std::string_view text, int max = 8) {
  const Exact exact = Terminated(text);
  Got got{0, kUntouched};
  got.length = QANTMBU32Get_A(&got.ch, exact.get(), 0, max);
  return got;
}

bool IsNone(const Got& got) { return got.length <= 0; }

TEST(U32Get, Utf8CharactersOfEveryLength) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(Get("A"), (Got{1, 'A'}));
  EXPECT_EQ(Get("\x7F"), (Got{1, 0x7F}));
  EXPECT_EQ(Get("\xC2\x80"), (Got{2, 0x80}));
  EXPECT_EQ(Get("\xDF\xBF"), (Got{2, 0x7FF}));
  EXPECT_EQ(Get("\xE0\xA0\x80"), (Got{3, 0x800}));
  EXPECT_EQ(Get("\xED\x9F\xBF"), (Got{3, 0xD7FF}));
  EXPECT_EQ(Get("\xEE\x80\x80"), (Got{3, 0xE000}));
  EXPECT_EQ(Get("\xEF\xBF\xBF"), (Got{3, 0xFFFF}));
  EXPECT_EQ(Get("\xF0\x90\x80\x80"), (Got{4, 0x10000}));
  EXPECT_EQ(Get("\xF4\x8F\xBF\xBF"), (Got{4, 0x10FFFF}));
}

TEST(U32Get, Utf8RefusesWhatIsNoCharacter) {
  const InCodePage utf8(nullptr);
  for (const char* bytes :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xF0\x80\x80\x80",
        "\xF0\x8F\xBF\xBF", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80",
        "\xF8\x88\x80\x80\x80", "\xFE", "\xFF",
        "\xC3"
        "A",
        "\xE2\x82"
        "A",
        "\xF0\x9F\x98"
        "A"}) {
    EXPECT_TRUE(IsNone(Get(bytes))) << testing::PrintToString(std::string(bytes));
  }
}

TEST(U32Get, ATextThatEndsInsideACharacterIsNoneAndIsNotReadFurther) {
  const InCodePage utf8(nullptr);
  for (const char* bytes : {"\xC3", "\xE2", "\xE2\x82", "\xF0", "\xF0\x9F", "\xF0\x9F\x98"}) {
    EXPECT_TRUE(IsNone(Get(bytes))) << testing::PrintToString(std::string(bytes));
  }
}

TEST(U32Get, LooksAtNoMoreThanMaxBytes) {
  const InCodePage utf8(nullptr);
  const Exact euro("\xE2\x82\xAC");
  std::uint32_t ch = 0;
  EXPECT_LE(QANTMBU32Get_A(&ch, euro.get(), 0, 2), 0);
  EXPECT_EQ(QANTMBU32Get_A(&ch, euro.get(), 0, 3), 3);
  EXPECT_EQ(ch, 0x20ACu);
  const Exact part("\xE2\x82");
  EXPECT_LE(QANTMBU32Get_A(&ch, part.get(), 0, 2), 0);
  EXPECT_LE(QANTMBU32Get_A(&ch, part.get(), 0, 0), 0);
  EXPECT_LE(QANTMBU32Get_A(&ch, part.get(), 0, -1), 0);
}

TEST(U32Get, TheEndOfTheTextIsNoCharacter) {
  for (const char* page : {static_cast<const char*>(nullptr), "windows-1252", "Shift_JIS"}) {
    const InCodePage in(page);
    EXPECT_LE(Get("").length, 0);
  }
}

TEST(U32Get, SingleBytePages) {
  {
    const InCodePage in("windows-1252");
    EXPECT_EQ(Get("A"), (Got{1, 'A'}));
    EXPECT_EQ(Get("\x80"), (Got{1, 0x20AC}));
    EXPECT_EQ(Get("\xE9"), (Got{1, 0xE9}));
    EXPECT_EQ(Get("\xFF", 1), (Got{1, 0xFF}));
  }
  {
    const InCodePage in("ISO-8859-1");
    EXPECT_EQ(Get("\x80"), (Got{1, 0x80}));
    EXPECT_EQ(Get("\xE9"), (Got{1, 0xE9}));
  }
  const InCodePage in("US-ASCII");
  EXPECT_TRUE(IsNone(Get("\xE9")));
}

TEST(U32Get, MultibytePages) {
  {
    const InCodePage in("Shift_JIS");
    EXPECT_EQ(Get("A"), (Got{1, 'A'}));
    EXPECT_EQ(Get("\x93\xFA"), (Got{2, 0x65E5}));
    // The second byte may be that of an ASCII character, here a backslash.
    EXPECT_EQ(Get("\x95\x5C"), (Got{2, 0x8868}));
    // A half-width katakana is one byte.
    EXPECT_EQ(Get("\xB1"), (Got{1, 0xFF71}));
    EXPECT_TRUE(IsNone(Get("\x93")));
    EXPECT_TRUE(IsNone(Get("\x93\xFA", 1)));
    EXPECT_TRUE(IsNone(Get("\x93 ")));
    EXPECT_TRUE(IsNone(Get("\xFF")));
  }
  {
    const InCodePage in("GBK");
    EXPECT_EQ(Get("\xD6\xD0"), (Got{2, 0x4E2D}));
  }
  {
    const InCodePage in("Big5");
    EXPECT_EQ(Get("\xA4\xA4"), (Got{2, 0x4E2D}));
  }
  const InCodePage in("EUC-KR");
  EXPECT_EQ(Get("\xB0\xA1"), (Got{2, 0xAC00}));
}

TEST(U32Get, CodesLongerThanTwoBytes) {
  {
    const InCodePage in("GB18030");
    EXPECT_EQ(Get("\xD6\xD0"), (Got{2, 0x4E2D}));
    EXPECT_EQ(Get("\x81\x30\x81\x30"), (Got{4, 0x80}));
    EXPECT_EQ(Get("\x94\x39\xFC\x36"), (Got{4, 0x1F600}));
    EXPECT_TRUE(IsNone(Get("\x94\x39\xFC")));
    EXPECT_TRUE(IsNone(Get("\x94\x39")));
    EXPECT_TRUE(IsNone(Get("\x94\x39\xFC\x36", 3)));
    EXPECT_TRUE(
        IsNone(Get("\x94\x39\xFC"
                   "A")));
  }
  const InCodePage in("EUC-JP");
  EXPECT_EQ(Get("\xC6\xFC"), (Got{2, 0x65E5}));
  EXPECT_EQ(Get("\x8F\xB0\xA1"), (Got{3, 0x4E02}));
  EXPECT_TRUE(IsNone(Get("\x8F\xB0")));
}

TEST(U32GetC, AConverterKeepsItsPage) {
  const InCodePage utf8(nullptr);
  QANTMBConverter* host = QANTMBConverterNew_A(nullptr);
  QANTMBConverter* japanese = QANTMBConverterNew_A("Shift_JIS");
  ASSERT_NE(host, nullptr);
  ASSERT_NE(japanese, nullptr);
  std::uint32_t ch = 0;
  EXPECT_EQ(QANTMBU32GetC_A(host, &ch, "\xC3\xA9", 0, 8), 2);
  EXPECT_EQ(ch, 0xE9u);
  EXPECT_EQ(QANTMBU32GetC_A(japanese, &ch, "\x93\xFA", 0, 8), 2);
  EXPECT_EQ(ch, 0x65E5u);
  EXPECT_LE(QANTMBU32GetC_A(host, &ch, "\x93\xFA", 0, 8), 0);
  EXPECT_EQ(QANTMBU32GetC_A(nullptr, &ch, "\xC3\xA9", 0, 8), 2);
  QANTMBConverterDelete_A(host);
  QANTMBConverterDelete_A(japanese);
  QANTMBConverterDelete_A(nullptr);
}

TEST(U32GetC, AConverterOfAnEncodingThatHostTextCannotHave) {
  QANTMBConverter* utf16 = QANTMBConverterNew_A("UTF-16LE");
  ASSERT_NE(utf16, nullptr);
  const Exact text(std::string_view("\xE5\x65", 2));
  std::uint32_t ch = 0;
  EXPECT_EQ(QANTMBU32GetC_A(utf16, &ch, text.get(), 0, 2), 2);
  EXPECT_EQ(ch, 0x65E5u);
  EXPECT_LE(QANTMBU32GetC_A(utf16, &ch, text.get(), 0, 1), 0);
  EXPECT_LE(QANTMBU32GetC_A(utf16, &ch, text.get(), 0, 0), 0);
  QANTMBConverterDelete_A(utf16);
}

TEST(Converter, AnUnknownNameGivesNone) {
  EXPECT_EQ(QANTMBConverterNew_A("no-such-page"), nullptr);
  EXPECT_EQ(QANTMBConverterNew_A(""), nullptr);
  QANTMBConverter* utf16 = QANTMBConverterNew_A("UTF16");
  EXPECT_NE(utf16, nullptr);
  QANTMBConverterDelete_A(utf16);
}

TEST(Mbclen, CountsTheBytesOfOneCharacter) {
  {
    const InCodePage utf8(nullptr);
    EXPECT_EQ(QANTMBmbclen_A(""), 0);
    EXPECT_EQ(QANTMBmbclen_A("ab"), 1);
    EXPECT_EQ(QANTMBmbclen_A("\xC3\xA9"
                             "b"),
              2);
    EXPECT_EQ(QANTMBmbclen_A("\xF0\x9F\x98\x80"), 4);
    EXPECT_EQ(QANTMBmbclen_A("\xA9"), 1);
    EXPECT_EQ(QANTMBmbclen_A(Terminated("\xF0\x9F").get()), 1);
  }
  const InCodePage in("Shift_JIS");
  EXPECT_EQ(QANTMBmbclen_A("\x95\x5C"), 2);
  EXPECT_EQ(QANTMBmbclen_A(Terminated("\x95").get()), 1);
}

TEST(Strinc, StepsOverOneCharacterAndNotOverTheEnd) {
  const InCodePage utf8(nullptr);
  const char* text =
      "\xE2\x82\xAC"
      "x";
  EXPECT_EQ(QANTMBstrinc_A(text), text + 3);
  EXPECT_EQ(QANTMBstrinc_A(text + 3), text + 4);
  EXPECT_EQ(QANTMBstrinc_A(text + 4), text + 4);
}

TEST(U32Get, RandomBytesNeverReadPastTheirEnd) {
  std::mt19937 random(1);
  for (const char* page : {static_cast<const char*>(nullptr), "windows-1252", "ISO-8859-1",
                           "Shift_JIS", "GBK", "Big5", "EUC-KR", "EUC-JP", "GB18030"}) {
    const InCodePage in(page);
    for (int round = 0; round < 20000; ++round) {
      const std::string bytes = RandomBytes(random, 1 + random() % 5);
      const Exact terminated = Terminated(bytes);
      const Exact bare(bytes);
      const int size = static_cast<int>(bytes.size());
      std::uint32_t ch = 0, bounded = 0;
      const int length = QANTMBU32Get_A(&ch, terminated.get(), 0, 8);
      EXPECT_LE(length, size);
      // A bound at the end of the bytes and a terminator there mean the same.
      const int boundedLength = QANTMBU32Get_A(&bounded, bare.get(), 0, size);
      EXPECT_EQ(length > 0, boundedLength > 0);
      if (length > 0) {
        EXPECT_EQ(length, boundedLength);
        EXPECT_EQ(ch, bounded);
        EXPECT_LE(ch, 0x10FFFFu);
      }
      EXPECT_EQ(QANTMBmbclen_A(terminated.get()), std::max(length, 1));
    }
  }
}

}  // namespace
}  // namespace embedded
