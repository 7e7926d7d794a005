// What `textwizard run` tells of files that it reads in a converted or padded copy: places, ledger
// and rejects are those of the file itself.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <unicode/unistr.h>

#include "library/input/testing/CompressedFile.h"
#include "tests/program/Program.h"

namespace program {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kMixed[] =
    "n\xC2\xB0;town\r\n1;\xC5\x81\xC3\xB3"
    "d\xC5\xBA\r\nx;\xE6\x9D\xB1\xE4\xBA\xAC\r\n\r\n3\r\n"
    "4;\xC3\x85rhus\r\n\xE4\xBA\x8C;Oslo\r\n";
constexpr char kDelimited[] =
    "GET DATA /TYPE=TXT /FILE='data' /ENCODING='UTF8' /DELIMITERS=';' /FIRSTCASE=2 "
    "/VARIABLES=id F3 town A12.";
// Characters 1-8, 9-12 and 13-.
constexpr char kColumns[] =
    "\xC5\x81\xC3\xB3"
    "d\xC5\xBA    12  abc\n\xC3\x85rhus   x   \xE6\x9D\xB1\n"
    "\xE6\x9D\xB1\xE4\xBA\xAC      y\nOslo    8   zz\n";
constexpr char kFixed[] =
    "GET DATA /TYPE=TXT /FILE='data' /ENCODING='UTF8' /ARRANGEMENT=FIXED "
    "/VARIABLES=town 0-15 A16 n 32-35 F4 text 48-59 A12.";

// The text in the encoding, behind `mark`.
std::string Encoded(const std::string& utf8, const char* encoding, const std::string& mark = {}) {
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8(utf8);
  std::string bytes(static_cast<std::size_t>(text.length()) * 8 + 64, '\0');
  const std::int32_t length = text.extract(0, text.length(), bytes.data(),
                                           static_cast<std::uint32_t>(bytes.size()), encoding);
  bytes.resize(static_cast<std::size_t>(length));
  return mark + bytes;
}

class RunCopies : public ProgramTest {
 protected:
  // Runs the command on the file "data" and writes all that tells of its bytes.
  void RunOn(const std::string& bytes, const std::string& command,
             std::vector<std::string> reading) {
    folder_.Write("data", bytes);
    reading.insert(reading.end(), {"--dictionary", "d.json", "--problems", "p.jsonl", "--rejects",
                                   "rejects", "--cases", "c.csv", "--verify"});
    const Ended ended = Quiet(command, reading);
    ASSERT_EQ(ended.status, 0) << ended.err;
    problems_.clear();
    const std::string lines = folder_.Text("p.jsonl");
    for (std::size_t at = 0; at < lines.size(); at = lines.find('\n', at) + 1) {
      problems_.push_back(json::parse(lines.substr(at, lines.find('\n', at) - at)));
    }
    ledger_ = Json("d.json")["ledger"];
    EXPECT_EQ(Of("bytes"), Of("mark") + Of("skipped") + Of("records") + Of("line_ends") +
                               Of("dropped") + Of("unread"));
  }
  long long Of(const char* key) const { return ledger_[key].get<long long>(); }
  // The text that the file has where the problem is.
  std::string TextAt(const std::string& bytes, std::size_t problem, std::size_t length) const {
    return bytes.substr(problems_[problem]["byte"].get<std::size_t>(), length);
  }
  // What a copy of the rejects alone gives.
  std::string CasesOfRejects(const std::string& command, const std::vector<std::string>& reading) {
    RunOn(folder_.Text("rejects"), command, reading);
    return folder_.Text("c.csv");
  }

