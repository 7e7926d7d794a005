#include "library/report/RejectsFile.h"

#include <gtest/gtest.h>

#include "library/report/testing/ReportTesting.h"

namespace library {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

class RejectsFileTest : public testing::Test {
 protected:
  struct Span {
    std::int64_t begin;
    std::int64_t end;
  };
  std::string Copied(std::string_view data, std::int64_t head, const std::vector<Span>& cases) {
    return Copied(data, head, cases, LineEndsOf(data));
  }
  std::string Copied(std::string_view data, std::int64_t head, const std::vector<Span>& cases,
                     const LineEndBytes& ends) {
    MemorySource source(data, true);
    TextSink sink;
    RejectsFile rejects(source, sink, ends);
    if (head > 0) rejects.CopyHead(head);
    std::int64_t number = 0;
    for (const Span& span : cases) rejects.CopyCase({++number, 1, span.begin, span.end});
    rejects.Finish();
    problem_ = rejects.problem();
    return sink.text;
  }
  std::string problem_;
};

TEST_F(RejectsFileTest, HoldsTheHeadAndTheRecordsAsTheyStand) {
  const auto data = "\xEF\xBB\xBFtitle\r\n1,x\r\n2,y\n3,z"sv;
  EXPECT_EQ(Copied(data, 10, {{10, 15}, {19, 22}}), "\xEF\xBB\xBFtitle\r\n1,x\r\n3,z");
  EXPECT_EQ(Copied(data, 10, {}), "\xEF\xBB\xBFtitle\r\n");
  EXPECT_EQ(Copied(data, 10, {{10, 15}, {15, 19}, {19, 22}}), data);
}

TEST_F(RejectsFileTest, ACaseThatEndsWithinALineGetsALineEnd) {
  EXPECT_EQ(Copied("1 x 2 y 3 z\n"sv, 0, {{0, 4}, {8, 12}}), "1 x \n3 z\n");
  // Neighbours stay as they are.
  EXPECT_EQ(Copied("1 x 2 y 3 z\n"sv, 0, {{0, 4}, {4, 8}}), "1 x 2 y ");
}

TEST_F(RejectsFileTest, ALineEndOfA16BitFileIsOne) {
  const auto little =
      "\xFF\xFE"
      "1\0 \0"
      "2\0 \0"
      "3\0\n\0"sv;
  EXPECT_EQ(Copied(little, 2, {{2, 6}, {10, 14}}),
            "\xFF\xFE"
            "1\0 \0"
            "\n\0"
            "3\0\n\0"sv);
  const auto big =
      "\xFE\xFF"
      "\0"
      "1\0 "
      "\0"
      "2\0 "
      "\0"
      "3\0\n"sv;
  EXPECT_EQ(Copied(big, 2, {{2, 6}, {10, 14}}),
            "\xFE\xFF"
            "\0"
            "1\0 "
            "\0\n"
            "\0"
            "3\0\n"sv);
  EXPECT_EQ(Copied(big, 2, {{10, 14}}),
            "\xFE\xFF"
            "\0"
            "3\0\n"sv);
}

TEST_F(RejectsFileTest, LineEndsAreThoseOfTheText) {
  // 16 bits without a mark: every record ends its line.
  const auto little =
      "1\0\n\0"
      "2\0\n\0"
      "3\0\n\0"sv;
  const LineEndBytes ofLittle = LineEndsOf("\xFF\xFE");
  EXPECT_EQ(Copied(little, 0, {{0, 4}, {8, 12}}, ofLittle),
            "1\0\n\0"
            "3\0\n\0"sv);
  EXPECT_EQ(Copied(little, 0, {{0, 2}, {8, 12}}, ofLittle),
            "1\0\n\0"
            "3\0\n\0"sv);
  const auto wide =
      "1\0\0\0\n\0\0\0"
      "2\0\0\0 \0\0\0"
      "3\0\0\0"sv;
  EXPECT_EQ(Copied(wide, 0, {{0, 8}, {16, 20}}, {"\n\0\0\0"s, "\r\0\0\0"s}),
            "1\0\0\0\n\0\0\0"
            "3\0\0\0"sv);
  EXPECT_EQ(Copied(wide, 0, {{8, 12}, {16, 20}}, {"\n\0\0\0"s, "\r\0\0\0"s}),
            "2\0\0\0\n\0\0\0"
            "3\0\0\0"sv);
}

TEST_F(RejectsFileTest, LineEndsOfTwoRecordsStayTwo) {
  // An empty record that ends with CR, a record in between, an empty one that ends with LF.
  EXPECT_EQ(Copied("\rx\n\n"sv, 0, {{0, 1}, {3, 4}}), "\r\n\n");
  EXPECT_EQ(Copied("a\rx\nb\n"sv, 0, {{0, 2}, {4, 6}}), "a\rb\n");
  EXPECT_EQ(Copied("\xFF\xFE"
                   "\r\0x\0\n\0\n\0"sv,
                   2, {{2, 4}, {8, 10}}),
            "\xFF\xFE"
            "\r\0\n\0\n\0"sv);
}

TEST_F(RejectsFileTest, CopiesWhatIsLongerThanItsBuffer) {
  std::string data(std::size_t{3} * 1024 * 1024, 'x');
  data += "\ny\nz\n";
  const auto size = static_cast<std::int64_t>(data.size());
  EXPECT_EQ(Copied(data, 0, {{0, size - 4}, {size - 2, size}}),
            data.substr(0, data.size() - 4) + "z\n");
}

TEST_F(RejectsFileTest, SaysWhenTheDataBecameShorter) {
  Copied("1\n2\n"sv, 0, {{0, 2}, {10, 20}});
  EXPECT_EQ(problem_, "the data file became shorter while it was read");
}

}  // namespace
}  // namespace library
