// Where the data begins and ends, and what names the columns.

#include <string>
#include <string_view>

#include <gmock/gmock.h>

#include "library/sniff/testing/SniffTest.h"

namespace library {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TableShapeTest : public SniffTest {
 protected:
  // Header lines, first and last data line.
  static void ExpectShape(std::string_view text, std::int64_t header, std::int64_t first,
                          std::int64_t last) {
    const SniffResult result = Sniffed(text);
    EXPECT_EQ(result.headerLines.value, header) << text;
    EXPECT_EQ(result.firstDataLine.value, first) << text;
    EXPECT_EQ(result.lastDataLine, last) << text;
  }
};

TEST_F(TableShapeTest, TextsAboveNumbersNameTheColumns) {
  ExpectShape("town,people,area\nRome,2800000,1285\nOslo,700000,454\nBern,134000,52\n", 1, 2, 4);
}

TEST_F(TableShapeTest, NumbersFromTheFirstLineOnHaveNoHeader) {
  ExpectShape("1,2.5,7\n3,4.5,9\n11,0.25,4\n6,7.75,12\n", 0, 1, 4);
  ExpectShape("1,2,3\n4,5,6\n7,8,9\n10,11,12\n", 0, 1, 4);
}

TEST_F(TableShapeTest, AValueBesideAMissingOneIsData) {
  // Of two columns, below the header and at the end.
  ExpectShape("town;people\nRome;\nOslo;700000\nBern;134000\nPisa;\n", 1, 2, 5);
  ExpectShape("Survey\ntown;people\n;2800000\nOslo;700000\nBern;134000\n", 1, 3, 5);
  // Without a header, above all others.
  ExpectShape("2020-01-02;;\n2020-01-03;5;7\n2020-01-04;6;8\n2020-01-05;7;9\n", 0, 1, 4);
  // Said to be nothing, by quotes.
  ExpectShape("a,b,c\n\"x\",1,2\n\"y\",3,4\n\"z\",5,6\n\"w\",\"\",\"\"\n", 1, 2, 5);
  // What is narrower is a note.
  ExpectShape("town;people\nRome;2800000\nOslo;700000\nBern;134000\nCounted\n", 1, 2, 4);
}

TEST_F(TableShapeTest, FirstRowsWithoutANumberAreDataWhereThereIsNoHeader) {
  ExpectShape(
      "river forest,castle,\nforest,river gate,\ncastle,castle,17\nriver,forest,4\n"
      "forest,castle gate,12\ngate,river,\nriver,castle,5\n",
      0, 1, 7);
}

TEST_F(TableShapeTest, ALineDrawnBelowTheHeaderIsNoData) {
  ExpectShape("| id | name |\n|---:|:-----|\n|  1 | Anna |\n|  2 | Bob  |\n|  3 | Li   |\n", 1, 3,
              5);
}

TEST_F(TableShapeTest, OneColumnIsNoSumByChance) {
  ExpectShape("name,key\na,60000\nb,20000\nc,19000\nd,10000\ne,10900\nf,500\n", 1, 2, 7);
  ExpectShape("name,key\na,60000\nb,20000\nc,19000\nd,10000\ne,11000\nf,500\n", 1, 3, 7);
  // Small numbers are sums all the time.
  ExpectShape("name,key\na,68\nb,8\nc,32\nd,9\ne,19\nf,3\n", 1, 2, 7);
}

TEST_F(TableShapeTest, TitlesRunAcrossFixedColumns) {
  ExpectShape(
      "Report of the survey of all stations\n"
      "name        people  area\n"
      "Rome       2800000  1285\nOslo        700000   454\nBern        134000    52\n"
      "Pisa         90000   185\nNice        340000    72\nLyon        520000    48\n"
      "Genoa       560000   240\nTurin       840000   130\nMilan      1370000   182\n"
      "Parma       198000   261\n",
      1, 3, 12);
}

TEST_F(TableShapeTest, ALongValueOfOneFixedLineIsNoTitle) {
  ExpectShape(
      "people     town\n2800000    Rome\n 700000    Oslo\n 134000    Bern\n"
      "  90000    Pisa\n 340000    Nice\n   5200    Llanfair Pwllgwyngyll by the sea\n",
      1, 2, 7);
}

TEST_F(TableShapeTest, YearsAboveOtherNumbersNameTheColumns) {
  ExpectShape("Rate,2001,2002,2003\nUp,1.5,2.5,3.25\nDown,4.5,7.5,1.25\nSame,2.5,3.5,4.75\n", 1, 2,
              4);
}

TEST_F(TableShapeTest, TitlesStandAboveTheHeader) {
  const std::string_view text =
      "Towns and their people,,\n,,\nCounted every ten years,,\n"
      "town,people,area\nRome,2800000,1285\nOslo,700000,454\nBern,134000,52\n";
  ExpectShape(text, 1, 5, 7);
  EXPECT_EQ(Sniffed(text).preambleLines, 3);
}

TEST_F(TableShapeTest, NotesAndTotalsStandBehindTheData) {
  const std::string_view text =
      "town,people,area\nRome,2800000,1285\nOslo,700000,454\nBern,134000,52\n"
      "Total,3634000,1791\n,,\nSource: the towns themselves,,\n";
  ExpectShape(text, 1, 2, 4);
  EXPECT_EQ(Sniffed(text).footerLines, 2);
}

TEST_F(TableShapeTest, ATotalAboveTheDataIsNone) {
  ExpectShape(
      "town,people,area\nTotal,3634000,1791\nRome,2800000,1285\nOslo,700000,454\nBern,134000,52\n",
      1, 3, 5);
  // It need not be called one: its numbers are the sums.
  ExpectShape(
      "land,people,area\nEverywhere,3634000,1791\nRome,2800000,1285\nOslo,700000,454\n"
      "Bern,134000,52\n",
      1, 3, 5);
}

TEST_F(TableShapeTest, AHeaderMayHaveSeveralLines) {
  const std::string_view text =
      ",Born,,Moved "
      "in,\nTown,women,men,women,men\nRome,120,130,14,15\nOslo,50,40,7,9\nBern,20,25,3,4\n";
  ExpectShape(text, 2, 3, 5);
  EXPECT_THAT(Names(Sniffed(text)),
              ElementsAre("Town", "Born_women", "Born_men", "Moved_in_women", "Moved_in_men"));
}

TEST_F(TableShapeTest, UnitsBelongToTheHeader) {
  ExpectShape(
      "station,height,rain\n,(m),(mm)\nArosa,1878,1205.5\nBasel,316,810.25\nChur,585,840.5\n", 2, 3,
      5);
}

TEST_F(TableShapeTest, GroupTitlesAreNoData) {
  const std::string_view text =
      "kind,n,share\nAccidents by road,,\nDry,569,0.5\nWet,364,0.25\nBy "
      "light,,\nDay,700,0.75\nNight,233,0.25\n";
  ExpectShape(text, 1, 3, 7);
  const SniffResult result = Sniffed(text);
  ASSERT_EQ(result.otherLines.size(), 1U);
  EXPECT_EQ(result.otherLines[0].line, 5);
  EXPECT_EQ(result.otherLines[0].kind, OtherLine::Kind::kTitle);
}

TEST_F(TableShapeTest, MissingValuesInTheFirstRowsAreData) {
  ExpectShape(
      "land,code,1990,1991,1992\nAruba,ABW,,,\nAngola,AGO,1.5,2.5,3.5\nAlbania,ALB,4.5,5.5,6.25\n"
      "Andorra,AND,0.5,1.5,2.25\n",
      1, 2, 5);
  ExpectShape("town,people,area\nRome,(NA),1285\nOslo,700000,(NA)\nBern,134000,52\n", 1, 2, 4);
}

TEST_F(TableShapeTest, TextsAreNamedWhereTheFirstRowDiffers) {
  ExpectShape("country,name\nAD,Andorra\nAE,Arabia\nAF,Afghanistan\nAG,Antigua\n", 1, 2, 5);
  ExpectShape("AD,Andorra\nAE,Arabia\nAD,Andorra\nAG,Antigua\nAH,Atlantis\n", 0, 1, 5);
}

TEST_F(TableShapeTest, KeysWithValuesOfSeveralKindsHaveNoHeader) {
  ExpectShape(
      "Owner,The Power "
      "Company\nStation,North\nOpened,1987-05-01\nUnits,4\nState,TX\nHeight,120.5\n",
      0, 1, 6);
}

TEST_F(TableShapeTest, RemarksAreNeitherHeaderNorData) {
  const std::string_view text = "# written by hand\nid,n\n1,2\n# in the middle\n3,4\n5,6\n";
  ExpectShape(text, 1, 3, 6);
  const SniffResult result = Sniffed(text);
  EXPECT_EQ(result.comment, "#");
  ASSERT_EQ(result.otherLines.size(), 1U);
  EXPECT_EQ(result.otherLines[0].line, 4);
  EXPECT_EQ(result.otherLines[0].kind, OtherLine::Kind::kComment);
}

TEST_F(TableShapeTest, ARemarkThatIsCutLikeTheDataNamesTheColumns) {
  const SniffResult result = Sniffed("# made in May\n# id,name,n\n1,Anna,5\n2,Bob,6\n3,Li,7\n");
  EXPECT_EQ(result.headerLines.value, 1);
  EXPECT_EQ(result.firstDataLine.value, 3);
  EXPECT_THAT(Names(result), ElementsAre("id", "name", "n"));
}

TEST_F(TableShapeTest, ARecordOverSeveralLinesCountsItsLines) {
  const std::string_view text = "id,text\n1,\"one\ntwo\"\n2,three\n3,\"four\nfive\"\n";
  ExpectShape(text, 1, 2, 6);
  const SniffResult result = Sniffed(text);
  EXPECT_EQ(result.lineBreaksInQuotes.count, 2);
  EXPECT_EQ(result.lineBreaksInQuotes.firstLine, 2);
}

TEST_F(TableShapeTest, WhatIsGivenStands) {
  const std::string_view text = "a,b\n1,2\n3,4\n5,6\n7,8\n";
  SniffSettings settings;
  settings.firstLine = 3;
  settings.header = false;
  SniffResult result = Sniffed(text, settings);
  EXPECT_EQ(result.firstDataLine.value, 3);
  EXPECT_TRUE(result.firstDataLine.given);
  EXPECT_EQ(result.headerLines.value, 0);
  EXPECT_THAT(Names(result), ElementsAre("V1", "V2"));
  settings = {};
  settings.header = false;
  result = Sniffed(text, settings);
  EXPECT_EQ(result.firstDataLine.value, 1);
  settings.header = true;
  result = Sniffed("1,2\n3,4\n5,6\n", settings);
  EXPECT_EQ(result.firstDataLine.value, 2);
  EXPECT_EQ(result.headerLines.value, 1);
}

TEST_F(TableShapeTest, OffsetsAreThoseOfTheLines) {
  const std::string_view text = "Title,,\nid,n,x\n1,2,3\n4,5,6\n7,8,9\nNote: all of it,,\n";
  const SniffResult result = Sniffed(text);
  EXPECT_EQ(text.substr(result.firstDataOffset).substr(0, 5), "1,2,3");
  EXPECT_EQ(text.substr(result.dataEndOffset).substr(0, 4), "Note");
}

}  // namespace
}  // namespace library
