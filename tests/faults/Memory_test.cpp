// Memory runs out, once or for good, at any allocation of the command, of the making of an
// iterator, of the reading of a case, on any thread, or of a call of the wizard: one numbered
// error, no wrong case, no thread left behind.

#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "HostFramework/FileMessages.h"
#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/data/CaseBuffer.h"
#include "HostFramework/embedded/text/HostText.h"
#include "TxtWzMultiThreadMgr/UndecodableNotes.h"
#include "entry/CommandEntry.h"
#include "library/testing/TestFolder.h"
#include "model/FormatCode.h"
#include "tests/faults/FailingMemory.h"
#include "tests/faults/FaultyFile.h"
#include "tests/support/Effort.h"
#include "wizard/TextWizardDACHandler.h"

namespace whole {
namespace {

Messages kept;

void Keep(const char* text, int kind) {
  const MemoryNotCounted test;
  kept.push_back({kind, text});
}

class Keeper : public ErrorMonitor {
 public:
  void Report(const ErrorText& message) override { Keep(message.text.c_str(), message.kind); }
  void AttentionCheck(bool* attention) override { *attention = false; }
};

// The number with which the text of the only error begins; 0 without an error.
int OnlyError() {
  const std::vector<std::string> errors = Texts(kept, kMessageError);
  EXPECT_LE(errors.size(), 1u) << testing::PrintToString(errors);
  return errors.empty() ? 0 : std::atoi(errors[0].c_str() + 1);
}

class MemoryTest : public FaultTest {
 protected:
  explicit MemoryTest(std::string command) : command_(std::move(command)) {}

  // Runs the command with its allocation `failing` failing; true when the source was made.
  bool RunCommand(long failing, int thread = kAllThreads,
                  Afterwards afterwards = Afterwards::kMemoryIsBack) {
    kept.clear();
    embedded::CommandReader reader(command_);
    embedded::ParsedCommand parsed;
    reader.Next(parsed);
    adapter_ = std::make_unique<embedded::Adapter>(std::move(parsed.tokens), Keep, nullptr, 2, 0);
    const FailingMemory memory(failing, thread, afterwards);
    return ProcessDACSyntax(adapter_.get());
  }

  // Reads all cases with allocation `failing` failing, from the making of the iterator on. The
  // number with which reading ended, that of the only error; the same when there was no memory for
  // an iterator; 0 when it read to the end.
  int ReadCases(const QANT_DataSource& source, long failing, std::string* bytes,
                int thread = kAllThreads, Afterwards afterwards = Afterwards::kMemoryIsBack) {
    kept.clear();
    const embedded::CaseBuffer buffer(source);
    Keeper keeper;
    const auto* const cells = reinterpret_cast<const char*>(buffer.obs());
    const FailingMemory memory(failing, thread, afterwards);
    const std::unique_ptr<QANT_InputCaseIterator> iterator(source.MakeIterator(buffer.obs()));
    if (!iterator) {
      const MemoryNotCounted test;
      EXPECT_EQ(OnlyError(), 0);
      return textwizard::kReadFailed;
    }
    iterator->SetErrorMonitor(&keeper);
    while (iterator->Next()) {
      const MemoryNotCounted test;
      bytes->append(cells, source.GetObsAreaSize());
    }
    const MemoryNotCounted test;
    return OnlyError();
  }

  // The source of the latest command that made one.
  static const QANT_DataSource& Source() { return *ServerDataManager::GetInstance()->Find(""); }
  static void DropSource() { ServerDataManager::GetInstance()->Remove(""); }

  // The command, with every `step`-th allocation failing until it has no more: each time it fails
  // as it should, or it could do without that one and its source has the cases `expected`.
  void TryCommand(const std::string& expected, int thread = kAllThreads, long step = 1) {
    for (long failing = 0;; failing += step * static_cast<long>(kEffortDivisor)) {
      SCOPED_TRACE("allocation " + std::to_string(failing));
      const bool made = RunCommand(failing, thread);
      const bool reached = MemoryFailed();
      EXPECT_EQ(OnlyError(), made ? 0 : 2269);
      EXPECT_TRUE(made || reached);
      EXPECT_EQ(ServerDataManager::GetInstance()->Find("") != nullptr, made);
      if (made) {
        std::string bytes;
        EXPECT_EQ(ReadCases(Source(), -1, &bytes), 0);
        EXPECT_EQ(bytes, expected);
        DropSource();
      }
      if (HasFailure() || !reached) return;
    }
  }

