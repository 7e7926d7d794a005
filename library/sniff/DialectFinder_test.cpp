// Which dialect describes a text best.

#include "library/sniff/DialectFinder.h"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace library {
namespace {

class DialectFinderTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};

  DialectAnswer Find(std::string_view text, const SniffSettings& settings = {}) {
    text_ = text;
    std::vector<std::string_view> lines;
    for (std::string_view rest = text_; !rest.empty();) {
      const std::size_t end = std::min(rest.find('\n'), rest.size());
      lines.push_back(rest.substr(0, end));
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return FindDialect(lines, settings, kinds_);
  }
  Dialect Dialected(std::string_view text) { return Find(text).dialect; }

 private:
  std::string text_;
  CellKinds kinds_;
};

TEST_F(DialectFinderTest, ApostrophesQualifyWhereBackslashesEscapeThem) {
  const Dialect dialect = Dialected(
      "id;note;kind\n1;'it\\'s; here';a\n2;'don\\'t';b\n3;plain;c\n4;'so; so';d\n5;'can\\'t; "
      "now';e\n");
  EXPECT_EQ(dialect.delimiter, ";");
  EXPECT_EQ(dialect.qualifier, "'");
  EXPECT_EQ(dialect.escape, Escape::kBackslash);
}

TEST_F(DialectFinderTest, EveryUsualDelimiterIsFound) {
  for (const std::string delimiter : {",", ";", "\t", "|", "^", "~", "\x1F"}) {
    std::string text = "id" + delimiter + "day" + delimiter + "town\n";
    for (int i = 1; i < 9; ++i) {
      text += std::to_string(17 * i) + delimiter + "2020-01-0" + std::to_string(i) + delimiter +
              "Town number " + std::string(static_cast<std::size_t>(i), 'x') + "\n";
    }
    EXPECT_EQ(Dialected(text).delimiter, delimiter);
  }
}

TEST_F(DialectFinderTest, ADecimalCommaDoesNotCut) {
  EXPECT_EQ(Dialected("a;b;c\n1,5;2;x\n2,75;3;y\n3,25;4;z\n14,5;7;u\n").delimiter, ";");
}

TEST_F(DialectFinderTest, CommasThatStandInNumbersEverywhereDoNotCut) {
  EXPECT_EQ(Dialected("library|Price\n6,7E-11|1,23397%\n3,7E-16|28,22432%\n9,4E-17|44,97463%\n")
                .delimiter,
            "|");
  EXPECT_EQ(Dialected("Survey\nid;size\nA7x;4,45254E+25\n\"b;c\";7,47318E-22\nB9x;5,52048E-25\n")
                .delimiter,
            ";");
  // A colon cuts them below names only; it is in times, too.
  EXPECT_EQ(Dialected("a:b\n4,45254E+25:0,5\n7,47318E-22:1,5\n5,52048E-25:2,5\n").delimiter, ":");
  const DialectAnswer times = Find("1,10:30\n2,11:45\n3,09:15\n4,08:20\n");
  EXPECT_EQ(times.dialect.delimiter, ",");
  EXPECT_TRUE(times.open);
  EXPECT_FALSE(Find("n,at\n1,10:30\n2,11:45\n3,09:15\n4,08:20\n").open);
}

TEST_F(DialectFinderTest, WhatCutsNamesAndAllValuesAlikeCuts) {
  EXPECT_EQ(Dialected("at,key\n1985-10-05 05:30:39,3995352871197481221\n"
                      "1920-04-10 14:29:22,2970641656335621371\n"
                      "2038-08-22 10:13:31,8657318756511959071\n")
                .delimiter,
            ",");
  // Nothing says it without names.
  const DialectAnswer open = Find(
      "1553829417963660001:1656522196010543121\n1948698405311278691:3483994999663502021\n"
      "1167039054473750941:5843160323796531261\n");
  EXPECT_TRUE(open.open);
  EXPECT_FALSE(Find("12:30\n13:45\n09:15\n23:59\n").open);
}

TEST_F(DialectFinderTest, TabsOfWhichEveryRecordHasAsManyCut) {
  EXPECT_EQ(Dialected("560649,6\tgarden\t-7,818E+19\n2335,5\told market\t-3,633E-20\n"
                      "61,8\tyellow\t-1,334E+18\n91028,7\triver\t2,662E+25\n7957,9\t\t-9,376E-06\n")
                .delimiter,
            "\t");
  // Where they come and go, they are data.
  EXPECT_EQ(Dialected("1,a\tb,x\n2,c,y\n3,d\te\tf,z\n4,g,x\n").delimiter, ",");
}

TEST_F(DialectFinderTest, ProseIsOneColumn) {
  EXPECT_EQ(Dialected("It was the best of times, it was the worst of times,\n"
                      "it was the age of wisdom, it was the age of foolishness, it was\n"
                      "the epoch of belief; it was the epoch of incredulity.\n"
                      "There were a king with a large jaw and a queen with a plain face,\n"
                      "on the throne of England.\n")
                .delimiter,
            "");
}

