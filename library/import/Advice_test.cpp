#include "library/import/Advice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/text/HostText.h"
#include "library/import/CommandImport.h"
#include "library/testing/TestFolder.h"

namespace library {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::string DelimiterAdviceOn(const std::string& delimiters) {
  EXPECT_TRUE(embedded::SetCodePage(nullptr));
  const std::string text =
      "GET DATA /TYPE=TXT /FILE='a' /DELIMITERS=" + delimiters + " /VARIABLES=x F8.";
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  EXPECT_TRUE(reader.Next(command) && command.ok) << command.error;
  return DelimiterAdvice(OutlineOf(command.tokens, text));
}

TEST(DelimiterAdvice, SpeaksOfLettersAndBackslashes) {
  EXPECT_THAT(DelimiterAdviceOn("' \\t'"),
              HasSubstr("DELIMITERS=' \\t' means blank, backslash and the letter t; "));
  EXPECT_THAT(DelimiterAdviceOn("',x'"), HasSubstr("means comma and the letter x"));
  EXPECT_THAT(DelimiterAdviceOn("'\\n'"), HasSubstr("means backslash and the letter n"));
  EXPECT_THAT(DelimiterAdviceOn("'\\'"), HasSubstr("means backslash;"));
  EXPECT_THAT(DelimiterAdviceOn("'\\t\\t'"), HasSubstr("means tab, backslash and the letter t"));
  EXPECT_THAT(DelimiterAdviceOn("'\u00E9'"), HasSubstr("means the letter \u00E9"));
}

TEST(DelimiterAdvice, IsSilentWhereTheTextMeansWhatItSays) {
  for (const char* delimiters :
       {"','", "'\\t'", "'\\\\'", "'\\t\\\\'", "'\\t,'", "' ;|'", "'\\T '", "'\u00A7'"}) {
    EXPECT_THAT(DelimiterAdviceOn(delimiters), IsEmpty()) << delimiters;
  }
}

class Imported : public testing::Test, private ImportMessages, private CaseReceiver {
 protected:
  Imported() { embedded::SetCodePage(nullptr); }
  ~Imported() override { embedded::SetCodePage(nullptr); }
  void Post(std::string_view hostText, int kind) override {
    EXPECT_NE(kind, kMessageError) << hostText;
  }
  void Take(const OBS*) override {}

  // Imports `data` by the rest of a command and asks for advice.
  template <typename Ask>
  std::string Advice(const std::string& data, const std::string& rest, Ask ask) {
    const std::string file = folder_.Write("d.txt", data);
    const std::string text = "GET DATA /TYPE=TXT /FILE='" + file + "' " + rest + ".";
    embedded::CommandReader reader(text);
    embedded::ParsedCommand command;
    EXPECT_TRUE(reader.Next(command) && command.ok) << command.error;
    CommandImport import({}, *this);
    EXPECT_EQ(import.Open(command.tokens), ImportEnd::kDone);
    EXPECT_EQ(import.Read(*this), ImportEnd::kDone);
    return ask(import);
  }

  std::string OfNoCases(const std::string& data, const std::string& rest) {
    return Advice(data, rest, [](const CommandImport& import) {
      EXPECT_EQ(import.casesRead(), 0);
      return NoCaseAdvice(import.source(), "d.txt");
    });
  }
  std::string OfEdges(const std::string& data, const std::string& rest) {
    return Advice(data, "/ARRANGEMENT=FIXED " + rest, [](const CommandImport& import) {
      return ColumnEdgeAdvice(import.source(), import.casesRead());
    });
  }