  // The same of the reading of the cases.
  void TryReading(const std::string& expected, int thread = kAllThreads) {
    ASSERT_TRUE(RunCommand(-1));
    for (long failing = 0;; ++failing) {
      SCOPED_TRACE("allocation " + std::to_string(failing));
      std::string bytes;
      const int ended = ReadCases(Source(), failing, &bytes, thread);
      const bool reached = MemoryFailed();
      if (ended == 0) {
        EXPECT_EQ(bytes, expected);
      } else {
        EXPECT_EQ(ended, 2269);
        EXPECT_EQ(bytes, expected.substr(0, bytes.size()));
      }
      if (HasFailure() || !reached) break;
    }
    DropSource();
  }

 private:
  const std::string command_;
  std::unique_ptr<embedded::Adapter> adapter_;
};

class Memory : public MemoryTest, public testing::WithParamInterface<Arrangement> {
 protected:
  Memory() : MemoryTest(GetParam().command) {}
  void SetUp() override {
    FaultTest::SetUp();
    // What is made once for the whole process is there already.
    const Import import(GetParam().command);
    const Pass pass = import.Read(Reading::kOneThread);
    ASSERT_EQ(import.Read(Reading::kChosen).bytes, pass.bytes);
    expected_ = pass.bytes;
  }