TEST_F(DialectFinderTest, TimesDatesAddressesAndPathsAreNotCutUp) {
  EXPECT_EQ(Dialected("at\n12:30\n13:45\n09:15\n23:59\n").delimiter, "");
  EXPECT_EQ(
      Dialected("https://example.org/a\nhttps://example.org/b\nhttp://example.com/c\n").delimiter,
      "");
  EXPECT_EQ(Dialected("C:\\data\\a.txt\nC:\\data\\b.txt\nD:\\more\\c.txt\n").delimiter, "");
  EXPECT_EQ(Dialected("10:30,Anna\n11:45,Bob\n12:15,Carol\n").delimiter, ",");
  EXPECT_EQ(Dialected("anna@example.org;1\nbob@example.org;2\ncarol@example.com;3\n").delimiter,
            ";");
}

TEST_F(DialectFinderTest, QuotesThatEncloseFieldsQualify) {
  const DialectAnswer answer =
      Find("name,note\nAnna,\"red, green\"\nBob,\"a \"\"big\"\" one\"\nCarol,none\n");
  EXPECT_EQ(answer.dialect.delimiter, ",");
  EXPECT_EQ(answer.dialect.qualifier, "\"");
  EXPECT_EQ(answer.dialect.escape, Escape::kDouble);
  EXPECT_EQ(answer.score.modalRecords, 4U);
}

TEST_F(DialectFinderTest, ApostrophesQualifyWhereTheyEncloseFields) {
  EXPECT_EQ(Dialected("'a','b, c'\n'd','e, f'\n'g','h, i'\n").qualifier, "'");
  EXPECT_EQ(Dialected("name,says\nAnna,it's\nBob,don't\nLi,'tis\n").qualifier, "");
}

TEST_F(DialectFinderTest, ABackslashEscapesWhereItStandsBeforeQualifiersThatDoNotClose) {
  EXPECT_EQ(Dialected("\"a \\\"b\\\", c\",1\n\"d\",2\n\"e \\\"f\\\"\",3\n").escape,
            Escape::kBackslash);
  EXPECT_EQ(Dialected("\"C:\\\",1\n\"D:\\\",2\n\"E:\\\",3\n").escape, Escape::kNone);
}

TEST_F(DialectFinderTest, BlanksCutWhereEveryLineHasAsMany) {
  const Dialect single = Dialected("1140 11 82\n1140 120 321\n1231 11 211\n1241 7 17\n9 1 2\n");
  EXPECT_EQ(single.delimiter, " ");
  const Dialect runs =
      Dialected("C   0.000    1.250\nH    10.5   -0.363\nO  1.0  2.0\nH  -3.25      7.125\n");
  EXPECT_EQ(runs.delimiter, " ");
  EXPECT_TRUE(runs.multipleBlanks);
}

TEST_F(DialectFinderTest, SeveralBlanksAreOneDelimiterWhereThatIsGiven) {
  SniffSettings settings;
  settings.delimiter = " ";
  for (const bool multiple : {false, true}) {
    settings.multipleBlanks = multiple;
    const Dialect dialect = Find("C   0.000    1.250\nH    10.5   -0.363\n", settings).dialect;
    EXPECT_EQ(dialect.delimiter, " ");
    EXPECT_EQ(dialect.multipleBlanks, multiple);
  }
}

TEST_F(DialectFinderTest, ColumnsOfTextsWithBlanksAreFixed) {
  const Dialect dialect = Dialected(
      "Anna Maria   Sankt Gallen   1200\n"
      "Bob          New York         35\n"
      "Carol Anne   Rome              7\n"
      "Li           San Francisco  4500\n");
  EXPECT_TRUE(dialect.fixed());
  EXPECT_EQ(dialect.columns.size(), 3U);
}

TEST_F(DialectFinderTest, ADelimiterMayHaveTwoCharacters) {
  EXPECT_EQ(Dialected("id||name||n\n1||Anna||5\n2||Bob||6\n3||Li||7\n").delimiter, "||");
}

TEST_F(DialectFinderTest, EmptyFieldsDoNotMakeADelimiterOfTwoCharacters) {
  EXPECT_EQ(Dialected("a;b;c\n1;;x\n2;;y\n3;4;z\n5;;u\n").delimiter, ";");
}

TEST_F(DialectFinderTest, RemarksDoNotCount) {
  EXPECT_EQ(Dialected("# written by hand, on a day, in May, for you\n# twice, or more\n"
                      "a;b\n1;2\n3;4\n")
                .delimiter,
            ";");
}

TEST_F(DialectFinderTest, WhatIsGivenIsNotLookedFor) {
  SniffSettings settings;
  settings.delimiter = ";";
  settings.qualifier = "";
  const Dialect dialect = Find("a,b;\"c\n1,2;\"3\n", settings).dialect;
  EXPECT_EQ(dialect.delimiter, ";");
  EXPECT_EQ(dialect.qualifier, "");
}

TEST_F(DialectFinderTest, TheRunnerUpCutsOtherwise) {
  const DialectAnswer answer = Find("a,b;c\n1,2;3\n4,5;6\n7,8;9\n");
  ASSERT_TRUE(answer.runnerUp.has_value());
  EXPECT_NE(answer.runnerUp->delimiter, answer.dialect.delimiter);
  EXPECT_GE(answer.runnerUpScore.bits, answer.score.bits);
}

TEST_F(DialectFinderTest, AnEmptyTextIsOneColumn) {
  EXPECT_EQ(Dialected("").delimiter, "");
  EXPECT_EQ(Dialected("\n\n\n").delimiter, "");
}

}  // namespace
}  // namespace library
