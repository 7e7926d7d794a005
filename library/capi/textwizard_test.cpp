// The C interface: what it gives, and what it bears.
#include "textwizard/textwizard.h"

#include <atomic>
#include <bit>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "library/capi/testing/OlderCpp.h"
#include "library/capi/testing/PlainC.h"
#include "library/testing/TestFolder.h"
#include "textwizard/textwizard.hpp"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using textwizard::Batch;
using textwizard::Import;
using textwizard::Result;
using textwizard::Stream;

bool IsValid(const ArrowArray& column, std::int64_t row) {
  const auto* const bits = static_cast<const unsigned char*>(column.buffers[0]);
  return bits == nullptr || ((bits[row / 8] >> (row % 8)) & 1) != 0;
}

template <class Offset = std::int32_t>
std::string TextOf(const ArrowArray& column, std::int64_t row) {
  const auto* const offsets = static_cast<const Offset*>(column.buffers[1]);
  const auto* const bytes = static_cast<const char*>(column.buffers[2]);
  return IsValid(column, row) ? std::string(bytes + offsets[row], bytes + offsets[row + 1])
                              : "(null)";
}

template <class Value>
std::string NumberOf(const ArrowArray& column, std::int64_t row) {
  const auto* const values = static_cast<const Value*>(column.buffers[1]);
  return IsValid(column, row) ? nlohmann::json(values[row]).dump() : "(null)";
}

std::string CellOf(const std::string& format, const ArrowArray& column, std::int64_t row) {
  if (format == "u") return TextOf(column, row);
  if (format == "U") return TextOf<std::int64_t>(column, row);
  if (format == "g") return NumberOf<double>(column, row);
  if (format == "tdD") return NumberOf<std::int32_t>(column, row);
  if (format == "c") return NumberOf<std::int8_t>(column, row);
  return NumberOf<std::int64_t>(column, row);
}

// Reads a stream to its end: cells as text. What it says when it fails is the last row.
std::vector<std::vector<std::string>> RowsOf(Stream& stream) {
  std::vector<std::vector<std::string>> rows;
  const auto schema = stream.ReadSchema();
  EXPECT_TRUE(schema);
  if (!schema) return rows;
  while (true) {
    const Result<Batch> batch = stream.Next();
    if (!batch) {
      rows.push_back({batch.error().text()});
      return rows;
    }
    if (!*batch) return rows;
    for (std::int64_t row = 0; row < batch->length(); ++row) {
      rows.emplace_back();
      for (std::int64_t i = 0; i < schema->get().n_children; ++i) {
        rows.back().push_back(
            CellOf(schema->get().children[i]->format, *batch->array().children[i], row));
      }
    }
  }
}

template <class Options>
Options Defaults() {
  Options options{};
  options.size = sizeof options;
  return options;
}

class TextWizard : public testing::Test {
 protected:
  // A command on `name`; the variables follow.
  std::string Command(const std::string& variables, const std::string& name = "data.csv",
                      const std::string& more = "") const {
    return "GET DATA /TYPE=TXT /FILE='" + (folder_ / name) +
           "' /ARRANGEMENT=DELIMITED /DELCASE=LINE /FIRSTCASE=1 " + more +
           " /DELIMITERS=',' /QUALIFIER='\"' /VARIABLES=" + variables + ".";
  }
  // `rows` lines "1,a" "2,b" ...
  void WriteRows(int rows) const {
    std::string text;
    for (int i = 1; i <= rows; ++i) text += std::to_string(i) + ",text " + std::to_string(i) + "\n";
    folder_.Write("data.csv", text);
  }
  static std::vector<std::vector<std::string>> Rows(Result<Stream> stream) {
    EXPECT_TRUE(stream);
    return stream ? RowsOf(*stream) : std::vector<std::vector<std::string>>();
  }

  library::TestFolder folder_;
  textwizard_options options_ = Defaults<textwizard_options>();
};

