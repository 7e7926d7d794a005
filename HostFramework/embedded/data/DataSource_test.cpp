#include "HostFramework/DataSource.h"

#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/CaseBuffer.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace {

using embedded::CaseBuffer;

class NoCases : public QANT_InputCaseIterator {
 public:
  using QANT_InputCaseIterator::QANT_InputCaseIterator;
  bool IsSeekOK() override { return false; }
  bool Seek(long long) override { return false; }
  long long Tell() const override { return 0; }
  bool Next() override { return false; }
  void Commit() override {}
};

class Source : public QANT_DataSource {
 public:
  explicit Source(QANT_DataSource* parent = nullptr, bool* destroyed = nullptr)
      : QANT_DataSource(parent), destroyed_(destroyed) {}
  ~Source() override {
    if (destroyed_) *destroyed_ = true;
  }
  QANT_InputCaseIterator* MakeIterator(OBS* obs) const override { return new NoCases(*this, obs); }

 private:
  bool* destroyed_;
};

TEST(Variable, StartsAsANumberShownInEightColumns) {
  const QANT_Variable variable(0, 3);
  EXPECT_EQ(variable.GetType(), 0);
  EXPECT_EQ(variable.ObsIndex(), 3u);
  EXPECT_EQ(variable.GetDisplayWidth(), 8);
  EXPECT_EQ(variable.GetFormat(), (QANT_Format{5, 8, 2}));
  EXPECT_EQ(variable.GetName(), "");
}

TEST(Variable, AStringsTypeIsItsWidthInBytes) {
  const QANT_Variable variable(20, 0);
  EXPECT_EQ(variable.GetType(), 20);
  EXPECT_EQ(variable.GetFormat(), (QANT_Format{1, 20, 0}));
  EXPECT_EQ(variable.GetWriteFormat(), (QANT_Format{1, 20, 0}));
  EXPECT_EQ(variable.GetDisplayWidth(), 8);
}

TEST(Variable, KeepsPrintAndWriteFormatApart) {
  QANT_Variable variable(0, 0);
  variable.SetName("id");
  variable.SetFormat(5, 10, 0);
  variable.SetWriteFormat(3, 12, 4);
  variable.SetDisplayWidth(14);
  EXPECT_EQ(variable.GetName(), "id");
  EXPECT_EQ(variable.GetFormat(), (QANT_Format{5, 10, 0}));
  EXPECT_EQ(variable.GetWriteFormat(), (QANT_Format{3, 12, 4}));
  EXPECT_EQ(variable.GetDisplayWidth(), 14);
}

TEST(Variable, AWidthBelowTheFormatsMinimumIsRaised) {
  QANT_Variable variable(0, 0);
  variable.SetFormat(5, 2, 4);
  EXPECT_EQ(variable.GetFormat(), (QANT_Format{5, 5, 4}));
  variable.SetWriteFormat(20, 1, 0);
  EXPECT_EQ(variable.GetWriteFormat(), (QANT_Format{20, 9, 0}));
  variable.SetFormat(22, 30, 2);
  EXPECT_EQ(variable.GetFormat(), (QANT_Format{22, 30, 2}));
}

TEST(DataSource, HasTheHostsAnswersToWhatASourceDoesNotDecide) {
  Source source, child(&source);
  EXPECT_EQ(source.GetNSplitVars(), 0);
  EXPECT_FALSE(source.GetSplitqSeparate());
  EXPECT_EQ(source.GetObsAreaSize(), 0u);
  EXPECT_EQ(source.RowCount(), -1);
  EXPECT_EQ(source.NParents(), 0);
  EXPECT_EQ(child.NParents(), 1);
  source.SetFileSpec("data.txt");
  EXPECT_EQ(source.GetFileSpec(), "data.txt");
}

TEST(DataSource, VariablesTakeCellsOfEightBytes) {
  Source source;
  const int widths[] = {0, 1, 8, 9, 0, 17, 32767, 0};
  const std::size_t cells[] = {0, 1, 2, 3, 5, 6, 9, 4105};
  for (std::size_t i = 0; i < std::size(widths); ++i) {
    int status = -1;
    const QANT_Variable* variable = QANT_DataSource::MakeVariable(&source, widths[i], &status);
    ASSERT_NE(variable, nullptr);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(variable->GetType(), widths[i]);
    EXPECT_EQ(variable->ObsIndex(), cells[i]);
    EXPECT_EQ(source.GetVariable(i), variable);
  }
  EXPECT_EQ(source.GetNVariables(), 8u);
  EXPECT_EQ(source.GetObsAreaSize(), 4106u * 8);
  EXPECT_EQ(source.GetVariable(8), nullptr);
}

