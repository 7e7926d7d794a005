// One worker, with the test in the places of the reader and of the host's thread.
#include "TxtWzMultiThreadMgr/TextDataIteratorThread.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "TxtWzMultiThreadMgr/testing/EngineTest.h"

namespace textwizard {
namespace {

using namespace engine_test;

class Worker : public testing::Test {
 protected:
  void Start(const std::vector<Column>& columns, const ImportSettings& settings) {
    source_ = MakeSource(file_.path(), 2, columns, settings);
    plan_ = std::make_unique<WorkerPlan>(*source_);
    plan_->Convert();
    worker_ = std::make_unique<TextDataIteratorThread>(*plan_, 10);
    ASSERT_TRUE(worker_->activate());
    while (!worker_->running()) QANT_msleep(0);
  }
  void TearDown() override {
    if (worker_) worker_->Stop();
  }

  // Hands over one batch, behind 100 cases.
  bool Send(const std::vector<std::string>& records) {
    EXPECT_TRUE(records_.Begin(worker_->textLimit()));
    for (const std::string& record : records) EXPECT_TRUE(records_.Append(record));
    records_.End(100, false);
    return worker_->SendBatch(records_);
  }
  // Converts one batch and returns its cases.
  std::vector<const OBS*> Convert(const std::vector<std::string>& records) {
    EXPECT_TRUE(Send(records));
    worker_->WaitDone();
    EXPECT_EQ(worker_->state(), TextDataIteratorThread::kConverted);
    worker_->TakeBatch(taken_);
    std::vector<const OBS*> cases;
    while (const OBS* next = taken_.GetNextOBSPointer()) cases.push_back(next);
    EXPECT_FALSE(taken_.failed());
    return cases;
  }
  std::vector<BatchNote> Notes() {
    std::vector<BatchNote> notes;
    while (const BatchNote* note = taken_.NextNote()) notes.push_back(*note);
    return notes;
  }
  static double Number(const OBS* cell) {
    double value;
    std::memcpy(&value, cell, sizeof value);
    return value;
  }
  static std::string Text(const OBS* cell, std::size_t width) {
    return {reinterpret_cast<const char*>(cell), width};
  }