  TestFolder folder_;
};

using NoCases = Imported;
using ColumnEdges = Imported;

TEST_F(NoCases, AnEmptyFile) {
  EXPECT_EQ(OfNoCases("", "/DELIMITERS=',' /VARIABLES=x F8"), "d.txt is empty: there are no cases");
}

TEST_F(NoCases, AFirstCaseBehindTheEnd) {
  EXPECT_EQ(OfNoCases("1\n2\n3", "/FIRSTCASE=100 /DELIMITERS=',' /VARIABLES=x F8"),
            "FIRSTCASE is 100, but d.txt has only 3 lines: there are no cases");
  EXPECT_EQ(OfNoCases("1", "/FIRSTCASE=2 /ARRANGEMENT=FIXED /VARIABLES=x 0-3 F4"),
            "FIRSTCASE is 2, but d.txt has only 1 line: there are no cases");
}

TEST_F(NoCases, EmptyLines) {
  EXPECT_EQ(OfNoCases("id\n\n\r\n\n", "/FIRSTCASE=2 /DELIMITERS=',' /VARIABLES=x F8"),
            "d.txt has only empty lines from line 2 on: there are no cases");
}

TEST_F(ColumnEdges, AnEdgeInsideACharacter) {
  const std::string advice = OfEdges("abcdef\nab\u00FCcde\n", "/VARIABLES=a 0-2 A3 b 3-5 A3");
  EXPECT_THAT(advice, HasSubstr("in line 2 the end of the columns of a (byte 3, from 0) falls "
                                "inside the character \u00FC"));
  // The start of a column that stands alone.
  EXPECT_THAT(OfEdges("ab\u20ACcde\n", "/VARIABLES=b 4-6 A3"),
              HasSubstr("the start of the columns of b (byte 4, from 0)"));
}

TEST_F(ColumnEdges, EdgesBetweenCharacters) {
  EXPECT_THAT(OfEdges("\u00FCbcdef\na\u00FCcdef\nabcd\u00FC\n", "/VARIABLES=a 0-2 A3 b 3-5 A3"),
              IsEmpty());
  EXPECT_THAT(OfEdges("abcdef\n", "/VARIABLES=a 0-2 A3 b 3-5 A3"), IsEmpty());
  // Bytes that are no characters are cut nowhere.
  EXPECT_THAT(OfEdges("ab\xC3_ef\nab\xBC\xBC\n", "/VARIABLES=a 0-2 A3 b 3-5 A3"), IsEmpty());
}

TEST_F(ColumnEdges, OnlyInLinesThatWereReadAndColumnsThatAreUsed) {
  const std::string data = "ab\u00FCcde\nabcdef\nab\u00FCcde\n";
  EXPECT_THAT(OfEdges(data, "/FIRSTCASE=2 /IMPORTCASE=FIRST 1 /VARIABLES=a 0-2 A3"), IsEmpty());
  EXPECT_THAT(OfEdges(data, "/FIRSTCASE=2 /VARIABLES=a 0-2 A3"), HasSubstr("in line 3 "));
  EXPECT_THAT(OfEdges(data, "/VARIABLES=a 0-1 A2 s 3-3 1 X"), IsEmpty());
}

TEST_F(ColumnEdges, InTheLineOfTheCaseThatHasTheColumn) {
  const std::string data = "ab\u00FCcde\nabcdef\n";
  EXPECT_THAT(OfEdges(data, "/FIXCASE=2 /VARIABLES=/1 a 0-1 A2 /2 b 0-2 A3"), IsEmpty());
  EXPECT_THAT(OfEdges(data, "/FIXCASE=2 /VARIABLES=/1 a 0-2 A3 /2 b 0-1 A2"),
              HasSubstr("in line 1 "));
}

TEST_F(ColumnEdges, OfTextThatIsConverted) {
  // Latin-1 becomes UTF-8: the columns are those of the UTF-8 text.
  ASSERT_TRUE(embedded::SetLocaleCodePage("ISO-8859-1"));
  EXPECT_THAT(OfEdges("ab\xFC"
                      "cde\n",
                      "/ENCODING=LOCALE /VARIABLES=a 0-2 A3"),
              HasSubstr("inside the character \u00FC"));
  ASSERT_TRUE(embedded::SetLocaleCodePage(nullptr));
  EXPECT_THAT(OfEdges(std::string("\xFF\xFE"
                                  "a\0b\0\xFC\0",
                                  8),
                      "/VARIABLES=a 0-2 A3"),
              HasSubstr("inside the character \u00FC"));
}

TEST_F(ColumnEdges, InACodePage) {
  ASSERT_TRUE(embedded::SetCodePage("Shift_JIS"));
  EXPECT_THAT(OfEdges("ab\x83\x41"
                      "cd\n",
                      "/VARIABLES=a 0-2 A3"),
              HasSubstr("byte 3"));
  EXPECT_THAT(OfEdges("ab\x83\x41"
                      "cd\n",
                      "/VARIABLES=a 0-1 A2 b 2-3 A2"),
              IsEmpty());
  ASSERT_TRUE(embedded::SetCodePage("ISO-8859-1"));
  EXPECT_THAT(OfEdges("ab\xFC"
                      "cde\n",
                      "/VARIABLES=a 0-2 A3"),
              IsEmpty());
}

}  // namespace
}  // namespace library
