// The data source: opening, choosing iterators, counting cases.
#include "source/QANT_TextWizardSrc.h"

#include <cstdlib>

#include <gtest/gtest.h>
#include "HostFramework/ValueInput.h"
#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"

#include "reading/testing/ReadingTesting.h"

namespace textwizard {
namespace {

using namespace testing_support;

constexpr const char* kSwitch = "DISABLE_MULTI_THREAD_AUTO";

// Sets the variable of the environment (null: removes it) and puts back what was there.
class ScopedSwitch {
 public:
  explicit ScopedSwitch(const char* value) {
    if (const char* before = std::getenv(kSwitch)) before_ = before;
    Set(value);
  }
  ~ScopedSwitch() { Set(before_.empty() ? nullptr : before_.c_str()); }

 private:
  static void Set(const char* value) { value ? setenv(kSwitch, value, 1) : unsetenv(kSwitch); }
  std::string before_;
};

enum class Kind { kSingleThread, kMultiThread, kOther };

Kind KindOf(QANT_InputCaseIterator* made) {
  const std::unique_ptr<QANT_InputCaseIterator> iterator(made);
  if (dynamic_cast<QANT_TextWizardIterator*>(made)) return Kind::kSingleThread;
  if (dynamic_cast<QANT_TextWizardMultiThreadedIterator*>(made)) return Kind::kMultiThread;
  return Kind::kOther;
}

TEST(TextWizardSrc, AFileThatCannotBeOpenedThrows2269) {
  const embedded::ScopedMemoryFiles files(kPath, "");
  try {
    const QANT_TextWizardSrc source("other.txt", 0, 0, nullptr);
    FAIL() << "nothing was thrown";
  } catch (int number) {
    EXPECT_EQ(number, 2269);
  }
}

TEST(TextWizardSrc, KeepsWhatItWasMadeWith) {
  const embedded::ScopedMemoryFiles files(kPath, "");
  const QANT_TextWizardSrc source(kPath, 3, 17, nullptr);
  EXPECT_EQ(source.workerCount(), 3);
  EXPECT_EQ(source.hostParameter(), 17);
  EXPECT_EQ(source.adapter(), nullptr);
  EXPECT_EQ(source.GetFileSpec(), kPath);
  EXPECT_EQ(source.RowCount(), -1);
  EXPECT_EQ(source.settings().encoding, kEncodingNone);
}

TEST(TextWizardSrc, KeepsTheHostsDecimalCharacter) {
  const embedded::ScopedMemoryFiles files(kPath, "");
  iocvsetdeccharcomma_();
  const QANT_TextWizardSrc comma(kPath, 0, 0, nullptr);
  iocvsetdecchardot_();
  const QANT_TextWizardSrc dot(kPath, 0, 0, nullptr);
  EXPECT_EQ(comma.decimalCharacter(), ',');
  EXPECT_EQ(dot.decimalCharacter(), '.');
}

TEST(TextWizardSrc, OneCasePerLineIsReadByThreadsAndAllElseByOne) {
  const ScopedSwitch unset(nullptr);
  TestImport lines("1\n", Delimited(","), {Number("A")});
  EXPECT_EQ(KindOf(lines.source().MakeIterator(lines.obs())), Kind::kMultiThread);
  EXPECT_EQ(KindOf(lines.source().MakeAutoDetectIterator(nullptr)), Kind::kMultiThread);
}

TEST(TextWizardSrc, BothFactoriesMakeOneThreadForTheOtherArrangements) {
  const ScopedSwitch unset(nullptr);
  for (const Arrangement arrangement : {kDelimitedCount, kFixedColumns}) {
    TestImport import("1\n", Delimited(",", arrangement), {MakeFixedVar("A", kFormatF, 1, 0, 1)});
    EXPECT_EQ(KindOf(import.source().MakeIterator(import.obs())), Kind::kSingleThread);
    EXPECT_EQ(KindOf(import.source().MakeAutoDetectIterator(nullptr)), Kind::kSingleThread);
  }
}

TEST(TextWizardSrc, OnlyYesKeepsDetectionOnOneThread) {
  TestImport import("1\n", Delimited(","), {Number("A")});
  const auto detection = [&](const char* value) {
    const ScopedSwitch set(value);
    return KindOf(import.source().MakeAutoDetectIterator(nullptr));
  };
  EXPECT_EQ(detection("YES"), Kind::kSingleThread);
  for (const char* value : {"yes", "YES ", "YESS", "Y", "", "NO", "1"}) {
    EXPECT_EQ(detection(value), Kind::kMultiThread) << value;
  }
  // Reading the cases is not a matter of the switch.
  const ScopedSwitch set("YES");
  EXPECT_EQ(KindOf(import.source().MakeIterator(import.obs())), Kind::kMultiThread);
}

TEST(TextWizardSrc, CountsTheCasesOfTheLongestPass) {
  TestImport import("", Delimited(","), {Number("A")});
  import.source().NotePassEnd(5, nullptr);
  EXPECT_EQ(import.source().RowCount(), 5);
  import.source().NotePassEnd(3, nullptr);
  EXPECT_EQ(import.source().RowCount(), 5);
  import.source().NotePassEnd(6, nullptr);
  EXPECT_EQ(import.source().RowCount(), 6);
}

TEST(TextWizardSrc, TheMapIsWrittenWhenAPassFoundMoreCasesThanAnyBefore) {
  ImportSettings settings = Delimited(",");
  settings.mapRequested = true;
  TestImport import("", settings, {Number("A")});
  MessageKeeper messages;
  import.source().NotePassEnd(0, &messages);
  EXPECT_EQ(messages.messages.size(), 5u);
  import.source().NotePassEnd(0, &messages);
  EXPECT_EQ(messages.messages.size(), 5u);
  import.source().NotePassEnd(2, &messages);
  EXPECT_EQ(messages.messages.size(), 10u);
}

}  // namespace
}  // namespace textwizard
