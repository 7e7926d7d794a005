#include "library/rewriting/ShownFile.h"

#include <gtest/gtest.h>

#include "HostFramework/FileStream.h"
#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/import/RestoringObserver.h"

namespace library {
namespace {

constexpr const char* kPath = "shown.txt";
constexpr RewritingOptions kJoin{.joinQuotedLines = true};

textwizard::ImportSettings Import() {
  textwizard::ImportSettings settings;
  settings.delimiters = ",";
  settings.qualifierSet = true;
  settings.qualifier = "\"";
  return settings;
}

std::string ReadAll(const char* path) {
  QANT_FileStream stream;
  EXPECT_TRUE(stream.Open(path, "", "rb"));
  std::string text;
  for (std::string_view block; !(block = stream.Buffered()).empty();) {
    text += block;
    stream.Consume(block.size());
  }
  EXPECT_EQ(stream.Size(), static_cast<std::int64_t>(text.size()));
  return text;
}

std::string Wide(const std::string& text) {
  std::string wide;
  for (const char byte : text) (wide += byte) += '\0';
  return wide;
}

class ShownFileTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};

  std::unique_ptr<ShownFile> Show(const ShownFile::Settings& settings) {
    problem_.clear();
    return ShownFile::Show(settings, Import(), &problem_);
  }

  std::string problem_;
};

TEST_F(ShownFileTest, OnlyStreamsOfItsPathAreChangedAndOnlyWhileItLives) {
  const std::string text = "1,\"a\nb\"\n";
  const embedded::ScopedMemoryFiles files({{kPath, text}, {"other.txt", text}});
  {
    const auto shown = Show({.path = kPath, .rewriting = kJoin});
    ASSERT_NE(shown, nullptr) << problem_;
    EXPECT_EQ(ReadAll(kPath),
              "1,\"a\x01"
              "b\"\n");
    EXPECT_EQ(ReadAll("other.txt"), text);
    QuotePosition totals;
    ASSERT_TRUE(shown->Totals(&totals));
    EXPECT_EQ(totals.joinedLines, 1);
  }
  EXPECT_EQ(ReadAll(kPath), text);
}

TEST_F(ShownFileTest, SeveralLiveAndEndInAnyOrder) {
  const std::string text = "1,\"a\nb\"\n";
  const std::string joined =
      "1,\"a\x01"
      "b\"\n";
  const embedded::ScopedMemoryFiles files({{kPath, text}, {"other.txt", text}});
  auto first = Show({.path = kPath, .rewriting = kJoin});
  auto second = Show({.path = "other.txt", .rewriting = kJoin});
  EXPECT_EQ(ReadAll(kPath), joined);
  EXPECT_EQ(ReadAll("other.txt"), joined);
  first.reset();
  EXPECT_EQ(ReadAll(kPath), text);
  EXPECT_EQ(ReadAll("other.txt"), joined);
  first = Show({.path = kPath, .rewriting = kJoin});
  second.reset();
  EXPECT_EQ(ReadAll(kPath), joined);
  EXPECT_EQ(ReadAll("other.txt"), text);
  first.reset();
  EXPECT_EQ(ReadAll(kPath), text);
}

TEST_F(ShownFileTest, StandInsAreCharactersThatTheFileDoesNotHold) {
  const embedded::ScopedMemoryFiles files(kPath, "\x01,\"a\n\x02\"\n");
  const auto shown = Show({.path = kPath, .rewriting = kJoin});
  ASSERT_NE(shown, nullptr) << problem_;
  EXPECT_EQ(*shown->standIns(), (StandIns{'\x03', '\x04', '\x05'}));
  EXPECT_EQ(ReadAll(kPath), "\x01,\"a\x03\x02\"\n");
}

TEST_F(ShownFileTest, AFileOfAllControlCharactersCannotBeShown) {
  std::string text = "1,\"a\nb\"\n";
  for (char control = 1; control < 0x20; ++control) text += control;
  const embedded::ScopedMemoryFiles files(kPath, text);
  EXPECT_EQ(Show({.path = kPath, .rewriting = kJoin}), nullptr);
  EXPECT_NE(problem_.find("control characters"), std::string::npos) << problem_;
  EXPECT_EQ(ReadAll(kPath), text) << "nothing is left behind";
}

TEST_F(ShownFileTest, AMarkMayBeShown) {
  const embedded::ScopedMemoryFiles files(kPath, Wide("1,\"a\nb\"\n"));
  const auto shown = Show({.path = kPath, .mark = "\xFF\xFE", .rewriting = kJoin});
  ASSERT_NE(shown, nullptr) << problem_;
  EXPECT_EQ(ReadAll(kPath), "\xFF\xFE" + Wide("1,\"a\x01"
                                              "b\"\n"));
  EXPECT_EQ(shown->FileOffset(0), 0);
  EXPECT_EQ(shown->FileOffset(2), 0);
  EXPECT_EQ(shown->FileOffset(12), 10);
}

