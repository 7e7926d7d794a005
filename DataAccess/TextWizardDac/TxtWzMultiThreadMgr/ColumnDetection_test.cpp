// The workers find in fixed columns what one thread finds that looks at one record after another:
// counters, evidence and progress, also where what a value counts as depends on values far before.
#include "TxtWzMultiThreadMgr/ColumnDetection.h"

#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "TxtWzMultiThreadMgr/testing/EngineTest.h"
#include "detection/SamplingPass.h"
#include "detection/SamplingState.h"
#include "detection/testing/EvidenceText.h"
#include "model/MessageText.h"
#include "reading/QANT_TextWizardIterator.h"

namespace textwizard {
namespace {

using namespace engine_test;
using Outcome = ColumnDetection::Outcome;

struct Import {
  std::string bytes;
  std::vector<Column> columns;
  ImportSettings settings;
};

ImportSettings FixedSettings() {
  ImportSettings settings;
  settings.arrangement = kFixedColumns;
  settings.recordsPerCase = 1;
  settings.encoding = kEncodingUtf8;
  return settings;
}

Column AutoColumn(std::uint32_t start, std::uint32_t width) {
  return {kFormatAuto, width, 0, start, 1};
}

class Monitor : public MessageKeeper {
 public:
  // Interrupts at that question; 0: never.
  explicit Monitor(int interruptAt = 0) : interruptAt_(interruptAt) {}
  void AttentionCheck(bool* attention) override { *attention = ++questions_ == interruptAt_; }

 private:
  const int interruptAt_;
  int questions_ = 0;
};

// What a pass has found.
struct Found {
  Outcome outcome = Outcome::kFailed;
  std::vector<std::string> variables;
  std::vector<std::string> evidence;
  std::vector<std::string> progress;
  std::int64_t recounted = 0;
};

class Pass {
 public:
  Pass(const Import& import, int workers, int interruptAt = 0)
      : source_(MakeSource("data.txt", workers, import.columns, import.settings)),
        iterator_(*source_, nullptr),
        monitor_(interruptAt),
        variables_(import.columns.size()),
        evidence_(import.columns.size()) {
    for (std::size_t i = 0; i < variables_.size(); ++i) {
      variables_[i] = *source_->variables()[i];
      slots_.push_back(&variables_[i]);
    }
    iterator_.Seek(0);
  }
  // `supposed`: what the workers suppose at first; empty: what is so.
  Found OnWorkers(bool watched = true, const std::vector<SamplingState>& supposed = {}) {
    ColumnDetection detection(*source_, iterator_, slots_, monitor_,
                              watched ? evidence_.data() : nullptr);
    if (!supposed.empty()) detection.Suppose(supposed);
    const Outcome outcome = detection.Run();
    Found found = Take(outcome);
    found.recounted = detection.recounted();
    return found;
  }
  Found OnOneThread() {
    SamplingPass pass(iterator_, source_->settings(), slots_, table_, monitor_, evidence_.data());
    return Take(pass.Run() ? Outcome::kDone : Outcome::kInterrupted);
  }

 private:
  Found Take(Outcome outcome) const {
    Found found;
    found.outcome = outcome;
    for (const TxtWzVar& v : variables_) {
      std::string text;
      for (const std::uint64_t count : {v.stringCount, v.numericCount, v.dateCount, v.percentCount,
                                        v.dollarCount, v.commaCount, v.dotCount}) {
        text += std::to_string(count) + " ";
      }
      for (const std::int64_t value :
           {std::int64_t{v.width}, std::int64_t{v.decimals}, std::int64_t{v.maxStringLength},
            std::int64_t{v.dateKey}, std::int64_t{v.hasExponent}, std::int64_t{v.missingStored},
            std::int64_t{v.stringTruncated}}) {
        text += "/" + std::to_string(value);
      }
      found.variables.push_back(text);
    }
    for (std::size_t i = 0; i < evidence_.size(); ++i) {
      found.evidence.push_back(Shown(evidence_[i].Told(variables_[i], table_)));
    }
    found.progress = monitor_.Texts(kMessageProgress);
    return found;
  }

