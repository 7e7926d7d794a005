#include "library/import/OriginalObserver.h"

#include <gtest/gtest.h>

namespace library {
namespace {

class KeptEvents : public ImportObserver {
 public:
  void OnPassBegin() override { ++passes; }
  void OnProblem(const ImportProblem& problem) override { problems.push_back(problem.byte); }
  void OnProblemCase(const ImportCaseSpan& span) override { cases.push_back(span); }
  void OnSpan(const ImportSpan& span) override { spans.push_back(span); }
  void OnPassEnd(const ImportPassEnd& end) override { bytes = end.bytes; }

  int passes = 0;
  std::vector<std::int64_t> problems;
  std::vector<ImportCaseSpan> cases;
  std::vector<ImportSpan> spans;
  std::int64_t bytes = -1;
};

// A file of four bytes a character behind a mark, of a copy of a byte a character.
class OriginalObserverTest : public testing::Test {
 protected:
  static std::shared_ptr<CopyMap> Map() {
    auto map = std::make_shared<CopyMap>(std::make_unique<MemorySource>(std::string_view(), true));
    map->AddStretch(
        0, 0,
        [](std::string_view, std::int64_t, std::int64_t, bool, std::vector<CopyMap::Run>* runs) {
          *runs = {{0, 4, 1, 4}};
        });
    map->End(44, 10);
    map->SetText(4, {}, 4);
    return map;
  }
  static ImportSpan Span(ImportSpan::Kind kind, std::int64_t offset, std::int64_t bytes,
                         std::int64_t lineEnds = 0, std::int64_t dropped = 0) {
    return {kind, offset, bytes, lineEnds, lineEnds, dropped};
  }

  KeptEvents events_;
  OriginalObserver observer_{&events_, {Map()}, true};
};

TEST_F(OriginalObserverTest, PlacesAndNumbersOfBytesAreTheFiles) {
  observer_.OnPassBegin();
  EXPECT_EQ(events_.spans.size(), 1u) << "before any problem";
  observer_.OnProblem({ImportProblemKind::kCut, 0, 1, 2, 5, 0, "x"});
  observer_.OnProblemCase({1, 2, 3, 6});
  observer_.OnSpan(Span(ImportSpan::kPreamble, 0, 3));
  observer_.OnSpan(Span(ImportSpan::kRecords, 3, 6, 2, 1));
  observer_.OnSpan(Span(ImportSpan::kUnread, 9, 1));
  ImportPassEnd end;
  end.bytes = 10;
  observer_.OnPassEnd(end);
  EXPECT_EQ(events_.problems, std::vector<std::int64_t>{24});
  ASSERT_EQ(events_.cases.size(), 1u);
  EXPECT_EQ(events_.cases[0].begin, 16);
  EXPECT_EQ(events_.cases[0].end, 28);
  EXPECT_EQ(events_.cases[0].line, 2);
  // The mark first, and no gap up to the end.
  ASSERT_EQ(events_.spans.size(), 4u);
  EXPECT_EQ(events_.spans[0].kind, ImportSpan::kMark);
  std::int64_t place = 0;
  for (const ImportSpan& span : events_.spans) {
    EXPECT_EQ(span.offset, place);
    place += span.bytes;
  }
  EXPECT_EQ(place, 44);
  EXPECT_EQ(events_.spans[0].bytes, 4);
  EXPECT_EQ(events_.spans[2].bytes, 24);
  EXPECT_EQ(events_.spans[2].lineEndBytes, 8);
  EXPECT_EQ(events_.spans[2].droppedBytes, 4);
  EXPECT_EQ(events_.spans[2].records, 2) << "records are no bytes";
  EXPECT_EQ(events_.bytes, 44);
}

TEST_F(OriginalObserverTest, EveryPassHasTheMark) {
  for (int pass = 1; pass <= 2; ++pass) {
    observer_.OnPassBegin();
    observer_.OnSpan(Span(ImportSpan::kRecords, 0, 10));
    EXPECT_EQ(events_.spans.size(), static_cast<std::size_t>(2 * pass));
  }
  EXPECT_EQ(events_.passes, 2);
}

TEST_F(OriginalObserverTest, APartThatBeginsLaterHasItsBytesOnly) {
  OriginalObserver observer(&events_, {Map()}, false);
  observer.OnPassBegin();
  observer.OnSpan(Span(ImportSpan::kRecords, 3, 6));
  ImportPassEnd end;
  end.bytes = 6;
  observer.OnPassEnd(end);
  ASSERT_EQ(events_.spans.size(), 1u);
  EXPECT_EQ(events_.spans[0].offset, 16);
  EXPECT_EQ(events_.bytes, 24);
}

TEST_F(OriginalObserverTest, AFileOfItsMarkAlone) {
  const auto map =
      std::make_shared<CopyMap>(std::make_unique<MemorySource>(std::string_view(), true));
  map->End(4, 0);
  map->SetText(4, {}, 4);
  OriginalObserver observer(&events_, {map}, true);
  observer.OnPassBegin();
  observer.OnPassEnd({});
  ASSERT_EQ(events_.spans.size(), 1u);
  EXPECT_EQ(events_.spans[0].bytes, 4);
  EXPECT_EQ(events_.bytes, 4);
}

}  // namespace
}  // namespace library