TEST_F(TextWizard, GivesTypesAndValues) {
  folder_.Write("data.csv",
                "1,2.5,\"a, \xC3\xA9 \",31.01.2020,31.01.2020 12:30:00.5,1:00:00,MON\n"
                ",,,,,,\n");
  auto import = Import::OpenCommand(
      Command("n F4.0 x F8.2 s A12 d EDATE10 at DATETIME22.1 t TIME8 w WKDAY9"));
  ASSERT_TRUE(import) << import.error().text();
  auto schema = import->ReadSchema();
  ASSERT_TRUE(schema);
  std::vector<std::string> columns;
  for (std::int64_t i = 0; i < schema->get().n_children; ++i) {
    columns.push_back(std::string(schema->get().children[i]->name) + ":" +
                      schema->get().children[i]->format);
  }
  EXPECT_STREQ(schema->get().format, "+s");
  EXPECT_THAT(columns, ElementsAre("n:g", "x:g", "s:u", "d:tdD", "at:tsu:", "t:tDu", "w:c"));
  // 2020-01-31 is 18,292 days after 1970-01-01.
  EXPECT_THAT(
      Rows(import->Cases()),
      ElementsAre(
          ElementsAre("1.0", "2.5", "a, \xC3\xA9", "18292", "1580473800500000", "3600000000", "2"),
          ElementsAre("(null)", "(null)", "", "(null)", "(null)", "(null)", "(null)")));
}

TEST_F(TextWizard, FieldsCarryFormatAndWidth) {
  WriteRows(1);
  auto import = Import::OpenCommand(Command("n F4.0 s A8"));
  ASSERT_TRUE(import);
  auto schema = import->ReadSchema();
  const std::string metadata(schema->get().children[0]->metadata, 60);
  EXPECT_THAT(metadata, HasSubstr("variable"));
  EXPECT_THAT(metadata, HasSubstr("format"));
  EXPECT_THAT(metadata, HasSubstr("F4"));
}

TEST_F(TextWizard, WholeNumbersAreIntegersWhereTheCallerAsks) {
  folder_.Write("data.csv", "1\n1.5\n-3\n");
  options_.integers = 1;
  auto import = Import::OpenCommand(Command("n F8.0"), &options_);
  ASSERT_TRUE(import);
  EXPECT_STREQ(import->ReadSchema()->get().children[0]->format, "l");
  EXPECT_THAT(Rows(import->Cases()),
              ElementsAre(ElementsAre("1"), ElementsAre("(null)"), ElementsAre("-3")));
  const auto problems = Rows(import->Problems());
  ASSERT_EQ(problems.size(), 1U);
  EXPECT_EQ(problems[0][0], "misfit");
  EXPECT_EQ(problems[0][1], "2");
  EXPECT_EQ(problems[0][2], "(null)");
  EXPECT_EQ(problems[0][6], "1.5");
}

TEST_F(TextWizard, ProblemsAreAStream) {
  folder_.Write("data.csv", "1,a\nx,b\n3,c,surplus\n");
  auto import = Import::OpenCommand(Command("n F4.0 s A8"));
  ASSERT_TRUE(import);
  EXPECT_TRUE(Rows(import->Problems()).empty()) << "nothing was read";
  EXPECT_EQ(Rows(import->Cases()).size(), 3U);
  const auto problems = Rows(import->Problems());
  ASSERT_EQ(problems.size(), 2U);
  EXPECT_THAT(std::vector(problems[0].begin(), problems[0].begin() + 7),
              ElementsAre("unreadable", "2", "2", "4", "n", "F4", "x"));
  EXPECT_THAT(problems[0][7], HasSubstr("the value is missing"));
  EXPECT_THAT(std::vector(problems[1].begin(), problems[1].begin() + 7),
              ElementsAre("surplus", "3", "3", "8", "(null)", "(null)", "surplus"));
}

TEST_F(TextWizard, KeepsNoMoreProblemsThanWanted) {
  folder_.Write("data.csv", "x\ny\nz\n");
  options_.problem_limit = 2;
  auto two = Import::OpenCommand(Command("n F4.0"), &options_);
  Rows(two->Cases());
  EXPECT_EQ(Rows(two->Problems()).size(), 2U);
  options_.problem_limit = -1;
  auto none = Import::OpenCommand(Command("n F4.0"), &options_);
  Rows(none->Cases());
  EXPECT_TRUE(Rows(none->Problems()).empty());
}

