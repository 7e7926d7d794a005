// What users get wrong, through the whole command: each ends with one numbered message, or with
// missing values where the data are short, and is told apart from success.

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Catalogue.h"
#include "HostFramework/embedded/text/HostText.h"
#include "library/testing/TestFolder.h"
#include "model/MessageText.h"
#include "tests/support/ImportRun.h"

namespace whole {
namespace {

class BadInput : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(embedded::SetCodePage(nullptr)); }

  static std::string Command(const std::string& path, const std::string& variables,
                             const std::string& subcommands = "/DELIMITERS=','") {
    return "GET DATA /TYPE=TXT /FILE='" + path + "' " + subcommands + " /VARIABLES=" + variables +
           ".";
  }

  // The command fails with one message, which begins with that number.
  static void ExpectError(const std::string& command, int number) {
    const Import import(command);
    EXPECT_FALSE(import.made());
    const std::vector<std::string> errors = Texts(import.messages(), kMessageError);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].rfind("[" + std::to_string(number) + "]", 0), 0u) << errors[0];
    EXPECT_TRUE(Texts(import.messages(), kMessageWarning).empty());
  }
  // A file that cannot be read at all, whether its types are declared or to find.
  static void ExpectUnreadable(const std::string& path) {
    for (const char* const variables : {"n F8.0", "n AUTO"}) {
      for (const char* const subcommands : {"/DELIMITERS=','", "/DELIMITERS=',' /ENCODING=LOCALE",
                                            "/DELCASE=VARIABLES 1 /DELIMITERS=','"}) {
        const Import import(Command(path, variables, subcommands));
        EXPECT_FALSE(import.made());
        EXPECT_EQ(Texts(import.messages(), kMessageError),
                  std::vector<std::string>{textwizard::ReadFailedError(path).text});
      }
      ExpectError("GET DATA /TYPE=TXT /FILE='" + path + "' /ARRANGEMENT=FIXED /VARIABLES=" +
                      std::string(variables).insert(2, "0-3 ") + ".",
                  2269);
    }
  }

  // The cases of a file, each as its values joined by "|": a number as itself, "." when missing, a
  // text in apostrophes. Both iterators must agree.
  std::vector<std::string> Cases(const std::string& bytes, const std::string& variables,
                                 const std::string& subcommands = "/DELIMITERS=','",
                                 std::vector<std::string>* warnings = nullptr) {
    const std::string path = folder_.Write("data.txt", bytes);
    const Import import(Command(path, variables, subcommands));
    EXPECT_TRUE(import.made()) << testing::PrintToString(import.messages());
    if (!import.made()) return {};
    const Pass pass = import.Read(Reading::kChosen);
    EXPECT_EQ(import.Read(Reading::kOneThread), pass);
    EXPECT_TRUE(Texts(pass.messages, kMessageError).empty());
    if (warnings) *warnings = Texts(pass.messages, kMessageWarning);
    std::vector<std::string> cases;
    for (std::size_t i = 0; i < pass.cases; ++i) {
      cases.push_back(
          CaseText(import.source(), pass.bytes.data() + i * import.source().GetObsAreaSize()));
    }
    return cases;
  }

  library::TestFolder folder_;

 private:
  static std::string CaseText(const QANT_DataSource& source, const char* cells) {
    std::string text;
    for (std::size_t i = 0; i < source.GetNVariables(); ++i) {
      const QANT_Variable& variable = *source.GetVariable(i);
      const char* const at = cells + variable.ObsIndex() * sizeof(OBS);
      if (i > 0) text += '|';
      if (variable.GetType() > 0) {
        text += "'" + std::string(at, static_cast<std::size_t>(variable.GetType())) + "'";
        continue;
      }
      double value = 0;
      std::memcpy(&value, at, sizeof value);
      char digits[32];
      std::snprintf(digits, sizeof digits, "%g", value);
      text += value == kSystemMissing ? "." : digits;
    }
    return text;
  }
};

using Strings = std::vector<std::string>;

TEST_F(BadInput, NoSuchFile) { ExpectUnreadable(folder_ / "nothing.txt"); }

TEST_F(BadInput, AFolder) { ExpectUnreadable(folder_.path().string()); }