  DataFile file_{""};
  std::unique_ptr<QANT_TextWizardSrc> source_;
  std::unique_ptr<WorkerPlan> plan_;
  std::unique_ptr<TextDataIteratorThread> worker_;
  RecordBatch records_;
  CaseBatch taken_;
};

TEST_F(Worker, OneCaseARecordInRecordOrder) {
  Start(Numbers(2), CommaSettings());
  const auto cases = Convert({"1,2", "3", ",", "4,5,6"});
  ASSERT_EQ(cases.size(), 4u);
  EXPECT_EQ(Number(cases[0]), 1);
  EXPECT_EQ(Number(cases[0] + 1), 2);
  EXPECT_EQ(Number(cases[1]), 3);
  EXPECT_EQ(Number(cases[1] + 1), kSystemMissing);
  EXPECT_EQ(Number(cases[2]), kSystemMissing);
  EXPECT_EQ(Number(cases[3] + 1), 5);
}

TEST_F(Worker, TwoCaseArraysTakeTurnsAndAreKeptForBatchesThatAreNotLarger) {
  Start(Numbers(1), CommaSettings());
  const OBS* const first = Convert({"1", "2", "3"})[0];
  const OBS* const second = Convert({"4", "5"})[0];
  EXPECT_NE(second, first);
  EXPECT_EQ(Convert({"6", "7", "8"})[0], first);
  EXPECT_EQ(Convert({"9", "10"})[0], second);
  const std::vector<std::string> more(1000, "9");
  const auto cases = Convert(more);
  ASSERT_EQ(cases.size(), 1000u);
  for (const OBS* one : cases) EXPECT_EQ(Number(one), 9);
}

TEST_F(Worker, CasesAreDeliveredWhileTheNextBatchIsConverted) {
  Start(Numbers(1), CommaSettings());
  ASSERT_TRUE(Send({"1", "x"}));
  worker_->WaitDone();
  worker_->TakeBatch(taken_);
  EXPECT_EQ(Number(taken_.GetNextOBSPointer()), 1);
  ASSERT_TRUE(Send({"3", "4", "5"}));
  worker_->WaitDone();
  EXPECT_EQ(Number(taken_.GetNextOBSPointer()), kSystemMissing);
  EXPECT_EQ(Notes().size(), 1u);
  EXPECT_EQ(taken_.GetNextOBSPointer(), nullptr);
  worker_->TakeBatch(taken_);
  EXPECT_EQ(taken_.recordCount(), 3u);
  EXPECT_EQ(Number(taken_.GetNextOBSPointer()), 3);
}

TEST_F(Worker, SkippedVariableTakesAFieldButNoColumn) {
  Start({{kFormatF}, {kFormatSkip}, {kFormatF}}, CommaSettings());
  const auto cases = Convert({"1,2,3"});
  EXPECT_EQ(plan_->caseBytes, 16u);
  EXPECT_EQ(Number(cases[0]), 1);
  EXPECT_EQ(Number(cases[0] + 1), 3);
}

TEST_F(Worker, StringsTakeWholeCellsPaddedWithBlanks) {
  Start({{kFormatA, 3}, {kFormatA, 8}, {kFormatA, 9}, {kFormatF}}, CommaSettings());
  const auto cases = Convert({"a,b,c,1", "abcd,12345678,123456789,2", ",,,3"});
  EXPECT_EQ(plan_->caseBytes, 40u);
  EXPECT_EQ(Text(cases[0], 32), "a       b       c               ");
  EXPECT_EQ(Text(cases[1], 32), "abc     12345678123456789       ");
  EXPECT_EQ(Text(cases[2], 32), std::string(32, ' '));
  EXPECT_EQ(Number(cases[2] + 4), 3);
}

TEST_F(Worker, StringsAreCutAtWholeCharacters) {
  Start({{kFormatA, 3}}, CommaSettings());
  // Two letters of two bytes each: the second one does not fit.
  const auto cases = Convert({"\xC3\xA9\xC3\xA9", "abc\xC3\xA9"});
  EXPECT_EQ(Text(cases[0], 8), "\xC3\xA9      ");
  EXPECT_EQ(Text(cases[1], 8), "abc     ");
}

TEST_F(Worker, TruncationIsDecidedByTheCellsAndNotByTheFormat) {
  Start({{kFormatA, 2, 6}}, CommaSettings());
  Convert({"ab"});
  EXPECT_TRUE(Notes().empty());
  const auto cases = Convert({"abc"});
  EXPECT_EQ(Text(cases[0], 8), "ab      ");
  const auto notes = Notes();
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_EQ(notes[0].kind, BatchNote::kStringTruncated);
}

TEST_F(Worker, FieldInQuotesTwoBytesTooLongIsNotMarked) {
  ImportSettings settings = CommaSettings();
  settings.qualifierSet = false;
  Start({{kFormatA, 4}}, settings);
  const auto cases = Convert({"'abcd'", "\"abcd\""});
  EXPECT_EQ(Text(cases[0], 8), "'abc    ");
  EXPECT_EQ(Text(cases[1], 8), "\"abc    ");
  EXPECT_TRUE(Notes().empty());
  for (const char* const marked : {"'abcde'", "'abc'+", "'abcd\"", "abcdef", "'abcd'+"}) {
    Convert({marked});
    const auto notes = Notes();
    ASSERT_EQ(notes.size(), 1u) << marked;
    EXPECT_EQ(notes[0].kind, BatchNote::kStringTruncated);
  }
}

TEST_F(Worker, LeadingBlanksGoOnlyFromFieldsThatAreTooLong) {
  ImportSettings settings = CommaSettings();
  settings.leadingSpaces = true;
  Start({{kFormatA, 4}}, settings);
  // The cut already removes leading blanks with this option.
  const auto cases = Convert({"  abcd", "  abcde"});
  EXPECT_EQ(Text(cases[0], 4), "abcd");
  EXPECT_EQ(Text(cases[1], 4), "abcd");
  const auto notes = Notes();
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_EQ(notes[0].record, 1u);
}

TEST_F(Worker, FlagsAreNotedOncePerBatchWithTheirFirstRecord) {
  Start({{kFormatF}, {kFormatA, 2}}, CommaSettings());
  for (int batch = 0; batch < 2; ++batch) {
    Convert({"1,a", "x,a", "y,abc", ",abcd"});
    const auto notes = Notes();
    ASSERT_EQ(notes.size(), 2u);
    EXPECT_EQ(notes[0].kind, BatchNote::kMissingStored);
    EXPECT_EQ(notes[0].variable, 0u);
    EXPECT_EQ(notes[0].record, 1u);
    EXPECT_EQ(notes[1].kind, BatchNote::kStringTruncated);
    EXPECT_EQ(notes[1].variable, 1u);
    EXPECT_EQ(notes[1].record, 2u);
  }
}

TEST_F(Worker, BytesThatAreNoCharacterAreNotedWithTheirPosition) {
  ImportSettings settings = CommaSettings();
  settings.encoding = kEncodingNone;
  Start({{kFormatA, 8}}, settings);
  const auto cases = Convert({"ok",
                              "a\xFF"
                              "b\xFE"});
  EXPECT_EQ(Text(cases[1], 8),
            "a\xFF"
            "b\xFE    ");
  EXPECT_TRUE(Notes().empty());
  const UndecodableNotes::Note* note = taken_.NextUndecodable();
  ASSERT_NE(note, nullptr);
  EXPECT_EQ(taken_.CaseNumber(note->record), 102);
  EXPECT_EQ(note->run.position, 1u);
  EXPECT_EQ(note->run.count, 1u);
  note = taken_.NextUndecodable();
  ASSERT_NE(note, nullptr);
  EXPECT_EQ(note->run.position, 3u);
  EXPECT_EQ(taken_.NextUndecodable(), nullptr);
}

TEST_F(Worker, NotesWaitForTheirCase) {
  Start(Numbers(1), CommaSettings());
  ASSERT_TRUE(Send({"1", "x"}));
  worker_->WaitDone();
  worker_->TakeBatch(taken_);
  EXPECT_EQ(taken_.NextNote(), nullptr);
  taken_.GetNextOBSPointer();
  EXPECT_EQ(taken_.NextNote(), nullptr);
  taken_.GetNextOBSPointer();
  EXPECT_NE(taken_.NextNote(), nullptr);
}

TEST_F(Worker, OtherArrangementsConvertNothing) {
  ImportSettings settings = CommaSettings();
  settings.arrangement = kFixedColumns;
  Start({{kFormatF}, {kFormatA, 8}}, settings);
  for (int batch = 0; batch < 2; ++batch) {
    const auto cases = Convert({"1,abc"});
    EXPECT_EQ(Number(cases[0]), kSystemMissing);
    EXPECT_EQ(Text(cases[0] + 1, 8), "        ");
  }
}

TEST_F(Worker, BatchTextGrowsWithTheFirstRecordWithinReason) {
  Start(Numbers(1), CommaSettings());
  EXPECT_EQ(worker_->textLimit(), 125000u);
  EXPECT_EQ(TextDataIteratorThread(*plan_, 6250).textLimit(), 125000u);
  EXPECT_EQ(TextDataIteratorThread(*plan_, 6251).textLimit(), 125020u);
  EXPECT_EQ(TextDataIteratorThread(*plan_, 100000000).textLimit(), std::size_t{8} << 20);
}

TEST_F(Worker, StoppedSlotStaysStopped) {
  Start(Numbers(1), CommaSettings());
  Convert({"1"});
  worker_->Stop();
  EXPECT_TRUE(worker_->stopRequested());
  worker_->SetState(TextDataIteratorThread::kAvailable);
  EXPECT_EQ(worker_->state(), TextDataIteratorThread::kStopped);
  // Nobody waits for a stopped worker for ever, and it takes no more batches.
  worker_->WaitDone();
  worker_->WaitFree();
  EXPECT_FALSE(Send({"2"}));
  worker_->join();
  EXPECT_TRUE(worker_->exited());
}

TEST_F(Worker, AWorkerThatNeverStartedIsDestroyed) {
  Start(Numbers(1), CommaSettings());
  TextDataIteratorThread idle(*plan_, 10);
  idle.Stop();
  EXPECT_FALSE(idle.stopRequested());
}

}  // namespace
}  // namespace textwizard