TEST_F(TextWizard, ManyProblemsComeInBatches) {
  std::string text;
  for (int i = 0; i < 70000; ++i) text += "x\n";
  folder_.Write("data.csv", text);
  auto import = Import::OpenCommand(Command("n F4.0"));
  Rows(import->Cases());
  auto stream = import->Problems();
  EXPECT_EQ(stream->Next()->length(), 65536);
  EXPECT_EQ(stream->Next()->length(), 70000 - 65536);
  EXPECT_FALSE(*stream->Next());
}

TEST_F(TextWizard, SaysDictionaryLedgerAndDigestAsJson) {
  folder_.Write("data.csv", "1,a\n2,b\n");
  auto import = Import::OpenCommand(Command("n AUTO s A8"));
  ASSERT_TRUE(import);
  EXPECT_EQ(import->Command(), Command("n AUTO s A8"));
  auto dictionary = nlohmann::json::parse(import->Dictionary());
  EXPECT_EQ(dictionary["cases"], 0);
  EXPECT_FALSE(dictionary.contains("ledger"));
  EXPECT_EQ(dictionary["variables"][0]["name"], "n");
  EXPECT_TRUE(dictionary["variables"][0].contains("evidence"));
  EXPECT_EQ(import->Ledger(), "");
  EXPECT_EQ(import->Digest(), "");
  Rows(import->Cases());
  dictionary = nlohmann::json::parse(import->Dictionary());
  EXPECT_EQ(dictionary["cases"], 2);
  const auto ledger = nlohmann::json::parse(import->Ledger());
  EXPECT_EQ(dictionary["ledger"], ledger);
  EXPECT_EQ(ledger["bytes"], 8);
  const std::string digest = import->Digest();
  EXPECT_EQ(digest.size(), 32U);
  Rows(import->Cases());
  EXPECT_EQ(import->Digest(), digest);
}

TEST_F(TextWizard, BatchesHave65536Cases) {
  WriteRows(150000);
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  auto cases = import->Cases();
  std::vector<std::int64_t> lengths;
  double sum = 0;
  while (true) {
    const auto batch = cases->Next();
    ASSERT_TRUE(batch);
    if (!*batch) break;
    lengths.push_back(batch->length());
    const auto* const values = static_cast<const double*>(batch->array().children[0]->buffers[1]);
    for (std::int64_t i = 0; i < batch->length(); ++i) sum += values[i];
  }
  EXPECT_THAT(lengths, ElementsAre(65536, 65536, 150000 - 2 * 65536));
  EXPECT_EQ(sum, 150000.0 * 150001 / 2);
}

TEST_F(TextWizard, IsUsedFromC) {
  WriteRows(1000);
  double sum = 0;
  std::int64_t rows = 0;
  char error[512] = "";
  EXPECT_EQ(SumInC(Command("n F8.0 s A12").c_str(), &sum, &rows, error, sizeof error), 0) << error;
  EXPECT_EQ(rows, 1000);
  EXPECT_EQ(sum, 500500);
  EXPECT_NE(SumInC("GET DATA /TYPE=TXT /FILE='none.csv' /DELIMITERS=',' /VARIABLES=n F8.0.", &sum,
                   &rows, error, sizeof error),
            0);
  EXPECT_THAT(error, StartsWith("[2269]"));
}

TEST_F(TextWizard, IsUsedFromCpp17) {
  WriteRows(1000);
  EXPECT_EQ(RowsInCpp17(Command("n F8.0 s A12")), 1000);
  EXPECT_EQ(RowsInCpp17("nothing"), -1);
}

// --- Bare files

