// Several files imported as one data set, from outside.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Program.h"

namespace program {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class Files : public ProgramTest {
 protected:
  Ended Import(const std::vector<std::string>& files, const std::vector<std::string>& more) const {
    std::vector<std::string> words = {"import"};
    words.insert(words.end(), files.begin(), files.end());
    words.insert(words.end(), more.begin(), more.end());
    return Run(words);
  }
  // Its import is printed; the words behind "textwizard" of the line that repeats it.
  static std::vector<std::string> RunLineOf(const std::string& out) {
    const std::size_t begin = out.rfind("textwizard run ");
    EXPECT_NE(begin, std::string::npos) << out;
    std::vector<std::string> words;
    std::string word;
    bool quoted = false;
    for (const char byte : out.substr(begin, out.find('\n', begin) - begin)) {
      if (byte == '\'') {
        quoted = !quoted;
      } else if (byte == ' ' && !quoted) {
        words.push_back(word);
        word.clear();
      } else {
        word += byte;
      }
    }
    words.push_back(word);
    words.erase(words.begin());
    return words;
  }
  static std::string DigestOf(const std::string& out) {
    const std::size_t at = out.find("digest: ");
    return at == std::string::npos ? "none" : out.substr(at + 8, 32);
  }
};

TEST_F(Files, AreOneDataSetInTheOrderOfTheirNames) {
  folder_.Write("b.csv", "id,town\n3,Rome\n4,Bonn\n");
  folder_.Write("a.csv", "id,town\n1,Oslo\n2,Paris\n");
  folder_.Write("c.csv", "id,town\n5,Bern\n");
  const Ended ended = Import({"*.csv"}, {"-o", "all.tsv", "--dictionary", "d.json"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(folder_.Text("all.tsv"), "id\ttown\n1\tOslo\n2\tParis\n3\tRome\n4\tBonn\n5\tBern\n");
  EXPECT_THAT(ended.out, AllOf(HasSubstr("3 files: 3 with data"), HasSubstr("5 cases, 2 variables"),
                               Not(HasSubstr("The files differ"))));
  EXPECT_THAT(folder_.Text("d.json"),
              AllOf(HasSubstr("\"file\":\"*.csv\",\"cases\":5"),
                    HasSubstr("{\"file\":\"b.csv\",\"cases\":2,\"first_case\":3")));
}

TEST_F(Files, TypesAreOfAllOfThem) {
  folder_.Write("a.csv", "n,t\n1,x\n");
  folder_.Write("b.csv", "n,t\n2.75,a longer text\n");
  const Ended ended = Import({"a.csv", "b.csv"}, {"--quiet", "--command", "-"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr("/FILE='a.csv'"));
  EXPECT_THAT(ended.out, HasSubstr("/FILE='b.csv'"));
  const std::size_t second = ended.out.find("b.csv");
  for (const std::string& part : {ended.out.substr(0, second), ended.out.substr(second)}) {
    EXPECT_THAT(part, AllOf(HasSubstr("n F4.2"), HasSubstr("t A13"))) << ended.out;
  }
}

TEST_F(Files, ThePrintedLineRepeatsTheImport) {
  folder_.Write("a.csv", "id;amount;note\n1;1,5;x\n2;2,25;\"y\nz\"\n");
  folder_.Write("b.csv", "id,amount,note\n3,1.5,x\n4,10.25,y\n5,1.75,z\n");
  folder_.Write("c.csv", "note,id,amount\nx,6,0.5\n\"q \"\"w\"\"\",7,1.25\n");
  folder_.Write("d.csv", "id,amount,note\n8,2.5,caf\xE9\n9,2.5,na\xEFve\n");
  const Ended ended = Import({"*.csv"}, {"--command", "all.sps", "--digest", "-o", "first.csv",
                                         "--source-column", "file"});
  ASSERT_EQ(ended.status, 0) << ended.err;
  std::vector<std::string> again = RunLineOf(ended.out);
  again.insert(again.end(), {"--digest", "--cases", "second.csv"});
  const Ended repeated = Run(again);
  EXPECT_EQ(repeated.status, 0) << repeated.err << ended.out;
  EXPECT_EQ(DigestOf(repeated.out), DigestOf(ended.out)) << ended.out;
  EXPECT_EQ(folder_.Text("second.csv"), folder_.Text("first.csv"));
  EXPECT_EQ(folder_.Text("first.csv"),
            "id,amount,note,file\n1,1.5,x,a.csv\n2,2.25,\"y\nz\",a.csv\n3,1.5,x,b.csv\n"
            "4,10.25,y,b.csv\n5,1.75,z,b.csv\n6,0.5,x,c.csv\n7,1.25,\"q \"\"w\"\"\",c.csv\n"
            "8,2.5,caf\xC3\xA9,d.csv\n9,2.5,na\xC3\xAFve,d.csv\n");
}

TEST_F(Files, GoToEveryKindOfOutput) {
  folder_.Write("a.csv", "id,town\n1,Oslo\n");
  folder_.Write("b.csv",
                "id,town\nx,Rome\n2,Bonn\n3,Bern\n4,Bari\n5,B\n6,B\n7,B\n8,B\n9,B\n10,B\n"
                "11,B\n12,B\n13,B\n14,B\n15,B\n16,B\n17,B\n18,B\n19,B\n20,B\n");
  const Ended ended =
      Import({"a.csv", "b.csv"}, {"-o", "o.csv", "-o", "o.jsonl", "-o", "o.parquet", "-o",
                                  "o.arrow", "-o", "o.sqlite", "--problems", "p.jsonl", "--quiet"});
  ASSERT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(folder_.Text("o.jsonl"), HasSubstr("{\"id\":null,\"town\":\"Rome\"}\n"));
  EXPECT_EQ(folder_.Text("o.parquet").substr(0, 4), "PAR1");
  EXPECT_EQ(folder_.Text("o.arrow").substr(0, 6), "ARROW1");
  EXPECT_EQ(folder_.Text("o.sqlite").substr(0, 13), "SQLite format");
  EXPECT_THAT(folder_.Text("o.sqlite"), HasSubstr("CREATE TABLE problems (file TEXT"));
  EXPECT_THAT(folder_.Text("p.jsonl"),
              HasSubstr("{\"file\":\"b.csv\",\"kind\":\"unreadable\",\"case\":2,\"line\":2,"));
}

TEST_F(Files, AFileThatDoesNotFitIsAnErrorOrLeftOut) {
  folder_.Write("a.csv", "id,town\n1,Oslo\n");
  folder_.Write("b.csv", "pressure,depth,height\n1,2,3\n");
  folder_.Write("c.csv", "id,town\n2,Rome\n");
  const Ended ended = Import({"*.csv"}, {"-o", "all.csv"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, AllOf(HasSubstr("b.csv: it has 0 of the 2 columns of a.csv"),
                               HasSubstr("--skip-misfits")));
  EXPECT_FALSE(folder_.Holds("all.csv"));

  const Ended skipped = Import({"a.csv", "b.csv", "c.csv"},
                               {"-o", "all.tsv", "--skip-misfits", "--problems", "p.csv"});
  EXPECT_EQ(skipped.status, 0) << skipped.err;
  EXPECT_THAT(skipped.out, HasSubstr("2 with data, 1 left out"));
  EXPECT_EQ(folder_.Text("all.tsv"), "id\ttown\n1\tOslo\n2\tRome\n");
  EXPECT_THAT(folder_.Text("p.csv"), HasSubstr("\nb.csv,left-out,"));

  const Ended strict = Import({"a.csv", "b.csv", "c.csv"}, {"--skip-misfits", "--strict"});
  EXPECT_EQ(strict.status, 1);
  EXPECT_THAT(strict.err, HasSubstr("b.csv is left out"));
}

TEST_F(Files, WhatHoldsNothingIsNamedAndNothingIsLost) {
  folder_.Write("a.csv", "id,town\n1,Oslo\n");
  folder_.Write("b.csv", "");
  folder_.Write("c.csv", "id,town\n");
  folder_.Write("d.csv", "id,town\n2,Rome\n");
  const Ended ended = Import({"*.csv"}, {"-o", "all.tsv"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, AllOf(HasSubstr("b.csv: it is empty"),
                               HasSubstr("c.csv: it holds names of columns and no data")));
  EXPECT_EQ(folder_.Text("all.tsv"), "id\ttown\n1\tOslo\n2\tRome\n");
}

TEST_F(Files, ADamagedCompressedFileInTheMiddleIsNamed) {
  folder_.Write("a.csv", "id,town\n1,Oslo\n");
  folder_.Write("b.csv.gz", std::string("\x1F\x8B\x08\0\0\0\0\0\0\x03", 10) + "no stream");
  folder_.Write("c.csv", "id,town\n2,Rome\n");
  const std::vector<std::string> files = {"a.csv", "b.csv.gz", "c.csv"};
  const Ended ended = Import(files, {"-o", "all.tsv"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, HasSubstr("b.csv.gz: "));
  const Ended skipped = Import(files, {"-o", "all.tsv", "--skip-misfits"});
  EXPECT_EQ(skipped.status, 0) << skipped.err;
  EXPECT_THAT(skipped.out, HasSubstr("b.csv.gz: "));
  EXPECT_EQ(folder_.Text("all.tsv"), "id\ttown\n1\tOslo\n2\tRome\n");
}

TEST_F(Files, DriftIsTold) {
  folder_.Write("a.csv", "id,town,amount\n1,Oslo,1.5\n2,Rome,2.5\n");
  folder_.Write("b.csv", "ID, Town ,amount\n3,Bonn,1.5\n");
  folder_.Write("c.csv", "amount,id,town\n1.5,4,Bern\n");
  folder_.Write("d.csv", "id,town\n5,Bari\n");
  folder_.Write("e.csv", "id,town,amount,note\n6,Kiel,none given,late\n7,Graz,2.5,\n");
  const Ended ended = Import({"*.csv"}, {"-o", "all.tsv", "--dictionary", "d.json", "--show", "0"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, AllOf(HasSubstr("the column \"id\" is \"ID\" here"),
                               HasSubstr("the columns are in another order: amount, id, town"),
                               HasSubstr("d.csv: the column \"amount\" is missing"),
                               HasSubstr("e.csv: the column \"note\" is in addition")));
  const std::string drift = folder_.Text("d.json");
  for (const std::string kind : {"renamed", "reordered", "missing", "added"}) {
    EXPECT_THAT(drift, HasSubstr("{\"kind\":\"" + kind + "\""));
  }
  EXPECT_THAT(drift, HasSubstr("\"kind\":\"type\",\"file\":\"e.csv\",\"column\":\"amount\","
                               "\"line\":2,\"value\":\"none given\",\"count\":1"));
  EXPECT_EQ(folder_.Text("all.tsv"),
            "id\ttown\tamount\tnote\n1\tOslo\t1.5\t\n2\tRome\t2.5\t\n3\tBonn\t1.5\t\n"
            "4\tBern\t1.5\t\n5\tBari\t\t\n6\tKiel\tnone given\tlate\n7\tGraz\t2.5\t\n");
}

TEST_F(Files, ColumnsGoByNameOrByPlace) {
  folder_.Write("a.csv", "id,n\n1,10\n2,20\n");
  folder_.Write("b.csv", "n,id\n30,3\n");
  const Ended byName = Import({"a.csv", "b.csv"}, {"--by", "name", "-o", "n.tsv"});
  EXPECT_EQ(byName.status, 0) << byName.err;
  EXPECT_EQ(folder_.Text("n.tsv"), "id\tn\n1\t10\n2\t20\n3\t30\n");
  const Ended byPlace = Import({"a.csv", "b.csv"}, {"--by", "position", "-o", "p.tsv"});
  EXPECT_EQ(byPlace.status, 0) << byPlace.err;
  EXPECT_EQ(folder_.Text("p.tsv"), "id\tn\n1\t10\n2\t20\n30\t3\n");
  EXPECT_THAT(byPlace.out, HasSubstr("b.csv: column 1 is \"n\" here, not \"id\""));
  folder_.Write("c.csv", "id,n,more\n4,40,x\n");
  const Ended wider = Import({"a.csv", "c.csv"}, {"--by", "position"});
  EXPECT_EQ(wider.status, 1);
  EXPECT_THAT(wider.err, HasSubstr("c.csv: it has 3 columns, and a.csv has 2"));
}

TEST_F(Files, WithoutNamesGoByThePlacesOfTheFirst) {
  folder_.Write("x.aa", "id,n\n1,10\n2,20\n");
  folder_.Write("x.ab", "3,30\n4,40\n");
  const Ended ended = Import({"x.*"}, {"-o", "all.tsv"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(folder_.Text("all.tsv"), "id\tn\n1\t10\n2\t20\n3\t30\n4\t40\n");
  EXPECT_THAT(ended.out, HasSubstr("x.ab: no names stand above its columns"));
  EXPECT_EQ(Import({"x.*"}, {"--by", "name"}).status, 1);
}

TEST_F(Files, InPartsGiveTheSame) {
  for (int file = 0; file < 3; ++file) {
    std::string text = "id,town,when\n";
    for (int i = 0; i < 100; ++i) {
      text += std::to_string(100 * file + i) + ",\"T" + (i % 9 == 0 ? "\n" : " ") + "x\"," +
              (i % 30 == 7 ? "soon" : "2020-01-0" + std::to_string(1 + i % 9)) + "\n";
    }
    folder_.Write(std::string(1, static_cast<char>('a' + file)) + ".csv", text);
  }
  const std::vector<std::string> outputs = {"--quiet",      "--digest", "--problems", "p.csv",
                                            "--dictionary", "d.json",   "-o",         "o.csv"};
  const Ended whole = Import({"*.csv"}, outputs);
  ASSERT_EQ(whole.status, 0) << whole.err;
  const auto all = [this] {
    return folder_.Text("p.csv") + folder_.Text("d.json") + folder_.Text("o.csv");
  };
  ASSERT_EQ(Import({"a.csv", "b.csv", "c.csv"}, outputs).status, 0);
  for (const std::string size : {"1", "64", "1000", "1MB"}) {
    std::vector<std::string> words = outputs;
    words.insert(words.end(), {"--part-size", size});
    const std::string before = all();
    const Ended parts = Import({"a.csv", "b.csv", "c.csv"}, words);
    EXPECT_EQ(parts.status, 0) << parts.err;
    EXPECT_EQ(parts.out, whole.out) << size;
    EXPECT_EQ(all(), before) << size;
  }
}

TEST_F(Files, AThousandAreReadWithFewDescriptors) {
  std::string expected = "id\tname\n";
  for (int i = 1000; i < 2000; ++i) {
    const std::string number = std::to_string(i);
    folder_.Write("f" + number + ".csv", "id,name\n" + number + ",n" + number + "\n");
    expected += number + "\tn" + number + "\n";
  }
  const Ended ended = Shell("import 'f*.csv' -o all.tsv --quiet", "ulimit -n 64; ");
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(folder_.Text("all.tsv"), expected);
}

TEST_F(Files, WrongUsageIsSaid) {
  folder_.Write("a.csv", "id\n1\n");
  folder_.Write("b.csv", "id\n2\n");
  EXPECT_EQ(Import({"no*.csv"}, {}).status, 2);
  EXPECT_EQ(Import({"a.csv", "b.csv"}, {"--rejects", "r.csv"}).status, 2);
  EXPECT_EQ(Import({"a.csv", "b.csv"}, {"-o", "b.csv"}).status, 2);
  EXPECT_EQ(Import({"a.csv", "b.csv"}, {"--parts", "1/2", "--summary", "s"}).status, 2);
  const Ended taken = Import({"a.csv", "b.csv"}, {"--source-column", "ID"});
  EXPECT_EQ(taken.status, 1);
  EXPECT_THAT(taken.err, HasSubstr("there is a column ID in the data already"));
  const Ended gone = Import({"a.csv", "gone.csv"}, {});
  EXPECT_EQ(gone.status, 1);
  EXPECT_THAT(gone.err, HasSubstr("gone.csv: "));
}

}  // namespace
}  // namespace program