TEST_F(ShownFileTest, LinesAreThoseOfTheFile) {
  for (const bool wide : {false, true}) {
    const std::string text = "a,\"1\r\n2\n3\",b\r\nc\n\"\r\"\rd\n";
    const std::size_t unit = wide ? 2 : 1;
    const embedded::ScopedMemoryFiles files(kPath, wide ? Wide(text) : text);
    const auto shown = Show({.path = kPath, .mark = wide ? "\xFF\xFE" : "", .rewriting = kJoin});
    ASSERT_NE(shown, nullptr) << problem_;
    // Lines of what is shown, and where they begin in the file.
    const std::int64_t lines[] = {1, 4, 5, 7, 8};
    for (std::int64_t line = 1; line <= 5; ++line) {
      EXPECT_EQ(shown->PhysicalLine(line), lines[line - 1]) << line;
    }
    EXPECT_EQ(shown->PhysicalLine(2), 4) << "asked again";
    const auto at = [&](const char* piece) {
      return static_cast<std::int64_t>(text.find(piece) * unit + (wide ? 2 : 0));
    };
    EXPECT_EQ(shown->PhysicalLine(1, at("a")), 1);
    EXPECT_EQ(shown->PhysicalLine(1, at("b")), 3) << "a field that begins behind joined line ends";
    EXPECT_EQ(shown->PhysicalLine(2, at("c")), 4);
    EXPECT_EQ(shown->PhysicalLine(4, at("d")), 7);
  }
}

TEST_F(ShownFileTest, WithoutRewritingLinesStayWhatTheyAre) {
  const embedded::ScopedMemoryFiles files(kPath, "\"a\nb\"\n");
  const auto shown = Show({.path = kPath, .mark = "\xFF\xFE"});
  ASSERT_NE(shown, nullptr);
  EXPECT_EQ(shown->standIns(), nullptr);
  EXPECT_EQ(shown->PhysicalLine(2, 7), 2);
  EXPECT_EQ(shown->PhysicalLine(2), 2);
}

// --- What comes back

class KeptEvents : public ImportObserver {
 public:
  std::int64_t ProblemLimit() const override { return 7; }
  bool WantsProblems() const override { return true; }
  void OnProblem(const ImportProblem& problem) override {
    problems.push_back(problem);
    texts.emplace_back(problem.text);
  }
  void OnProblemCase(const ImportCaseSpan& span) override { cases.push_back(span); }
  void OnSpan(const ImportSpan& span) override { spans.push_back(span); }
  void OnPassEnd(const ImportPassEnd& end) override { bytes = end.bytes; }
  void OnEvidence(std::size_t, const ImportEvidence& seen) override { evidence = seen; }

  std::vector<ImportProblem> problems;
  std::vector<std::string> texts;
  std::vector<ImportCaseSpan> cases;
  std::vector<ImportSpan> spans;
  std::int64_t bytes = 0;
  ImportEvidence evidence;
};

TEST_F(ShownFileTest, TheObserverIsToldOfTheFileItself) {
  const embedded::ScopedMemoryFiles files(kPath, Wide("1,\"a\nb\"\n2,\"c\nd\"\n"));
  const auto shown = Show({.path = kPath, .mark = "\xFF\xFE", .rewriting = kJoin});
  ASSERT_NE(shown, nullptr);
  KeptEvents events;
  RestoringObserver observer(&events, *shown, true);
  EXPECT_TRUE(observer.WantsProblems());
  EXPECT_EQ(observer.ProblemLimit(), 7);
  EXPECT_TRUE(observer.KeepsStrayQualifiers());

  // The second record, whose field with the line break begins 22 bytes behind the mark.
  observer.OnProblem({ImportProblemKind::kCut, 1, 2, 2, 22, 0,
                      "c\x01"
                      "d"});
  ASSERT_EQ(events.problems.size(), 1u);
  EXPECT_EQ(events.problems[0].line, 3);
  EXPECT_EQ(events.problems[0].byte, 20);
  EXPECT_EQ(events.texts[0], "c\nd");
  observer.OnProblemCase({2, 2, 18, 34});
  ASSERT_EQ(events.cases.size(), 1u);
  EXPECT_EQ(events.cases[0].line, 3);
  EXPECT_EQ(events.cases[0].begin, 16);
  EXPECT_EQ(events.cases[0].end, 32);
  observer.OnSpan({ImportSpan::kMark, 0, 2, 0, 0, 0});
  observer.OnSpan({ImportSpan::kRecords, 2, 32, 2, 4, 0});
  ASSERT_EQ(events.spans.size(), 1u) << "the file has no mark";
  EXPECT_EQ(events.spans[0].offset, 0);
  EXPECT_EQ(events.spans[0].bytes, 32);
  ImportPassEnd end;
  end.bytes = 34;
  observer.OnPassEnd(end);
  EXPECT_EQ(events.bytes, 32);
  // A part behind the mark has the bytes that it is told.
  observer.OnPassBegin();
  observer.OnSpan({ImportSpan::kRecords, 18, 16, 1, 2, 0});
  end.bytes = 16;
  observer.OnPassEnd(end);
  EXPECT_EQ(events.bytes, 16);
  ImportEvidence evidence;
  evidence.longest = {3, 2,
                      "c\x01"
                      "d"};
  observer.OnEvidence(0, evidence);
  EXPECT_EQ(events.evidence.longest.line, 3);
  EXPECT_EQ(events.evidence.longest.text, "c\nd");
  EXPECT_EQ(events.evidence.leadingZeros.line, 0);
}

TEST_F(ShownFileTest, ThereMayBeNoObserver) {
  const embedded::ScopedMemoryFiles files(kPath, "1\n");
  const auto shown = Show({.path = kPath, .rewriting = kJoin});
  ASSERT_NE(shown, nullptr);
  RestoringObserver observer(nullptr, *shown, false);
  EXPECT_FALSE(observer.WantsProblems());
  EXPECT_FALSE(observer.KeepsStrayQualifiers());
  observer.OnProblem({ImportProblemKind::kCut, 0, 1, 1, 0, 0, "1"});
}

}  // namespace
}  // namespace library