TEST_F(TextWizard, OpensABareFile) {
  folder_.Write("bare.csv",
                "Full name;Born;Children;Height\n"
                "Ada Lovelace;1815-12-10;3;1,60\nAlan Turing;1912-06-23;0;1,78\n"
                "Grace Hopper;1906-12-09;NA;1,68\n");
  auto import = Import::OpenFile(folder_ / "bare.csv");
  ASSERT_TRUE(import) << import.error().text();
  auto schema = import->ReadSchema();
  std::vector<std::string> columns;
  for (std::int64_t i = 0; i < schema->get().n_children; ++i) {
    columns.push_back(std::string(schema->get().children[i]->name) + ":" +
                      schema->get().children[i]->format);
  }
  EXPECT_THAT(columns, ElementsAre("Full name:u", "Born:tdD", "Children:l", "Height:g"));
  const auto rows = Rows(import->Cases());
  ASSERT_EQ(rows.size(), 3U);
  // 1906-12-09 is 23,034 days before 1970-01-01.
  EXPECT_THAT(rows[2], ElementsAre("Grace Hopper", "-23034", "(null)", "1.68"));
  EXPECT_TRUE(Rows(import->Problems()).empty());
  EXPECT_EQ(nlohmann::json::parse(import->Reading())["delimiter"], ";");
  EXPECT_THAT(import->Command(), StartsWith("GET DATA"));
  EXPECT_EQ(import->Digest().size(), 32U);
}

TEST_F(TextWizard, TheCommandOfABareFileGivesTheSameCases) {
  folder_.Write("bare.csv", "a,b\n1,x\n2,y\n");
  auto bare = Import::OpenFile(folder_ / "bare.csv");
  ASSERT_TRUE(bare) << bare.error().text();
  const auto rows = Rows(bare->Cases());
  const std::string digest = bare->Digest();
  auto command = Import::OpenCommand(bare->Command());
  ASSERT_TRUE(command) << command.error().text();
  EXPECT_EQ(Rows(command->Cases()).size(), rows.size());
  EXPECT_EQ(command->Digest(), digest);
  EXPECT_EQ(command->Reading(), "");
}

TEST_F(TextWizard, SettingsOfABareFileAreTaken) {
  folder_.Write("bare.csv", "1;2\n3;4\n");
  auto file = Defaults<textwizard_file_options>();
  file.header = -1;
  file.names = "left,right";
  file.types = "right=A4";
  options_.integers = -1;
  auto import = Import::OpenFile(folder_ / "bare.csv", &file, &options_);
  ASSERT_TRUE(import) << import.error().text();
  auto schema = import->ReadSchema();
  EXPECT_STREQ(schema->get().children[0]->name, "left");
  EXPECT_STREQ(schema->get().children[0]->format, "g");
  EXPECT_STREQ(schema->get().children[1]->format, "u");
  EXPECT_THAT(Rows(import->Cases()), ElementsAre(ElementsAre("1.0", "2"), ElementsAre("3.0", "4")));
  file.types = "right";
  EXPECT_EQ(Import::OpenFile(folder_ / "bare.csv", &file).error().status(), TEXTWIZARD_USAGE);
}

TEST_F(TextWizard, LineBreaksWithinQuotesStayInTheValues) {
  folder_.Write("bare.csv", "id,text\n1,\"two\nlines\"\n2,one\n3,one\n4,one\n");
  auto import = Import::OpenFile(folder_ / "bare.csv");
  ASSERT_TRUE(import) << import.error().text();
  const auto rows = Rows(import->Cases());
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[0][1], "two\nlines");
  folder_.Write("data.csv", "1,\"two\nlines\"\n2,one\n");
  options_.join_quoted_lines = 1;
  auto command = Import::OpenCommand(Command("n F4.0 s A12"), &options_);
  EXPECT_THAT(Rows(command->Cases()),
              ElementsAre(ElementsAre("1.0", "two\nlines"), ElementsAre("2.0", "one")));
}

TEST_F(TextWizard, ABareFileThatIsNoneIsSaid) {
  EXPECT_EQ(Import::OpenFile(folder_ / "none.csv").error().status(), TEXTWIZARD_FILE);
  folder_.Write("picture.png", std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16));
  const auto picture = Import::OpenFile(folder_ / "picture.png");
  ASSERT_FALSE(picture);
  EXPECT_THAT(picture.error().text(), HasSubstr("picture.png"));
  // And the host is free again.
  folder_.Write("bare.csv", "a,b\n1,x\n2,y\n");
  EXPECT_TRUE(Import::OpenFile(folder_ / "bare.csv"));
}

