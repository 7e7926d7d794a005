// The C interface: what consumers may do with it, and data at the edge.
#include "textwizard/textwizard.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "library/capi/testing/CInterfaceTest.h"

namespace {

using capi::Defaults;
using capi::RowsOf;
using capi::TextOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using textwizard::Batch;
using textwizard::Import;
using textwizard::Result;
using textwizard::Stream;

using TextWizardConsumers = capi::TextWizardTest;

// --- Consumers

TEST_F(TextWizardConsumers, AConsumerMayStopEarly) {
  WriteRows(200000);
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  {
    auto cases = import->Cases();
    ASSERT_TRUE(cases->Next());
  }
  EXPECT_NE(import->Ledger(), "") << "as far as it came";
  EXPECT_EQ(Rows(import->Cases()).size(), 200000U);
}

TEST_F(TextWizardConsumers, ASecondStreamEndsTheFirst) {
  WriteRows(200000);
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  auto first = import->Cases();
  ASSERT_TRUE(first->Next());
  auto second = import->Cases();
  const auto ended = first->Next();
  ASSERT_FALSE(ended);
  EXPECT_THAT(ended.error().text(), HasSubstr("another reading"));
  first = Stream();
  EXPECT_EQ(Rows(std::move(second)).size(), 200000U);
}

TEST_F(TextWizardConsumers, ReleasingTwiceDoesNothing) {
  WriteRows(10);
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  ArrowArrayStream stream = import->Cases()->Release();
  ArrowSchema schema;
  ArrowArray array;
  ASSERT_EQ(stream.get_schema(&stream, &schema), 0);
  ASSERT_EQ(stream.get_next(&stream, &array), 0);
  const auto releaseStream = stream.release;
  const auto releaseSchema = schema.release;
  const auto releaseArray = array.release;
  for (int i = 0; i < 2; ++i) {
    releaseSchema(&schema);
    releaseArray(&array);
    releaseStream(&stream);
    EXPECT_EQ(schema.release, nullptr);
    EXPECT_EQ(array.release, nullptr);
    EXPECT_EQ(stream.release, nullptr);
  }
}

TEST_F(TextWizardConsumers, EverythingMayBeReleasedOnAnotherThread) {
  WriteRows(200000);
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  auto cases = import->Cases();
  auto batch = cases->Next();
  std::thread([&] {
    Batch mine = std::move(*batch);
    // And read on.
    const auto next = cases->Next();
    EXPECT_EQ(next->length(), 65536);
    const Stream stream = std::move(*cases);
  }).join();
  std::thread([&] { const Import closed = std::move(*import); }).join();
}

TEST_F(TextWizardConsumers, AChildThatWasMovedOutOutlivesItsBatch) {
  WriteRows(10);
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  ArrowArray child;
  {
    auto cases = import->Cases();
    ArrowArray array = cases->Next()->Release();
    child = *array.children[1];
    array.children[1]->release = nullptr;
    array.release(&array);
  }
  { const Import closed = std::move(*import); }
  EXPECT_EQ(TextOf(child, 9), "text 10");
  child.release(&child);
}

TEST_F(TextWizardConsumers, AStreamOutlivesItsImportAndSaysSo) {
  WriteRows(200000);
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  auto cases = import->Cases();
  ASSERT_TRUE(cases->Next());
  { const Import closed = std::move(*import); }
  EXPECT_TRUE(cases->ReadSchema());
  const auto next = cases->Next();
  ASSERT_FALSE(next);
  EXPECT_EQ(next.error().text(), "the import was closed");
}

// --- Data

TEST_F(TextWizardConsumers, NoCasesAreAnEmptyStreamWithASchema) {
  folder_.Write("data.csv", "");
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  ASSERT_TRUE(import) << import.error().text();
  auto cases = import->Cases();
  EXPECT_EQ(cases->ReadSchema()->get().n_children, 2);
  EXPECT_FALSE(*cases->Next());
  EXPECT_FALSE(*cases->Next());
}

TEST_F(TextWizardConsumers, TenThousandColumns) {
  constexpr int kColumns = 10000;
  std::string line;
  std::string variables;
  for (int i = 0; i < kColumns; ++i) {
    line += (i == 0 ? "" : ",") + std::to_string(i);
    variables += "v" + std::to_string(i) + (i % 2 == 0 ? " F8.0 " : " A6 ");
  }
  folder_.Write("data.csv", line + "\n" + line + "\n");
  auto import = Import::OpenCommand(Command(variables));
  ASSERT_TRUE(import) << import.error().text();
  const auto rows = Rows(import->Cases());
  ASSERT_EQ(rows.size(), 2U);
  ASSERT_EQ(rows[1].size(), static_cast<std::size_t>(kColumns));
  EXPECT_EQ(rows[1][0], "0.0");
  EXPECT_EQ(rows[1][9998], "9998.0");
  EXPECT_EQ(rows[1][9999], "9999");
}

TEST_F(TextWizardConsumers, LongTextsNulsAndBytesThatAreNoCharacter) {
  const std::string longest(32767, 'x');
  folder_.Write("data.csv", std::string("1,a\xFFz\n2,b\0c\n3,", 14) + longest + "\n");
  auto import = Import::OpenCommand(Command("n F4.0 s A32767"));
  ASSERT_TRUE(import) << import.error().text();
  const auto rows = Rows(import->Cases());
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(rows[0][1], "a\xEF\xBF\xBDz");
  EXPECT_EQ(rows[1][1], "bc") << "NUL bytes are dropped";
  EXPECT_TRUE(rows[2][1] == longest);
  std::vector<std::string> kinds;
  for (const auto& problem : Rows(import->Problems())) kinds.push_back(problem[0]);
  EXPECT_THAT(kinds, ElementsAre("undecodable", "nul"));
}

TEST_F(TextWizardConsumers, AllMissing) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += ",\n";
  folder_.Write("data.csv", text);
  auto import = Import::OpenCommand(Command("n F4.0 d EDATE10"));
  auto cases = import->Cases();
  const auto batch = cases->Next();
  ASSERT_EQ(batch->length(), 1000);
  EXPECT_EQ(batch->array().children[0]->null_count, 1000);
  EXPECT_EQ(batch->array().children[1]->null_count, 1000);
}

TEST_F(TextWizardConsumers, AShareOfTheCases) {
  WriteRows(10000);
  auto import = Import::OpenCommand(Command("n F8.0 s A12", "data.csv", "/IMPORTCASE=PERCENT 50"));
  ASSERT_TRUE(import) << import.error().text();
  const std::size_t rows = Rows(import->Cases()).size();
  EXPECT_GT(rows, 4000U);
  EXPECT_LT(rows, 6000U);
  EXPECT_EQ(nlohmann::json::parse(import->Dictionary())["cases"], rows);
}

}  // namespace