  const FaultyFile file_{
      "1,aa\n2,\"b\nb\"\n\n3,c\xFFz\n44,dddddddd\n5,ee\n6,\"f,f\"\n7,gg\n8,last"};
  std::string expected_;
};

TEST_P(Memory, RunsOutInTheCommand) { TryCommand(expected_); }

TEST_P(Memory, RunsOutWhileCasesAreRead) { TryReading(expected_); }

// No memory is left even for the report of its lack: the end is all that can be told.
TEST_P(Memory, StaysOut) {
  for (long failing = 0;; failing += static_cast<long>(kEffortDivisor)) {
    SCOPED_TRACE("allocation " + std::to_string(failing));
    const bool made = RunCommand(failing, kAllThreads, Afterwards::kAllFail);
    const bool reached = MemoryFailed();
    EXPECT_TRUE(made || reached);
    EXPECT_TRUE(OnlyError() == 0 || (!made && OnlyError() == 2269));
    if (made) DropSource();
    if (HasFailure() || !reached) break;
  }
  for (long failing = 0;; ++failing) {
    SCOPED_TRACE("allocation " + std::to_string(failing) + " of the reading");
    ASSERT_TRUE(RunCommand(-1));
    std::string bytes;
    const int ended = ReadCases(Source(), failing, &bytes, kAllThreads, Afterwards::kAllFail);
    EXPECT_TRUE(ended == 0 || ended == 2269);
    EXPECT_EQ(bytes, expected_.substr(0, bytes.size()));
    // A pass that was cut short is not taken for a complete one.
    EXPECT_EQ(Source().RowCount() >= 0, bytes == expected_);
    DropSource();
    if (HasFailure() || !MemoryFailed()) break;
  }
}

INSTANTIATE_TEST_SUITE_P(All, Memory, testing::ValuesIn(Arrangements()),
                         [](const auto& test) { return std::string(test.param.name); });

// The wizard's calls: every failure is answered in the response, like a file that cannot be opened
// and a record that cannot be had.
TEST(WizardMemory, RunsOutInACall) {
  ASSERT_TRUE(embedded::SetCodePage(nullptr));
  const library::TestFolder folder;
  const FileOpenRequest request(folder.Write("data.txt", "a\nlonger than the first\n"), "UTF-8",
                                false);
  bool openRefused = false;
  bool recordRefused = false;
  bool reached = true;
  for (long failing = 0; reached; ++failing) {
    SCOPED_TRACE("allocation " + std::to_string(failing));
    textwizard::TextWizardDACHandler wizard(nullptr);
    FileOpenResponse opened;
    TextWizardDacStringResponse first, second;
    {
      const FailingMemory memory(failing);
      ASSERT_EQ(wizard.OnCallSynchronous(1002, request, opened), 0);
      ASSERT_EQ(wizard.OnCallSynchronous(1004, request, first), 0);
      ASSERT_EQ(wizard.OnCallSynchronous(1004, request, second), 0);
      reached = MemoryFailed();
    }
    if (opened.HasError()) {
      openRefused = true;
      EXPECT_EQ(opened.GetError().GetCode(), 2004U);
      EXPECT_EQ(opened.GetError().GetText(), request.GetFileName());
      EXPECT_FALSE(wizard.CloseFile());
    }
    for (const TextWizardDacStringResponse* record : {&first, &second}) {
      if (record->GetError().GetCode() == 0) continue;
      recordRefused = recordRefused || !opened.HasError();
      EXPECT_EQ(record->GetError().GetCode(), 1006U);
      EXPECT_EQ(record->GetText(), "");
    }
    EXPECT_TRUE(reached || second.GetText() == "longer than the first");
    if (HasFailure()) break;
  }
  EXPECT_TRUE(openRefused);
  EXPECT_TRUE(recordRefused);
}

// What the host calls to make objects gives null and throws nothing.
TEST(FactoryMemory, RunsOutWhileAWizardIsMade) {
  bool refused = false;
  for (long failing = 0;; ++failing) {
    PackageProxy* made = nullptr;
    {
      const FailingMemory memory(failing);
      EXPECT_NO_THROW(made = textwizard::TextWizardDACHandler::Factory(nullptr));
    }
    const std::unique_ptr<PackageProxy> wizard(made);
    refused = refused || !wizard;
    EXPECT_EQ(!wizard, MemoryFailed());
    if (!MemoryFailed()) break;
  }
  EXPECT_TRUE(refused);
}

TEST_P(Memory, RunsOutWhileAnIteratorIsMade) {
  const Import import(GetParam().command);
  const embedded::CaseBuffer buffer(import.source());
  bool refused = false;
  for (long failing = 0; failing < 1000; ++failing) {
    QANT_InputCaseIterator* made = nullptr;
    bool reached = false;
    {
      const FailingMemory memory(failing);
      EXPECT_NO_THROW(made = import.source().MakeIterator(buffer.obs()));
      reached = MemoryFailed();
    }
    const std::unique_ptr<QANT_InputCaseIterator> iterator(made);
    refused = refused || !iterator;
    EXPECT_TRUE(iterator || reached);
    if (!reached) break;
  }
  EXPECT_TRUE(refused);
  EXPECT_EQ(iocvgetdecchar_(), '.');
}

// The ring of two workers in its second round: each of the three threads that the engine starts
// runs out of memory, at any of its own allocations. In one of the code pages the first character
// of every text has bytes that the page lacks; in the other it has four bytes, which only ICU
// knows.
class MemoryOfAThread : public MemoryTest,
                        public testing::WithParamInterface<std::tuple<int, const char*>> {
 protected:
  void SetUp() override {
    MemoryTest::SetUp();
    ASSERT_TRUE(embedded::SetLocaleCodePage(std::get<1>(GetParam())));
  }
  void TearDown() override { ASSERT_TRUE(embedded::SetLocaleCodePage(nullptr)); }
  MemoryOfAThread(const char* formats)
      : MemoryTest(std::string("GET DATA /TYPE=TXT /FILE='faulty.txt' /DELIMITERS=',' "
                               "/QUALIFIER='\"' /ENCODING=LOCALE /VARIABLES=") +
                   formats) {}
  MemoryOfAThread() : MemoryOfAThread("n F8.0 s A6 d ADATE10.") {}

  // Batches of 125,000 bytes, which grow: the last records are the shortest. A part of the records
  // has to be converted, and qualifiers to be removed.
  static std::string Batches() {
    std::string text;
    for (int batch = 0; batch < 5; ++batch) {
      const std::string blanks(static_cast<std::size_t>(60 - 12 * batch), ' ');
      for (std::size_t size = text.size() + 120000; text.size() < size;) {
        const std::string number = std::to_string(text.size());
        text += blanks + number + ",\"\x81\x30\x87\x31\"\"" + number + "\",03/24/2021\n";
      }
    }
    return text;
  }
  std::string Expected() {
    EXPECT_TRUE(RunCommand(-1));
    std::string bytes;
    EXPECT_EQ(ReadCases(Source(), -1, &bytes), 0);
    EXPECT_GT(bytes.size(), 5000u * 24);
    const bool isKnown = std::get<1>(GetParam()) == std::string("GB18030");
    EXPECT_EQ(bytes.find("\xEF\xBF\xBD") == std::string::npos, isKnown);
    DropSource();
    return bytes;
  }

  const FaultyFile file_{Batches()};
};

TEST_P(MemoryOfAThread, RunsOutWhileCasesAreRead) {
  TryReading(Expected(), std::get<0>(GetParam()));
}

class MemoryOfADetectingThread : public MemoryOfAThread {
 protected:
  MemoryOfADetectingThread() : MemoryOfAThread("n AUTO s AUTO d AUTO.") {}
};

TEST_P(MemoryOfADetectingThread, RunsOutInTheCommand) {
  // A prime step, for all the kinds of allocations that take turns.
  TryCommand(Expected(), std::get<0>(GetParam()), 11);
}

const auto kThreads =
    testing::Combine(testing::Range(0, 3), testing::Values("US-ASCII", "GB18030"));
INSTANTIATE_TEST_SUITE_P(All, MemoryOfAThread, kThreads);
INSTANTIATE_TEST_SUITE_P(All, MemoryOfADetectingThread, kThreads);

// What the first command of a process makes for all later ones: the code page's table, the patterns
// of dates and numbers. ICU's memory is left alone: its compiler of patterns does not survive a
// lack.
class FirstCommand : public MemoryTest {
 protected:
  FirstCommand()
      : MemoryTest(
            "GET DATA /TYPE=TXT /FILE='faulty.txt' /DELIMITERS=';' /ENCODING=LOCALE "
            "/VARIABLES=date AUTO dollars AUTO month AUTO text AUTO.") {}

