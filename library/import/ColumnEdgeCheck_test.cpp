#include "library/import/ColumnEdgeCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/import/CommandImport.h"
#include "library/testing/TestFolder.h"

namespace library {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class ColumnEdges : public testing::Test, public ImportMessages, public CaseReceiver {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};
  void Post(std::string_view hostText, int kind) override {
    EXPECT_NE(kind, kMessageError) << hostText;
  }
  void Take(const OBS*) override {}

  // Imports `data` by the rest of a command and asks for advice.
  std::string OfEdges(const std::string& data, const std::string& rest) {
    const std::string text = "GET DATA /TYPE=TXT /FILE='" + folder_.Write("d.txt", data) +
                             "' /ARRANGEMENT=FIXED " + rest + ".";
    embedded::CommandReader reader(text);
    embedded::ParsedCommand command;
    EXPECT_TRUE(reader.Next(command) && command.ok) << command.error;
    CommandImport import({}, *this);
    EXPECT_EQ(import.Open(command.tokens), ImportEnd::kDone);
    ColumnEdgeCheck check(import.source());
    EXPECT_EQ(import.Read(*this), ImportEnd::kDone);
    return check.Advice(import.casesRead());
  }

  TestFolder folder_;
};

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
  {
    const embedded::InCodePage locale(nullptr, "ISO-8859-1");
    EXPECT_THAT(OfEdges("ab\xFC"
                        "cde\n",
                        "/ENCODING=LOCALE /VARIABLES=a 0-2 A3"),
                HasSubstr("inside the character \u00FC"));
  }
  EXPECT_THAT(OfEdges(std::string("\xFF\xFE"
                                  "a\0b\0\xFC\0",
                                  8),
                      "/VARIABLES=a 0-2 A3"),
              HasSubstr("inside the character \u00FC"));
}

TEST_F(ColumnEdges, InACodePage) {
  const embedded::InCodePage page("Shift_JIS");
  EXPECT_THAT(OfEdges("ab\x83\x41"
                      "cd\n",
                      "/VARIABLES=a 0-2 A3"),
              HasSubstr("byte 3"));
  EXPECT_THAT(OfEdges("ab\x83\x41"
                      "cd\n",
                      "/VARIABLES=a 0-1 A2 b 2-3 A2"),
              IsEmpty());
}

TEST_F(ColumnEdges, InACodePageOfSingleBytes) {
  const embedded::InCodePage page("ISO-8859-1");
  EXPECT_THAT(OfEdges("ab\xFC"
                      "cde\n",
                      "/VARIABLES=a 0-2 A3"),
              IsEmpty());
}

TEST_F(ColumnEdges, OfALargeFile) {
  std::string data;
  for (int line = 1; line < 300000; ++line) data += "abcdef\n";
  EXPECT_THAT(OfEdges(data, "/VARIABLES=a 0-2 A3 b 3-5 A3"), IsEmpty());
  EXPECT_THAT(OfEdges(data + "a\u00FCcdef\n", "/VARIABLES=a 0-2 A3 b 3-5 A3"), IsEmpty());
  EXPECT_THAT(OfEdges(data + "ab\u00FCcde\n", "/VARIABLES=a 0-2 A3 b 3-5 A3"),
              HasSubstr("in line 300000 "));
}

TEST_F(ColumnEdges, NobodyNeedsToAsk) {
  std::string data;
  for (int line = 0; line < 300000; ++line) data += "abcdef\n";
  const std::string text = "GET DATA /TYPE=TXT /FILE='" + folder_.Write("d.txt", data) +
                           "' /ARRANGEMENT=FIXED /VARIABLES=a 0-2 A3.";
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  ASSERT_TRUE(reader.Next(command) && command.ok) << command.error;
  CommandImport import({}, *this);
  ASSERT_EQ(import.Open(command.tokens), ImportEnd::kDone);
  const ColumnEdgeCheck check(import.source());
}

}  // namespace
}  // namespace library
