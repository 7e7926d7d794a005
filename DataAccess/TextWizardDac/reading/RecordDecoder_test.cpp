// Raw records into host text, in both modes of the host.
#include "reading/RecordDecoder.h"

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace textwizard {
namespace {

using embedded::InCodePage;
using namespace std::string_literals;

constexpr ByteOrderMark kLittle = ByteOrderMark::kUtf16LittleEndian;
constexpr ByteOrderMark kBig = ByteOrderMark::kUtf16BigEndian;

std::string Decoded8(FileEncoding encoding, std::string_view raw) {
  RecordDecoder decoder(encoding);
  return std::string(decoder.Decode(raw, ByteOrderMark::kNone));
}

std::string Decoded16(std::string_view raw, ByteOrderMark mark,
                      FileEncoding encoding = kEncodingNone) {
  RecordDecoder decoder(encoding);
  return std::string(decoder.Decode(raw, mark));
}

TEST(RecordDecoder, InUtf8ModeTheLocalesCodePageBecomesUtf8) {
  const InCodePage host(nullptr, "windows-1252");
  EXPECT_EQ(Decoded8(kEncodingLocale, "a\xE9\x80"), "a\xC3\xA9\xE2\x82\xAC");
  EXPECT_EQ(Decoded8(kEncodingLocale, "plain"), "plain");
}

TEST(RecordDecoder, InUtf8ModeUtf8StaysAsRead) {
  const InCodePage host(nullptr);
  EXPECT_EQ(Decoded8(kEncodingUtf8, "a\xC3\xA9\xFF"), "a\xC3\xA9\xFF");
}

TEST(RecordDecoder, InACodePageUtf8BecomesThePage) {
  const InCodePage host("windows-1252");
  EXPECT_EQ(Decoded8(kEncodingUtf8, "a\xC3\xA9\xE2\x82\xAC"), "a\xE9\x80");
  EXPECT_EQ(Decoded8(kEncodingUtf8, "plain"), "plain");
  // A character that the page lacks, and bytes that are none.
  EXPECT_EQ(Decoded8(kEncodingUtf8, "\xE4\xB8\xAD"), "?");
}

TEST(RecordDecoder, InACodePageTheLocalesPageIsThatPage) {
  const InCodePage host("windows-1252");
  EXPECT_EQ(Decoded8(kEncodingLocale, "a\xE9\x80"), "a\xE9\x80");
}

TEST(RecordDecoder, WithoutAnEncodingRecordsStayAsRead) {
  for (const FileEncoding encoding :
       {kEncodingNone, kEncodingUtf16BigEndian, kEncodingUtf16LittleEndian}) {
    EXPECT_EQ(Decoded8(encoding, "a\xE9\xFF"), "a\xE9\xFF");
  }
}

TEST(RecordDecoder, AnUtf8MarkDoesNotChangeTheChoice) {
  const InCodePage host(nullptr, "windows-1252");
  RecordDecoder decoder(kEncodingLocale);
  EXPECT_EQ(decoder.Decode("\xE9", ByteOrderMark::kUtf8), "\xC3\xA9");
}

TEST(RecordDecoder, TextThatStaysIsAViewOfTheRecord) {
  const InCodePage host(nullptr, "windows-1252");
  const std::string raw = "abc";
  RecordDecoder locale(kEncodingLocale);
  EXPECT_EQ(locale.Decode8(raw).data(), raw.data());
  RecordDecoder none(kEncodingNone);
  EXPECT_EQ(none.Decode8(raw).data(), raw.data());
}

TEST(RecordDecoder, AsciiIsConvertedWhereAPageHasAnother) {
  // In this page 5C is a yen sign or a backslash, as the host's converter has it; both ways of
  // converting agree.
  const InCodePage host(nullptr, "Shift_JIS");
  std::string whole;
  QANTMBCodePageToU8(nullptr, whole, "a\\b~c");
  EXPECT_EQ(Decoded8(kEncodingLocale, "a\\b~c"), whole);
}

TEST(RecordDecoder, Utf16BecomesUtf8InBothOrders) {
  const InCodePage host(nullptr);
  EXPECT_EQ(Decoded16("a\0\xE9\0\xAC\x20"s, kLittle), "a\xC3\xA9\xE2\x82\xAC");
  EXPECT_EQ(Decoded16("\0a\0\xE9\x20\xAC"s, kBig), "a\xC3\xA9\xE2\x82\xAC");
  EXPECT_EQ(Decoded16("\x3D\xD8\x00\xDE"s, kLittle), "\xF0\x9F\x98\x80");
  EXPECT_EQ(Decoded16("a\0b\0"s, kLittle), "ab");
  EXPECT_EQ(Decoded16("\0a\0b"s, kBig), "ab");
  EXPECT_EQ(Decoded16("", kBig), "");
}

TEST(RecordDecoder, Utf16TakesNoNoticeOfTheEncoding) {
  const InCodePage host(nullptr, "windows-1252");
  for (const FileEncoding encoding : {kEncodingLocale, kEncodingUtf8, kEncodingUtf16BigEndian}) {
    EXPECT_EQ(Decoded16("\xE9\0"s, kLittle, encoding), "\xC3\xA9");
  }
}

TEST(RecordDecoder, Utf16BecomesTheCodePage) {
  const InCodePage host("windows-1252");
  EXPECT_EQ(Decoded16("a\0\xE9\0\xAC\x20"s, kLittle), "a\xE9\x80");
  EXPECT_EQ(Decoded16("\0a\0\xE9\x20\xAC"s, kBig), "a\xE9\x80");
}

TEST(RecordDecoder, AUnitThatIsNoCharacterIsReplaced) {
  const InCodePage host(nullptr);
  EXPECT_EQ(Decoded16("a\0\x00\xD8"s, kLittle), "a\xEF\xBF\xBD");
}

TEST(RecordDecoder, EveryUnitHasRoomAndAsciiIsNotConfusedWithItsNeighbours) {
  const InCodePage host(nullptr);
  for (unsigned unit = 1; unit < 0x10000; ++unit) {
    std::string raw;
    for (int i = 0; i < 3; ++i) {
      raw.append({static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)});
    }
    char out[32];
    const std::size_t size = QANTMB16to8(out, sizeof out, raw.data(), raw.size());
    ASSERT_EQ(Decoded16(raw, kLittle), std::string(out, size)) << unit;
  }
}

TEST(RecordDecoder, AShortRecordAfterALongOneIsItsOwnText) {
  const InCodePage host(nullptr);
  RecordDecoder decoder(kEncodingNone);
  EXPECT_EQ(decoder.Decode16("a\0b\0c\0d\0"s, kLittle), "abcd");
  EXPECT_EQ(decoder.Decode16("\xE9\0"s, kLittle), "\xC3\xA9");
}

}  // namespace
}  // namespace textwizard
