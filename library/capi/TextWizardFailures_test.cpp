// The C interface: commands and arguments that are wrong, settings, messages, cancelling.
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

using TextWizardFailures = capi::TextWizardTest;

// --- Failures

TEST_F(TextWizardFailures, ACommandThatFailsSaysNumberAndPlace) {
  WriteRows(1);
  const auto import = Import::OpenCommand(Command("n F4.0\n  s WRONG7"));
  ASSERT_FALSE(import);
  EXPECT_EQ(import.error().status(), TEXTWIZARD_COMMAND_FAILED);
  EXPECT_EQ(import.error().number(), std::atoi(import.error().text().c_str() + 1));
  EXPECT_GT(import.error().number(), 2000);
  EXPECT_EQ(import.error().line(), 2);
  EXPECT_EQ(import.error().column(), 3);
  EXPECT_THAT(import.error().text(), HasSubstr("WRONG7"));
}

TEST_F(TextWizardFailures, AFileThatIsNotThereIsSaid) {
  const auto import = Import::OpenCommand(Command("n F4.0", "none.csv"));
  ASSERT_FALSE(import);
  EXPECT_EQ(import.error().number(), 2269);
  EXPECT_THAT(import.error().text(), HasSubstr("none.csv"));
}

TEST_F(TextWizardFailures, ATextHoldsOneCommand) {
  WriteRows(1);
  EXPECT_EQ(Import::OpenCommand("").error().status(), TEXTWIZARD_USAGE);
  const std::string one = Command("n F4.0");
  EXPECT_THAT(Import::OpenCommand(one + "\n" + one).error().text(), HasSubstr("more than one"));
  const auto other = Import::OpenCommand("FREQUENCIES x.");
  EXPECT_EQ(other.error().status(), TEXTWIZARD_COMMAND_FAILED);
  EXPECT_EQ(other.error().line(), 1);
}

TEST_F(TextWizardFailures, ArgumentsThatAreNoneAreRefused) {
  textwizard_error* error = nullptr;
  textwizard_import* import = nullptr;
  EXPECT_EQ(textwizard_open_command(nullptr, nullptr, &import, &error), TEXTWIZARD_USAGE);
  EXPECT_STREQ(textwizard_error_text(error), "command is null");
  textwizard_error_free(error);
  EXPECT_EQ(textwizard_open_command("x", nullptr, nullptr, nullptr), TEXTWIZARD_USAGE);
  textwizard_error_free(nullptr);
  textwizard_close(nullptr);
  textwizard_cancel(nullptr);
  EXPECT_EQ(textwizard_dictionary(nullptr), nullptr);
  options_.workers = -1;
  EXPECT_THAT(Import::OpenCommand("x", &options_).error().text(), StartsWith("workers is -1"));
  options_.size = 3;
  EXPECT_THAT(Import::OpenCommand("x", &options_).error().text(), HasSubstr("size is 3"));
  options_ = Defaults<textwizard_options>();
  options_.code_page = "latni1";
  EXPECT_THAT(Import::OpenCommand("x", &options_).error().text(), HasSubstr("latin1"));
  options_ = Defaults<textwizard_options>();
  options_.decimal = ';';
  EXPECT_THAT(Import::OpenCommand("x", &options_).error().text(), HasSubstr("decimal"));
  options_ = Defaults<textwizard_options>();
  options_.byte_order_mark = "utf-8";
  EXPECT_THAT(Import::OpenCommand("x", &options_).error().text(),
              StartsWith("byte_order_mark is \"utf-8\""));
  options_ = Defaults<textwizard_options>();
  options_.transcode = "none such";
  EXPECT_EQ(Import::OpenCommand("x", &options_).error().text(), "there is no encoding none such");
  options_ = Defaults<textwizard_options>();
  options_.pad_columns = "5,5";
  EXPECT_THAT(Import::OpenCommand("x", &options_).error().text(),
              StartsWith("pad_columns is \"5,5\""));
}

TEST_F(TextWizardFailures, AnOlderCallersStructIsShorter) {
  folder_.Write("data.csv", "1,5\n");
  // Only up to the code page: what stands behind is not read.
  options_.size = offsetof(textwizard_options, locale_code_page);
  options_.decimal = ',';
  options_.workers = -1;
  EXPECT_TRUE(Import::OpenCommand(Command("n F4.0"), &options_));
}

TEST_F(TextWizardFailures, StrictFailsBehindTheLastCase) {
  folder_.Write("data.csv", "1\nx\n3\n");
  options_.strict = 1;
  auto import = Import::OpenCommand(Command("n F4.0"), &options_);
  const auto rows = Rows(import->Cases());
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[3][0], "strict: 1 problem, the first in line 2");
}

// --- Settings of the process

TEST_F(TextWizardFailures, ImportsThatAreReadTogetherAgreeOnTheHost) {
  folder_.Write("data.csv", "1,5;2\n");
  const std::string command = "GET DATA /TYPE=TXT /FILE='" + (folder_ / "data.csv") +
                              "' /DELIMITERS=';' /VARIABLES=n F8.2 m F8.2.";
  options_.decimal = ',';
  auto comma = Import::OpenCommand(command, &options_);
  auto point = Import::OpenCommand(command);
  ASSERT_TRUE(comma);
  ASSERT_TRUE(point) << "nothing is being read";
  auto reading = comma->Cases();
  ASSERT_TRUE(reading);
  EXPECT_EQ(point->Cases().error().status(), TEXTWIZARD_BUSY);
  EXPECT_EQ(Import::OpenCommand(command).error().status(), TEXTWIZARD_BUSY);
  EXPECT_EQ(Import::OpenFile(folder_ / "data.csv").error().status(), TEXTWIZARD_BUSY);
  EXPECT_TRUE(Import::OpenCommand(command, &options_));
  EXPECT_THAT(RowsOf(*reading), ElementsAre(ElementsAre("1.5", "2.0")));
  EXPECT_THAT(Rows(point->Cases()), ElementsAre(ElementsAre("(null)", "2.0")));
  EXPECT_THAT(Rows(comma->Cases()), ElementsAre(ElementsAre("1.5", "2.0")));
}

