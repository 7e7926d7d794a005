// A stream that fails or falls short at any offset, in any arrangement, while types are found or
// while cases are read: the command, or the pass, ends with one numbered error, and all cases until
// then are those of a file that ends there.

#include <atomic>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/Threads.h"
#include "HostFramework/embedded/data/CaseBuffer.h"
#include "tests/faults/FaultyFile.h"

namespace whole {
namespace {

const std::string kText =
    "1,aa\r\n2,\"b\nb\"\r\n\n3,c\xC3\xA9\xFF\r44,dddddddd\n\r5,ee\n6,\"f,f\"\n7,gg\n8,last";

// The passes over the first 0, 1, 2, ... bytes of the text.
std::vector<Pass> PassesOverPrefixes(const char* command, Reading reading) {
  std::vector<Pass> passes;
  for (std::size_t length = 0; length <= kText.size(); ++length) {
    const FaultyFile file(kText.substr(0, length));
    passes.push_back(Import(command).Read(reading));
  }
  return passes;
}

// What a pass gives that meets a fault where `whole` ends: its cases and warnings, then the error.
// The pass is not a complete one: no map, no count.
Pass Failed(Pass whole) {
  std::erase_if(whole.messages, [](const Message& message) { return message.kind == kMessageLog; });
  whole.messages.push_back(ReadFailure());
  whole.rowCount = -1;
  return whole;
}

class ReadFailures : public FaultTest, public testing::WithParamInterface<Arrangement> {};

// With declared formats: the types found in a part of the file may be others.
class DeclaredReadFailures : public ReadFailures {
 protected:
  // `set` makes the fault at an offset, and tells whether there is one.
  template <typename SetFault>
  void TryAllOffsets(SetFault set) {
    for (const Reading reading : {Reading::kChosen, Reading::kOneThread}) {
      const std::vector<Pass> expected = PassesOverPrefixes(GetParam().command, reading);
      const FaultyFile file(kText);
      for (const std::size_t block : {std::size_t{1}, std::size_t{7}, std::size_t{0}}) {
        const embedded::ScopedBlockSize size(block);
        for (std::size_t offset = 0; offset <= kText.size(); ++offset) {
          if (!set(*file.faults, offset)) continue;
          const Import import(GetParam().command, 2 + static_cast<int>(offset % 3));
          ASSERT_TRUE(import.made());
          const Pass pass = import.Read(reading);
          ASSERT_EQ(pass.messages, Failed(expected[offset]).messages) << offset;
          ASSERT_EQ(pass, Failed(expected[offset])) << offset << ", blocks of " << block;
        }
      }
    }
  }
};

bool FailAt(embedded::StreamFaults& faults, std::size_t offset) {
  faults.failAt = static_cast<std::int64_t>(offset);
  return true;
}

bool CutAt(embedded::StreamFaults& faults, std::size_t offset) {
  faults.cutAt = static_cast<std::int64_t>(offset);
  return offset < kText.size();
}

TEST_P(DeclaredReadFailures, AFailureAtAnyOffsetEndsThePass) { TryAllOffsets(FailAt); }

TEST_P(DeclaredReadFailures, AFileThatShrankToAnyLengthEndsThePass) { TryAllOffsets(CutAt); }

TEST_P(ReadFailures, ACommandThatFindsTypesFailsAndOthersDoNotRead) {
  for (const auto set : {FailAt, CutAt}) {
    const FaultyFile file(kText);
    for (const bool oneThread : {false, true}) {
      const ScopedOneThreadDetection detection(oneThread);
      for (std::size_t offset = 0; offset <= kText.size(); ++offset) {
        if (!set(*file.faults, offset)) continue;
        const embedded::ScopedBlockSize size(offset % 2 == 0 ? 0 : 3);
        const Import import(GetParam().command, 2 + static_cast<int>(offset % 3));
        if (GetParam().found) {
          ExpectFailed(import);
        } else {
          EXPECT_TRUE(import.made());
        }
      }
    }
  }
}

TEST_P(ReadFailures, AFileThatFailsOnlyOnceTheTypesAreFoundEndsThePass) {
  for (const Reading reading : {Reading::kChosen, Reading::kOneThread}) {
    const FaultyFile file(kText);
    const Pass all = Import(GetParam().command).Read(reading);
    for (std::size_t offset = 0; offset <= kText.size(); offset += 5) {
      file.faults->failAt = -1;
      const Import import(GetParam().command);
      ASSERT_TRUE(import.made());
      FailAt(*file.faults, offset);
      const Pass pass = import.Read(reading);
      EXPECT_EQ(EndedBy(pass), 2269);
      EXPECT_EQ(pass.rowCount, -1);
      // All but the last case, which the fault may have cut, are right.
      const std::size_t caseBytes = import.source().GetObsAreaSize();
      const std::size_t whole = pass.cases == 0 ? 0 : (pass.cases - 1) * caseBytes;
      EXPECT_EQ(pass.bytes.substr(0, whole), all.bytes.substr(0, whole)) << offset;
    }
  }
}

TEST_P(ReadFailures, AnEndedPassStaysEndedAndSaysNoMore) {
  const FaultyFile file(kText);
  const Import import(GetParam().command);
  FailAt(*file.faults, 20);
  for (const Reading reading : {Reading::kChosen, Reading::kOneThread}) {
    const embedded::CaseBuffer buffer(import.source());
    const auto iterator = import.MakeIterator(reading, buffer.obs());
    textwizard::MessageKeeper monitor;
    iterator->SetErrorMonitor(&monitor);
    while (iterator->Next()) {
    }
    const long long cases = iterator->Tell();
    for (int again = 0; again < 3; ++again) EXPECT_FALSE(iterator->Next());
    EXPECT_EQ(iterator->Tell(), cases);
    EXPECT_EQ(Texts(MessagesOf(monitor), kMessageError).size(), 1u);
  }
}

TEST_P(ReadFailures, WithoutAMonitorAPassEndsAllTheSame) {
  const FaultyFile file(kText);
  const Import import(GetParam().command);
  FailAt(*file.faults, 20);
  for (const Reading reading : {Reading::kChosen, Reading::kOneThread}) {
    const embedded::CaseBuffer buffer(import.source());
    const auto iterator = import.MakeIterator(reading, buffer.obs());
    std::size_t cases = 0;
    while (iterator->Next()) ++cases;
    EXPECT_LT(cases, 8u);
  }
}

TEST_P(ReadFailures, OneByteAtATimeIsTheWholeFile) {
  const FaultyFile file(kText);
  for (const Reading reading : {Reading::kChosen, Reading::kOneThread}) {
    file.faults->mostBytes = 0;
    const Pass expected = Import(GetParam().command).Read(reading);
    file.faults->mostBytes = 1;
    EXPECT_EQ(Import(GetParam().command).Read(reading), expected);
  }
}

TEST_P(ReadFailures, ASlowStreamIsTheWholeFile) {
  const FaultyFile file(kText);
  const embedded::ScopedBlockSize block(16);
  for (const Reading reading : {Reading::kChosen, Reading::kOneThread}) {
    file.faults->beforeRead = nullptr;
    const Pass expected = Import(GetParam().command).Read(reading);
    file.faults->beforeRead = [](std::int64_t) { QANT_msleep(3); };
    EXPECT_EQ(Import(GetParam().command, 3).Read(reading), expected);
  }
}

std::vector<Arrangement> Declared() {
  std::vector<Arrangement> declared = Arrangements();
  std::erase_if(declared, [](const Arrangement& arrangement) { return arrangement.found; });
  return declared;
}

std::string NameOf(const testing::TestParamInfo<Arrangement>& test) { return test.param.name; }

INSTANTIATE_TEST_SUITE_P(All, ReadFailures, testing::ValuesIn(Arrangements()), NameOf);
INSTANTIATE_TEST_SUITE_P(All, DeclaredReadFailures, testing::ValuesIn(Declared()), NameOf);

// A number a line, ten bytes each.
std::string NumberedRecords(int records) {
  std::string text;
  char line[16];
  for (int i = 1; i <= records; ++i) {
    std::snprintf(line, sizeof line, "%09d\n", i);
    text += line;
  }
  return text;
}

using LongFile = FaultTest;

TEST_F(LongFile, EveryCaseBeforeTheFaultIsDelivered) {
  constexpr int kRecords = 60000;
  const FaultyFile file(NumberedRecords(kRecords));
  const embedded::ScopedBlockSize block(4096);
  const char* const declared =
      "GET DATA /TYPE=TXT /FILE='faulty.txt' /DELIMITERS=',' /VARIABLES=n F9.0.";
  const char* const found =
      "GET DATA /TYPE=TXT /FILE='faulty.txt' /DELIMITERS=',' /VARIABLES=n AUTO.";
  // Around the ends of batches, which hold 12,499 records, and in the middle of a record.
  for (const std::int64_t offset : {0, 9, 10, 124990, 124999, 125000, 249980, 400005, 599999}) {
    for (const int workers : {2, 3, 8, 64}) {
      SCOPED_TRACE(std::to_string(offset) + ", " + std::to_string(workers) + " workers");
      file.faults->failAt = offset;
      const Pass pass = Import(declared, workers).Read(Reading::kChosen);
      EXPECT_EQ(EndedBy(pass), 2269);
      // A record that the fault cuts is one like the last record of a file without a line end.
      ASSERT_EQ(pass.cases, static_cast<std::size_t>((offset + 9) / 10));
      for (std::size_t i = 0; i < static_cast<std::size_t>(offset / 10); ++i) {
        double value = 0;
        std::memcpy(&value, pass.bytes.data() + i * sizeof value, sizeof value);
        ASSERT_EQ(value, static_cast<double>(i + 1));
      }
      ExpectFailed(Import(found, workers));
    }
  }
}

// Destroyed while it waits for the file, an iterator does not read it to its end, and nothing reads
// once it is gone.
TEST_F(LongFile, AnIteratorWhoseStreamBlocksIsDestroyed) {
  // 3,125 blocks, which would take minutes.
  const FaultyFile file(NumberedRecords(20000));
  const embedded::ScopedBlockSize block(64);
  const Import import("GET DATA /TYPE=TXT /FILE='faulty.txt' /DELIMITERS=',' /VARIABLES=n F9.0.");
  const embedded::CaseBuffer buffer(import.source());
  for (const int readsBefore : {0, 1, 3}) {
    std::atomic<int> reads{0}, lateReads{0};
    std::atomic<bool> alive{true};
    sfSemaphore begun(0);
    file.faults->beforeRead = [&](std::int64_t) {
      if (!alive) ++lateReads;
      ++reads;
      begun.post();
      QANT_msleep(50);
    };
    {
      const auto iterator = import.MakeIterator(Reading::kChosen, buffer.obs());
      for (int i = 0; i < readsBefore; ++i) begun.wait();
    }
    alive = false;
    EXPECT_GE(reads, readsBefore);
    EXPECT_LT(reads, 100);
    EXPECT_EQ(lateReads, 0);
    file.faults->beforeRead = nullptr;
  }
}

// The iterator without threads reads in Next alone.
TEST_F(LongFile, AnIteratorWithoutThreadsReadsNothingBeforeNext) {
  const FaultyFile file(NumberedRecords(3));
  const Import import("GET DATA /TYPE=TXT /FILE='faulty.txt' /DELIMITERS=',' /VARIABLES=n F9.0.");
  const embedded::CaseBuffer buffer(import.source());
  int reads = 0;
  file.faults->beforeRead = [&](std::int64_t) { ++reads; };
  {
    const auto iterator = import.MakeIterator(Reading::kOneThread, buffer.obs());
    iterator->Seek(1);
  }
  EXPECT_EQ(reads, 0);
  const auto iterator = import.MakeIterator(Reading::kOneThread, buffer.obs());
  EXPECT_TRUE(iterator->Next());
  EXPECT_GT(reads, 0);
}

}  // namespace
}  // namespace whole
