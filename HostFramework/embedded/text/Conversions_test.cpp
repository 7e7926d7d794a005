// Whole texts and buffers from one encoding into another.
#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace embedded {
namespace {

using WholeText = void (*)(QANTMBConverter*, std::string&, std::string_view);
using Buffer = std::size_t (*)(char*, std::size_t, const char*, std::size_t);

constexpr const char* kReplacement = "\xEF\xBF\xBD";

std::string Converted(WholeText convert, std::string_view in,
                      QANTMBConverter* converter = nullptr) {
  std::string out = "what stood there before";
  convert(converter, out, Exact(in).view());
  return out;
}

// Into memory of exactly `room` bytes.
std::string Converted(Buffer convert, std::string_view in, std::size_t room = 64) {
  const std::unique_ptr<char[]> out(new char[room]);
  const std::size_t written = convert(out.get(), room, Exact(in).get(), in.size());
  EXPECT_LE(written, room);
  return {out.get(), written};
}

std::string ConvertedToTerminator(Buffer convert, std::string_view in,
                                  std::string_view terminator) {
  const Exact exact(std::string(in) + std::string(terminator));
  char out[64];
  return {out, convert(out, sizeof out, exact.get(), QANTMB_TERMINATED)};
}

// UTF-16 bytes of the units.
std::string Little(std::u16string_view units) {
  std::string bytes;
  for (const char16_t unit : units) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}
std::string Big(std::u16string_view units) {
  std::string bytes = Little(units);
  for (std::size_t at = 0; at < bytes.size(); at += 2) std::swap(bytes[at], bytes[at + 1]);
  return bytes;
}

TEST(CodePageToU8, FromTheLocalesPageInUtf8Mode) {
  {
    const InCodePage in(nullptr, "windows-1252");
    EXPECT_EQ(Converted(QANTMBCodePageToU8, ""), "");
    EXPECT_EQ(Converted(QANTMBCodePageToU8, "plain"), "plain");
    EXPECT_EQ(Converted(QANTMBCodePageToU8, "\x80 caf\xE9"), "\xE2\x82\xAC caf\xC3\xA9");
  }
  {
    const InCodePage in(nullptr, "ISO-8859-1");
    EXPECT_EQ(Converted(QANTMBCodePageToU8, "\x80\xE9"), "\xC2\x80\xC3\xA9");
  }
  {
    const InCodePage in(nullptr, "Shift_JIS");
    EXPECT_EQ(Converted(QANTMBCodePageToU8, "a\x93\xFA\x95\x5C,\xB1"),
              "a\xE6\x97\xA5\xE8\xA1\xA8,\xEF\xBD\xB1");
  }
  const InCodePage in(nullptr, "GB18030");
  EXPECT_EQ(Converted(QANTMBCodePageToU8, "\xD6\xD0\x94\x39\xFC\x36"),
            "\xE4\xB8\xAD\xF0\x9F\x98\x80");
}

TEST(CodePageToU8, FromTheActivePageOutsideUtf8Mode) {
  // The locale setting is for UTF-8 mode only.
  const InCodePage in("windows-1252", "Shift_JIS");
  EXPECT_EQ(Converted(QANTMBCodePageToU8, "\xE9"), "\xC3\xA9");
}

TEST(CodePageToU8, InvalidBytesBecomeReplacementCharacters) {
  {
    const InCodePage in(nullptr, "Shift_JIS");
    // A lead byte at the end, one before a byte that cannot follow, and a byte that is none.
    EXPECT_EQ(Converted(QANTMBCodePageToU8, "a\x93"), std::string("a") + kReplacement);
    EXPECT_EQ(Converted(QANTMBCodePageToU8, "\x93 b"), kReplacement + std::string(" b"));
    EXPECT_EQ(Converted(QANTMBCodePageToU8,
                        "\xFF"
                        "b"),
              kReplacement + std::string("b"));
  }
  {
    const InCodePage in(nullptr, "US-ASCII");
    EXPECT_EQ(Converted(QANTMBCodePageToU8, "a\xE9"), std::string("a") + kReplacement);
  }
  const InCodePage in(nullptr, "UTF-8");
  EXPECT_EQ(Converted(QANTMBCodePageToU8, "\xC3\xA9\xE9z"),
            std::string("\xC3\xA9") + kReplacement + "z");
  EXPECT_EQ(Converted(QANTMBCodePageToU8, "a\xE2\x82"), std::string("a") + kReplacement);
}

TEST(CodePageToGeneric, InUtf8ModeTheTargetIsUtf8) {
  const InCodePage in(nullptr, "windows-1252");
  EXPECT_EQ(Converted(QANTMBCodePageToGeneric, "\xE9"), "\xC3\xA9");
}

TEST(CodePageToGeneric, OutsideUtf8ModeOnlyInvalidBytesChange) {
  {
    const InCodePage in("windows-1252");
    EXPECT_EQ(Converted(QANTMBCodePageToGeneric, "\x80 caf\xE9"), "\x80 caf\xE9");
  }
  {
    const InCodePage in("US-ASCII");
    EXPECT_EQ(Converted(QANTMBCodePageToGeneric, "a\xE9\xE8z"), "a??z");
  }
  const InCodePage in("Shift_JIS");
  EXPECT_EQ(Converted(QANTMBCodePageToGeneric, "\x93\xFA\xFFz\x93"), "\x93\xFA?z?");
  // One of the codes that stand twice in the page keeps the place that it had in the file.
  EXPECT_EQ(Converted(QANTMBCodePageToGeneric, "\xED\x40"), "\xED\x40");
}

TEST(U8ToCodePage, IntoTheActivePage) {
  {
    const InCodePage in("windows-1252");
    EXPECT_EQ(Converted(QANTMBU8ToCodePage, ""), "");
    EXPECT_EQ(Converted(QANTMBU8ToCodePage, "\xE2\x82\xAC caf\xC3\xA9"), "\x80 caf\xE9");
  }
  {
    const InCodePage in("ISO-8859-1");
    EXPECT_EQ(Converted(QANTMBU8ToCodePage, "\xC3\xA9\xE2\x82\xAC"), "\xE9?");
  }
  {
    const InCodePage in("Shift_JIS");
    EXPECT_EQ(Converted(QANTMBU8ToCodePage, "\xE6\x97\xA5\xE8\xA1\xA8\xEF\xBD\xB1x"),
              "\x93\xFA\x95\x5C\xB1x");
  }
  const InCodePage in("GB18030");
  EXPECT_EQ(Converted(QANTMBU8ToCodePage, "\xE4\xB8\xAD\xF0\x9F\x98\x80"),
            "\xD6\xD0\x94\x39\xFC\x36");
}

TEST(U8ToCodePage, WhatThePageLacksAndWhatIsInvalidBecomesAQuestionMark) {
  const InCodePage in("windows-1252");
  EXPECT_EQ(Converted(QANTMBU8ToCodePage,
                      "\xE6\x97\xA5"
                      "a\xF0\x9F\x98\x80"),
            "?a?");
  EXPECT_EQ(Converted(QANTMBU8ToCodePage, "a\xE9z\xE2\x82"), "a?z?");
  EXPECT_EQ(Converted(QANTMBU8ToCodePage, "\xEF\xBF\xBD"), "?");
  // Invisible characters are characters too.
  EXPECT_EQ(Converted(QANTMBU8ToCodePage,
                      "a\xE2\x80\x8D"
                      "b"),
            "a?b");
}

TEST(U8ToCodePage, AnInvalidByteIsAQuestionMarkEvenWhereThePageHasAReplacementCharacter) {
  const InCodePage in("GB18030");
  EXPECT_EQ(Converted(QANTMBU8ToCodePage, "a\xFFz"), "a?z");
  EXPECT_EQ(Converted(QANTMBU8ToCodePage, "\xEF\xBF\xBD"), "\x84\x31\xA4\x37");
}

TEST(U8ToCodePage, IntoTheLocalesPageInUtf8Mode) {
  const InCodePage in(nullptr, "windows-1252");
  EXPECT_EQ(Converted(QANTMBU8ToCodePage, "\xC3\xA9"), "\xE9");
}

TEST(WholeText, AConverterNamesTheCodePage) {
  const InCodePage in(nullptr, "windows-1252");
  QANTMBConverter* japanese = QANTMBConverterNew_A("Shift_JIS");
  QANTMBConverter* utf16 = QANTMBConverterNew_A("UTF16");
  EXPECT_EQ(Converted(QANTMBCodePageToU8, "\x93\xFA", japanese), "\xE6\x97\xA5");
  EXPECT_EQ(Converted(QANTMBCodePageToGeneric, "\x93\xFA", japanese), "\xE6\x97\xA5");
  EXPECT_EQ(Converted(QANTMBU8ToCodePage, "\xE6\x97\xA5", japanese), "\x93\xFA");
  const std::string marked = Little(u"\uFEFFa\u00E9\U0001F600");
  EXPECT_EQ(Converted(QANTMBCodePageToU8, marked, utf16), "a\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(Converted(QANTMBCodePageToU8, Big(u"\uFEFFa\u00E9"), utf16), "a\xC3\xA9");
  // What ICU writes as UTF-16 begins with a mark, in its own byte order, and reads back.
  const std::string written = Converted(QANTMBU8ToCodePage, "a\xC3\xA9\xF0\x9F\x98\x80", utf16);
  EXPECT_EQ(Converted(QANTMBCodePageToU8, written, utf16), "a\xC3\xA9\xF0\x9F\x98\x80");
  QANTMBConverterDelete_A(japanese);
  QANTMBConverterDelete_A(utf16);
}

TEST(WholeText, TheCapacityOfTheResultIsKept) {
  const InCodePage in(nullptr, "windows-1252");
  std::string out;
  QANTMBCodePageToU8(nullptr, out, std::string(1000, '\xE9'));
  const std::size_t capacity = out.capacity();
  QANTMBCodePageToU8(nullptr, out, "x");
  EXPECT_EQ(out, "x");
  EXPECT_EQ(out.capacity(), capacity);
}

TEST(WholeText, NulsAreCharacters) {
  const InCodePage in(nullptr, "windows-1252");
  EXPECT_EQ(Converted(QANTMBCodePageToU8, std::string_view("a\0\xE9\0", 4)),
            std::string("a\0\xC3\xA9\0", 5));
}

TEST(Utf16, BothByteOrdersIntoUtf8) {
  const std::u16string_view units = u"A\u00E9\u20AC\uD7FF\uE000\uFFFF\U00010000\U0010FFFF";
  const std::string utf8 =
      "A\xC3\xA9\xE2\x82\xAC\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
  const InCodePage in(nullptr);
  EXPECT_EQ(Converted(QANTMB16to8, Little(units)), utf8);
  EXPECT_EQ(Converted(QANTMB16Revto8, Big(units)), utf8);
  EXPECT_EQ(Converted(QANTMB16toGeneric, Little(units)), utf8);
  EXPECT_EQ(Converted(QANTMB16RevtoGeneric, Big(units)), utf8);
  EXPECT_EQ(Converted(QANTMB16to8, ""), "");
}

TEST(Utf16, LongRunsOfAscii) {
  const InCodePage in(nullptr);
  for (const std::size_t length : {63u, 64u, 65u, 1000u}) {
    const std::u16string units = std::u16string(length, u'x') + u'\u00E9';
    EXPECT_EQ(Converted(QANTMB16to8, Little(units), 2000), std::string(length, 'x') + "\xC3\xA9");
  }
}

TEST(Utf16, IntoACodePage) {
  {
    const InCodePage in("windows-1252");
    EXPECT_EQ(Converted(QANTMB16toGeneric, Little(u"\u20ACa\u65E5\U0001F600")),
              "\x80"
              "a??");
    EXPECT_EQ(Converted(QANTMB16RevtoGeneric, Big(u"\u20ACa\u65E5\U0001F600")),
              "\x80"
              "a??");
    // The other two are UTF-8 in any mode.
    EXPECT_EQ(Converted(QANTMB16to8, Little(u"\u20AC")), "\xE2\x82\xAC");
    EXPECT_EQ(Converted(QANTMB16Revto8, Big(u"\u20AC")), "\xE2\x82\xAC");
  }
  const InCodePage in("Shift_JIS");
  EXPECT_EQ(Converted(QANTMB16toGeneric, Little(u"a\u65E5\u8868")), "a\x93\xFA\x95\x5C");
}

TEST(Utf16, ALoneSurrogateAndAnOddByteAreNoCharacters) {
  const std::string bad = kReplacement;
  const char16_t high = 0xD83D;
  const char16_t low = 0xDE00;
  const InCodePage in(nullptr);
  EXPECT_EQ(Converted(QANTMB16to8, Little(std::u16string{high})), bad);
  EXPECT_EQ(Converted(QANTMB16to8, Little(std::u16string{low})), bad);
  EXPECT_EQ(Converted(QANTMB16to8, Little(std::u16string{high, u'a'})), bad + "a");
  EXPECT_EQ(Converted(QANTMB16to8, Little(std::u16string{low, high})), bad + bad);
  EXPECT_EQ(Converted(QANTMB16to8, Little(std::u16string{high, high, low})),
            bad + "\xF0\x9F\x98\x80");
  EXPECT_EQ(Converted(QANTMB16to8, Little(u"a") + "b"), "a" + bad);
  EXPECT_EQ(Converted(QANTMB16to8, Little(std::u16string{high}) + "b"), bad + bad);
  const InCodePage page("windows-1252");
  EXPECT_EQ(Converted(QANTMB16toGeneric, Little(std::u16string{u'a', high, u'b'}) + "c"), "a?b?");
}

TEST(Utf16, AMarkIsACharacter) {
  const InCodePage in(nullptr);
  EXPECT_EQ(Converted(QANTMB16to8, Little(u"\uFEFFa")),
            "\xEF\xBB\xBF"
            "a");
}

TEST(Buffers, UpToTheTerminator) {
  const InCodePage in(nullptr, "windows-1252");
  const std::string_view wide("\0\0", 2);
  EXPECT_EQ(ConvertedToTerminator(QANTMB16to8, Little(u"a\u0100b"), wide),
            "a\xC4\x80"
            "b");
  EXPECT_EQ(ConvertedToTerminator(QANTMB16Revto8, Big(u"a\u0100b"), wide),
            "a\xC4\x80"
            "b");
  EXPECT_EQ(ConvertedToTerminator(QANTMB16toGeneric, "", wide), "");
  EXPECT_EQ(ConvertedToTerminator(QANTMB16RevtoGeneric, Big(u"a"), wide), "a");
  const std::string_view narrow("\0", 1);
  EXPECT_EQ(ConvertedToTerminator(QANTMB8toGeneric, "a\xC3\xA9", narrow), "a\xC3\xA9");
  EXPECT_EQ(ConvertedToTerminator(QANTMBCodePagetoGeneric, "a\xE9", narrow), "a\xC3\xA9");
  EXPECT_EQ(ConvertedToTerminator(QANTMBCodePageto8, "a\xE9", narrow), "a\xC3\xA9");
}

TEST(Buffers, WithALengthNulsAreCharacters) {
  const InCodePage in(nullptr);
  EXPECT_EQ(Converted(QANTMB16to8, Little(std::u16string_view(u"a\0b\0", 4))),
            std::string("a\0b\0", 4));
  EXPECT_EQ(Converted(QANTMB8toGeneric, std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TEST(Buffers, SourcesAndTargets) {
  {
    const InCodePage in(nullptr, "windows-1252");
    EXPECT_EQ(Converted(QANTMB8toGeneric, "\xC3\xA9\xE9"), std::string("\xC3\xA9") + kReplacement);
    EXPECT_EQ(Converted(QANTMBCodePagetoGeneric, "\xE9"), "\xC3\xA9");
    EXPECT_EQ(Converted(QANTMBCodePageto8, "\xE9"), "\xC3\xA9");
  }
  const InCodePage in("Shift_JIS");
  EXPECT_EQ(Converted(QANTMB8toGeneric, "\xE6\x97\xA5\xC3\xA9"), "\x93\xFA?");
  EXPECT_EQ(Converted(QANTMBCodePagetoGeneric, "\x93\xFA\xFF"), "\x93\xFA?");
  EXPECT_EQ(Converted(QANTMBCodePageto8, "\x93\xFA"), "\xE6\x97\xA5");
}

TEST(Buffers, ARoomThatIsTooSmallTakesWholeCharactersOnly) {
  {
    const InCodePage in(nullptr, "windows-1252");
    EXPECT_EQ(Converted(QANTMB16to8, Little(u"ab\u20ACd"), 0), "");
    EXPECT_EQ(Converted(QANTMB16to8, Little(u"ab\u20ACd"), 1), "a");
    EXPECT_EQ(Converted(QANTMB16to8, Little(u"ab\u20ACd"), 4), "ab");
    EXPECT_EQ(Converted(QANTMB16to8, Little(u"ab\u20ACd"), 5), "ab\xE2\x82\xAC");
    EXPECT_EQ(Converted(QANTMB8toGeneric, "a\xC3\xA9\xC3\xA8", 4), "a\xC3\xA9");
    EXPECT_EQ(Converted(QANTMB8toGeneric,
                        "a\xFF"
                        "b",
                        3),
              "a");
    EXPECT_EQ(Converted(QANTMBCodePageto8, "a\xE9\xE8", 4), "a\xC3\xA9");
    // Nothing follows a character that did not fit, though it would have had room.
    EXPECT_EQ(Converted(QANTMBCodePageto8, "a\xE9z", 2), "a");
  }
  const InCodePage in("Shift_JIS");
  EXPECT_EQ(Converted(QANTMBCodePagetoGeneric, "a\x93\xFA\x96\x7B", 4), "a\x93\xFA");
  EXPECT_EQ(Converted(QANTMB16toGeneric, Little(u"a\u65E5z"), 2), "a");
}

}  // namespace
}  // namespace embedded
