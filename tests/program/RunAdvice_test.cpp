// What `textwizard run` says beyond the component's messages: places, ways out, and what the
// component accepts without a word.

#include <sstream>

#include <gmock/gmock.h>

#include "tests/program/Program.h"

namespace program {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class RunAdvice : public ProgramTest {
 protected:
  void SetUp() override { WriteTowns(); }

  static std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }
  // The lines that a run of a command with these last subcommands has on standard error.
  std::vector<std::string> Said(const std::string& rest, int status,
                                const std::string& file = "town.csv") const {
    const Ended ended = Quiet("GET DATA /TYPE=TXT /FILE='" + file + "'\n  " + rest + ".\n");
    EXPECT_EQ(ended.status, status) << ended.err;
    return LinesOf(ended.err);
  }
};

TEST_F(RunAdvice, AnErrorIsFollowedByItsPlaceAndAWayOut) {
  EXPECT_THAT(Said("/IMPORTCASE=PERCENT 101 /DELIMITERS=',' /VARIABLES=x F8", 1),
              ElementsAre(StartsWith("error: [2262] "),
                          "  command.sps, line 2, column 4: IMPORTCASE=PERCENT 101",
                          "  write ALL, FIRST 100 or PERCENT 10"));
}

TEST_F(RunAdvice, AnErrorInAVariableListNamesTheVariable) {
  std::string list;
  for (int number = 1; number <= 40; ++number) {
    list += "\n v" + std::to_string(number) + (number == 27 ? " DAET10" : " F8.2");
  }
  EXPECT_THAT(
      Said("/DELIMITERS=',' /VARIABLES=" + list, 1),
      ElementsAre(StartsWith("error: [2265] "), "  command.sps, line 29, column 2: v27 DAET10",
                  testing::AllOf(StartsWith("  variable v27: there is no format DAET10; "),
                                 testing::EndsWith("; did you mean DATE?"))));
}

TEST_F(RunAdvice, AMessageDoesNotEndInNothing) {
  for (const char* mode : {"FIRST", "PERCENT"}) {
    const auto said =
        Said(std::string("/IMPORTCASE=") + mode + " /DELIMITERS=',' /VARIABLES=x F8", 1);
    EXPECT_THAT(said[0], testing::EndsWith(std::string(" not ") + mode + " alone"));
  }
}

