#include "wizard/TextWizardDACHandler.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "HostFramework/embedded/packages/PackageRegistry.h"
#include "HostFramework/embedded/text/HostText.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

extern "C" int DllMain(void* handle, unsigned reason);

namespace textwizard {
namespace {

namespace fs = std::filesystem;

class WizardTest : public testing::Test {
 protected:
  void SetUp() override { embedded::SetCodePage(nullptr); }
  void TearDown() override {
    embedded::SetLocaleCodePage(nullptr);
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  std::string File(const std::string& bytes) {
    fs::create_directories(folder_);
    const std::string path = (folder_ / "data.txt").string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

  // All records of an open handler.
  static std::vector<std::string> Records(TextWizardDACHandler& handler) {
    std::vector<std::string> records;
    for (char* record = nullptr; handler.GetRecord(&record);) records.emplace_back(record);
    return records;
  }

  std::vector<std::string> RecordsOf(const std::string& bytes, const std::string& encoding) {
    TextWizardDACHandler handler(nullptr);
    EXPECT_TRUE(handler.OpenFile(File(bytes), encoding));
    return Records(handler);
  }

  FileOpenResponse Call(unsigned short method, const FileOpenRequest& request) {
    FileOpenResponse response(DACErrorResponse(1, "left over"));
    EXPECT_EQ(handler_.OnCallSynchronous(method, request, response), 0);
    return response;
  }

  TextWizardDacStringResponse Record() {
    TextWizardDacStringResponse response;
    EXPECT_EQ(handler_.OnCallSynchronous(1004, FileOpenRequest(), response), 0);
    return response;
  }

  const fs::path folder_ =
      fs::temp_directory_path() / ("textwizard-wizard-" + std::to_string(getpid()));
  TextWizardDACHandler handler_{nullptr};
};

std::string Utf16(const std::u16string& units, bool bigEndian) {
  std::string bytes;
  for (const char16_t unit : units) {
    const auto low = static_cast<char>(unit & 0xFF);
    const auto high = static_cast<char>(unit >> 8);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

TEST_F(WizardTest, RecordsComeWithoutOneLineFeed) {
  EXPECT_EQ(RecordsOf("a,b\nlonger than the first\n\nlast", "UTF-8"),
            (std::vector<std::string>{"a,b", "longer than the first", "\n", "last"}));
}

TEST_F(WizardTest, AReturnBeforeTheLineFeedStays) {
  EXPECT_EQ(RecordsOf("ab\r\ncd\r\n", "UTF-8"), (std::vector<std::string>{"ab\r", "cd\r"}));
}

TEST_F(WizardTest, ReturnsAloneDoNotEndARecord) {
  EXPECT_EQ(RecordsOf("ab\rcd\ref", "UTF-8"), (std::vector<std::string>{"ab\rcd\ref"}));
}

TEST_F(WizardTest, NulBytesAreDropped) {
  EXPECT_EQ(RecordsOf(std::string("a\0b\0\nc\n", 7), "UTF-8"),
            (std::vector<std::string>{"ab", "c"}));
}

TEST_F(WizardTest, AnEmptyFileHasNoRecords) { EXPECT_TRUE(RecordsOf("", "UTF-8").empty()); }

TEST_F(WizardTest, BothUtf16OrdersAreRead) {
  for (const bool bigEndian : {false, true}) {
    EXPECT_EQ(RecordsOf(Utf16(u"\uFEFFah\u00e9\r\nsecond, longer\U0001F600\n\nz", bigEndian), ""),
              (std::vector<std::string>{"ah\u00e9", "second, longer\U0001F600", "", "z"}));
    EXPECT_EQ(
        RecordsOf(Utf16(u"one\ntwo\n", bigEndian), bigEndian ? "UTF-16BE" : "UTF-16LE").back(),
        "two");
  }
}

TEST_F(WizardTest, AnEmptyFirstLineOfUtf16IsARecord) {
  EXPECT_EQ(RecordsOf(Utf16(u"\uFEFF\nab\n", false), ""), (std::vector<std::string>{"", "ab"}));
}

TEST_F(WizardTest, LocaleTextIsConverted) {
  ASSERT_TRUE(embedded::SetLocaleCodePage("ISO-8859-1"));
  EXPECT_EQ(RecordsOf("caf\xE9\n", "Locale"), (std::vector<std::string>{"caf\u00e9"}));
}

TEST_F(WizardTest, OnlyThreeNamesChooseAnotherModeThanBytes) {
  ASSERT_TRUE(embedded::SetLocaleCodePage("ISO-8859-1"));
  for (const char* name : {"UTF8", "UTF16", "UTF16LE", "UTF16BE", "Locale", "anything"}) {
    EXPECT_EQ(RecordsOf("caf\xE9\n", name), (std::vector<std::string>{"caf\u00e9"})) << name;
  }
  EXPECT_EQ(RecordsOf("caf\u00e9\n", "UTF-8"), (std::vector<std::string>{"caf\u00e9"}));
}

TEST_F(WizardTest, Utf16KeepsTheModeOnlyOnceAFileHadNoMark) {
  ASSERT_TRUE(embedded::SetLocaleCodePage("ISO-8859-1"));
  const std::string path = File("\u00e9\n");
  const auto first = [&](const std::string& encoding) {
    EXPECT_TRUE(handler_.OpenFile(path, encoding));
    std::vector<std::string> records = Records(handler_);
    EXPECT_TRUE(handler_.CloseFile());
    return records.empty() ? "" : records[0];
  };
  EXPECT_EQ(first("UTF-16"), "\u00c3\u00a9");
  EXPECT_EQ(first("UTF-8"), "\u00e9");
  EXPECT_EQ(first("UTF-16"), "\u00e9");
  // Without a name nothing is chosen.
  EXPECT_EQ(first(""), "\u00e9");
  EXPECT_EQ(first("Locale"), "\u00c3\u00a9");
}

TEST_F(WizardTest, AUtf16FileWithoutAMarkBeginsWithItsFirstCharacter) {
  for (const bool bigEndian : {false, true}) {
    const char* const name = bigEndian ? "UTF-16BE" : "UTF-16LE";
    const std::string text = Utf16(u"abc\nd", bigEndian);
    EXPECT_EQ(RecordsOf(text, name), (std::vector<std::string>{"abc", "d"}));
    // Also after it was rewound, and by the name that keeps the mode of a file without a mark.
    const std::string path = File(text);
    for (const char* const encoding : {name, "UTF-16"}) {
      ASSERT_TRUE(handler_.OpenFile(path, encoding));
      EXPECT_EQ(Records(handler_), (std::vector<std::string>{"abc", "d"})) << encoding;
      EXPECT_TRUE(handler_.SeekBegin());
      EXPECT_EQ(Records(handler_), (std::vector<std::string>{"abc", "d"})) << encoding;
      EXPECT_TRUE(handler_.CloseFile());
    }
    // A mark that is met clears it.
    ASSERT_TRUE(handler_.OpenFile(File(Utf16(u"\uFEFFabc", bigEndian)), name));
    EXPECT_EQ(Records(handler_), std::vector<std::string>{"abc"});
    EXPECT_TRUE(handler_.CloseFile());
  }
}

TEST_F(WizardTest, AMarkDecidesBeforeTheName) {
  EXPECT_EQ(RecordsOf("\uFEFF\u00e9", "UTF-16LE"), (std::vector<std::string>{"\u00e9"}));
  EXPECT_EQ(RecordsOf(Utf16(u"\uFEFF\u00e9", false), "UTF-16BE"),
            (std::vector<std::string>{"\u00e9"}));
  EXPECT_EQ(RecordsOf(Utf16(u"\uFEFF\u00e9", true), "UTF-8"), (std::vector<std::string>{"\u00e9"}));
}

TEST_F(WizardTest, AMarkNeedsAFileOfThreeBytes) {
  ASSERT_TRUE(embedded::SetLocaleCodePage("ISO-8859-1"));
  EXPECT_EQ(RecordsOf("\xFF\xFE", "Locale"), (std::vector<std::string>{"\u00ff\u00fe"}));
  // The start of a UTF-32 mark is a UTF-16 one; the odd byte is a unit with FF.
  EXPECT_EQ(RecordsOf(std::string("\xFF\xFE\0", 3), "Locale"),
            (std::vector<std::string>{"\uFF00"}));
}

TEST_F(WizardTest, InACodePageEveryModeGivesThatPage) {
  const embedded::InCodePage host("windows-1252");
  const std::vector<std::string> expected = {"caf\xE9 \x80"};
  EXPECT_EQ(RecordsOf("caf\xE9 \x80\n", "Locale"), expected);
  EXPECT_EQ(RecordsOf("caf\u00e9 \u20ac\n", "UTF-8"), expected);
  EXPECT_EQ(RecordsOf(Utf16(u"\uFEFFcaf\u00e9 \u20ac\n", false), ""), expected);
  EXPECT_EQ(RecordsOf(Utf16(u"\uFEFFcaf\u00e9 \u20ac\n", true), ""), expected);
}

TEST_F(WizardTest, AUtf32MarkCannotBeOpened) {
  EXPECT_FALSE(handler_.OpenFile(File(std::string("\xFF\xFE\0\0a\0\0\0", 8)), "UTF-8"));
  EXPECT_FALSE(handler_.OpenFile(File(std::string("\0\0\xFE\xFF\0\0\0a", 8)), "UTF-8"));
}

TEST_F(WizardTest, ADirectoryOrAMissingFileCannotBeOpened) {
  fs::create_directories(folder_);
  EXPECT_FALSE(handler_.OpenFile(folder_.string(), "UTF-8"));
  EXPECT_FALSE(handler_.OpenFile((folder_ / "none").string(), "UTF-8"));
}

TEST_F(WizardTest, SeekBeginPassesAUtf8Mark) {
  const std::string path = File(
      "\xEF\xBB\xBF"
      "abc\n");
  ASSERT_TRUE(handler_.OpenFile(path, "UTF-8"));
  EXPECT_TRUE(handler_.SeekBegin());
  // The first record read from there is the text behind the three bytes of the mark.
  EXPECT_EQ(Records(handler_), (std::vector<std::string>{"abc"}));
  EXPECT_TRUE(handler_.SeekBegin());
  EXPECT_EQ(Records(handler_), (std::vector<std::string>{"abc"}));
}

TEST_F(WizardTest, OnlyOneFileIsOpenAtATime) {
  const std::string path = File("a\n");
  ASSERT_TRUE(handler_.OpenFile(path, "UTF-8"));
  EXPECT_FALSE(handler_.OpenFile(path, "UTF-8"));
  EXPECT_TRUE(handler_.CloseFile());
  EXPECT_FALSE(handler_.CloseFile());
  EXPECT_FALSE(handler_.SeekBegin());
  EXPECT_TRUE(handler_.OpenFile(path, "UTF-8"));
}

TEST_F(WizardTest, CallsOpenReadRewindAndClose) {
  const FileOpenRequest file(File("first\nsecond\n"), "UTF-8", false);
  EXPECT_FALSE(Call(1002, file).HasError());
  EXPECT_EQ(Record().GetText(), "first");
  EXPECT_EQ(Record().GetText(), "second");
  EXPECT_EQ(Record().GetError().GetCode(), 1006U);
  EXPECT_FALSE(Call(1003, file).HasError());
  EXPECT_EQ(Record().GetText(), "first");
  EXPECT_EQ(Record().GetNumber(), 0U);
  EXPECT_FALSE(Call(1005, file).HasError());
  EXPECT_EQ(QantServerCallContext::GetCaller(), &handler_);
}

TEST_F(WizardTest, AnUnknownEncodingIsAnsweredAndTheFileIsOpenedStill) {
  const FileOpenRequest file(File("x\n"), "Latin", false);
  const FileOpenResponse response = Call(1002, file);
  ASSERT_TRUE(response.HasError());
  EXPECT_EQ(response.GetError().GetCode(), 2008U);
  EXPECT_EQ(response.GetError().GetText(), file.GetFileName());
  EXPECT_EQ(Record().GetText(), "x");
}

TEST_F(WizardTest, EveryNameOfAnEncodingIsKnown) {
  const std::string path = File("ab");
  for (const char* name : {"UTF-8", "UTF8", "UTF16", "UTF-16", "UTF16BE", "UTF-16BE", "UTF16LE",
                           "UTF-16LE", "Locale"}) {
    EXPECT_FALSE(Call(1002, FileOpenRequest(path, name, true)).HasError()) << name;
  }
}

TEST_F(WizardTest, ValidatingOnlyClosesTheFileAgain) {
  const std::string path = File("x\n");
  EXPECT_FALSE(Call(1002, FileOpenRequest(path, "UTF-8", true)).HasError());
  EXPECT_EQ(Record().GetError().GetCode(), 1006U);
}

TEST_F(WizardTest, FailuresAreAnsweredWithTheirCodesAndTheFileName) {
  const FileOpenRequest none((folder_ / "none").string(), "UTF-8", false);
  for (const auto& [method, code] :
       std::vector<std::pair<unsigned short, unsigned>>{{1002, 2004}, {1003, 2005}, {1005, 2006}}) {
    const FileOpenResponse response = Call(method, none);
    ASSERT_TRUE(response.HasError()) << method;
    EXPECT_EQ(response.GetError().GetCode(), code);
    EXPECT_EQ(response.GetError().GetText(), none.GetFileName());
  }
  EXPECT_EQ(Record().GetError().GetCode(), 1006U);
  EXPECT_EQ(Record().GetError().GetText(), "");
}

TEST_F(WizardTest, OpeningWhileAFileIsOpenFailsAndClosesIt) {
  const FileOpenRequest file(File("x\n"), "UTF-8", false);
  EXPECT_FALSE(Call(1002, file).HasError());
  EXPECT_EQ(Call(1002, file).GetError().GetCode(), 2004U);
  EXPECT_EQ(Record().GetError().GetCode(), 1006U);
}

TEST_F(WizardTest, WrongMessagesAndOtherNumbersAreNotHandled) {
  FileOpenResponse answer;
  TextWizardDacStringResponse record;
  EXPECT_EQ(handler_.OnCallSynchronous(1002, TextWizardDacStringRequest("x"), answer), 1);
  EXPECT_EQ(handler_.OnCallSynchronous(1002, FileOpenRequest(), record), 1);
  EXPECT_EQ(handler_.OnCallSynchronous(1004, FileOpenRequest(), answer), 1);
  EXPECT_EQ(handler_.OnCallSynchronous(1006, FileOpenRequest(), answer), 1);
  EXPECT_EQ(handler_.OnCallSynchronous(1000, FileOpenRequest(), answer), 1);
  EXPECT_EQ(handler_.OnCallSynchronous(999, FileOpenRequest(), answer), 1);
  EXPECT_EQ(handler_.OnCallAsynchronous(1002, FileOpenRequest()), 1);
  EXPECT_EQ(handler_.OnCallAsynchronous(999, FileOpenRequest()), 1);
}

TEST_F(WizardTest, AFirstLineOverTwoMillionBytesCutsEveryRecordAndSetsTheFlag) {
  const std::string first(2000001, 'a');
  const std::string second(4100000, 'b');
  const FileOpenRequest file(File(first + "\n" + second + "\nc\n"), "UTF-8", false);
  ASSERT_FALSE(Call(1002, file).HasError());
  const std::vector<std::size_t> lengths = {1999999, 2, 1999999, 1999999, 100002, 1};
  for (const std::size_t length : lengths) {
    const TextWizardDacStringResponse record = Record();
    EXPECT_EQ(record.GetText().size(), length);
    EXPECT_EQ(record.GetNumber(), 1U);
  }
  EXPECT_EQ(Record().GetError().GetCode(), 1006U);
  // Opening resets the flag.
  Call(1005, file);
  ASSERT_FALSE(Call(1002, FileOpenRequest(File("short\n"), "UTF-8", false)).HasError());
  EXPECT_EQ(Record().GetNumber(), 0U);
}

TEST_F(WizardTest, AUnitOfTheFirstLineCountsTwoBytes) {
  for (const std::size_t units : {1000000U, 1000001U}) {
    const std::u16string line(units - 1, u'a');
    const FileOpenRequest file(File(Utf16(u"\uFEFF" + line + u"\n", false)), "", false);
    Call(1002, file);
    // The mark is measured, too, but not read.
    EXPECT_EQ(Record().GetNumber(), units > 1000000 ? 1U : 0U);
    Call(1005, file);
  }
}

TEST_F(WizardTest, InBigEndianFilesOnlySwappedLineEndsEndTheMeasuring) {
  std::u16string text = u"\uFEFFshort\n" + std::u16string(1000000, u'b') + u"\n";
  const FileOpenRequest unswapped(File(Utf16(text, true)), "", false);
  Call(1002, unswapped);
  EXPECT_EQ(Record().GetText(), "short");
  EXPECT_EQ(Record().GetNumber(), 1U);
  Call(1005, unswapped);
  // The same in the other order is measured by its first line.
  const FileOpenRequest little(File(Utf16(text, false)), "", false);
  Call(1002, little);
  EXPECT_EQ(Record().GetText(), "short");
  EXPECT_EQ(Record().GetText().size(), 1000000U);
  EXPECT_EQ(Record().GetNumber(), 0U);
  Call(1005, little);
  for (const char16_t swapped : {u'\u0D00', u'\u0A00'}) {
    text[3] = swapped;
    const FileOpenRequest file(File(Utf16(text, true)), "", false);
    Call(1002, file);
    EXPECT_EQ(Record().GetNumber(), 0U);
    Call(1005, file);
  }
}

TEST_F(WizardTest, AFirstLineOfTwoMillionBytesIsWhole) {
  const FileOpenRequest file(File(std::string(2000000, 'a') + "\n"), "UTF-8", false);
  ASSERT_FALSE(Call(1002, file).HasError());
  const TextWizardDacStringResponse record = Record();
  EXPECT_EQ(record.GetText().size(), 2000000U);
  EXPECT_EQ(record.GetNumber(), 0U);
}

TEST_F(WizardTest, AFileThatShrinksBetweenRequestsJustEnds) {
  const std::string path = File("one\ntwo\n");
  ASSERT_FALSE(Call(1002, FileOpenRequest(path, "UTF-8", false)).HasError());
  fs::resize_file(path, 0);
  EXPECT_FALSE(Call(1003, FileOpenRequest(path, "UTF-8", false)).HasError());
  EXPECT_EQ(Record().GetError().GetCode(), 1006U);
}

TEST_F(WizardTest, ThePackageIsRegisteredUnderBothNamesAndItsIdentifier) {
  embedded::PackageClass found;
  ASSERT_TRUE(embedded::FindPackageClass("TextWizardDACPkg", &found));
  EXPECT_EQ(found.versionedName, "TextWizardDACPkg.1");
  EXPECT_EQ(found.threading, 1);
  EXPECT_EQ(found.flags, 3);
  const GUID id = {0xF9B51811, 0xCFDE, 0x11D2, {0xA4, 0x31, 0x00, 0xC0, 0x4F, 0x99, 0x1C, 0x5F}};
  EXPECT_EQ(found.classId, id);
  const auto connection = embedded::PackageConnection::Open("TextWizardDACPkg.1");
  ASSERT_TRUE(connection);
  FileOpenResponse response;
  EXPECT_EQ(connection->Call(1002, FileOpenRequest(File("x\n"), "UTF-8", false), response), 0);
  TextWizardDacStringResponse record;
  EXPECT_EQ(connection->Call(1004, FileOpenRequest(), record), 0);
  EXPECT_EQ(record.GetText(), "x");
}

TEST(WizardPackage, TheLoadersNoticesAreForwardedOnce) {
  embedded::PackageClass found;
  EXPECT_EQ(DllMain(nullptr, 0), 1);
  EXPECT_TRUE(embedded::FindPackageClass("TextWizardDACPkg", &found)) << "no attach came before";
  EXPECT_EQ(DllMain(nullptr, 1), 1);
  EXPECT_TRUE(embedded::FindPackageClass("TextWizardDACPkg", &found));
  EXPECT_EQ(DllMain(nullptr, 0), 1);
  EXPECT_FALSE(embedded::FindPackageClass("TextWizardDACPkg", &found));
}

}  // namespace
}  // namespace textwizard