  enum Outcome { kRight, kWrong, kNotReached };

  // The command with an allocation failing, and once more with all memory: what becomes of that
  // one.
  Outcome TryTwice(long failing) {
    CountIcuMemory(false);
    if (RunCommand(failing)) DropSource();
    const bool reached = MemoryFailed();
    if (!RunCommand(-1)) return kWrong;
    const auto type = [](std::size_t i) { return Source().GetVariable(i)->GetFormat().type; };
    // Two bytes that the locale's code page, US-ASCII, lacks: two U+FFFD of three bytes.
    const bool decoded = Source().GetVariable(3)->GetType() == 6;
    using namespace textwizard;
    const bool right = decoded && type(0) == kFormatADate && type(1) == kFormatDollar &&
                       type(2) == kFormatMonth && type(3) == kFormatA;
    if (!right) return kWrong;
    return reached ? kRight : kNotReached;
  }

  const FaultyFile file_{"03/24/2021;$1,234.5;january;\xC3\xA9\n1/2/1999;$7;may;x\n"};
};

TEST_F(FirstCommand, LeavesNothingHalfMade) {
#if defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizer wants no threads in a forked process";
#endif
  int right = 0;
  // Each in a process of its own; the further, the more they are alike.
  for (long failing = 0;; failing += 1 + failing / 2) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) _exit(TryTwice(failing));
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << "allocation " << failing;
    const int outcome = WEXITSTATUS(status);
    if (outcome == kNotReached) break;
    ASSERT_EQ(outcome, kRight) << "allocation " << failing;
    ++right;
  }
  EXPECT_GT(right, 10);
}

// What could not be noted for want of memory is not noted in part: the notes before it stand.
TEST(NotesMemory, IsWantedForWholeNotes) {
  constexpr std::uint32_t kRecords = 300;
  bool reached = true;
  for (long failing = 0; reached; ++failing) {
    SCOPED_TRACE("allocation " + std::to_string(failing));
    textwizard::UndecodableNotes notes;
    std::uint32_t added = 0;
    {
      const FailingMemory memory(failing);
      try {
        for (; added < kRecords; ++added) notes.Add(3 * added, {added, 70000});
      } catch (const std::bad_alloc&) {
      }
    }
    reached = MemoryFailed();
    ASSERT_EQ(added < kRecords, reached);
    for (std::uint32_t taken = 0; taken < added; ++taken) {
      const textwizard::UndecodableNotes::Note* const note = notes.Next(UINT32_MAX);
      ASSERT_NE(note, nullptr);
      EXPECT_EQ(note->record, 3 * taken);
      EXPECT_EQ(note->run.position, taken);
      EXPECT_EQ(note->run.count, 70000u);
    }
    ASSERT_EQ(notes.Next(UINT32_MAX), nullptr);
  }
}

}  // namespace
}  // namespace whole
