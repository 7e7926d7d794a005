#include "watch/RecordPlaces.h"

#include <string>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

// A batch text of single records, each with a LF, and runs as they stand in the file.
class PlaceWalkTest : public testing::Test {
 protected:
  void AddRecord(const std::string& text, const RecordPlace& place) {
    places_.AddRecord(text_.size(), place, {}, {});
    text_ += text + "\n";
  }
  void AddRun(const std::string& text, std::int64_t begin, std::int64_t line) {
    places_.AddRun(text_.size(), begin, line);
    text_ += text;
  }
  void Start() { walk_.Start(places_, text_); }
  // Steps to the next record in the text that is `record`.
  bool Step(const std::string& record) {
    const std::size_t at = text_.find(record, next_);
    next_ = at + record.size();
    return walk_.Step(std::string_view(text_).substr(at, record.size()));
  }
  void ExpectPlace(std::int64_t line, std::int64_t begin, std::int64_t end,
                   std::uint32_t lineEndBytes) {
    const RecordPlace& place = walk_.place();
    EXPECT_EQ(place.line, line);
    EXPECT_EQ(place.begin, begin);
    EXPECT_EQ(place.end, end);
    EXPECT_EQ(place.lineEndBytes, lineEndBytes);
  }

  RecordPlaces places_;
  std::string text_;
  PlaceWalk walk_;
  std::size_t next_ = 0;
};

TEST_F(PlaceWalkTest, LinesOfARunGoOnWhereNothingIsBetweenThem) {
  AddRun("ab\ncd\nef\n", 100, 7);
  Start();
  EXPECT_FALSE(Step("ab"));
  ExpectPlace(7, 100, 103, 1);
  EXPECT_TRUE(Step("cd"));
  ExpectPlace(8, 103, 106, 1);
  EXPECT_EQ(walk_.end(), 106);
  EXPECT_TRUE(Step("ef"));
  EXPECT_EQ(walk_.end(), 109);
  EXPECT_EQ(walk_.runLines(), 3);
}

TEST_F(PlaceWalkTest, EmptyLinesAndOtherLineEndsDoNotGoOn) {
  AddRun("ab\r\ncd\r\n\r\n\nef\ngh\rij\r", 0, 1);
  Start();
  EXPECT_FALSE(Step("ab"));
  ExpectPlace(1, 0, 4, 2);
  EXPECT_TRUE(Step("cd"));
  ExpectPlace(2, 4, 8, 2);
  EXPECT_FALSE(Step("ef"));
  ExpectPlace(5, 11, 14, 1);
  EXPECT_TRUE(Step("gh"));
  ExpectPlace(6, 14, 17, 1);
  EXPECT_TRUE(Step("ij"));
  ExpectPlace(7, 17, 20, 1);
  EXPECT_EQ(walk_.runLines(), 7);
}

// Lines are noted without those of the runs before.
TEST_F(PlaceWalkTest, SingleRecordsStandBetweenRuns) {
  RecordPlace single;
  single.line = 1;
  single.begin = 0;
  single.end = 3;
  single.lineEndBytes = 1;
  AddRecord("ab", single);
  AddRun("cd\nef\n", 3, 2);
  single.line = 2;
  single.begin = 9;
  single.end = 13;
  single.lineEndBytes = 2;
  single.droppedBytes = 1;
  AddRecord("g", single);
  AddRun("hi\n", 13, 3);
  Start();
  EXPECT_FALSE(Step("ab"));
  ExpectPlace(1, 0, 3, 1);
  EXPECT_FALSE(Step("cd"));
  ExpectPlace(2, 3, 6, 1);
  EXPECT_TRUE(Step("ef"));
  ExpectPlace(3, 6, 9, 1);
  EXPECT_FALSE(Step("g"));
  ExpectPlace(4, 9, 13, 2);
  EXPECT_EQ(walk_.place().droppedBytes, 1);
  EXPECT_FALSE(Step("hi"));
  ExpectPlace(5, 13, 16, 1);
  EXPECT_EQ(walk_.place().droppedBytes, 0);
  EXPECT_EQ(walk_.runLines(), 3);
}

}  // namespace
}  // namespace textwizard