  std::vector<json> problems_;
  json ledger_;
};

TEST_F(RunCopies, OfAConvertedFileBytesAreItsOwn) {
  for (const auto& [encoding, name, mark] :
       {std::tuple<const char*, const char*, std::string>{"UTF-32LE", "UTF-32LE", ""},
        {"UTF-32LE", "UTF-32", std::string("\xFF\xFE\0\0", 4)},
        {"UTF-32BE", "UTF-32", std::string("\0\0\xFE\xFF", 4)},
        {"UTF-16BE", "UTF-16", "\xFE\xFF"}}) {
    const std::vector<std::string> reading = {"--transcode", name};
    const std::string data = Encoded(kMixed, encoding, mark);
    RunOn(data, kDelimited, reading);
    EXPECT_EQ(folder_.Text("c.csv"),
              "id,town\n1,\xC5\x81\xC3\xB3"
              "d\xC5\xBA\n,\xE6\x9D\xB1\xE4\xBA\xAC\n3,\n"
              "4,\xC3\x85rhus\n,Oslo\n");
    EXPECT_EQ(Of("bytes"), static_cast<long long>(data.size()));
    EXPECT_EQ(Of("mark"), static_cast<long long>(mark.size()));
    const auto unit = static_cast<long long>(Encoded("\n", encoding).size());
    EXPECT_EQ(Of("skipped"), (9 + 2) * unit) << "names, an empty line";
    EXPECT_EQ(Of("line_ends"), 5 * 2 * unit);
    ASSERT_EQ(problems_.size(), 3u);
    EXPECT_EQ(problems_[0]["line"], 3);
    EXPECT_EQ(TextAt(data, 0, Encoded("x;\xE6\x9D\xB1", encoding).size()),
              Encoded("x;\xE6\x9D\xB1", encoding));
    EXPECT_EQ(problems_[1]["kind"], "few-fields");
    EXPECT_EQ(TextAt(data, 1, Encoded("3\r\n4", encoding).size()), Encoded("3\r\n4", encoding));
    EXPECT_EQ(problems_[2]["text"], "\xE4\xBA\x8C");
    EXPECT_EQ(TextAt(data, 2, Encoded("\xE4\xBA\x8C;O", encoding).size()),
              Encoded("\xE4\xBA\x8C;O", encoding));
    EXPECT_EQ(folder_.Text("rejects"),
              Encoded("n\xC2\xB0;town\r\nx;\xE6\x9D\xB1\xE4\xBA\xAC\r\n3\r\n\xE4\xBA\x8C;Oslo\r\n",
                      encoding, mark));
    EXPECT_EQ(CasesOfRejects(kDelimited, reading),
              "id,town\n,\xE6\x9D\xB1\xE4\xBA\xAC\n3,\n,Oslo\n");
  }
}

TEST_F(RunCopies, ARecordBeginsWithItsEscape) {
  const std::vector<std::string> reading = {"--transcode", "ISO-2022-JP"};
  const std::string data = "a;b\n1;\x1B$B0l\x1B(B\n\x1B$B0l\x1B(B;x\n2;y\n\x1B$B0l\x1B(B;z\n";
  RunOn(data, kDelimited, reading);
  EXPECT_EQ(Of("bytes"), static_cast<long long>(data.size()));
  EXPECT_EQ(Of("skipped"), 4);
  EXPECT_EQ(Of("line_ends"), 4);
  ASSERT_EQ(problems_.size(), 2u);
  EXPECT_THAT(TextAt(data, 0, 8), StartsWith("\x1B$B0l"));
  EXPECT_EQ(folder_.Text("rejects"), "a;b\n\x1B$B0l\x1B(B;x\n\x1B$B0l\x1B(B;z\n");
  EXPECT_EQ(CasesOfRejects(kDelimited, reading), "id,town\n,x\n,z\n");
}

TEST_F(RunCopies, OfAPaddedFileBytesAreItsOwn) {
  const std::vector<std::string> reading = {"--pad-columns", "9,13"};
  const std::string mark = "\xEF\xBB\xBF";
  for (const std::string& data : {std::string(kColumns), mark + kColumns}) {
    RunOn(data, kFixed, reading);
    EXPECT_EQ(Of("bytes"), static_cast<long long>(data.size()));
    EXPECT_EQ(Of("mark") + Of("records") + 4, Of("bytes"));
    ASSERT_EQ(problems_.size(), 3u);
    EXPECT_EQ(TextAt(data, 0, 7), "x   \xE6\x9D\xB1");
    EXPECT_EQ(problems_[1]["kind"], "short-record");
    EXPECT_EQ(problems_[1]["line"], 3);
    EXPECT_EQ(TextAt(data, 1, 3), "\xE6\x9D\xB1") << "the record";
    EXPECT_EQ(TextAt(data, 2, 2), "y\n");
    const std::string rejected =
        "\xC3\x85rhus   x   \xE6\x9D\xB1\n\xE6\x9D\xB1\xE4\xBA\xAC      y\n";
    EXPECT_EQ(folder_.Text("rejects"), (data == kColumns ? "" : mark) + rejected);
    const std::string cases =
        "town,n,text\n\xC3\x85rhus,,\xE6\x9D\xB1\n\xE6\x9D\xB1\xE4\xBA\xAC,,\n";
    EXPECT_EQ(CasesOfRejects(kFixed, reading), cases);
  }
}

TEST_F(RunCopies, OfAFileThatIsUnpackedConvertedAndPaddedToo) {
  const std::string data = Encoded(kColumns, "UTF-16LE", "\xFF\xFE");
  RunOn(library::testing_support::Compressed(data, library::Compression::kGzip), kFixed,
        {"--transcode", "UTF-16", "--pad-columns", "9,13"});
  EXPECT_EQ(Of("bytes"), static_cast<long long>(data.size()));
  EXPECT_EQ(Of("mark"), 2);
  EXPECT_EQ(Of("line_ends"), 8);
  ASSERT_EQ(problems_.size(), 3u);
  EXPECT_EQ(TextAt(data, 0, 4), std::string("x\0 \0", 4));
  EXPECT_EQ(folder_.Text("rejects"),
            Encoded("\xC3\x85rhus   x   \xE6\x9D\xB1\n\xE6\x9D\xB1\xE4\xBA\xAC      y\n",
                    "UTF-16LE", "\xFF\xFE"));
}

TEST_F(RunCopies, TheLedgerBalancesWhateverIsRead) {
  const std::vector<std::string> reading = {"--transcode", "UTF-32"};
  const std::string mark("\xFF\xFE\0\0", 4);
  RunOn(mark, kDelimited, reading);
  EXPECT_EQ(Of("bytes"), 4);
  EXPECT_EQ(Of("mark"), 4);
  RunOn("", kDelimited, reading);
  EXPECT_EQ(Of("bytes"), 0);
  // A last character that is not all there, NULs, a limit.
  const std::string odd = Encoded(kMixed, "UTF-32LE", mark) + "5\0";
  RunOn(odd, kDelimited, reading);
  EXPECT_EQ(Of("bytes"), static_cast<long long>(odd.size()));
  RunOn(Encoded(std::string("a;b\n1;x\0y\n", 10), "UTF-32LE"), kDelimited,
        {"--transcode", "UTF-32LE"});
  EXPECT_EQ(Of("dropped"), 4);
  std::string first = kDelimited;
  first.insert(first.find(" /VARIABLES"), " /IMPORTCASE=FIRST 2");
  RunOn(Encoded(kMixed, "UTF-32LE", mark), first, reading);
  EXPECT_EQ(Of("unread"),
            static_cast<long long>(
                Encoded("\r\n3\r\n4;\xC3\x85rhus\r\n\xE4\xBA\x8C;Oslo\r\n", "UTF-32LE").size()));
}

TEST_F(RunCopies, BytesThatAreNoCharacterAreProblems) {
  const std::string data = Encoded("a;b\n1;x\n2;y", "UTF-32LE") + std::string("\0\0\x11\0", 4) +
                           Encoded("z\n3;\xEF\xBF\xBD\n", "UTF-32LE");
  RunOn(data, kDelimited, {"--transcode", "UTF-32LE"});
  ASSERT_EQ(problems_.size(), 1u) << "U+FFFD in the file is a character";
  EXPECT_EQ(problems_[0]["kind"], "undecodable");
  EXPECT_EQ(problems_[0]["line"], 3);
  EXPECT_EQ(problems_[0]["text"], "y\xEF\xBF\xBDz");
  EXPECT_EQ(TextAt(data, 0, 4), Encoded("y", "UTF-32LE"));
  EXPECT_EQ(folder_.Text("rejects"), data.substr(0, 16) + data.substr(32, 24));
  folder_.Write("data", data);
  EXPECT_EQ(Quiet(kDelimited, {"--transcode", "UTF-32LE", "--strict"}).status, 1);
  // The encoding that is given is taken, though the file hardly looks like it.
  const Ended import = Run({"import", "data", "--encoding", "UTF-32LE", "-o", "o.csv"});
  EXPECT_EQ(import.status, 0) << import.err;
  EXPECT_THAT(import.out, HasSubstr(std::to_string(data.size()) + " bytes\n"));
  EXPECT_THAT(import.out, HasSubstr("\nb         undecodable      1           3  y"));
}

TEST_F(RunCopies, LinesThatAreJoinedAreFoundToo) {
  const std::string data =
      Encoded("a;b\n1;\"x\ny\"\nz;\"\xC3\xBC\n\"\n", "UTF-32LE", std::string("\xFF\xFE\0\0", 4));
  const std::string command =
      "GET DATA /TYPE=TXT /FILE='data' /ENCODING='UTF8' /DELIMITERS=';' /QUALIFIER='\"' "
      "/FIRSTCASE=2 /VARIABLES=id F3 town A12.";
  RunOn(data, command, {"--transcode", "UTF-32", "--join-quoted-lines"});
  EXPECT_EQ(folder_.Text("c.csv"), "id,town\n1,\"x\ny\"\n,\"\xC3\xBC\n\"\n");
  EXPECT_EQ(Of("bytes"), static_cast<long long>(data.size()));
  ASSERT_EQ(problems_.size(), 1u);
  EXPECT_EQ(problems_[0]["line"], 4);
  EXPECT_EQ(TextAt(data, 0, 5), std::string("z\0\0\0;", 5));
}

// Stretches of the map end within lines; workers and blocks end elsewhere.
TEST_F(RunCopies, LongFilesAreTheSameForEveryWorkerCount) {
  std::string text = "id;town\n";
  std::vector<std::size_t> wrong;
  for (int i = 0; i < 40000; ++i) {
    if (i % 997 == 0) wrong.push_back(static_cast<std::size_t>(i));
    text += (i % 997 == 0 ? std::string("bad") : std::to_string(i % 1000)) +
            (i % 3 == 0 ? ";\xE6\x9D\xB1\xE4\xBA\xAC\n" : ";town\n");
  }
  const std::string data = Encoded(text, "UTF-32BE");
  std::string first;
  for (const char* workers : {"1", "4"}) {
    RunOn(data, kDelimited, {"--transcode", "UTF-32BE", "--workers", workers});
    ASSERT_EQ(problems_.size(), wrong.size());
    for (std::size_t i = 0; i < wrong.size(); ++i) {
      EXPECT_EQ(problems_[i]["line"], wrong[i] + 2);
      EXPECT_EQ(TextAt(data, i, 16), Encoded("bad;", "UTF-32BE"));
    }
    const std::string told =
        folder_.Text("p.jsonl") + folder_.Text("rejects") + folder_.Text("d.json");
    if (first.empty()) first = told;
    EXPECT_TRUE(told == first) << workers << " workers";
  }
}

TEST_F(RunCopies, AreReadAsOneDataSet) {
  folder_.Write("wide", Encoded("a;b\n1;\xC3\xBC\nx;y\n", "UTF-32LE"));
  folder_.Write("plain", "a;b\n2;z\n");
  folder_.Write("columns", kColumns);
  const auto delimited = [](const std::string& file) {
    return "GET DATA /TYPE=TXT /FILE='" + file +
           "' /ENCODING='UTF8' /DELIMITERS=';' /FIRSTCASE=2 /VARIABLES=n F4 town A16.\n";
  };
  std::string fixed = kFixed;
  fixed.replace(fixed.find("'data'"), 6, "'columns'");
  folder_.Write("all.sps", delimited("wide") + delimited("plain") + fixed + "\n");
  const std::vector<std::string> options = {"run",        "all.sps", "--quiet",      "--as-one",
                                            "--cases",    "c.csv",   "--dictionary", "d.json",
                                            "--problems", "p.csv",   "--verify"};
  std::vector<std::string> single = options;
  single.insert(single.end(), {"--with", "1:transcode=UTF-32LE", "--with", "3:pad-columns=9/13"});
  const Ended ended = Run(single);
  ASSERT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(folder_.Text("c.csv"),
            "n,town,text\n1,\xC3\xBC,\n,y,\n2,z,\n12,\xC5\x81\xC3\xB3"
            "d\xC5\xBA,abc\n"
            ",\xC3\x85rhus,\xE6\x9D\xB1\n,\xE6\x9D\xB1\xE4\xBA\xAC,\n8,Oslo,zz\n");
  const json files = Json("d.json")["files"];
  ASSERT_EQ(files.size(), 3u);
  for (const auto& [index, name] :
       {std::pair<std::size_t, const char*>{0, "wide"}, {1, "plain"}, {2, "columns"}}) {
    EXPECT_EQ(files[index]["ledger"]["bytes"], folder_.Text(name).size()) << name;
  }
  EXPECT_THAT(folder_.Text("p.csv"), HasSubstr("\nwide,unreadable,2,3,32,n,F4,x,"));
  EXPECT_THAT(folder_.Text("p.csv"), HasSubstr("\ncolumns,unreadable,5,2,28,n,F4,x"));

  // The options of the line are of all files but those that are read otherwise.
  std::vector<std::string> line = options;
  line.insert(line.end(),
              {"--transcode", "UTF-32LE", "--with", "2:none", "--with", "3:pad-columns=9/13"});
  const std::string cases = folder_.Text("c.csv");
  const Ended same = Run(line);
  ASSERT_EQ(same.status, 0) << same.err;
  EXPECT_EQ(folder_.Text("c.csv"), cases);
  std::vector<std::string> padded = options;
  padded.insert(padded.end(),
                {"--pad-columns", "9,13", "--with", "1:transcode=UTF-32LE", "--with", "2:none"});
  const Ended again = Run(padded);
  ASSERT_EQ(again.status, 0) << again.err;
  EXPECT_EQ(folder_.Text("c.csv"), cases);
}

TEST_F(RunCopies, SeveralFilesAreImportedWhole) {
  const std::string text = "id;name;n\n1;\xE6\x9D\xB1\xE4\xBA\xAC;12\n2;\xE6\x9D\xB1;7\n31;x;8\n";
  folder_.Write("a.csv", text);
  folder_.Write("b.csv", Encoded(text, "UTF-32LE", std::string("\xFF\xFE\0\0", 4)));
  folder_.Write("c.csv", Encoded(text, "ISO-2022-JP"));
  const Ended plain = Run(
      {"import", "a.csv", "--by", "name", "-o", "one.csv", "--dictionary", "d.json", "--quiet"});
  ASSERT_EQ(plain.status, 0) << plain.err;
  const json types = Json("d.json")["variables"];
  const std::string cases = folder_.Text("one.csv");
  const std::string body = cases.substr(cases.find('\n') + 1);
  EXPECT_EQ(body, "1,\xE6\x9D\xB1\xE4\xBA\xAC,12\n2,\xE6\x9D\xB1,7\n31,x,8\n");
  for (const char* file : {"b.csv", "c.csv"}) {
    const Ended single = Run({"import", file, "--by", "name", "-o", "one.csv", "--dictionary",
                              "d.json", "--quiet", "--strict"});
    EXPECT_EQ(single.status, 0) << single.err;
    EXPECT_EQ(folder_.Text("one.csv"), cases) << file;
    EXPECT_EQ(Json("d.json")["variables"], types) << file;
    EXPECT_EQ(Json("d.json")["ledger"]["bytes"], folder_.Text(file).size());
  }
  const Ended all = Run({"import", "a.csv", "b.csv", "c.csv", "-o", "all.csv", "--command",
                         "all.sps", "--digest", "--strict"});
  ASSERT_EQ(all.status, 0) << all.err;
  EXPECT_EQ(folder_.Text("all.csv"), cases + body + body);
  const std::size_t line = all.out.rfind("textwizard run ");
  ASSERT_NE(line, std::string::npos);
  const std::size_t from = line + std::string("textwizard ").size();
  const Ended again =
      Shell(all.out.substr(from, all.out.find('\n', line) - from) + " --digest --quiet");
  const std::size_t digest = all.out.find("digest: ");
  EXPECT_EQ(again.out, all.out.substr(digest, all.out.find('\n', digest) + 1 - digest));
}

TEST_F(RunCopies, Utf16WithoutItsMarkIsRejectedWhole) {
  const std::string data = Encoded("a;b\n1;x\nq\n2;y\nr\n3;z\n", "UTF-16LE");
  folder_.Write("data", data);
  const std::string command =
      "GET DATA /TYPE=TXT /FILE='data' /DELIMITERS=';' /FIRSTCASE=2 /VARIABLES=id F3 town A12.";
  const std::vector<std::string> reading = {"--byte-order-mark", "utf-16le"};
  RunOn(data, command, reading);
  EXPECT_EQ(folder_.Text("rejects"), Encoded("a;b\nq\nr\n", "UTF-16LE"));
  EXPECT_EQ(CasesOfRejects(command, reading), "id,town\n,\n,\n");
}

}  // namespace
}  // namespace program
