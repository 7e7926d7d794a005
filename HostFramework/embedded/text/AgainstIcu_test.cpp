// The tables and loops of this folder against ICU's own conversion of whole texts.
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace embedded {
namespace {

constexpr const char* kPages[] = {"UTF-8",  "windows-1252", "ISO-8859-1", "ISO-8859-15", "KOI8-R",
                                  "IBM437", "TIS-620",      "US-ASCII",   "Shift_JIS",   "GBK",
                                  "Big5",   "EUC-KR",       "GB2312",     "EUC-JP",      "GB18030",
                                  "EUC-TW", "Big5-HKSCS",   "windows-949"};

// Bytes of which many are characters of `page`: pieces of valid text between random ones.
std::string Mixed(std::mt19937& random, UConverter* converter) {
  std::string text;
  for (int piece = 0; piece < 6; ++piece) {
    if (random() % 3 == 0) {
      text += RandomBytes(random, random() % 5);
      continue;
    }
    const UChar ch = static_cast<UChar>(random() % 0xD800);
    char code[8];
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = ucnv_fromUChars(converter, code, sizeof code, &ch, 1, &error);
    if (U_SUCCESS(error)) text.append(code, static_cast<std::size_t>(length));
  }
  return text;
}

void PutReplacement(const void*, UConverterToUnicodeArgs* args, const char*, int32_t,
                    UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;
  *error = U_ZERO_ERROR;
  const UChar replacement = 0xFFFD;
  ucnv_cbToUWriteUChars(args, &replacement, 1, 0, error);
}

void PutQuestionMark(const void*, UConverterFromUnicodeArgs* args, const UChar*, int32_t, UChar32,
                     UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;
  *error = U_ZERO_ERROR;
  ucnv_cbFromUWriteBytes(args, "?", 1, 0, error);
}

class AgainstIcu : public testing::TestWithParam<const char*> {
 protected:
  AgainstIcu() {
    UErrorCode error = U_ZERO_ERROR;
    page_ = ucnv_open(GetParam(), &error);
    utf8_ = ucnv_open("UTF-8", &error);
    ucnv_setToUCallBack(page_, PutReplacement, nullptr, nullptr, nullptr, &error);
    ucnv_setToUCallBack(utf8_, PutReplacement, nullptr, nullptr, nullptr, &error);
    ucnv_setFromUCallBack(page_, PutQuestionMark, nullptr, nullptr, nullptr, &error);
    EXPECT_TRUE(U_SUCCESS(error));
  }
  ~AgainstIcu() override {
    ucnv_close(page_);
    ucnv_close(utf8_);
  }

  std::u16string Decode(UConverter* converter, std::string_view bytes) {
    std::u16string units(bytes.size() * 2 + 8, u'\0');
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length =
        ucnv_toUChars(converter, units.data(), static_cast<int32_t>(units.size()), bytes.data(),
                      static_cast<int32_t>(bytes.size()), &error);
    EXPECT_TRUE(U_SUCCESS(error));
    units.resize(static_cast<std::size_t>(length));
    return units;
  }
  std::string Encode(UConverter* converter, std::u16string_view units) {
    std::string bytes(units.size() * 8 + 8, '\0');
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length =
        ucnv_fromUChars(converter, bytes.data(), static_cast<int32_t>(bytes.size()), units.data(),
                        static_cast<int32_t>(units.size()), &error);
    EXPECT_TRUE(U_SUCCESS(error));
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
  }

  UConverter* page_ = nullptr;
  UConverter* utf8_ = nullptr;
  std::mt19937 random_{4};
};

// In host text the three control characters that ICU rotates in some pages are ASCII.
bool HasRotated(std::string_view text) { return text.find_first_of("\x1A\x1C\x7F") != text.npos; }

TEST_P(AgainstIcu, IntoUtf8) {
  const InCodePage in(nullptr, GetParam());
  for (int round = 0; round < 20000; ++round) {
    const std::string text = Mixed(random_, page_);
    if (HasRotated(text)) continue;
    std::string out;
    QANTMBCodePageToU8(nullptr, out, Exact(text).view());
    ASSERT_EQ(out, Encode(utf8_, Decode(page_, text))) << testing::PrintToString(text);
  }
}

TEST_P(AgainstIcu, FromUtf8) {
  const InCodePage in(nullptr, GetParam());
  for (int round = 0; round < 20000; ++round) {
    const std::string text = Mixed(random_, random_() % 2 == 0 ? utf8_ : page_);
    if (HasRotated(text)) continue;
    // An invalid byte is a question mark in a page; ICU's way through U+FFFD cannot tell it apart.
    const std::u16string units = Decode(utf8_, text);
    if (units.find(u'\uFFFD') != units.npos) continue;
    std::string out;
    QANTMBU8ToCodePage(nullptr, out, Exact(text).view());
    ASSERT_EQ(out, Encode(page_, units)) << testing::PrintToString(text);
  }
}

TEST_P(AgainstIcu, Utf16IntoHostText) {
  const InCodePage in(GetParam());
  for (int round = 0; round < 20000; ++round) {
    std::u16string units;
    for (std::size_t count = random_() % 20; count > 0; --count) {
      const auto code = static_cast<char16_t>(1 + random_() % 0xD7FF);
      units += random_() % 2 == 0 ? static_cast<char16_t>(1 + code % 0x19) : code;
      if (random_() % 8 == 0) units += u"\U0001F600";
    }
    std::string bytes;
    for (const char16_t unit : units) {
      bytes += static_cast<char>(unit & 0xFF);
      bytes += static_cast<char>(unit >> 8);
    }
    std::string out(units.size() * 4, '\0');
    out.resize(QANTMB16toGeneric(out.data(), out.size(), Exact(bytes).get(), bytes.size()));
    if (HasRotated(out)) continue;
    ASSERT_EQ(out, Encode(page_, units));
  }
}

// A text of the page that goes into UTF-8 and back differs only where two codes mean one character.
TEST_P(AgainstIcu, ThereAndBackIsTheSameText) {
  const InCodePage in(nullptr, GetParam());
  for (int round = 0; round < 20000; ++round) {
    std::u16string units;
    for (int count = 0; count < 8; ++count) units += static_cast<char16_t>(random_() % 0xD800);
    std::string text = Encode(page_, units);
    if (HasRotated(text)) continue;
    std::string utf8, back;
    QANTMBCodePageToU8(nullptr, utf8, text);
    QANTMBU8ToCodePage(nullptr, back, utf8);
    ASSERT_EQ(back, Encode(page_, Decode(page_, text)));
  }
}

// Cutting by characters and converting whole agree on what is a character.
TEST_P(AgainstIcu, OneCharacterAtATime) {
  const InCodePage in(GetParam());
  for (int round = 0; round < 20000; ++round) {
    const std::string text = Mixed(random_, page_);
    if (HasRotated(text) || text.find('\0') != text.npos) continue;
    const std::u16string units = Decode(page_, text);
    if (units.find(u'\uFFFD') != units.npos) continue;
    std::u16string got;
    const Exact exact = Terminated(text);
    for (const char* at = exact.get(); *at != '\0';) {
      std::uint32_t ch = 0;
      const int length = QANTMBU32Get_A(&ch, at, 0, 8);
      ASSERT_GT(length, 0);
      const std::u16string piece = Decode(page_, {at, static_cast<std::size_t>(length)});
      char32_t first = piece[0];
      if (piece.size() > 1 && U16_IS_LEAD(piece[0])) {
        first = static_cast<char32_t>(U16_GET_SUPPLEMENTARY(piece[0], piece[1]));
      }
      ASSERT_EQ(ch, first);
      got += piece;
      at += length;
    }
    ASSERT_EQ(got, units);
  }
}

// Encodings that host text cannot be in are converted by a converter of their name.
class ConverterAgainstIcu : public AgainstIcu {};

TEST_P(ConverterAgainstIcu, IntoUtf8AndBack) {
  const InCodePage in(nullptr);
  QANTMBConverter* converter = QANTMBConverterNew_A(GetParam());
  ASSERT_NE(converter, nullptr);
  int wentBack = 0;
  for (int round = 0; round < 20000; ++round) {
    const std::string text =
        round % 50 == 0 ? RandomBytes(random_, random_() % 2000) : Mixed(random_, page_);
    std::string utf8, back, again;
    QANTMBCodePageToU8(converter, utf8, Exact(text).view());
    ASSERT_EQ(utf8, Encode(utf8_, Decode(page_, text))) << testing::PrintToString(text);
    if (utf8.find("\xEF\xBF\xBD") != utf8.npos) continue;
    // Some of these encodings have several ways to write a text.
    QANTMBU8ToCodePage(converter, back, utf8);
    QANTMBCodePageToU8(converter, again, back);
    ASSERT_EQ(again, utf8);
    ++wentBack;
  }
  EXPECT_GT(wentBack, 100);
  std::string empty = "not empty";
  QANTMBCodePageToU8(converter, empty, {});
  EXPECT_EQ(empty, "");
  QANTMBConverterDelete_A(converter);
}

std::string TestName(const testing::TestParamInfo<const char*>& tested) {
  std::string name = tested.param;
  for (char& ch : name) ch = ch == '-' ? '_' : ch;
  return name;
}

INSTANTIATE_TEST_SUITE_P(Pages, AgainstIcu, testing::ValuesIn(kPages), TestName);
INSTANTIATE_TEST_SUITE_P(Encodings, ConverterAgainstIcu,
                         testing::Values("UTF-16", "UTF-16LE", "UTF-16BE", "UTF-32", "UTF-7",
                                         "ISO-2022-JP", "HZ-GB-2312", "SCSU"),
                         TestName);

}  // namespace
}  // namespace embedded