TEST_F(BadInput, ADeviceThatNeverEnds) { ExpectUnreadable("/dev/zero"); }

TEST_F(BadInput, NoFileName) {
  ExpectError("GET DATA /TYPE=TXT /FILE='' /DELIMITERS=',' /VARIABLES=n F8.0.", 2256);
}

TEST_F(BadInput, NoPermission) {
  const std::string path = folder_.Write("secret.txt", "1\n");
  std::filesystem::permissions(path, std::filesystem::perms::none);
  // Nothing is forbidden to root: it gives its rights up for the test.
  constexpr uid_t kNobody = 65534;
  const bool root = geteuid() == 0;
  if (root && seteuid(kNobody) != 0) GTEST_SKIP() << "root cannot give up its rights here";
  ExpectUnreadable(path);
  ASSERT_TRUE(!root || seteuid(0) == 0);
}

TEST_F(BadInput, AnEmptyFileHasNoCases) {
  EXPECT_EQ(Cases("", "n F8.0 s A2"), Strings());
  EXPECT_EQ(Cases("", "n AUTO s AUTO"), Strings());
  EXPECT_EQ(Cases("", "n F8.0", "/DELCASE=VARIABLES 1 /DELIMITERS=','"), Strings());
  EXPECT_EQ(Cases("", "n 0-3 F4.0", "/ARRANGEMENT=FIXED"), Strings());
}

TEST_F(BadInput, AFileOfOneMarkHasNoCases) {
  for (const char* const mark : {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"}) {
    EXPECT_EQ(Cases(mark, "n F8.0 s A2"), Strings());
    EXPECT_EQ(Cases(mark, "n AUTO s AUTO"), Strings());
    EXPECT_EQ(Cases(mark, "n 0-3 F4.0", "/ARRANGEMENT=FIXED"), Strings());
  }
}

TEST_F(BadInput, AMarkThatTheEncodingContradictsIsWarnedOf) {
  const std::string utf8 = folder_.Write("utf8.txt",
                                         "\xEF\xBB\xBF"
                                         "1\n");
  const std::string utf16 = folder_.Write("utf16.txt", std::string("\xFF\xFE"
                                                                   "1\0",
                                                                   4));
  const std::string locale = "/DELIMITERS=',' /ENCODING=LOCALE";
  for (const auto& [path, number] : {std::pair(utf8, "[2281]"), std::pair(utf16, "[2283]")}) {
    const Import import(Command(path, "n F8.0", locale));
    ASSERT_TRUE(import.made());
    const Strings warnings = Texts(import.messages(), kMessageWarning);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0].rfind(number, 0), 0u) << warnings[0];
    EXPECT_EQ(import.Read(Reading::kChosen).cases, 1u);
  }
}

TEST_F(BadInput, AFileThatEndsInsideALine) {
  EXPECT_EQ(Cases("1,a\n2", "n F8.0 s A2"), (Strings{"1|'a '", "2|'  '"}));
}

TEST_F(BadInput, AFileThatEndsInsideACase) {
  EXPECT_EQ(Cases("1,a,2\nb", "n F8.0 s A2 m F8.0", "/DELCASE=VARIABLES 3 /DELIMITERS=','"),
            (Strings{"1|'a '|2", ".|'  '|."}));
  EXPECT_EQ(
      Cases("12\nx\n34", "n 0-1 F2.0 /2 s 0-1 A2 m 0-1 F2.0", "/ARRANGEMENT=FIXED /FIXCASE=2"),
      (Strings{"12|'x '|.", "34|'  '|."}));
}

TEST_F(BadInput, AFileThatEndsInsideAUnit) {
  // The missing byte counts as FF: 61 FF is U+FF61 in this order.
  EXPECT_EQ(Cases(std::string("\xFF\xFE"
                              "1\0,\0b\0\n\0002\0,\0a",
                              15),
                  "n F8.0 s A4"),
            (Strings{"1|'b   '", "2|'\xEF\xBD\xA1 '"}));
}

