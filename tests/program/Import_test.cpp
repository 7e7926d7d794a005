// `textwizard import`, from outside.

#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Program.h"

namespace program {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr char kTowns[] =
    "Full name,visited,town,income,zip\n"
    "\"Ada, L.\",31/12/2019,Rome,1200.50,01234\n"
    "Bob,01/02/2019,Oslo,NA,05678\n"
    "\"Eve\nTwo\",03/04/2019,Bern,800.25,12345\n"
    "Zed,05/06/2019,Paris,,99999\n";

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string LineWith(const std::string& text, const std::string& what) {
  for (const std::string& line : Lines(text)) {
    if (line.find(what) != std::string::npos) return line;
  }
  return {};
}

class Import : public ProgramTest {
 protected:
  // What stands behind the program's name in the line that repeats the import.
  static std::string Repeating(const std::string& out) {
    const std::string line = LineWith(out, "textwizard run ");
    return line.empty() ? line : line.substr(std::string("textwizard ").size());
  }
};

TEST_F(Import, OneScreenSaysHowTheFileWasReadAndShowsItsTable) {
  folder_.Write("towns.csv", kTowns);
  const Ended ended = Run({"import", "towns.csv"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.err, "");
  const std::string out = ended.out;
  EXPECT_THAT(LineWith(out, "encoding"), AllOf(HasSubstr("UTF-8"), HasSubstr("found")));
  EXPECT_THAT(LineWith(out, "delimiter"), AllOf(HasSubstr("comma"), HasSubstr("found")));
  EXPECT_THAT(out, HasSubstr("Full_name     visited  town   income  zip\n"
                             "A7            EDATE10  A5       F7.2  A5\n"
                             "Ada, L.    2019-12-31  Rome   1200.5  01234\n"
                             "Bob        2019-02-01  Oslo        .  05678\n"
                             "Eve\\nTwo   2019-04-03  Bern   800.25  12345\n"
                             "Zed        2019-06-05  Paris       .  99999\n"));
  EXPECT_THAT(out, HasSubstr("visited: day first: 31/12/2019 in line 2\n"));
  EXPECT_THAT(out, HasSubstr("zip: a text that keeps leading zeros, first 01234 in line 2;"));
  EXPECT_THAT(out, HasSubstr("0 problems\nledger: "));
  EXPECT_THAT(Repeating(out), StartsWith("run "));
  for (const std::string& line : Lines(out)) {
    if (line.starts_with("ledger: ") || line.starts_with("textwizard run")) continue;
    EXPECT_LE(line.size(), 82U) << "80 columns, an ellipsis of 3 bytes: " << line;
  }
}

TEST_F(Import, WhatIsGivenIsSaidToBeGiven) {
  folder_.Write("a.txt", "x|y\n1|2,5\n2|3,5\n");
  const Ended ended =
      Run({"import", "a.txt", "--delimiter", "|", "--decimal", "comma", "--header", "yes",
           "--first-line", "2", "--qualifier", "none", "--encoding", "utf-8", "-o", "a.csv"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  for (const char* name : {"encoding", "delimiter", "qualifier", "header", "data", "decimal"}) {
    EXPECT_THAT(LineWith(ended.out, std::string("  ") + name + " "), HasSubstr(" given")) << name;
  }
  EXPECT_EQ(folder_.Text("a.csv"), "x,y\n1,2.5\n2,3.5\n");
}

TEST_F(Import, ThePrintedLineRepeatsTheImport) {
  folder_.Write("towns.csv", kTowns);
  const Ended import = Run(
      {"import", "towns.csv", "--command", "towns.sps", "--digest", "--dictionary", "import.json"});
  ASSERT_EQ(import.status, 0) << import.err;
  EXPECT_THAT(folder_.Text("towns.sps"), AllOf(StartsWith("GET DATA"), Not(HasSubstr("AUTO"))));
  const Ended run = Shell(Repeating(import.out) + " --digest --dictionary run.json");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(folder_.Text("import.json"), folder_.Text("run.json"));
  EXPECT_NE(LineWith(import.out, "digest: "), "");
  EXPECT_EQ(LineWith(import.out, "digest: "), LineWith(run.out, "digest: "));
}

TEST_F(Import, EverySettingOfTheHostIsInThePrintedLine) {
  struct Case {
    const char* name;
    std::string text;
    const char* option;
  };
  std::string wide;
  for (const char byte : std::string("id,town\n1,Rome\n2,Oslo\n3,Bern\n")) wide += {byte, '\0'};
  const Case cases[] = {
      {"comma", "id;x\n1;1,5\n2;22,75\n3;100,25\n", "--decimal comma"},
      {"page", "id;town\n1;K\xF6ln\n2;M\xFCnchen\n3;Z\xFCrich\n4;D\xFCsseldorf\n",
       "--locale-code-page "},
      {"mark", wide, "--byte-order-mark utf-16le"},
      {"breaks", "id,note\n1,\"a\nb\"\n2,\"c\n\nd\"\n3,e\n", "--join-quoted-lines"},
      {"escapes", "id,note\n1,\"a \\\"b\\\" c\"\n2,\"d\"\n3,\"say \\\"e\\\"\"\n",
       "--backslash-escapes"},
      {"stray", "id,note,s\n1,He said \"hi\" there,\"1,5\"\n2,5\" pipe,\"2,5\"\n3,\"x\",\"3,5\"\n",
       "--keep-stray-qualifiers"},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    folder_.Write("a.csv", test.text);
    const Ended import = Run({"import", "a.csv", "--command", "a.sps", "--digest"});
    ASSERT_EQ(import.status, 0) << import.err;
    EXPECT_THAT(Repeating(import.out), HasSubstr(test.option));
    const Ended run = Shell(Repeating(import.out) + " --digest");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(LineWith(import.out, "digest: "), LineWith(run.out, "digest: "));
  }
}

TEST_F(Import, ColumnsOfOutputsCarryTheHeadersText) {
  folder_.Write("towns.csv", kTowns);
  ASSERT_EQ(Run({"import", "towns.csv", "-o", "labels.csv"}).status, 0);
  EXPECT_EQ(Lines(folder_.Text("labels.csv"))[0], "Full name,visited,town,income,zip");
  ASSERT_EQ(Run({"import", "towns.csv", "-o", "names.csv", "--names-as", "variables"}).status, 0);
  EXPECT_EQ(Lines(folder_.Text("names.csv"))[0], "Full_name,visited,town,income,zip");
}

TEST_F(Import, WritesSeveralOutputsAtOnce) {
  folder_.Write("towns.csv", kTowns);
  const Ended ended = Run({"import", "towns.csv", "-o", "a.csv", "-o", "a.tsv", "-o", "a.jsonl",
                           "-o", "a.arrow", "-o", "a.parquet", "-o", "a.sqlite", "--dictionary",
                           "a.json", "--problems", "p.csv", "--quiet"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out, "");
  for (const char* name : {"a.csv", "a.tsv", "a.jsonl", "a.arrow", "a.parquet", "a.sqlite"}) {
    EXPECT_FALSE(folder_.Text(name).empty()) << name;
  }
  const auto dictionary = nlohmann::json::parse(folder_.Text("a.json"));
  EXPECT_EQ(dictionary["cases"], 4);
  EXPECT_EQ(dictionary["variables"][1]["format"], "EDATE10");
}

TEST_F(Import, TypesNamesAndNullTextsAreGiven) {
  folder_.Write("a.csv", "a,b\n1,5\n2,-99\n3,7\n");
  const Ended ended = Run({"import", "a.csv", "--names", "x,y", "--types", "x=A3", "--null", "-99",
                           "-o", "o.jsonl", "--names-as", "variables", "--quiet"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(Lines(folder_.Text("o.jsonl"))[1], R"({"x":"2","y":null})");
}

TEST_F(Import, FixedColumnsAreGiven) {
  folder_.Write("a.txt", "K\xC3\xB6ln   12\nBern   345\nZ\xC3\xBCrich  7\n");
  const Ended ended = Run({"import", "a.txt", "--fixed", "1-6,7-", "--header", "no", "-o", "o.csv",
                           "--command", "a.sps", "--digest"});
  ASSERT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(folder_.Text("o.csv"), "V1,V2\nK\xC3\xB6ln,12\nBern,345\nZ\xC3\xBCrich,7\n");
  EXPECT_THAT(LineWith(ended.out, "fixed columns"), HasSubstr(" given"));
  const Ended run = Shell(Repeating(ended.out) + " --digest");
  EXPECT_EQ(LineWith(ended.out, "digest: "), LineWith(run.out, "digest: "));
}

TEST_F(Import, StandardInputAndTheCommandToStandardOutput) {
  const Ended ended = Run({"import", "-", "--command", "-"}, kTowns);
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, StartsWith("GET DATA\n  /TYPE=TXT\n  /FILE='-'\n"));
  EXPECT_THAT(ended.err, HasSubstr("textwizard run - --join-quoted-lines"));
}

TEST_F(Import, ManyColumnsShowTheFirstAndTheLastAndHowManyAreBetween) {
  std::string header;
  std::string record;
  for (int column = 1; column <= 300; ++column) {
    header += (column > 1 ? ",col" : "col") + std::to_string(column);
    record += (column > 1 ? "," : "") + std::to_string(1000 + column);
  }
  folder_.Write("wide.csv", header + "\n" + record + "\n" + record + "\n" + record + "\n");
  const Ended ended = Run({"import", "wide.csv"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  const std::string title = LineWith(ended.out, "col1 ");
  EXPECT_THAT(title, AllOf(HasSubstr(" more "), HasSubstr("col300")));
  EXPECT_LE(title.size(), 80U);
  // Shown and hidden ones are all there are.
  std::istringstream words(title);
  int shown = 0;
  int hidden = 0;
  for (std::string word; words >> word;) {
    if (word.starts_with("col")) ++shown;
    if (word != "more" && !word.starts_with("col")) hidden = std::stoi(word);
  }
  EXPECT_EQ(shown + hidden, 300);
}

TEST_F(Import, WhatIsWrongWithAColumnIsSaidAndCounted) {
  std::string text = "id,x\n";
  for (int line = 2; line <= 60; ++line) text += std::to_string(line) + ",7\n";
  folder_.Write("a.csv", text + "61,soon\n");
  const Ended ended = Run({"import", "a.csv", "--problems", "p.jsonl"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr("x: 1 value that F1 cannot read, first soon in line 61"));
  EXPECT_THAT(ended.out, HasSubstr("1 problem\n"));
  const auto problem = nlohmann::json::parse(folder_.Text("p.jsonl"));
  EXPECT_EQ(problem["kind"], "unreadable");
  EXPECT_EQ(problem["line"], 61);
  EXPECT_EQ(problem["text"], "soon");
  const Ended strict = Run({"import", "a.csv", "--strict", "-o", "o.csv", "--command", "c.sps"});
  EXPECT_EQ(strict.status, 1);
  EXPECT_FALSE(folder_.Holds("o.csv"));
  EXPECT_FALSE(folder_.Holds("c.sps"));
}

TEST_F(Import, AFileThatIsNoTextIsNamedAsWhatItIs) {
  folder_.Write("empty.csv", "");
  folder_.Write("blank.csv", "\n\n");
  folder_.Write("a.png", "\x89PNG\r\n\x1A\n" + std::string(20, '\0'));
  folder_.Write("a.exe", std::string("\x7F"
                                     "ELF\x02\x01\x01\0\0\0\0\0",
                                     12) +
                             std::string(50, '\0'));
  folder_.Write("a.pdf", "%PDF-1.4\n%\xE2\xE3\n" + std::string(20, '\x01'));
  ASSERT_EQ(mkdir((folder_ / "folder").c_str(), 0700), 0);
  const std::pair<const char*, const char*> files[] = {{"empty.csv", "empty"},
                                                       {"blank.csv", "blank lines"},
                                                       {"a.png", "PNG"},
                                                       {"a.exe", "program"},
                                                       {"a.pdf", "PDF"},
                                                       {"folder", "folder"},
                                                       {"missing.csv", "No such file"}};
  for (const auto& [name, what] : files) {
    const Ended ended = Run({"import", name, "-o", "o.csv", "--command", "o.sps"});
    EXPECT_EQ(ended.status, 1) << name;
    EXPECT_THAT(ended.err, StartsWith(std::string("error: ") + name + ": "));
    EXPECT_THAT(ended.err, HasSubstr(what));
    EXPECT_FALSE(folder_.Holds("o.csv"));
    EXPECT_FALSE(folder_.Holds("o.sps"));
  }
}

TEST_F(Import, SmallAndOddFilesAreImported) {
  struct Case {
    std::string text;
    int cases;
  };
  const Case files[] = {
      {"x", 0},
      {"a,b,c\n", 0},
      {"1,2,3", 1},
      {"a,b\n1,2\r\n3,4\r5,6\n", 3},
      {std::string("a,b\n1,x\0y\n2,z\n3,w\n", 18), 3},
      {"a,b\n1," + std::string(10000000, 'x') + "\n2,y\n", 2},
  };
  for (const Case& file : files) {
    folder_.Write("a.csv", file.text);
    const Ended ended = Run({"import", "a.csv", "--dictionary", "d.json"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(nlohmann::json::parse(folder_.Text("d.json"))["cases"], file.cases)
        << file.text.substr(0, 40);
  }
}

TEST_F(Import, WrongUsage) {
  folder_.Write("a.csv", "a,b\n1,2\n");
  const std::vector<std::vector<std::string>> wrong = {
      {"import"},
      {"import", "a.csv", "--header", "maybe"},
      {"import", "a.csv", "--first-line", "0"},
      {"import", "a.csv", "--fixed", "1-8,5-9"},
      {"import", "a.csv", "--fixed", "8-1"},
      {"import", "a.csv", "--types", "a"},
      {"import", "a.csv", "--names", "a,,b"},
      {"import", "a.csv", "--qualifier", "ab"},
      {"import", "a.csv", "--encoding", "no-such-encoding"},
      {"import", "a.csv", "--delimiter", "\\q"},
      {"import", "a.csv", "--sample", "0"},
      {"import", "a.csv", "-o", "a.xyz"},
      {"import", "a.csv", "-o", "a.csv"},
      {"import", "a.csv", "--command", "a.csv"},
      {"import", "a.csv", "-o", "b.csv", "--command", "b.csv"},
      {"import", "a.csv", "--command", "missing/c.sps"},
  };
  for (const auto& arguments : wrong) {
    const Ended ended = Run(arguments);
    EXPECT_EQ(ended.status, 2) << testing::PrintToString(arguments) << ended.err;
    EXPECT_THAT(ended.err, StartsWith("error: "));
  }
  EXPECT_EQ(folder_.Text("a.csv"), "a,b\n1,2\n");
}

TEST_F(Import, ASettingThatDoesNotFitTheFileFails) {
  folder_.Write("a.csv", "a,b\n1,2\n3,4\n");
  const Ended names = Run({"import", "a.csv", "--names", "x"});
  EXPECT_EQ(names.status, 1);
  EXPECT_THAT(names.err, HasSubstr("1 name is given for 2 columns"));
  const Ended types = Run({"import", "a.csv", "--types", "c=F8"});
  EXPECT_EQ(types.status, 1);
  EXPECT_THAT(types.err, HasSubstr("there is no column c"));
}

TEST_F(Import, TheSameForAnyNumberOfWorkers) {
  std::string text = "id,day,note\n";
  for (int line = 0; line < 20000; ++line) {
    text += std::to_string(line) + ",2020-01-" + (line % 2 == 0 ? "05" : "17") + ",\"a\n" +
            std::to_string(line % 7) + "\"\n";
  }
  folder_.Write("a.csv", text);
  const Ended one = Run({"import", "a.csv", "--workers", "1", "--digest", "--verify"});
  const Ended four = Run({"import", "a.csv", "--workers", "4", "--digest", "--verify"});
  EXPECT_EQ(one.status, 0) << one.err;
  EXPECT_EQ(one.out.substr(0, one.out.find("verified")),
            four.out.substr(0, four.out.find("verified")));
  EXPECT_NE(LineWith(one.out, "digest: "), "");
  EXPECT_EQ(LineWith(one.out, "digest: "), LineWith(four.out, "digest: "));
}

}  // namespace
}  // namespace program