  const RegExMappings table_;
  const std::unique_ptr<QANT_TextWizardSrc> source_;
  QANT_TextWizardIterator iterator_;
  Monitor monitor_;
  std::vector<TxtWzVar> variables_;
  std::vector<TxtWzVar*> slots_;
  std::vector<DetectionEvidence> evidence_;
};

void ExpectSame(const Import& import) {
  const DataFile file(import.bytes);
  const Found expected = Pass(import, 2).OnOneThread();
  EXPECT_EQ(expected.outcome, Outcome::kDone);
  for (const int workers : {2, 3, 8}) {
    SCOPED_TRACE(std::to_string(workers) + " workers");
    const Found found = Pass(import, workers).OnWorkers();
    EXPECT_EQ(found.outcome, Outcome::kDone);
    EXPECT_EQ(found.variables, expected.variables);
    EXPECT_EQ(found.evidence, expected.evidence);
    EXPECT_EQ(found.progress, expected.progress);
    EXPECT_EQ(Pass(import, workers).OnWorkers(false).variables, expected.variables);
  }
}

std::string Lines(const std::string& line, int count) {
  std::string lines;
  for (int i = 0; i < count; ++i) lines += line + "\n";
  return lines;
}

TEST(ColumnDetection, AWidthThatAValueFarBeforeHasChanged) {
  Import import;
  import.settings = FixedSettings();
  import.columns = {AutoColumn(0, 8), AutoColumn(8, 4)};
  // A number that begins with its point narrows its column by a byte; what follows is cut so.
  import.bytes = Lines("12345678abcd", 30000) + Lines(".2345678abcd", 3) +
                 Lines("12345678abcd", 30000) + Lines(".25     abcd", 1) +
                 Lines("1234567 ab d", 20000);
  ExpectSame(import);
}

TEST(ColumnDetection, ADateLayoutThatAValueFarBeforeHasSettled) {
  Import import;
  import.settings = FixedSettings();
  import.columns = {AutoColumn(0, 10), AutoColumn(10, 8)};
  // The layout that was met first is tried first; one that does not fit a value gives way.
  import.bytes = Lines("01/02/200312:30   ", 20000) + Lines("31.12.199912:30:15", 1) +
                 Lines("01.02.200359:59   ", 20000) + Lines("2003/05/06jan     ", 9000) +
                 Lines("01.02.2003may     ", 9000);
  ExpectSame(import);
}

TEST(ColumnDetection, CountsAgainWhatWasSupposedWrongAndNothingElse) {
  Import import;
  import.settings = FixedSettings();
  import.columns = {AutoColumn(0, 6), AutoColumn(6, 8), AutoColumn(14, 4)};
  import.bytes = Lines("   12331.12.99text", 500);
  const DataFile file(import.bytes);
  const Found expected = Pass(import, 2).OnOneThread();
  std::vector<SamplingState> states;
  for (const Column& column : import.columns) {
    TxtWzVar variable;
    variable.width = column.width;
    states.emplace_back(variable);
  }
  const auto recounted = [&](const std::vector<SamplingState>& supposed) {
    // Of one batch nobody knows better before it has been added up.
    const Found found = Pass(import, 2).OnWorkers(true, supposed);
    EXPECT_EQ(found.variables, expected.variables);
    EXPECT_EQ(found.evidence, expected.evidence);
    return found.recounted;
  };
  EXPECT_EQ(recounted({}), 0);
  EXPECT_EQ(recounted(states), 0);
  std::vector<SamplingState> wrong = states;
  wrong[0].width = 2;
  EXPECT_EQ(recounted(wrong), 1);
  wrong[1].dateKey = 1004;
  wrong[2].decimals = 3;
  EXPECT_EQ(recounted(wrong), 3);
  wrong = states;
  wrong[2].maxStringLength = 9;
  EXPECT_EQ(recounted(wrong), 1);
}

TEST(ColumnDetection, NothingIsCountedAgainWhereNoStateChanges) {
  Import import;
  import.settings = FixedSettings();
  import.columns = {AutoColumn(0, 6), AutoColumn(6, 6)};
  import.bytes = Lines("   123string", 60000);
  const DataFile file(import.bytes);
  EXPECT_EQ(Pass(import, 3).OnWorkers().recounted, 0);
}

TEST(ColumnDetection, ShortRecordsEndTheListOfColumns) {
  Import import;
  import.settings = FixedSettings();
  // Out of order: a record that lacks the first has nothing of the second either.
  import.columns = {AutoColumn(6, 4), AutoColumn(0, 6), {kFormatF, 4, 0, 12, 1}, AutoColumn(2, 3)};
  import.bytes = Lines("123456", 3) + Lines("12345678", 2) + Lines("12345", 1) + Lines("", 2) +
                 Lines("123456789012", 3) + Lines("12345678901", 30000) + "1234567890123";
  ExpectSame(import);
}

TEST(ColumnDetection, EmptyFiles) {
  Import import;
  import.settings = FixedSettings();
  import.columns = {AutoColumn(0, 6)};
  for (const char* const bytes : {"", "\n", "\r\n\r\n", "\xEF\xBB\xBF", "a"}) {
    import.bytes = bytes;
    ExpectSame(import);
  }
}

TEST(ColumnDetection, RandomFiles) {
  static const char* const kEnds[] = {"\n", "\n", "\n", "\r\n", "\r", "\n\n"};
  static const char* const kValues[] = {
      "12345678", "  1.5   ", "1.25", "abcdefgh", "        ", "31.12.99",   "x",
      "-7",       ".5",       "$1.5", "1,5",      "\xC3\xA4", "01/02/2003", "12:30",
      "5%",       "1.2E3",    "007",  "may",      "1.234,5",  "30:15.25"};
  std::mt19937 random(22);
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    Import import;
    import.settings = FixedSettings();
    import.settings.firstCase = 1 + static_cast<std::int64_t>(random() % 3);
    import.settings.encoding = random() % 3 == 0 ? kEncodingLocale : kEncodingUtf8;
    import.settings.leadingSpaces = random() % 4 == 0;
    import.settings.multipleSpaces = random() % 4 == 0;
    for (std::size_t columns = 1 + random() % 6; columns > 0; --columns) {
      Column column = AutoColumn(static_cast<std::uint32_t>(random() % 40),
                                 static_cast<std::uint32_t>(1 + random() % 12));
      if (random() % 6 == 0) column.format = random() % 2 == 0 ? kFormatF : kFormatA;
      import.columns.push_back(column);
    }
    // Most values are of the kinds that are usual here; the unusual come in some places.
    const std::size_t usual = 1 + random() % 6;
    const std::size_t first = random() % 20;
    const std::size_t size = 1000 << random() % 10;
    const bool plainEnds = random() % 2 == 0;
    while (import.bytes.size() < size) {
      const bool odd = random() % 200 == 0;
      for (std::size_t pieces = 8 - (random() % 30 == 0 ? random() % 8 : 0); pieces > 0; --pieces) {
        std::string value = kValues[odd ? random() % 20 : (first + random() % usual) % 20];
        value.resize(8, ' ');
        import.bytes += value;
      }
      if (odd && random() % 4 == 0)
        import.bytes += random() % 2 == 0 ? std::string(1, '\0') : "\xFF";
      import.bytes += kEnds[plainEnds ? 0 : random() % 6];
    }
    ExpectSame(import);
    if (HasFailure()) return;
  }
}

TEST(ColumnDetection, SixteenBitUnits) {
  Import import;
  import.settings = FixedSettings();
  import.columns = {AutoColumn(0, 5), AutoColumn(5, 4)};
  import.bytes = "\xFF\xFE";
  for (const char ch :
       Lines("12.50abcd", 20000) + Lines("\n.5   ab", 3) + Lines("12.50abcd", 900)) {
    import.bytes += ch;
    import.bytes += '\0';
  }
  ExpectSame(import);
}

TEST(ColumnDetection, TellsWhatItHasNotDone) {
  Import import;
  import.settings = FixedSettings();
  import.columns = {AutoColumn(0, 4)};
  // Such a record ends the pass of one thread: the workers leave the whole of it to that.
  import.bytes = Lines("1234", 100) + "%_%_EOF_%_%\n" + Lines("abcd", 100);
  {
    const DataFile file(import.bytes);
    const Found found = Pass(import, 2).OnWorkers();
    EXPECT_EQ(found.outcome, Outcome::kFailed);
    EXPECT_EQ(found.variables.front(), "0 0 0 0 0 0 0 /4/0/0/0/0/0/0");
  }
  // So they do when the file cannot be read on, or not opened once more.
  const auto faults = std::make_shared<embedded::StreamFaults>();
  import.bytes = Lines("1234", 200000);
  const DataFile file(import.bytes, faults);
  Pass broken(import, 2);
  faults->failAt = 600000;
  EXPECT_EQ(broken.OnWorkers().outcome, Outcome::kFailed);
  faults->failAt = -1;
  Pass alone(import, 2);
  faults->duplicatesLeft = 0;
  EXPECT_EQ(alone.OnWorkers().outcome, Outcome::kFailed);
}

TEST(ColumnDetection, StopsWhenTheUserInterrupts) {
  Import import;
  import.settings = FixedSettings();
  import.columns = {AutoColumn(0, 4)};
  import.bytes = Lines("1234", 200000);
  const DataFile file(import.bytes);
  const Found expected = Pass(import, 2, 30).OnOneThread();
  EXPECT_EQ(expected.outcome, Outcome::kInterrupted);
  const Found found = Pass(import, 2, 30).OnWorkers();
  EXPECT_EQ(found.outcome, Outcome::kInterrupted);
  EXPECT_EQ(found.progress, expected.progress);
}

TEST(ColumnDetection, SaysWhatItDetects) {
  const DataFile file("");
  const auto detects = [](ImportSettings settings) {
    return ColumnDetection::Detects(*MakeSource("data.txt", 2, {}, settings));
  };
  ImportSettings settings = FixedSettings();
  EXPECT_TRUE(detects(settings));
  settings.recordsPerCase = 2;
  EXPECT_FALSE(detects(settings));
  settings.recordsPerCase = 1;
  settings.caseLimit = 5;
  EXPECT_FALSE(detects(settings));
  EXPECT_FALSE(detects(CommaSettings()));
}

}  // namespace
}  // namespace textwizard