TEST(DataSource, RefusesAVariableThatCannotBe) {
  Source source;
  int status = 0;
  EXPECT_EQ(QANT_DataSource::MakeVariable(&source, -1, &status), nullptr);
  EXPECT_NE(status, 0);
  EXPECT_EQ(QANT_DataSource::MakeVariable(nullptr, 0, &status), nullptr);
  EXPECT_EQ(QANT_DataSource::MakeVariable(nullptr, 0, nullptr), nullptr);
  EXPECT_EQ(source.GetNVariables(), 0u);
}

// A number, a string of 10 bytes (two cells) and a number.
class Cases : public testing::Test {
 protected:
  Cases() {
    for (const int width : {0, 10, 0}) QANT_DataSource::MakeVariable(&source_, width, nullptr);
  }
  // All bytes of the string's cells.
  static std::string Cells(const OBS* obs) {
    return {reinterpret_cast<const char*>(obs + 1), 2 * sizeof(OBS)};
  }
  Source source_;
};

TEST_F(Cases, ANewBufferIsMissingAndBlank) {
  const CaseBuffer buffer(source_);
  ASSERT_NE(buffer.obs(), nullptr);
  EXPECT_EQ(buffer.Number(0), kSystemMissing);
  EXPECT_EQ(buffer.Text(1), std::string(10, ' '));
  EXPECT_EQ(Cells(buffer.obs()), std::string(16, ' '));
  EXPECT_EQ(buffer.Number(2), kSystemMissing);
}

TEST_F(Cases, AnIteratorStartsWithAMissingAndBlankCase) {
  OBS obs[4];
  std::memset(obs, 0x55, sizeof obs);
  const NoCases iterator(source_, obs);
  EXPECT_EQ(iterator.GetObsPointer(), obs);
  double number;
  std::memcpy(&number, &obs[3], sizeof number);
  EXPECT_EQ(number, kSystemMissing);
  EXPECT_EQ(Cells(obs), std::string(16, ' '));
}

TEST_F(Cases, ValuesGoToTheCellsOfTheirColumn) {
  const CaseBuffer buffer(source_);
  NoCases iterator(source_, buffer.obs());
  iterator.SetColumnValue(0, 1.5);
  iterator.SetColumnValue(1, "0123456789");
  iterator.SetColumnValue(2, -2.5);
  EXPECT_EQ(buffer.Number(0), 1.5);
  EXPECT_EQ(Cells(buffer.obs()), "0123456789      ");
  EXPECT_EQ(buffer.Number(2), -2.5);
}

TEST_F(Cases, AShortTextIsPaddedToItsFullCells) {
  const CaseBuffer buffer(source_);
  NoCases iterator(source_, buffer.obs());
  iterator.SetColumnValue(1, "0123456789");
  iterator.SetColumnValue(1, std::string_view("ab"));
  EXPECT_EQ(Cells(buffer.obs()), "ab              ");
  iterator.SetColumnValue(1, "");
  EXPECT_EQ(Cells(buffer.obs()), std::string(16, ' '));
  iterator.SetColumnValue(1, static_cast<const char*>(nullptr));
  EXPECT_EQ(Cells(buffer.obs()), std::string(16, ' '));
}

TEST_F(Cases, ALongTextIsCutAndTouchesNoNeighbour) {
  const CaseBuffer buffer(source_);
  NoCases iterator(source_, buffer.obs());
  iterator.SetColumnValue(2, 7.0);
  iterator.SetColumnValue(1, std::string(1000, 'x').c_str());
  EXPECT_EQ(Cells(buffer.obs()), "xxxxxxxxxx      ");
  EXPECT_EQ(buffer.Number(2), 7.0);
}

TEST_F(Cases, ACharacterThatDoesNotFitWholeIsLeftOut) {
  const embedded::InCodePage utf8(nullptr);
  const CaseBuffer buffer(source_);
  NoCases iterator(source_, buffer.obs());
  iterator.SetColumnValue(1, "12345678\xE2\x82\xAC");
  EXPECT_EQ(Cells(buffer.obs()), "12345678        ");
  iterator.SetColumnValue(1, "123456789\xC3\xA4z");
  EXPECT_EQ(Cells(buffer.obs()), "123456789       ");
  iterator.SetColumnValue(1, "12345678\xC3\xA4z");
  EXPECT_EQ(Cells(buffer.obs()), "12345678\xC3\xA4      ");
  iterator.SetColumnValue(1, "1234567\xE2\x82\xAC");
  EXPECT_EQ(Cells(buffer.obs()), "1234567\xE2\x82\xAC      ");
}

TEST_F(Cases, AViewNeedNoTerminator) {
  const CaseBuffer buffer(source_);
  NoCases iterator(source_, buffer.obs());
  const embedded::Exact text("0123456789AB");
  iterator.SetColumnValue(1, text.view());
  EXPECT_EQ(Cells(buffer.obs()), "0123456789      ");
}

