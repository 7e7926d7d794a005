// Where type detection on workers and on one thread find different things in the same file, and
// what each finds: the rules of both, worked out by hand.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/text/HostText.h"
#include "model/FormatCode.h"
#include "tests/support/ImportRun.h"
#include "tests/sweep/Corpus.h"

namespace whole {
namespace {

constexpr bool kOnWorkers = false;
constexpr bool kOnOneThread = true;

struct Found {
  std::uint32_t type;
  int width;
  int decimals;
  bool operator==(const Found&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Found& found) {
  return out << found.type << ':' << found.width << '.' << found.decimals;
}

class DetectionEngines : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(embedded::SetCodePage(nullptr)); }

  // Expects formats for `names` AUTO variables of a file.
  static void Expect(bool oneThread, const std::string& bytes, const std::vector<Found>& expected,
                     const std::string& subcommands = "/DELIMITERS=','") {
    SCOPED_TRACE(oneThread ? "one thread" : "workers");
    const embedded::ScopedMemoryFiles files(kCorpusPath, bytes);
    const ScopedOneThreadDetection detection(oneThread);
    std::string variables;
    for (std::size_t i = 0; i < expected.size(); ++i)
      variables += "v" + std::to_string(i) + " AUTO ";
    for (const int workers : {2, 3, 8}) {
      const Import import(DelimitedCommand(subcommands, variables), workers);
      ASSERT_TRUE(import.made());
      std::vector<Found> found;
      for (std::size_t i = 0; i < import.source().GetNVariables(); ++i) {
        const QANT_Format& format = import.source().GetVariable(i)->GetFormat();
        found.push_back({static_cast<std::uint32_t>(format.type), format.width, format.decimals});
      }
      EXPECT_EQ(found, expected) << workers << " workers";
    }
  }
};

std::string Lines(const std::string& line, std::size_t times) {
  std::string text;
  for (; times > 0; --times) text += line + "\n";
  return text;
}

TEST_F(DetectionEngines, OneThreadKeepsTheLatestLengthOfTextAndWorkersTheLongest) {
  const std::string bytes = "aaaaaaaaaa\nbbb\n";
  Expect(kOnOneThread, bytes, {{textwizard::kFormatA, 3, 0}});
  Expect(kOnWorkers, bytes, {{textwizard::kFormatA, 10, 0}});
}

TEST_F(DetectionEngines, TextThatGrewInDetectionIsNoTruncatedValueOfTheMap) {
  const embedded::ScopedMemoryFiles files(kCorpusPath, "bbb,c\naaaaaaaaaa,c\n");
  for (const bool oneThread : {kOnWorkers, kOnOneThread}) {
    const ScopedOneThreadDetection detection(oneThread);
    const Import import(DelimitedCommand("/DELIMITERS=','", "v AUTO w AUTO"));
    ASSERT_TRUE(import.made());
    const std::vector<std::string> expected = {
        "\n",
        "Data written to the working file.",
        "2 variables and 2 cases written.",
        "Variable: v                  Type: String  Format : A10        ",
        "Variable: w                  Type: String  Format : A1         ",
        "\n"};
    EXPECT_EQ(Texts(import.Read(Reading::kChosen).messages, kMessageLog), expected);
  }
}

TEST_F(DetectionEngines, WorkersMeasureEveryBatchFromWidthZero) {
  // The width grows by the decimals above what stands before them: 1 column at first on one thread,
  // none on a worker. A decimal character in front takes no column.
  Expect(kOnOneThread, ".5\n", {{textwizard::kFormatF, 2, 1}});
  Expect(kOnWorkers, ".5\n", {{textwizard::kFormatF, 1, 0}});
}

TEST_F(DetectionEngines, TheWidthThatWorkersFindDependsOnTheCutsBetweenBatches) {
  // A batch text of 125,000 bytes takes 15,624 records of 8 bytes.
  const std::string together = Lines("1234567", 15623) + "12.3456\n";
  const std::string apart = Lines("1234567", 15624) + "12.3456\n";
  Expect(kOnOneThread, together, {{textwizard::kFormatF, 11, 4}});
  Expect(kOnWorkers, together, {{textwizard::kFormatF, 11, 4}});
  Expect(kOnOneThread, apart, {{textwizard::kFormatF, 11, 4}});
  Expect(kOnWorkers, apart, {{textwizard::kFormatF, 7, 4}});
}

TEST_F(DetectionEngines, OneThreadTriesTheAdoptedLayoutFirst) {
  // The second date is American by the first row that matches it, but also year, month, day.
  Expect(kOnOneThread, "99/12/31\n01/02/03\n", {{textwizard::kFormatSDate, 8, 0}});
  Expect(kOnWorkers, "99/12/31\n01/02/03\n", {{textwizard::kFormatADate, 8, 0}});
  // In the other order both end with the layout of the last date.
  Expect(kOnOneThread, "01/02/03\n99/12/31\n", {{textwizard::kFormatSDate, 8, 0}});
  Expect(kOnWorkers, "01/02/03\n99/12/31\n", {{textwizard::kFormatSDate, 8, 0}});
}

TEST_F(DetectionEngines, TheSmallestKeyOfTheBatchesWinsInAnyOrder) {
  // 9 bytes a record: 13,888 fill a batch.
  const std::string american = Lines("01/02/03", 13888);
  const std::string sorted = Lines("99/12/31", 13888);
  Expect(kOnWorkers, american + sorted, {{textwizard::kFormatADate, 8, 0}});
  Expect(kOnWorkers, sorted + american, {{textwizard::kFormatADate, 8, 0}});
  Expect(kOnOneThread, american + sorted, {{textwizard::kFormatSDate, 8, 0}});
}

TEST_F(DetectionEngines, OneThreadMeasuresATimeOnlyWhenItAdoptsTheLayout) {
  Expect(kOnOneThread, "12:30\n100:59\n", {{textwizard::kFormatTime, 5, 0}});
  Expect(kOnWorkers, "12:30\n100:59\n", {{textwizard::kFormatTime, 6, 0}});
  Expect(kOnOneThread, "100:59\n12:30\n", {{textwizard::kFormatTime, 6, 0}});
  Expect(kOnWorkers, "100:59\n12:30\n", {{textwizard::kFormatTime, 5, 0}});
}

TEST_F(DetectionEngines, OneThreadKeepsMinutesAndSeconds) {
  Expect(kOnOneThread, "12 30\n12:30\n", {{textwizard::kFormatMTime, 5, 0}});
  Expect(kOnWorkers, "12 30\n12:30\n", {{textwizard::kFormatTime, 5, 0}});
}

TEST_F(DetectionEngines, AnEmptyFieldBetweenBlanksIsSteppedOverOnOneThread) {
  const std::string blank = "/DELIMITERS=' '";
  Expect(kOnOneThread, "a  5\n", {{textwizard::kFormatA, 1, 0}, {textwizard::kFormatF, 1, 0}},
         blank);
  Expect(kOnWorkers, "a  5\n", {{textwizard::kFormatA, 1, 0}, {textwizard::kFormatA, 1, 0}}, blank);
}

TEST_F(DetectionEngines, OneThreadLooksAtTheFirstCasesAndWorkersAtAll) {
  const std::string first = "/DELIMITERS=',' /IMPORTCASE=FIRST 2";
  Expect(kOnOneThread, "1\n2\nxx\n", {{textwizard::kFormatF, 1, 0}}, first);
  Expect(kOnWorkers, "1\n2\nxx\n", {{textwizard::kFormatA, 2, 0}}, first);
}

class DetectionMessages : public DetectionEngines {
 protected:
  static Messages Posted(bool oneThread, const std::string& bytes) {
    const embedded::ScopedMemoryFiles files(kCorpusPath, bytes);
    const ScopedOneThreadDetection detection(oneThread);
    return Import(DelimitedCommand("/DELIMITERS=','", "v AUTO")).messages();
  }
};

TEST_F(DetectionMessages, ProgressIsCountedByRecordOnOneThreadAndByBatchOnWorkers) {
  const std::string bytes = Lines("7", 2500);
  const Messages oneThread = {
      {kMessageProgress, "1000"}, {kMessageProgress, "2000"}, {kMessageProgress, "-1"}};
  const Messages workers = {{kMessageProgress, "2000"}, {kMessageProgress, "4294967295"}};
  EXPECT_EQ(Posted(kOnOneThread, bytes), oneThread);
  EXPECT_EQ(Posted(kOnWorkers, bytes), workers);
}

TEST_F(DetectionMessages, OnlyWorkersWarnOfBytesThatAreNoCharacter) {
  const Messages oneThread = Posted(kOnOneThread, "a\n\xFFz\n");
  EXPECT_TRUE(Texts(oneThread, kMessageWarning).empty());
  const std::vector<std::string> warnings =
      Texts(Posted(kOnWorkers, "a\n\xFFz\n"), kMessageWarning);
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_EQ(warnings[0].rfind("[2279] Case 2 has a byte at position 0 ", 0), 0u) << warnings[0];
}

TEST_F(DetectionMessages, AnInterruptLeavesNoVariablesOnOneThreadAndWhatWasCountedOnWorkers) {
  const embedded::ScopedMemoryFiles files(kCorpusPath, Lines("1234567", 20000));
  for (const bool oneThread : {kOnWorkers, kOnOneThread}) {
    SCOPED_TRACE(oneThread);
    const ScopedOneThreadDetection detection(oneThread);
    embedded::RequestAttention();
    const Import import(DelimitedCommand("/DELIMITERS=','", "v AUTO"));
    embedded::ClearAttention();
    ASSERT_TRUE(import.made());
    EXPECT_EQ(import.source().GetNVariables(), oneThread ? 0u : 1u);
    // Such a source can still be read.
    for (const Reading reading : {Reading::kChosen, Reading::kOneThread}) {
      const Pass pass = import.Read(reading);
      EXPECT_EQ(pass.cases, 20000u);
      EXPECT_EQ(pass.bytes.size(), oneThread ? 0u : 20000u * sizeof(OBS));
    }
  }
}

}  // namespace
}  // namespace whole
