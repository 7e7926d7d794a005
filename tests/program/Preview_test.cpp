// `textwizard preview`: the first records of a file as the import wizard sees them.

#include <algorithm>

#include <gmock/gmock.h>

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

TEST_F(Preview, AFileThatCannotBeOpenedIsTheErrorAnswer) {
  const Ended missing = Run({"preview", "none.txt"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "error: 2004 none.txt\n");
  EXPECT_THAT(missing.out, IsEmpty());
  const Ended utf32 = Shown(std::string("\xFF\xFE\0\0a\0\0\0", 8));
  EXPECT_EQ(utf32.status, 1);
  EXPECT_EQ(utf32.err, "error: 2004 data.txt\n");
  const Ended unknown = Shown("a\n", {"--encoding", "EBCDIC"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.err, "error: 2008 data.txt\n");
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