TEST_F(Cases, NothingIsStoredWhereItDoesNotBelong) {
  const CaseBuffer buffer(source_);
  NoCases iterator(source_, buffer.obs());
  iterator.SetColumnValue(0, "text");
  iterator.SetColumnValue(1, 1.0);
  iterator.SetColumnValue(3, 1.0);
  iterator.SetColumnValue(-1, 1.0);
  iterator.SetColumnValue(3, "text");
  EXPECT_EQ(buffer.Number(0), kSystemMissing);
  EXPECT_EQ(Cells(buffer.obs()), std::string(16, ' '));
  EXPECT_EQ(buffer.Number(2), kSystemMissing);
  NoCases without(source_, nullptr);
  without.SetColumnValue(0, 1.0);
  without.SetColumnValue(1, "text");
}

TEST_F(Cases, ClearCaseForgetsTheValues) {
  const CaseBuffer buffer(source_);
  NoCases iterator(source_, buffer.obs());
  iterator.SetColumnValue(0, 1.5);
  iterator.SetColumnValue(1, "abc");
  ClearCase(source_, buffer.obs());
  EXPECT_EQ(buffer.Number(0), kSystemMissing);
  EXPECT_EQ(Cells(buffer.obs()), std::string(16, ' '));
}

TEST_F(Cases, ABufferWithoutMemoryIsEmpty) {
  embedded::SetCaseBufferLimit(4 * sizeof(OBS) - 1);
  const CaseBuffer refused(source_);
  embedded::SetCaseBufferLimit(4 * sizeof(OBS));
  const CaseBuffer fits(source_);
  embedded::SetCaseBufferLimit(0);
  EXPECT_EQ(refused.obs(), nullptr);
  EXPECT_NE(fits.obs(), nullptr);
}

TEST(CaseBuffer, ASourceWithoutVariablesHasOne) {
  const Source source;
  EXPECT_NE(CaseBuffer(source).obs(), nullptr);
}

TEST(InputCaseIterator, KeepsTheMonitorItIsGiven) {
  const Source source;
  QantErrorMonitor monitor(nullptr);
  const std::unique_ptr<QANT_InputCaseIterator> iterator(source.MakeIterator(nullptr));
  EXPECT_EQ(iterator->GetErrorMonitor(), nullptr);
  iterator->SetErrorMonitor(&monitor);
  EXPECT_EQ(iterator->GetErrorMonitor(), &monitor);
}

class DataManager : public testing::Test {
 protected:
  void TearDown() override {
    manager_->Remove("");
    manager_->Remove("a");
    manager_->Remove("b");
  }
  ServerDataManager* manager_ = ServerDataManager::GetInstance();
};

TEST_F(DataManager, NoSourceIsNoEntry) {
  manager_->Add(nullptr, "a", false);
  EXPECT_EQ(manager_->Find("a"), nullptr);
  EXPECT_FALSE(manager_->Remove("a"));
}

TEST_F(DataManager, IsOneForTheProcess) { EXPECT_EQ(manager_, ServerDataManager::GetInstance()); }

TEST_F(DataManager, AddingUnderTheEmptyNameReplacesTheActiveSource) {
  EXPECT_EQ(manager_->Find(""), nullptr);
  bool firstGone = false, secondGone = false;
  auto* first = new Source(nullptr, &firstGone);
  auto* second = new Source(nullptr, &secondGone);
  manager_->Add(first, "", false);
  EXPECT_EQ(manager_->Find(""), first);
  manager_->Add(second, "", false);
  EXPECT_TRUE(firstGone);
  EXPECT_EQ(manager_->Find(""), second);
  EXPECT_FALSE(secondGone);
  EXPECT_TRUE(manager_->Remove(""));
  EXPECT_TRUE(secondGone);
  EXPECT_EQ(manager_->Find(""), nullptr);
  EXPECT_FALSE(manager_->Remove(""));
}

TEST_F(DataManager, NamedSourcesStandSideBySide) {
  auto* a = new Source;
  auto* b = new Source;
  manager_->Add(a, "a", false);
  manager_->Add(b, "b", false);
  EXPECT_EQ(manager_->Find("a"), a);
  EXPECT_EQ(manager_->Find("b"), b);
  EXPECT_EQ(manager_->Find(""), nullptr);
}

TEST_F(DataManager, ASourceHasOneOwner) {
  bool gone = false;
  auto* source = new Source(nullptr, &gone);
  manager_->Add(source, "a", false);
  manager_->Add(source, "a", false);
  manager_->Add(source, "b", false);
  EXPECT_FALSE(gone);
  EXPECT_EQ(manager_->Find("a"), nullptr);
  EXPECT_EQ(manager_->Find("b"), source);
  EXPECT_TRUE(manager_->Remove("b"));
  EXPECT_TRUE(gone);
}

}  // namespace
