// Type detection over the whole file.
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"
#include "TxtWzMultiThreadMgr/testing/AdapterTest.h"
#include "TxtWzMultiThreadMgr/testing/EngineTest.h"
#include "detection/DetectionCounters.h"
#include "model/MessageText.h"

namespace textwizard {
namespace {

using namespace engine_test;

// Variables of a plan, and what detection made of them.
class Detection {
 public:
  explicit Detection(std::vector<std::uint32_t> formats) : variables_(formats.size()) {
    for (std::size_t i = 0; i < formats.size(); ++i) {
      variables_[i].formatType = formats[i];
      pointers_.push_back(&variables_[i]);
    }
  }
  std::int64_t Run(const DataFile& file, int workers, const ImportSettings& settings,
                   DACAdapterBase* adapter = nullptr) {
    const auto source = MakeSource(file.path(), workers, {}, settings);
    QANT_TextWizardMultiThreadedIterator iterator(*source, nullptr, true);
    iterator.SetDacAdapter(adapter);
    iterator.Seek(0);
    return iterator.PerformAutoDetection(pointers_.data(), pointers_.size());
  }
  const TxtWzVar& operator[](std::size_t i) const { return variables_[i]; }

 private:
  std::vector<TxtWzVar> variables_;
  std::vector<TxtWzVar*> pointers_;
};

// A file of one column and what is found in it.
TxtWzVar DetectColumn(const std::string& text, int workers = 2) {
  const DataFile file(text);
  ImportSettings settings = CommaSettings();
  settings.delimiters = ";";
  Detection detection({kFormatAuto});
  detection.Run(file, workers, settings);
  return detection[0];
}

bool SameCounters(const TxtWzVar& a, const TxtWzVar& b) {
  return a.width == b.width && a.decimals == b.decimals && a.maxStringLength == b.maxStringLength &&
         a.stringCount == b.stringCount && a.numericCount == b.numericCount &&
         a.dateCount == b.dateCount && a.percentCount == b.percentCount &&
         a.dollarCount == b.dollarCount && a.commaCount == b.commaCount &&
         a.dotCount == b.dotCount && a.dateKey == b.dateKey && a.hasExponent == b.hasExponent &&
         a.missingStored == b.missingStored && a.stringTruncated == b.stringTruncated;
}

// `count` lines of six bytes: 20,833 of them fill a batch.
std::string FiveDigits(int count) {
  std::string text;
  for (int i = 1; i <= count; ++i) {
    char line[16];
    std::snprintf(line, sizeof line, "%05d\n", i);
    text += line;
  }
  return text;
}

TEST(MultiThreadedDetection, CountsByClass) {
  const DataFile file(
      "1,2020/01/02,abc,$5.00,7%\n"
      "2.25,x,,$12.50,12.5%\n"
      "1E3,,de,y,8%\n");
  Detection detection(std::vector<std::uint32_t>(5, kFormatAuto));
  EXPECT_EQ(detection.Run(file, 2, CommaSettings()), 3);
  EXPECT_EQ(detection[0].numericCount, 3u);
  EXPECT_EQ(detection[0].width, 4u);
  EXPECT_EQ(detection[0].decimals, 2);
  EXPECT_TRUE(detection[0].hasExponent);
  EXPECT_EQ(detection[1].dateCount, 1u);
  EXPECT_EQ(detection[1].stringCount, 1u);
  EXPECT_EQ(detection[2].stringCount, 2u);
  EXPECT_EQ(detection[2].maxStringLength, 3u);
  EXPECT_EQ(detection[3].dollarCount, 2u);
  EXPECT_EQ(detection[3].stringCount, 1u);
  EXPECT_EQ(detection[4].percentCount, 3u);
}

TEST(MultiThreadedDetection, OnlyAutoVariablesAreCounted) {
  const DataFile file("1,2,3\n4,5,6\n");
  Detection detection({kFormatAuto, kFormatF, kFormatAuto});
  EXPECT_EQ(detection.Run(file, 2, CommaSettings()), 2);
  EXPECT_EQ(detection[0].numericCount, 2u);
  EXPECT_EQ(detection[1].numericCount, 0u);
  EXPECT_EQ(detection[1].width, 0u);
  EXPECT_EQ(detection[2].numericCount, 2u);
}

TEST(MultiThreadedDetection, SkippedFieldsKeepTheirPlace) {
  const DataFile file("a,1\nb,2\n");
  Detection detection({kFormatSkip, kFormatAuto});
  detection.Run(file, 2, CommaSettings());
  EXPECT_EQ(detection[0].stringCount, 0u);
  EXPECT_EQ(detection[1].numericCount, 2u);
}

TEST(MultiThreadedDetection, EmptyFieldsAreNotCounted) {
  const DataFile file(",1\n,\n,2\n");
  Detection detection({kFormatAuto, kFormatAuto});
  EXPECT_EQ(detection.Run(file, 2, CommaSettings()), 3);
  EXPECT_EQ(detection[0].stringCount + detection[0].numericCount, 0u);
  EXPECT_EQ(detection[1].numericCount, 2u);
}

TEST(MultiThreadedDetection, EmptyFile) {
  const DataFile file("");
  Detection detection({kFormatAuto});
  EXPECT_EQ(detection.Run(file, 2, CommaSettings()), 0);
  EXPECT_EQ(detection[0].width, 0u);
}

TEST(MultiThreadedDetection, LongestValueIsCapped) {
  EXPECT_EQ(DetectColumn(std::string(32767, 'x') + "\n").maxStringLength, 32767u);
  EXPECT_EQ(DetectColumn(std::string(32768, 'x') + "\n").maxStringLength, 32767u);
  EXPECT_EQ(DetectColumn(std::string(200000, 'x') + "\n").maxStringLength, 32767u);
}

TEST(MultiThreadedDetection, TruncationFlagTellsThatLengthsGrew) {
  EXPECT_FALSE(DetectColumn("ab\ncd\na\n").stringTruncated);
  const TxtWzVar grown = DetectColumn("ab\nabcd\n");
  EXPECT_TRUE(grown.stringTruncated);
  EXPECT_EQ(grown.maxStringLength, 4u);
}

TEST(MultiThreadedDetection, BothSeparatorsAreNoPlainNumber) {
  const TxtWzVar found = DetectColumn("1,234.5\n");
  EXPECT_EQ(found.numericCount, 0u);
  EXPECT_EQ(found.commaCount, 1u);
  EXPECT_EQ(found.width, 7u);
  EXPECT_EQ(found.decimals, 1);
}

TEST(MultiThreadedDetection, SmallestPatternKeyWinsWhateverTheOrderOfTheFile) {
  // 01-JAN-2020 is the first row of the table; 12:30 a later one. Each fills batches of its own.
  std::string dates, times;
  for (int i = 0; i < 30000; ++i) {
    dates += "01-JAN-2020\n";
    times += "12:30\n";
  }
  const std::int32_t dateKey = DetectColumn("01-JAN-2020\n").dateKey;
  const std::int32_t timeKey = DetectColumn("12:30\n").dateKey;
  EXPECT_EQ(dateKey, 1000);
  ASSERT_GT(timeKey, dateKey);
  for (const int workers : {2, 5}) {
    for (const std::string& text : {dates + times, times + dates}) {
      const TxtWzVar found = DetectColumn(text, workers);
      EXPECT_EQ(found.dateKey, 1000);
      EXPECT_EQ(found.dateCount, 60000u);
    }
  }
}

TEST(MultiThreadedDetection, FewerThanAThousandCasesReportTheEndOnly) {
  KeepingAdapter adapter;
  const DataFile file(FiveDigits(999));
  Detection detection({kFormatAuto});
  EXPECT_EQ(detection.Run(file, 2, CommaSettings(), &adapter), 999);
  EXPECT_EQ(KeepingAdapter::Texts(kMessageProgress), std::vector<std::string>{"4294967295"});
}

TEST(MultiThreadedDetection, ProgressIsReportedBatchByBatchInThousands) {
  KeepingAdapter adapter;
  const DataFile file(FiveDigits(50000));
  Detection detection({kFormatAuto});
  EXPECT_EQ(detection.Run(file, 2, CommaSettings(), &adapter), 50000);
  EXPECT_EQ(KeepingAdapter::Texts(kMessageProgress),
            (std::vector<std::string>{"20000", "41000", "50000", "4294967295"}));
}

TEST(MultiThreadedDetection, WithoutAnAdapterItRunsToTheEnd) {
  const DataFile file(FiveDigits(50000));
  Detection detection({kFormatAuto});
  EXPECT_EQ(detection.Run(file, 2, CommaSettings()), 50000);
}

TEST(MultiThreadedDetection, InterruptKeepsWhatWasCounted) {
  KeepingAdapter adapter;
  const DataFile file(FiveDigits(50000));
  Detection detection({kFormatAuto});
  embedded::RequestAttention();
  // The interrupted pass counts itself as one.
  EXPECT_EQ(detection.Run(file, 2, CommaSettings(), &adapter), 20834);
  embedded::ClearAttention();
  EXPECT_EQ(detection[0].numericCount, 20833u);
  EXPECT_EQ(KeepingAdapter::Texts(kMessageProgress),
            (std::vector<std::string>{"20000", "4294967295"}));
}

TEST(MultiThreadedDetection, FirstCasesDoNotShortenIt) {
  ImportSettings settings = CommaSettings();
  settings.importMode = kImportFirst;
  settings.caseLimit = 5;
  const DataFile file(FiveDigits(30000));
  Detection detection({kFormatAuto});
  EXPECT_EQ(detection.Run(file, 2, settings), 30000);
  EXPECT_EQ(detection[0].numericCount, 30000u);
}

TEST(MultiThreadedDetection, StartingLinesAreNotExamined) {
  ImportSettings settings = CommaSettings();
  settings.firstCase = 2;
  const DataFile file("name\n1\n2\n");
  Detection detection({kFormatAuto});
  EXPECT_EQ(detection.Run(file, 2, settings), 2);
  EXPECT_EQ(detection[0].stringCount, 0u);
}

TEST(MultiThreadedDetection, WarningsComeInTheOrderOfTheFile) {
  KeepingAdapter adapter;
  ImportSettings settings = CommaSettings();
  settings.encoding = kEncodingNone;
  std::string text;
  std::vector<std::string> expected;
  for (int i = 1; i <= 40000; ++i) {
    text += i % 5000 == 0 ? "ab\xFF"
                            "de\n"
                          : "abcde\n";
    if (i % 5000 == 0) expected.push_back(UndecodableWarning(i, 2).text);
  }
  for (const int workers : {2, 8}) {
    KeepingAdapter::Messages().clear();
    const DataFile file(text);
    Detection detection({kFormatAuto});
    EXPECT_EQ(detection.Run(file, workers, settings, &adapter), 40000);
    EXPECT_EQ(KeepingAdapter::Texts(kMessageWarning), expected);
  }
}

TEST(MultiThreadedDetection, DecimalCharacterOfTheHostIsWhatStrtodReads) {
  // With a comma as the decimal character a number has one comma at most.
  iocvsetdecchardot_();
  EXPECT_EQ(DetectColumn("1,000,000\n").numericCount, 1u);
  iocvsetdeccharcomma_();
  const TxtWzVar found = DetectColumn("1,000,000\n");
  EXPECT_EQ(found.numericCount, 0u);
  EXPECT_EQ(found.commaCount, 1u);
  EXPECT_EQ(DetectColumn("1,5\n").numericCount, 1u);
  iocvsetdecchardot_();
}

// Fields of every class, and their mixtures.
std::string RandomField(std::mt19937& random) {
  static const char* const kFields[] = {"1",        "-2.5",       "3E4",         "12.345",
                                        "",         "abc",        "longer text", "$5.00",
                                        "7%",       "2020/01/02", "1.234,5",     "01-JAN-2020",
                                        "12:30:45", "12:30.5",    " 42 ",        "MON",
                                        "january",  "x",          "1e",          "."};
  if (random() % 8 == 0) return std::string(random() % 60, 'q');
  return kFields[random() % (sizeof kFields / sizeof *kFields)];
}

// Counts `records` by the rules, on one thread: batches of records whose lengths with their line
// ends stay below 125,000 bytes, each counted from zero, then merged.
std::vector<TxtWzVar> CountPlainly(const std::vector<std::vector<std::string>>& records,
                                   std::size_t columns) {
  const RegExMappings table;
  DetectionRules rules;
  rules.pass = DetectionPass::kWorker;
  DetectionCounters counters(table, rules);
  std::vector<TxtWzVar> total(columns), batch(columns);
  std::size_t used = 0;
  for (std::size_t r = 0; r <= records.size(); ++r) {
    std::size_t length = columns - 1;
    if (r < records.size()) {
      for (const std::string& field : records[r]) length += field.size();
    }
    if (r == records.size() || length + 1 >= 125000 - used) {
      for (std::size_t c = 0; c < columns; ++c) {
        DetectionCounters::Merge(batch[c], total[c]);
        batch[c].ClearAllValues();
      }
      used = 0;
      if (r == records.size()) break;
    }
    used += length + 1;
    for (std::size_t c = 0; c < columns; ++c) {
      if (!records[r][c].empty()) counters.Count(records[r][c], batch[c]);
    }
  }
  return total;
}

TEST(MultiThreadedDetection, CountsAreThoseOfOneThreadForAnyWorkerCount) {
  constexpr std::size_t kColumns = 6;
  std::mt19937 random(20240229);
  for (const std::size_t rows : {100u, 5000u, 20000u}) {
    std::vector<std::vector<std::string>> records(rows);
    std::string text;
    for (auto& record : records) {
      for (std::size_t c = 0; c < kColumns; ++c) {
        // Mostly one kind a column, so that keys and widths have a history.
        record.push_back(random() % 4 == 0 ? RandomField(random)
                                           : std::to_string(random() % 1000 * (c + 1)));
        text += (c > 0 ? ";" : "") + record.back();
      }
      text += '\n';
    }
    const std::vector<TxtWzVar> expected = CountPlainly(records, kColumns);
    ImportSettings settings = CommaSettings();
    settings.delimiters = ";";
    for (const int workers : {2, 3, 8, 64}) {
      const DataFile file(text);
      Detection detection(std::vector<std::uint32_t>(kColumns, kFormatAuto));
      EXPECT_EQ(detection.Run(file, workers, settings), static_cast<std::int64_t>(rows));
      for (std::size_t c = 0; c < kColumns; ++c) {
        EXPECT_TRUE(SameCounters(detection[c], expected[c]))
            << rows << " rows, " << workers << " workers, column " << c;
      }
    }
  }
}

}  // namespace
}  // namespace textwizard