// --- Failures

TEST_F(TextWizard, ACommandThatFailsSaysNumberAndPlace) {
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

TEST_F(TextWizard, AFileThatIsNotThereIsSaid) {
  const auto import = Import::OpenCommand(Command("n F4.0", "none.csv"));
  ASSERT_FALSE(import);
  EXPECT_EQ(import.error().number(), 2269);
  EXPECT_THAT(import.error().text(), HasSubstr("none.csv"));
}

TEST_F(TextWizard, ATextHoldsOneCommand) {
  WriteRows(1);
  EXPECT_EQ(Import::OpenCommand("").error().status(), TEXTWIZARD_USAGE);
  const std::string one = Command("n F4.0");
  EXPECT_THAT(Import::OpenCommand(one + "\n" + one).error().text(), HasSubstr("more than one"));
  const auto other = Import::OpenCommand("FREQUENCIES x.");
  EXPECT_EQ(other.error().status(), TEXTWIZARD_COMMAND_FAILED);
  EXPECT_EQ(other.error().line(), 1);
}

TEST_F(TextWizard, ArgumentsThatAreNoneAreRefused) {
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
}

TEST_F(TextWizard, AnOlderCallersStructIsShorter) {
  folder_.Write("data.csv", "1,5\n");
  // Only up to the code page: what stands behind is not read.
  options_.size = offsetof(textwizard_options, locale_code_page);
  options_.decimal = ',';
  options_.workers = -1;
  EXPECT_TRUE(Import::OpenCommand(Command("n F4.0"), &options_));
}

TEST_F(TextWizard, StrictFailsBehindTheLastCase) {
  folder_.Write("data.csv", "1\nx\n3\n");
  options_.strict = 1;
  auto import = Import::OpenCommand(Command("n F4.0"), &options_);
  const auto rows = Rows(import->Cases());
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[3][0], "strict: 1 problem, the first in line 2");
}

// --- Settings of the process