TEST_F(RunAdvice, PlacesAreOfTheCommandThatFailed) {
  folder_.Write("both.sps", Towns() + "\n" +
                                "GET DATA /TYPE=TXT\n /FILE='town.csv' /MAP"
                                " /VARIABLES=x F8.\n");
  const Ended ended = Run({"run", "both.sps", "--quiet"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(LinesOf(ended.err),
              ElementsAre(StartsWith("error: [2255]"), "  both.sps, line 4, column 1: GET DATA",
                          HasSubstr("/DELIMITERS=")));
}

TEST_F(RunAdvice, MessagesInAFileHavePlacesAsKeys) {
  const Ended ended =
      Quiet("GET DATA /TYPE=TXT /FILE='town.csv' /DELIMITERS=','\n /VARIABLES=id F8 town B5.\n",
            {"--messages", "m.jsonl"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, IsEmpty());
  const auto message = Json("m.jsonl");
  EXPECT_EQ(message["kind"], "error");
  EXPECT_THAT(message["text"].get<std::string>(), StartsWith("[2265]"));
  EXPECT_THAT(message["text"].get<std::string>(), Not(HasSubstr("town")));
  EXPECT_EQ(message["line"], 2);
  EXPECT_EQ(message["column"], 19);
  EXPECT_EQ(message["words"], "town B5");
  EXPECT_EQ(message["variable"], "town");
  EXPECT_THAT(message["help"].get<std::string>(), Not(IsEmpty()));
}

TEST_F(RunAdvice, AFileThatIsNotThereIsPlacedAndExplained) {
  const auto said = Said("/DELIMITERS=',' /VARIABLES=x F8", 1, "none.csv");
  EXPECT_THAT(said, ElementsAre(StartsWith("error: [2269]"),
                                "  command.sps, line 1, column 21: FILE='none.csv'",
                                StartsWith("  No such file or directory; it was looked for in /")));
}

TEST_F(RunAdvice, FilesThatAreNoTextAreNamed) {
  struct Binary {
    const char* name;
    std::string head;
    const char* what;
  };
  const Binary files[] = {
      {"a.csv.lz4", "\x04\x22\x4D\x18", "compressed with lz4"},
      {"a.xlsx", "PK\x03\x04" + std::string(26, '\x01') + "[Content_Types].xml", ".xlsx"},
      {"a.pdf", std::string("%PDF-1.4\n%\x01\x02\x03\x04", 14), "a PDF document"},
  };
  std::string garbage;
  for (int i = 0; i < 20000; ++i) garbage += static_cast<char>(i * 7919 % 251);
  for (const Binary& file : files) {
    folder_.Write(file.name, file.head + garbage);
    for (const char* format : {"x A20", "x AUTO"}) {
      const auto said =
          Said(std::string("/ENCODING='UTF8' /DELIMITERS=',' /VARIABLES=") + format, 1, file.name);
      ASSERT_EQ(said.size(), 3U) << file.name;
      EXPECT_THAT(said[0], StartsWith("error: [2269]"));
      EXPECT_THAT(said[0], HasSubstr(std::string(file.name) + " ("));
      EXPECT_THAT(said[0], HasSubstr(file.what));
    }
  }
}

TEST_F(RunAdvice, ACompressedFileThatIsDamagedIsNamed) {
  folder_.Write("a.csv.gz", std::string("\x1F\x8B\x08\0\0\0\0\0x", 9));
  folder_.Write("a.zip", "PK\x03\x04" + std::string(26, '\x01') + "a.csv");
  for (const char* name : {"a.csv.gz", "a.zip"}) {
    const auto said = Said("/DELIMITERS=',' /VARIABLES=x F8", 1, name);
    ASSERT_FALSE(said.empty());
    EXPECT_THAT(said[0], StartsWith("error: [2269]"));
    EXPECT_THAT(said[0], HasSubstr(std::string(name) + " (the "));
    EXPECT_THAT(said[0], HasSubstr("data is damaged"));
  }
}

TEST_F(RunAdvice, StandardInputThatIsNoTextIsNamed) {
  const Ended ended = [&] {
    folder_.Write("c.sps", "GET DATA /TYPE=TXT /FILE='-' /DELIMITERS=',' /VARIABLES=x F8.");
    return Run({"run", "c.sps", "--quiet"}, "\x89PNG\r\n\x1A\n");
  }();
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, HasSubstr("- (a PNG image, and no text)"));
}

TEST_F(RunAdvice, AFileOfControlCharactersIsReadWithAWarning) {
  folder_.Write("b.dat", std::string(200, '\x02') + "\n1\n");
  const auto said = Said("/DELIMITERS=',' /VARIABLES=x A8", 0, "b.dat");
  ASSERT_EQ(said.size(), 1U);
  EXPECT_EQ(said[0],
            "warning: command.sps, line 1, column 21: b.dat hardly is a text: 200 of its first 203 "
            "bytes are control characters");
}

TEST_F(RunAdvice, DelimitersThatLookLikeAnEscape) {
  const auto said = Said("/DELIMITERS=\" \\t\" /VARIABLES=x A8 y A8", 0);
  ASSERT_EQ(said.size(), 1U);
  EXPECT_THAT(said[0],
              StartsWith("warning: command.sps, line 2, column 4: DELIMITERS=\" \\t\" means "
                         "blank, backslash and the letter t"));
  EXPECT_THAT(Said("/DELIMITERS=\"\\t \" /VARIABLES=x A8 y A8", 0), IsEmpty());
}

TEST_F(RunAdvice, AFirstCaseBehindTheEnd) {
  EXPECT_THAT(Said("/FIRSTCASE=100 /DELIMITERS=',' /VARIABLES=x A8", 0),
              ElementsAre("warning: command.sps, line 2, column 4: FIRSTCASE is 100, but town.csv "
                          "has only 4 lines: there are no cases"));
}

TEST_F(RunAdvice, AFileOfWhichNoLineGaveACase) {
  folder_.Write("empty.csv", "");
  folder_.Write("lines.csv", "\n\n\n");
  EXPECT_THAT(Said("/DELIMITERS=',' /VARIABLES=x A8", 0, "empty.csv"),
              ElementsAre(testing::EndsWith(": empty.csv is empty: there are no cases")));
  EXPECT_THAT(
      Said("/DELIMITERS=',' /VARIABLES=x A8", 0, "lines.csv"),
      ElementsAre(testing::EndsWith(": lines.csv has only empty lines: there are no cases")));
}

TEST_F(RunAdvice, ASampleThatKeepsNothingIsNoFileWithoutCases) {
  folder_.Write("one.csv", "1\n");
  folder_.Write("command.sps",
                "GET DATA /TYPE=TXT /FILE='one.csv' /IMPORTCASE=PERCENT 1 /DELIMITERS=','"
                " /VARIABLES=x F8.");
  const Ended ended = Run({"run", "command.sps", "--seed", "1"});
  EXPECT_THAT(ended.out, HasSubstr("0 cases"));
  EXPECT_THAT(ended.err, IsEmpty());
}

TEST_F(RunAdvice, AColumnThatSplitsACharacterIsSaidOnce) {
  folder_.Write("fixed.txt", "abcdef\nab\u00FCcde\nab\u00FCcde\n");
  const auto said = Said("/ARRANGEMENT=FIXED /VARIABLES=a 0-2 A3 b 3-5 A3", 0, "fixed.txt");
  ASSERT_EQ(said.size(), 1U);
  EXPECT_THAT(said[0], HasSubstr("in line 2 the end of the columns of a (byte 3, from 0) falls "
                                 "inside the character \u00FC; "));
  EXPECT_THAT(Said("/ARRANGEMENT=FIXED /VARIABLES=a 0-3 A4 b 4-6 A3", 0, "fixed.txt"), IsEmpty());
}

}  // namespace
}  // namespace program