TEST_F(BadInput, BytesThatAreNoCharacterAreWarnedOfAndReadingGoesOn) {
  Strings warnings;
  EXPECT_EQ(Cases("a,1\nb\xFF"
                  "c,2\n\xE4\xB8,3\nd,4\n",
                  "s A4 n F8.0", "/DELIMITERS=','", &warnings),
            (Strings{"'a   '|1",
                     "'b\xFF"
                     "c '|2",
                     "'\xE4\xB8  '|3", "'d   '|4"}));
  const Strings expected = {textwizard::UndecodableWarning(2, 1).text,
                            textwizard::UndecodableWarning(3, 0).text,
                            textwizard::UndecodableWarning(3, 1).text};
  EXPECT_EQ(warnings, expected);
}

TEST_F(BadInput, NulBytesAreDropped) {
  EXPECT_EQ(Cases(std::string("\0001\0,a\0b\0\n\0\n2,\0\n", 15), "n F8.0 s A3"),
            (Strings{"1|'ab '", "2|'   '"}));
}

TEST_F(BadInput, TenThousandDelimitersInALineOfThreeVariables) {
  EXPECT_EQ(Cases("1" + std::string(10000, ',') + "\n2,b,3\n", "n F8.0 s A1 m F8.0"),
            (Strings{"1|' '|.", "2|'b'|3"}));
}

TEST_F(BadInput, ValuesOfOtherTypesAreMissing) {
  EXPECT_EQ(Cases("x,31.02.2020,25:61,1,2\n,,,,\n", "n F8.0 d EDATE10 t TIME8.0 m F8.0"),
            (Strings{".|.|.|1", ".|.|.|."}));
}

TEST_F(BadInput, ACommandOfTenMegabytes) {
  constexpr std::size_t kLong = 10'000'000;
  const std::string path = folder_.Write("data.txt", "1\n");
  const std::string longWord(kLong, 'x');
  // A path, a value, a subcommand whose equals sign lies beyond what is read of one, a format.
  ExpectError(Command("/" + longWord, "n F8.0"), 2269);
  ExpectError(Command(path, "n F8.0", "/ENCODING=" + longWord + " /DELIMITERS=','"), 2280);
  ExpectError(Command(path, "n F8.0", "/" + longWord + "=1 /DELIMITERS=','"), 2267);
  ExpectError(Command(path, "n " + longWord), 2265);
  // A comment and blanks are no part of it.
  const Import commented(
      Command(path, "n /*" + longWord + "*/" + std::string(kLong, ' ') + "F8.0"));
  EXPECT_TRUE(commented.made());
}

TEST_F(BadInput, QuotesThatAreNeverClosed) {
  for (const char* const command :
       {"GET DATA /TYPE=TXT /FILE='data.txt /DELIMITERS=\",\" /VARIABLES=n F8.0.",
        "GET DATA /TYPE=TXT /FILE='data.txt' /DELIMITERS=\", /VARIABLES=n F8.0.",
        "GET DATA /TYPE=TXT /FILE='data.txt' /DELIMITERS=',' /VARIABLES=n 'F8.0."}) {
    const Import import(command);
    EXPECT_FALSE(import.made());
    const Strings errors = Texts(import.messages(), kMessageError);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].rfind("line 1, column ", 0), 0u) << errors[0];
  }
}

TEST_F(BadInput, ACatalogueWithAWrongPlaceholder) {
  const std::string catalogue = folder_.Write(
      "lorvane.err",
      "2269 [2269] Not read:\n2279 [2279] Case %s at %n\n2272 [2272] %d %d %d names\n");
  std::string problems;
  EXPECT_FALSE(embedded::LoadCatalogue(catalogue.c_str(), &problems));
  EXPECT_NE(problems.find("2279"), std::string::npos) << problems;
  EXPECT_NE(problems.find("2272"), std::string::npos) << problems;
  Strings warnings;
  Cases("\xFF\n", "s A4", "/DELIMITERS=','", &warnings);
  EXPECT_EQ(warnings, Strings{"[2279] (no text for this message)"});
  ExpectError(Command(folder_ / "nothing.txt", "n F8.0"), 2269);
  ExpectError(Command(folder_ / "data.txt", "n F8.0 n F8.0"), 2272);
  ASSERT_TRUE(embedded::LoadCatalogue(embedded::DefaultCataloguePath().c_str(), &problems));
}

}  // namespace
}  // namespace whole
