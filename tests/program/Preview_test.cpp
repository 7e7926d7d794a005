// `textwizard preview`: the first records of a file as the import wizard sees them.

#include <algorithm>
#include <csignal>
#include <fstream>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/program/Program.h"

namespace program {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Preview : public ProgramTest {
 protected:
  Ended Shown(const std::string& text, std::vector<std::string> options = {}) const {
    folder_.Write("data.txt", text);
    options.insert(options.begin(), {"preview", "data.txt"});
    return Run(options);
  }
};

TEST_F(Preview, ShowsALineNumberAndTheRecord) {
  const Ended ended = Shown("id,town\n1,Z\u00FCrich\r\n2,Bern");
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.out, " 1  id,town\n 2  1,Z\u00FCrich\\r\n 3  2,Bern\n");
  EXPECT_THAT(ended.err, IsEmpty());
}

TEST_F(Preview, ShowsTwentyRecordsUnlessTold) {
  std::string text;
  for (int number = 1; number <= 30; ++number) text += "record\n";
  const auto lines = [](const std::string& out) {
    return std::count(out.begin(), out.end(), '\n');
  };
  EXPECT_EQ(lines(Shown(text).out), 20);
  EXPECT_EQ(lines(Shown(text, {"--records", "3"}).out), 3);
  EXPECT_EQ(lines(Shown(text, {"--records", "100"}).out), 30);
}

TEST_F(Preview, NoRecordsWantedAreNoneMissed) {
  const Ended none = Shown("record\n", {"--records", "0"});
  EXPECT_EQ(none.status, 0);
  EXPECT_EQ(none.out + none.err, "");
  const Ended empty = Shown("");
  EXPECT_EQ(empty.status, 0);
  EXPECT_EQ(empty.err, "the file has no records\n");
}

TEST_F(Preview, ControlCharactersAreVisible) {
  EXPECT_EQ(Shown("a\tb\x1B[31m\x7F\n").out, " 1  a\\tb\\x1B[31m\\x7F\n");
}

TEST_F(Preview, ALongRecordIsNotBroken) {
  const std::string record(300000, 'x');
  EXPECT_EQ(Shown(record + "\nshort\n").out, " 1  " + record + "\n 2  short\n");
}

TEST_F(Preview, ARecordThatWasCutSaysSo) {
  const std::string out = Shown(std::string(2000001, 'x') + "\nshort\n").out;
  EXPECT_THAT(out, HasSubstr("xxx  [the record is cut]\n"));
  EXPECT_THAT(out, HasSubstr("  short\n"));
  EXPECT_THAT(Shown(std::string(2000000, 'x') + "\nshort\n").out, Not(HasSubstr("is cut")));
}

TEST_F(Preview, TheEncodingIsTheWizards) {
  // A byte-order mark, then two units of the encoding and a line feed.
  EXPECT_EQ(Shown(std::string("\xFF\xFE"
                              "a\0\xE9\0\n\0",
                              8))
                .out,
            " 1  a\u00E9\n");
  EXPECT_EQ(Shown(std::string("\xFE\xFF"
                              "\0a\0\xE9\0\n",
                              8))
                .out,
            " 1  a\u00E9\n");
  EXPECT_EQ(Shown("\xEF\xBB\xBF"
                  "a\n",
                  {"--encoding", "Locale"})
                .out,
            " 1  a\n");
  for (const char* name : {"UTF-8", "UTF8", "UTF-16", "UTF16", "UTF16LE", "UTF16BE", "Locale"}) {
    EXPECT_EQ(Shown("plain\n", {"--encoding", name}).out, " 1  plain\n") << name;
  }
}

TEST_F(Preview, AFileThatCannotBeOpenedIsTheErrorAnswerAndASentence) {
  const Ended missing = Run({"preview", "none.txt"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_THAT(missing.err, testing::MatchesRegex(
                               "error: 2004 none.txt\nThe file cannot be opened: No such file or "
                               "directory; it was looked for in /.*\\.\n"));
  EXPECT_THAT(missing.out, IsEmpty());
  const Ended folder = Run({"preview", "."});
  EXPECT_EQ(folder.status, 1);
  EXPECT_EQ(folder.err, "error: 2004 .\nThe file cannot be opened: it is a folder.\n");
  const Ended utf32 = Shown(std::string("\xFF\xFE\0\0a\0\0\0", 8));
  EXPECT_EQ(utf32.status, 1);
  EXPECT_EQ(utf32.err,
            "error: 2004 data.txt\nThe file begins with a byte-order mark of UTF-32, which is not "
            "read: convert it to UTF-8.\n");
  const Ended unknown = Shown("a\n", {"--encoding", "EBCDIC"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.err,
            "error: 2008 data.txt\nEBCDIC is no encoding that the wizard knows: it knows UTF-8, "
            "UTF-16, UTF-16LE, UTF-16BE and Locale.\n");
}

TEST_F(Preview, AFileThatIsNoTextIsNamed) {
  const Ended ended = Shown(std::string("\x1F\x8B\x08\0\n", 5));
  EXPECT_EQ(ended.status, 0);
  EXPECT_THAT(ended.err,
              testing::StartsWith("warning: data.txt is compressed with gzip, and no text; "));
}

TEST_F(Preview, StandardInputIsShown) {
  const Ended ended = Run({"preview", "-"}, "id\n1\n");
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out, " 1  id\n 2  1\n");
  const Ended utf32 = Run({"preview", "-"}, std::string("\xFF\xFE\0\0", 4));
  EXPECT_EQ(utf32.status, 1);
  EXPECT_THAT(utf32.err, testing::StartsWith("error: 2004 -\n"));
}

TEST_F(Preview, APipeIsShown) {
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  const pid_t child = Start({"preview", "pipe"});
  std::ofstream(folder_ / "pipe") << "id\n1\n";
  const Ended ended = Wait(child);
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out, " 1  id\n 2  1\n");
}

TEST_F(Preview, ACodePageIsWorkedIn) {
  const Ended locale =
      Shown("Z\xFCrich \x80\n", {"--encoding", "Locale", "--code-page", "windows-1252"});
  EXPECT_EQ(locale.status, 0) << locale.err;
  EXPECT_EQ(locale.out, " 1  Z\u00FCrich \u20AC\n");
  const Ended utf8 = Shown("Z\u00FCrich\n", {"--code-page", "windows-1252"});
  EXPECT_EQ(utf8.out, " 1  Z\u00FCrich\n");
  const Ended unknown = Shown("a\n", {"--code-page", "no-such-page"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_THAT(unknown.err, HasSubstr("--code-page: unknown code page no-such-page"));
}

TEST_F(Preview, AWaitForAPipeIsInterrupted) {
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  const pid_t child = Start({"preview", "pipe"});
  // Open for writing: the program reads and waits for more.
  const int pipe = open((folder_ / "pipe").c_str(), O_WRONLY);
  ASSERT_GE(pipe, 0);
  ASSERT_EQ(kill(child, SIGINT), 0);
  EXPECT_EQ(Wait(child).status, 130);
  close(pipe);
}

TEST_F(Preview, WrongUsageIsStatusTwo) {
  EXPECT_EQ(Run({"preview"}).status, 2);
  const Ended negative = Shown("a\n", {"--records", "-1"});
  EXPECT_EQ(negative.status, 2);
  EXPECT_THAT(negative.err, HasSubstr("not in range 0 to 9223372036854775807"));
  EXPECT_EQ(Shown("a\n", {"--records", "few"}).status, 2);
}

}  // namespace
}  // namespace program