TEST_F(TextWizardFailures, TextsAreUtf8WhateverTheHostWorksIn) {
  folder_.Write("data.csv", "Z\xFCrich,\xFC\n");
  options_.code_page = "ISO-8859-1";
  auto import = Import::OpenCommand(Command("gr\xC3\xB6\xC3\x9F"
                                            "e A10 x F4.0",
                                            "data.csv", "/ENCODING='LOCALE'"),
                                    &options_);
  ASSERT_TRUE(import) << import.error().text();
  EXPECT_STREQ(import->ReadSchema()->get().children[0]->name,
               "gr\xC3\xB6\xC3\x9F"
               "e");
  EXPECT_THAT(Rows(import->Cases()), ElementsAre(ElementsAre("Z\xC3\xBCrich", "(null)")));
  EXPECT_EQ(Rows(import->Problems())[0][6], "\xC3\xBC");
}

TEST_F(TextWizardFailures, ImportsOnSeveralThreadsDoNotMix) {
  WriteRows(30000);
  folder_.Write("other.csv", "7,x\n8,y\n");
  std::vector<std::thread> threads;
  std::atomic<int> right{0};
  for (int i = 0; i < 6; ++i) {
    threads.emplace_back([&, i] {
      const bool small = i % 2 == 0;
      auto import = Import::OpenCommand(Command("n F8.0 s A12", small ? "other.csv" : "data.csv"));
      if (!import) return;
      auto cases = import->Cases();
      std::int64_t rows = 0;
      while (true) {
        const auto batch = cases->Next();
        if (!batch || !*batch) break;
        rows += batch->length();
      }
      if (rows == (small ? 2 : 30000)) ++right;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(right, 6);
}

// --- Messages, progress, cancelling

struct Heard {
  std::vector<std::string> messages;
  std::vector<std::int64_t> cases;
  std::int64_t most = -1;  // cases from which on progress cancels; -1: never
};

textwizard_options Listening(Heard& heard) {
  auto options = Defaults<textwizard_options>();
  options.context = &heard;
  options.message = [](void* context, textwizard_message_kind kind, const char* text) {
    static_cast<Heard*>(context)->messages.push_back(std::to_string(kind) + text);
  };
  options.progress = [](void* context, std::int64_t cases, std::int64_t, std::int64_t) {
    auto& told = *static_cast<Heard*>(context);
    told.cases.push_back(cases);
    return told.most >= 0 && cases >= told.most ? 1 : 0;
  };
  return options;
}

TEST_F(TextWizardFailures, MessagesComeToTheCallback) {
  WriteRows(1);
  Heard heard;
  const textwizard_options options = Listening(heard);
  auto import =
      Import::OpenCommand(Command("n F4.0 s A8", "data.csv", "/QUALIFIER='\"x'"), &options);
  EXPECT_FALSE(import) << "the qualifier is named twice";
  ASSERT_FALSE(heard.messages.empty());
  auto mapped = Import::OpenCommand(Command("n F4.0 s A8", "data.csv", "/MAP"), &options);
  ASSERT_TRUE(mapped);
  Rows(mapped->Cases());
  EXPECT_THAT(heard.messages, testing::Contains("3Data written to the working file."));
}

TEST_F(TextWizardFailures, ProgressCancels) {
  WriteRows(200000);
  Heard heard;
  const textwizard_options options = Listening(heard);
  auto import = Import::OpenCommand(Command("n F8.0 s A12"), &options);
  heard.most = 1000;
  const auto rows = Rows(import->Cases());
  ASSERT_FALSE(rows.empty());
  EXPECT_EQ(rows.back()[0], "the import was cancelled");
  EXPECT_LT(rows.size(), 200000U);
  heard.most = -1;
  heard.cases.clear();
  EXPECT_EQ(Rows(import->Cases()).size(), 200000U) << "the next reading is whole";
  EXPECT_EQ(heard.cases.back(), 200000);
}

TEST_F(TextWizardFailures, ProgressCancelsTheSearchForTypes) {
  WriteRows(200000);
  Heard heard;
  heard.most = 1000;
  const textwizard_options options = Listening(heard);
  const auto import = Import::OpenCommand(Command("n AUTO s AUTO"), &options);
  ASSERT_FALSE(import);
  EXPECT_EQ(import.error().status(), TEXTWIZARD_CANCELLED);
}

TEST_F(TextWizardFailures, AnyThreadCancelsItsImportOnly) {
  WriteRows(1000);
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  auto other = Import::OpenCommand(Command("n F8.0 s A12"));
  std::thread([&import] { import->Cancel(); }).join();
  EXPECT_EQ(Rows(other->Cases()).size(), 1000U);
  auto cases = import->Cases();
  ArrowArray array;
  EXPECT_EQ(cases->get().get_next(&cases->get(), &array), ECANCELED);
  EXPECT_STREQ(cases->get().get_last_error(&cases->get()), "the import was cancelled");
  EXPECT_EQ(Rows(import->Cases()).size(), 1000U);
}

}  // namespace
