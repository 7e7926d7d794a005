// Memory runs out once, at any allocation of the command, of the making of an iterator, of the
// reading of a case, on whatever thread, or of a call of the wizard: one numbered error, no wrong
// case, no thread left behind.

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/FileMessages.h"
#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/data/CaseBuffer.h"
#include "HostFramework/embedded/text/HostText.h"
#include "cli/testing/TestFolder.h"
#include "entry/CommandEntry.h"
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

class Memory : public FaultTest, public testing::WithParamInterface<Arrangement> {
 protected:
  void SetUp() override {
    FaultTest::SetUp();
    // What is made once for the whole process is there already.
    const Import import(GetParam().command);
    expected_ = import.Read(Reading::kOneThread);
    ASSERT_EQ(import.Read(Reading::kChosen).bytes, expected_.bytes);
  }

  // Runs the command with its allocation `failing` failing; true when the source was made.
  bool RunCommand(long failing) {
    kept.clear();
    embedded::CommandReader reader(GetParam().command);
    embedded::ParsedCommand parsed;
    reader.Next(parsed);
    adapter_ = std::make_unique<embedded::Adapter>(std::move(parsed.tokens), Keep, nullptr, 2, 0);
    const FailingMemory memory(failing);
    return ProcessDACSyntax(adapter_.get());
  }

  // Reads all cases with allocation `failing` failing, from the making of the iterator on. The
  // number with which reading ended: thrown, or of the only error; 0 when it read to the end.
  int ReadCases(const QANT_DataSource& source, long failing, std::string* bytes) {
    kept.clear();
    const embedded::CaseBuffer buffer(source);
    Keeper keeper;
    const auto* const cells = reinterpret_cast<const char*>(buffer.obs());
    const FailingMemory memory(failing);
    try {
      const std::unique_ptr<QANT_InputCaseIterator> iterator(source.MakeIterator(buffer.obs()));
      iterator->SetErrorMonitor(&keeper);
      while (iterator->Next()) {
        const MemoryNotCounted test;
        bytes->append(cells, source.GetObsAreaSize());
      }
    } catch (const int number) {
      const MemoryNotCounted test;
      EXPECT_EQ(OnlyError(), 0);
      return number;
    }
    const MemoryNotCounted test;
    return OnlyError();
  }

  const FaultyFile file_{
      "1,aa\n2,\"b\nb\"\n\n3,c\xFFz\n44,dddddddd\n5,ee\n6,\"f,f\"\n7,gg\n8,last"};
  Pass expected_;

 private:
  std::unique_ptr<embedded::Adapter> adapter_;
};

TEST_P(Memory, RunsOutInTheCommand) {
  ServerDataManager* const manager = ServerDataManager::GetInstance();
  for (long failing = 0;; failing += static_cast<long>(kEffortDivisor)) {
    SCOPED_TRACE("allocation " + std::to_string(failing));
    const bool made = RunCommand(failing);
    const bool reached = MemoryFailed();
    if (made) {
      // It could do without: then it has the same result.
      EXPECT_EQ(OnlyError(), 0);
      std::string bytes;
      EXPECT_EQ(ReadCases(*manager->Find(""), -1, &bytes), 0);
      EXPECT_EQ(bytes, expected_.bytes);
      manager->Remove("");
    } else {
      EXPECT_TRUE(reached);
      EXPECT_EQ(OnlyError(), 2269);
      EXPECT_EQ(manager->Find(""), nullptr);
    }
    if (HasFailure() || !reached) return;
  }
}

TEST_P(Memory, RunsOutWhileCasesAreRead) {
  ServerDataManager* const manager = ServerDataManager::GetInstance();
  ASSERT_TRUE(RunCommand(-1));
  for (long failing = 0;; ++failing) {
    SCOPED_TRACE("allocation " + std::to_string(failing));
    std::string bytes;
    const int ended = ReadCases(*manager->Find(""), failing, &bytes);
    const bool reached = MemoryFailed();
    if (ended == 0) {
      EXPECT_EQ(bytes, expected_.bytes);
    } else {
      EXPECT_EQ(ended, 2269);
      EXPECT_EQ(bytes, expected_.bytes.substr(0, bytes.size()));
    }
    if (HasFailure() || !reached) break;
  }
  manager->Remove("");
}

// The wizard's calls: every failure is answered in the response, like a file that cannot be opened
// and a record that cannot be had.
TEST(WizardMemory, RunsOutInACall) {
  ASSERT_TRUE(embedded::SetCodePage(nullptr));
  const cli::TestFolder folder;
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

INSTANTIATE_TEST_SUITE_P(All, Memory, testing::ValuesIn(Arrangements()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace whole
