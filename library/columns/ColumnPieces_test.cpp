// Pieces count as one batch, and their memory is used again.
#include "library/columns/ColumnPieces.h"

#include <bit>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/columns/ColumnBuilder.h"

namespace library {
namespace {

class ColumnPiecesTest : public testing::Test {
 protected:
  ColumnPiecesTest() {
    fields_[0].type = ColumnType::kInt64;
    fields_[1].type = ColumnType::kUtf8;
    fields_[1].cell = 1;
    fields_[1].bytes = 8;
  }
  // Cases `from` to `to`: their number, missing for every third, and its digits.
  ColumnBatch Build(std::int64_t from, std::int64_t to, ColumnBatch memory = {}) const {
    std::vector<OBS> cases;
    for (std::int64_t i = from; i < to; ++i) {
      cases.push_back(std::bit_cast<OBS>(i % 3 == 0 ? kSystemMissing : static_cast<double>(i)));
      std::string text = std::to_string(i);
      text.resize(8, ' ');
      std::memcpy(cases.emplace_back().bytes, text.data(), 8);
    }
    ColumnMisfits misfits;
    return BuildColumns(fields_, cases.data(), cases.size() / 2, 2, from, &misfits,
                        std::move(memory));
  }

  const embedded::InCodePage inUtf8_{"UTF-8"};
  std::vector<ColumnField> fields_{2};
};

TEST_F(ColumnPiecesTest, JoinedTheyAreTheBatchThatOneBuildingMakes) {
  const ColumnBatch whole = Build(0, 1000);
  ColumnPieces pieces;
  for (std::int64_t at = 0; at < 1000;) {
    const std::int64_t end = std::min<std::int64_t>(1000, at * 2 + 1);
    pieces.Add(Build(at, end));
    at = end;
  }
  ASSERT_GT(pieces.size(), 5U);
  EXPECT_EQ(pieces.cases(), 1000U);
  EXPECT_EQ(pieces.MissingIn(0), 334);
  EXPECT_EQ(pieces.MissingIn(1), 0);
  const Buffer validity = pieces.JoinValidity(0);
  const Buffer offsets = pieces.JoinOffsets(1, ColumnType::kUtf8);
  EXPECT_TRUE(pieces.JoinValidity(1).empty());
  const auto same = [](const Buffer& left, const Buffer& right) {
    return left.size() == right.size() && std::memcmp(left.data(), right.data(), left.size()) == 0;
  };
  EXPECT_TRUE(same(validity, whole.columns[0].validity));
  EXPECT_TRUE(same(offsets, whole.columns[1].values));
  const ColumnBatch joined = pieces.Join(fields_);
  EXPECT_TRUE(pieces.empty());
  EXPECT_EQ(joined.firstCase, 0);
  EXPECT_EQ(joined.cases, 1000U);
  EXPECT_TRUE(same(joined.columns[0].validity, whole.columns[0].validity));
  EXPECT_TRUE(same(joined.columns[0].values, whole.columns[0].values));
  EXPECT_TRUE(same(joined.columns[1].values, whole.columns[1].values));
  EXPECT_TRUE(same(joined.columns[1].text, whole.columns[1].text));
}

TEST_F(ColumnPiecesTest, TheirMemoryIsUsedAgainAndNothingOfTheirCasesIsSeen) {
  const auto pool = std::make_shared<BatchPool>();
  const std::byte* memory = nullptr;
  {
    ColumnPieces pieces(pool);
    pieces.Add(Build(0, 500));
    memory = pieces.front().columns[0].values.data();
  }
  const ColumnBatch again = Build(1, 3, pool->Take());
  EXPECT_EQ(again.columns[0].values.data(), memory);
  EXPECT_EQ(again.cases, 2U);
  EXPECT_EQ(again.columns[0].missing, 0);
  EXPECT_TRUE(again.columns[0].validity.empty());
  EXPECT_EQ(again.TextAt(1, ColumnType::kUtf8, 0), "1");
  EXPECT_EQ(again.TextAt(1, ColumnType::kUtf8, 1), "2");
  EXPECT_TRUE(pool->Take().columns.empty());
}

TEST_F(ColumnPiecesTest, ThePoolKeepsNoBatchThatIsMuchLargerThanAConversion) {
  BatchPool pool;
  ColumnBatch large = Build(0, 10);
  large.columns[0].values.Reserve(std::size_t{8} << 20);
  pool.Give(std::move(large));
  EXPECT_TRUE(pool.Take().columns.empty());
}

}  // namespace
}  // namespace library