TEST_F(TextWizard, ImportsThatAreReadTogetherAgreeOnTheHost) {
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

TEST_F(TextWizard, TextsAreUtf8WhateverTheHostWorksIn) {
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

TEST_F(TextWizard, ImportsOnSeveralThreadsDoNotMix) {
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

TEST_F(TextWizard, MessagesComeToTheCallback) {
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

TEST_F(TextWizard, ProgressCancels) {
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

TEST_F(TextWizard, ProgressCancelsTheSearchForTypes) {
  WriteRows(200000);
  Heard heard;
  heard.most = 1000;
  const textwizard_options options = Listening(heard);
  const auto import = Import::OpenCommand(Command("n AUTO s AUTO"), &options);
  ASSERT_FALSE(import);
  EXPECT_EQ(import.error().status(), TEXTWIZARD_CANCELLED);
}

TEST_F(TextWizard, AnyThreadCancelsItsImportOnly) {
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

// --- Consumers

TEST_F(TextWizard, AConsumerMayStopEarly) {
  WriteRows(200000);
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  {
    auto cases = import->Cases();
    ASSERT_TRUE(cases->Next());
  }
  EXPECT_NE(import->Ledger(), "") << "as far as it came";
  EXPECT_EQ(Rows(import->Cases()).size(), 200000U);
}

TEST_F(TextWizard, ASecondStreamEndsTheFirst) {
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

TEST_F(TextWizard, ReleasingTwiceDoesNothing) {
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

TEST_F(TextWizard, EverythingMayBeReleasedOnAnotherThread) {
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

TEST_F(TextWizard, AChildThatWasMovedOutOutlivesItsBatch) {
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

TEST_F(TextWizard, AStreamOutlivesItsImportAndSaysSo) {
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

TEST_F(TextWizard, NoCasesAreAnEmptyStreamWithASchema) {
  folder_.Write("data.csv", "");
  auto import = Import::OpenCommand(Command("n F8.0 s A12"));
  ASSERT_TRUE(import) << import.error().text();
  auto cases = import->Cases();
  EXPECT_EQ(cases->ReadSchema()->get().n_children, 2);
  EXPECT_FALSE(*cases->Next());
  EXPECT_FALSE(*cases->Next());
}

TEST_F(TextWizard, TenThousandColumns) {
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

TEST_F(TextWizard, LongTextsNulsAndBytesThatAreNoCharacter) {
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

TEST_F(TextWizard, AllMissing) {
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

TEST_F(TextWizard, AShareOfTheCases) {
  WriteRows(10000);
  auto import = Import::OpenCommand(Command("n F8.0 s A12", "data.csv", "/IMPORTCASE=PERCENT 50"));
  ASSERT_TRUE(import) << import.error().text();
  const std::size_t rows = Rows(import->Cases()).size();
  EXPECT_GT(rows, 4000U);
  EXPECT_LT(rows, 6000U);
  EXPECT_EQ(nlohmann::json::parse(import->Dictionary())["cases"], rows);
}

// --- Without an import

TEST_F(TextWizard, SniffsAFile) {
  folder_.Write("bare.csv", "name;born\nAda;1815-12-10\nAlan;1912-06-23\n");
  char* json = nullptr;
  ASSERT_EQ(textwizard_sniff((folder_ / "bare.csv").c_str(), nullptr, &json, nullptr),
            TEXTWIZARD_OK);
  auto sniffed = nlohmann::json::parse(json);
  textwizard_text_free(json);
  EXPECT_EQ(sniffed["delimiter"], ";");
  EXPECT_EQ(sniffed["names"], nlohmann::json({"name", "born"}));
  auto given = Defaults<textwizard_file_options>();
  given.delimiter = "";
  given.header = -1;
  ASSERT_EQ(textwizard_sniff((folder_ / "bare.csv").c_str(), &given, &json, nullptr),
            TEXTWIZARD_OK);
  sniffed = nlohmann::json::parse(json);
  textwizard_text_free(json);
  EXPECT_EQ(sniffed["delimiter"], "");
  EXPECT_EQ(sniffed["header_lines"], 0);
}

TEST_F(TextWizard, SniffingSaysWhatIsNoText) {
  textwizard_error* error = nullptr;
  char* json = nullptr;
  EXPECT_EQ(textwizard_sniff((folder_ / "none").c_str(), nullptr, &json, &error), TEXTWIZARD_FILE);
  EXPECT_THAT(textwizard_error_text(error), HasSubstr("none: "));
  textwizard_error_free(error);
  auto fixed = Defaults<textwizard_file_options>();
  fixed.fixed = "1-8,x";
  EXPECT_EQ(textwizard_sniff((folder_ / "none").c_str(), &fixed, &json, &error), TEXTWIZARD_USAGE);
  EXPECT_THAT(textwizard_error_text(error), HasSubstr("\"x\" is no column"));
  textwizard_error_free(error);
  EXPECT_EQ(json, nullptr);
}

TEST_F(TextWizard, PreviewsRecords) {
  folder_.Write("data.csv", "one\ntwo \xC3\xA9\nthree\n");
  char* json = nullptr;
  ASSERT_EQ(textwizard_preview((folder_ / "data.csv").c_str(), nullptr, 2, 5, &json, nullptr),
            TEXTWIZARD_OK);
  const auto records = nlohmann::json::parse(json)["records"];
  textwizard_text_free(json);
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0]["line"], 2);
  EXPECT_EQ(records[0]["text"], "two \xC3\xA9");
  EXPECT_EQ(records[0]["cut"], false);
  textwizard_error* error = nullptr;
  EXPECT_EQ(textwizard_preview((folder_ / "data.csv").c_str(), "EBCDIC", 1, 1, &json, &error),
            TEXTWIZARD_FILE);
  EXPECT_EQ(textwizard_error_number(error), 2008);
  textwizard_error_free(error);
  EXPECT_EQ(textwizard_preview((folder_ / "data.csv").c_str(), nullptr, 0, 1, &json, nullptr),
            TEXTWIZARD_USAGE);
}

TEST_F(TextWizard, HasAVersion) {
  EXPECT_THAT(textwizard_version(), testing::MatchesRegex("1\\..*"));
}

}  // namespace
