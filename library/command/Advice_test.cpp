#include "library/command/Advice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/import/CommandImport.h"
#include "library/testing/TestFolder.h"

namespace library {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::string DelimiterAdviceOn(const std::string& delimiters) {
  const embedded::InCodePage host(nullptr);
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

class NoCases : public testing::Test, private ImportMessages, private CaseReceiver {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};
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

  TestFolder folder_;
};

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

}  // namespace
}  // namespace library
