// An import in parts, by one program or by several, from outside.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Program.h"

namespace program {
namespace {

using testing::HasSubstr;

// Text behind the first line.
std::string Body(const std::string& text) { return text.substr(text.find('\n') + 1); }

class Parts : public ProgramTest {
 protected:
  // Texts in quotes, dates, values that are missing or cannot be read, fields too many.
  std::string WriteTable(const std::string& name) const {
    std::string text = "id,town,visited,amount\n";
    for (int i = 1; i <= 300; ++i) {
      const std::string number = std::to_string(i);
      text += number + ",\"Town " + std::to_string(i % 13) + ", x\",0" + std::to_string(1 + i % 9) +
              "/" + (i == 250 ? "25" : "0" + std::to_string(1 + i % 8)) + "/2020," +
              (i % 50 == 0 ? "none" : number + ".5") + (i % 70 == 0 ? ",more\n" : "\n");
      if (i % 60 == 0) text += "\n";
    }
    folder_.Write(name, text);
    return text;
  }
  std::string WriteQuoted(const std::string& name) const {
    std::string text = "id,text,n\n";
    for (int i = 1; i <= 200; ++i) {
      text += std::to_string(i) + ",\"a" + (i % 3 == 0 ? "\n" : " ") + "b\"," +
              (i % 40 == 0 ? "bad" : std::to_string(3 * i)) + "\n";
    }
    folder_.Write(name, text);
    return text;
  }
  Ended Import(const std::string& file, const std::vector<std::string>& more = {}) const {
    std::vector<std::string> words = {"import",     file,    "--quiet",      "--digest",
                                      "--problems", "p.csv", "--dictionary", "d.json",
                                      "--command",  "c.sps", "-o",           "o.csv"};
    words.insert(words.end(), more.begin(), more.end());
    return Run(words);
  }
  std::string All(const Ended& ended) const {
    return ended.out + folder_.Text("p.csv") + folder_.Text("d.json") + folder_.Text("c.sps") +
           folder_.Text("o.csv");
  }
  // Sums the file up in `count` parts and merges them; returns the merged command.
  std::string MergedCommand(const std::string& file, int count) const {
    std::vector<std::string> merge = {"merge"};
    for (int part = 1; part <= count; ++part) {
      const std::string summary = std::to_string(part) + ".summary";
      const Ended ended =
          Run({"import", file, "--parts", std::to_string(part) + "/" + std::to_string(count),
               "--summary", summary});
      EXPECT_EQ(ended.status, 0) << ended.err;
      // In any order.
      merge.insert(merge.begin() + 1, summary);
    }
    const Ended merged = Run(merge);
    EXPECT_EQ(merged.status, 0) << merged.err;
    return merged.out;
  }
};

TEST_F(Parts, OfAnySizeGiveTheSameImport) {
  WriteTable("table.csv");
  WriteQuoted("quoted.csv");
  for (const std::string file : {"table.csv", "quoted.csv"}) {
    const Ended whole = Import(file);
    ASSERT_EQ(whole.status, 0) << whole.err;
    EXPECT_THAT(whole.out, HasSubstr("digest: "));
    const std::string all = All(whole);
    for (const std::string size : {"1", "97", "1000", "2k", "1MB"}) {
      const Ended cut = Import(file, {"--part-size", size});
      EXPECT_EQ(cut.status, 0) << cut.err;
      EXPECT_EQ(All(cut), all) << file << " in parts of " << size;
    }
  }
}

TEST_F(Parts, AreVerifiedByReadingThemAgain) {
  WriteQuoted("quoted.csv");
  const Ended ended = Run({"import", "quoted.csv", "--part-size", "300", "--verify"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr("verified: a second reading"));
}

TEST_F(Parts, OfSeveralProgramsMergeIntoTheCommand) {
  WriteTable("table.csv");
  WriteQuoted("quoted.csv");
  for (const std::string file : {"table.csv", "quoted.csv"}) {
    ASSERT_EQ(Import(file).status, 0);
    for (const int count : {1, 3, 7}) EXPECT_EQ(MergedCommand(file, count), folder_.Text("c.sps"));
  }
}

TEST_F(Parts, AreImportedByThemselves) {
  const std::string text = WriteTable("table.csv");
  const Ended whole = Import("table.csv");
  ASSERT_EQ(whole.status, 0);
  const std::string cases = folder_.Text("o.csv");
  const std::string problems = folder_.Text("p.csv");
  folder_.Write("m.sps", MergedCommand("table.csv", 3));
  std::string joinedCases = cases.substr(0, cases.find('\n') + 1);
  std::string joinedProblems = problems.substr(0, problems.find('\n') + 1);
  const std::size_t third = text.size() / 3;
  const std::size_t places[] = {0, third, 2 * third, text.size()};
  for (std::size_t part = 0; part < 3; ++part) {
    std::vector<std::string> words = {
        "import",
        "--part",
        std::to_string(places[part]) + "-" + std::to_string(places[part + 1]),
        "--command",
        "m.sps",
        "-o",
        "part.csv",
        "--problems",
        "q.csv",
        "--quiet"};
    for (std::size_t before = 1; before <= part; ++before) {
      words.insert(words.end(), {"--before", std::to_string(before) + ".summary"});
    }
    const Ended ended = Run(words);
    EXPECT_EQ(ended.status, 0) << ended.err;
    joinedCases += Body(folder_.Text("part.csv"));
    joinedProblems += Body(folder_.Text("q.csv"));
  }
  EXPECT_EQ(joinedCases, cases);
  EXPECT_EQ(joinedProblems, problems);
}

TEST_F(Parts, WithoutSummariesReadWhatStandsBefore) {
  WriteQuoted("quoted.csv");
  ASSERT_EQ(Import("quoted.csv").status, 0);
  const std::string cases = folder_.Text("o.csv");
  const std::string size = std::to_string(folder_.Text("quoted.csv").size());
  std::string joined = cases.substr(0, cases.find('\n') + 1);
  for (const std::string& part : {std::string("0-1000"), "1000-" + size}) {
    const Ended ended =
        Run({"run", "c.sps", "--join-quoted-lines", "--part", part, "-o", "part.csv", "--quiet"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    joined += Body(folder_.Text("part.csv"));
  }
  EXPECT_EQ(joined, cases);
}

TEST_F(Parts, OfUtf16WithoutAMarkHaveTheirBytes) {
  std::string wide;
  for (const char byte : std::string("a;b\n1;x\nbad;y\n3;z\n")) wide += {byte, '\0'};
  folder_.Write("wide.csv", wide);
  folder_.Write("c.sps",
                "GET DATA /TYPE=TXT /FILE='wide.csv' /DELIMITERS=';' /FIRSTCASE=2 "
                "/VARIABLES=a F3 b A3.");
  const auto part = [&](const std::string& range) {
    return Run({"run", "c.sps", "--byte-order-mark", "utf-16le", "--part", range, "--dictionary",
                "d.json", "--problems", "p.csv", "--quiet"});
  };
  EXPECT_EQ(part("0-16").status, 0);
  EXPECT_EQ(Json("d.json")["ledger"]["bytes"], 16);
  EXPECT_EQ(Json("d.json")["ledger"]["skipped"], 8);
  const Ended second = part("16-36");
  EXPECT_EQ(second.status, 0) << second.err;
  EXPECT_EQ(Json("d.json")["ledger"]["bytes"], 20);
  EXPECT_EQ(Json("d.json")["cases"], 2);
  EXPECT_THAT(folder_.Text("p.csv"), HasSubstr("\nunreadable,2,3,16,a,F3,bad,"));
}

TEST_F(Parts, OfAFileThatChangedAreRefused) {
  const std::string text = WriteTable("table.csv");
  ASSERT_EQ(MergedCommand("table.csv", 2).substr(0, 8), "GET DATA");
  folder_.Write("table.csv", text + "301,x,01/01/2020,1\n");
  const Ended merged = Run({"merge", "1.summary", "2.summary"});
  EXPECT_EQ(merged.status, 1);
  EXPECT_THAT(merged.err, HasSubstr("changed since it was summed up"));
}

TEST_F(Parts, ThatAreMissingAreNamed) {
  WriteTable("table.csv");
  MergedCommand("table.csv", 3);
  const Ended gap = Run({"merge", "1.summary", "3.summary"});
  EXPECT_EQ(gap.status, 1);
  EXPECT_THAT(gap.err, HasSubstr("3.summary: it begins at byte"));
  const Ended some = Run({"merge", "2.summary", "3.summary"});
  EXPECT_EQ(some.status, 1);
  EXPECT_THAT(some.err, HasSubstr("not all of them"));
  EXPECT_EQ(Run({"merge", "1.summary", "2.summary", "-o", "12.summary"}).status, 0);
  EXPECT_EQ(Run({"merge", "12.summary", "3.summary"}).status, 0);
  const Ended none = Run({"merge", "table.csv"});
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(none.err, "error: table.csv is no summary of a part\n");
}

TEST_F(Parts, WrongUsageIsSaid) {
  WriteTable("table.csv");
  const std::vector<std::vector<std::string>> wrong = {
      {"import", "table.csv", "--part-size", "0"},
      {"import", "table.csv", "--part-size", "many"},
      {"import", "table.csv", "--parts", "4/3", "--summary", "x"},
      {"import", "table.csv", "--parts", "1/3"},
      {"import", "table.csv", "--summary", "x"},
      {"import", "table.csv", "--parts", "1/3", "--summary", "x", "--sample", "10"},
      {"import", "table.csv", "--parts", "1/3", "--summary", "x", "-o", "o.csv"},
      {"import", "table.csv", "--parts", "1/3", "--summary", "x", "--digest"},
      {"import", "--part", "0-5"},
      {"import", "--part", "5-3", "--command", "c.sps"},
      {"import", "table.csv", "--part", "0-5", "--command", "c.sps"},
      {"import"},
      {"merge"},
  };
  for (const std::vector<std::string>& words : wrong) {
    const Ended ended = Run(words);
    EXPECT_EQ(ended.status, 2) << words.back() << ended.err;
    EXPECT_THAT(ended.err, HasSubstr("error: "));
  }
}

}  // namespace
}  // namespace program
