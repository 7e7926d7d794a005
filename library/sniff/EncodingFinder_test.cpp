// Encodings from bytes. The texts are written for these tests.

#include "library/sniff/EncodingFinder.h"

#include <string>
#include <string_view>

#include <unicode/ucnv.h>

#include "library/sniff/testing/SniffTest.h"

namespace library {
namespace {

constexpr std::string_view kRussian =
    "Город;Население;Примечание\nМосква;12000000;столица страны, много людей\n"
    "Казань;1200000;большой город на Волге\nПсков;200000;старый город, был крепостью\n";
constexpr std::string_view kGreek =
    "Πόλη;Πληθυσμός;Σημείωση\nΑθήνα;660000;η πρωτεύουσα της χώρας\n"
    "Πάτρα;170000;ένα λιμάνι στη δύση\nΒόλος;85000;πόλη κοντά στο βουνό\n";
constexpr std::string_view kPolish =
    "miasto;uwagi\nŁódź;dawniej ośrodek przemysłu włókienniczego\n"
    "Wrocław;leży nad Odrą, ma wiele mostów\nGdańsk;port nad Bałtykiem, żegluga i źródło "
    "bogactwa\n";
constexpr std::string_view kHungarian =
    "város;megjegyzés\nGyőr;a folyók városa, öt híd köti össze\nPécs;régi egyetem működik itt\n"
    "Szeged;a napfény városa, sok hűvös kút\n";
constexpr std::string_view kFrench =
    "ville;remarque\nOrléans;située près de la Loire, très fréquentée\n"
    "Nîmes;connue pour ses arènes, où l'été est chaud\nBesançon;entourée par une rivière\n";
constexpr std::string_view kTurkish =
    "şehir;açıklama\nİzmir;deniz kıyısında büyük bir şehir\nEskişehir;öğrencilerin çoğu burada\n"
    "Muğla;dağların arasında küçük bir ilçe\n";
constexpr std::string_view kHebrew =
    "עיר;הערה\nירושלים;בירת המדינה ועיר עתיקה\nחיפה;עיר נמל על הר הכרמל\n";
constexpr std::string_view kArabic =
    "مدينة;ملاحظة\nالقاهرة;عاصمة البلاد وأكبر المدن\nالإسكندرية;ميناء على البحر المتوسط\n";
constexpr std::string_view kThai =
    "เมือง;หมายเหตุ\nกรุงเทพ;เมืองหลวงของประเทศไทย\nเชียงใหม่;เมืองทางเหนือที่มีภูเขาและวัดมากมาย\n";
constexpr std::string_view kJapanese =
    "都市,備考\n東京,日本の首都であり、人口が最も多い都市です。\n大阪,"
    "食べ物がおいしいことで知られています。\n"
    "京都,古いお寺がたくさんあります。\n";
constexpr std::string_view kChinese =
    "城市,备注\n北京,中国的首都，人口很多。\n上海,这是一个很大的港口城市，有很多公司。\n"
    "广州,南方的城市，天气很热。\n";
constexpr std::string_view kTaiwan =
    "城市,備註\n台北,這是一個很大的城市，有很多公司和學校。\n高雄,南部的港口，天氣很熱。\n"
    "台中,我們在這裡生活了很多年。\n";
constexpr std::string_view kKorean =
    "도시,비고\n서울,대한민국의 수도이며 인구가 가장 많은 도시입니다.\n부산,바다에 있는 큰 항구 "
    "도시입니다.\n";

class EncodingFinderTest : public SniffTest {
 protected:
  static EncodingAnswer Find(std::string_view bytes) {
    MemorySource source(bytes, true);
    SampleBytes sample;
    std::string problem;
    EXPECT_TRUE(sample.Read(source, &problem)) << problem;
    return FindEncoding(sample);
  }
  // The answer decodes to the text that was written.
  static void ExpectFound(const char* encoding, std::string_view utf8) {
    const std::string bytes = In(encoding, utf8);
    const EncodingAnswer answer = Find(bytes);
    icu::UnicodeString decoded(bytes.data(), static_cast<int32_t>(bytes.size()),
                               answer.converter.c_str());
    std::string back;
    decoded.toUTF8String(back);
    EXPECT_EQ(back, utf8) << encoding << " taken for " << answer.encoding.value;
  }
};

TEST_F(EncodingFinderTest, AMarkDecides) {
  EXPECT_EQ(Find("\xEF\xBB\xBF"
                 "a")
                .encoding.value,
            "UTF-8");
  EXPECT_EQ(Find("\xEF\xBB\xBF"
                 "a")
                .markLength,
            3U);
  EXPECT_EQ(Find(std::string("\xFF\xFE"
                             "a\0",
                             4))
                .converter,
            "UTF-16LE");
  EXPECT_EQ(Find(std::string("\xFE\xFF\0a", 4)).converter, "UTF-16BE");
  EXPECT_EQ(Find(std::string("\xFF\xFE\0\0a\0\0\0", 8)).converter, "UTF-32LE");
  EXPECT_EQ(Find(std::string("\0\0\xFE\xFF\0\0\0a", 8)).converter, "UTF-32BE");
  // Characters whose last byte is zero.
  EXPECT_EQ(Find(std::string("\0\0\x4E\0\0\0\0,\0\0\0\x31\0\0\0\n", 16)).converter, "UTF-32BE");
  EXPECT_EQ(Find(std::string("\xFE\xFF\0a", 4)).verdict, Verdict::kCertain);
}

TEST_F(EncodingFinderTest, ZeroBytesTellWideTextWithoutAMark) {
  for (const char* name : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
    EXPECT_EQ(Find(In(name, "id,name\n1,Anna\n2,Bob\n")).encoding.value, name);
  }
  ExpectFound("UTF-16LE", kRussian);
  ExpectFound("UTF-16BE", kJapanese);
}

TEST_F(EncodingFinderTest, NulsInPlainTextAreNotWideText) {
  EXPECT_EQ(Find(std::string("id,name\n1,An\0na\n2,Bob\n", 22)).encoding.value, "UTF-8");
}

TEST_F(EncodingFinderTest, AsciiIsCertainAndReadAlikeElsewhere) {
  const EncodingAnswer answer = Find("id,name\n1,Anna\n");
  EXPECT_EQ(answer.encoding.value, "UTF-8");
  EXPECT_EQ(answer.verdict, Verdict::kCertain);
  EXPECT_FALSE(answer.same.empty());
}

TEST_F(EncodingFinderTest, ValidUtf8IsUtf8) {
  for (const std::string_view text : {kRussian, kJapanese, kFrench, kThai}) {
    const EncodingAnswer answer = Find(text);
    EXPECT_EQ(answer.encoding.value, "UTF-8");
    EXPECT_EQ(answer.verdict, Verdict::kCertain);
  }
}

TEST_F(EncodingFinderTest, CyrillicPagesAreToldApart) {
  for (const char* name :
       {"windows-1251", "KOI8-R", "ISO-8859-5", "IBM866", "IBM855", "maccyrillic"}) {
    ExpectFound(name, kRussian);
  }
}

TEST_F(EncodingFinderTest, PagesOfOtherScriptsAreFound) {
  for (const char* name : {"ISO-8859-7", "windows-1253"}) ExpectFound(name, kGreek);
  for (const char* name : {"ISO-8859-8", "windows-1255"}) ExpectFound(name, kHebrew);
  for (const char* name : {"ISO-8859-6", "windows-1256"}) ExpectFound(name, kArabic);
  ExpectFound("TIS-620", kThai);
}

TEST_F(EncodingFinderTest, LatinPagesAreToldApartByTheirLetters) {
  for (const char* name : {"ISO-8859-1", "windows-1252", "IBM850", "macroman"}) {
    ExpectFound(name, kFrench);
  }
  for (const char* name : {"ISO-8859-2", "windows-1250", "IBM852"}) {
    ExpectFound(name, kPolish);
    ExpectFound(name, kHungarian);
  }
  for (const char* name : {"ISO-8859-9", "windows-1254"}) ExpectFound(name, kTurkish);
}

TEST_F(EncodingFinderTest, EncodingsOfManyBytesAreFound) {
  for (const char* name : {"Shift_JIS", "EUC-JP", "ISO-2022-JP"}) ExpectFound(name, kJapanese);
  for (const char* name : {"GB2312", "GB18030"}) ExpectFound(name, kChinese);
  ExpectFound("Big5", kTaiwan);
  ExpectFound("EUC-KR", kKorean);
}

TEST_F(EncodingFinderTest, Bytes80To9FSpeakForTheWindowsPages) {
  EXPECT_EQ(Find("price\n12 \x80\n\x93quoted\x94\n").encoding.value, "windows-1252");
}

TEST_F(EncodingFinderTest, PagesThatDecodeAlikeAreTold) {
  const EncodingAnswer answer = Find(In("windows-1252", kFrench));
  EXPECT_NE(std::find(answer.same.begin(), answer.same.end(), "windows-1252"), answer.same.end());
}

TEST_F(EncodingFinderTest, AFewLettersAreNoCertainty) {
  EXPECT_NE(Find("name\nM\xFCller\n").verdict, Verdict::kCertain);
}

}  // namespace
}  // namespace library
