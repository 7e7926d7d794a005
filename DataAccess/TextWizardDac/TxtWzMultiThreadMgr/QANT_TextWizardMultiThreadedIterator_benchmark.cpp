// A whole pass of the multi-threaded engine over a file in memory: reader, workers and consumer.
// The kind "hand_off" has next to nothing to convert, so what it takes is reading and handing on.
// Bytes per second are of real time; cpu time is of the whole process.
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"
#include "model/FormatCode.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard {
namespace {

constexpr std::size_t kFileBytes = std::size_t{32} << 20;

struct File {
  std::string text;
  // Format and width of each column; width 0 for numbers.
  std::vector<std::pair<std::uint32_t, int>> columns;
};

std::string Word(std::mt19937_64& random, std::size_t length) {
  std::string word;
  for (std::size_t i = 0; i < length; ++i) word += static_cast<char>('a' + random() % 26);
  return word;
}

File MakeFile(const std::string& kind) {
  std::mt19937_64 random(1);
  File file;
  const auto number = [&](std::uint64_t bound) { return std::to_string(random() % bound); };
  if (kind == "numeric") file.columns.assign(20, {kFormatF, 0});
  if (kind == "strings") {
    for (int i = 0; i < 10; ++i) file.columns.emplace_back(kFormatA, 8 + 2 * i);
  }
  if (kind == "mixed") {
    file.columns = {{kFormatF, 0}, {kFormatF, 0},        {kFormatADate, 0}, {kFormatA, 12},
                    {kFormatF, 0}, {kFormatDateTime, 0}, {kFormatA, 40},    {kFormatF, 0},
                    {kFormatA, 8}, {kFormatF, 0}};
  }
  if (kind == "hand_off") file.columns = {{kFormatA, 1}};
  while (file.text.size() < kFileBytes) {
    if (kind == "hand_off") {
      file.text.append("x,").append(97, 'y');
    } else if (kind == "mixed") {
      file.text += number(100000000) + "," + number(100000) + "." + number(100) + ",0" +
                   std::to_string(1 + random() % 9) + "/1" + number(10) + "/19" +
                   std::to_string(10 + random() % 90) + "," + Word(random, 8) + "," + number(100) +
                   ",1" + number(10) + "-MAR-2001 1" + number(10) + ":3" + number(10) + ":5" +
                   number(10) + ",\"" + Word(random, 7) + ", " + Word(random, 6) + "\"," +
                   number(10) + "." + number(10000) + "," + Word(random, 6) + "," + number(100000);
    } else {
      for (std::size_t c = 0; c < file.columns.size(); ++c) {
        if (c > 0) file.text += ',';
        if (kind == "strings") {
          file.text += Word(random, 2 + random() % 9);
        } else {
          file.text +=
              c % 2 == 0 ? number(c % 4 == 0 ? 1000 : 10000) + "." + number(100) : number(10000000);
        }
      }
    }
    file.text += '\n';
  }
  return file;
}

ImportSettings CsvSettings() {
  ImportSettings settings;
  settings.delimiters = ",";
  settings.qualifierSet = true;
  settings.qualifier = "\"";
  settings.encoding = kEncodingUtf8;
  return settings;
}

void ReadPass(benchmark::State& state, const std::string& kind) {
  embedded::SetCodePage(nullptr);
  const File file = MakeFile(kind);
  const embedded::ScopedMemoryFiles files("data.txt", file.text);
  QANT_TextWizardSrc source("data.txt", static_cast<int>(state.range(0)), 0, nullptr);
  source.SetSettings(CsvSettings());
  std::vector<std::unique_ptr<TxtWzVar>> variables;
  for (const auto& [format, width] : file.columns) {
    variables.push_back(std::make_unique<TxtWzVar>());
    variables.back()->formatType = format;
    variables.back()->maxStringLength = static_cast<std::uint32_t>(width);
    QANT_DataSource::MakeVariable(&source, width, nullptr);
  }
  source.SetVariables(std::move(variables));
  std::vector<OBS> cells(source.GetObsAreaSize() / sizeof(OBS));
  std::int64_t cases = 0;
  for (auto _ : state) {
    QANT_TextWizardMultiThreadedIterator iterator(source, cells.data(), false);
    while (iterator.Next()) ++cases;
  }
  benchmark::DoNotOptimize(cases);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.text.size()));
}

void DetectPass(benchmark::State& state, const std::string& kind) {
  embedded::SetCodePage(nullptr);
  const File file = MakeFile(kind);
  const embedded::ScopedMemoryFiles files("data.txt", file.text);
  QANT_TextWizardSrc source("data.txt", static_cast<int>(state.range(0)), 0, nullptr);
  source.SetSettings(CsvSettings());
  for (auto _ : state) {
    std::vector<TxtWzVar> variables(file.columns.size());
    std::vector<TxtWzVar*> pointers;
    for (TxtWzVar& variable : variables) {
      variable.formatType = kFormatAuto;
      pointers.push_back(&variable);
    }
    QANT_TextWizardMultiThreadedIterator iterator(source, nullptr, true);
    benchmark::DoNotOptimize(iterator.PerformAutoDetection(pointers.data(), pointers.size()));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.text.size()));
}

#define PASS(function, kind)               \
  BENCHMARK_CAPTURE(function, kind, #kind) \
      ->Arg(2)                             \
      ->Arg(4)                             \
      ->Unit(benchmark::kMillisecond)      \
      ->MeasureProcessCPUTime()            \
      ->UseRealTime()
PASS(ReadPass, hand_off);
PASS(ReadPass, numeric);
PASS(ReadPass, mixed);
PASS(ReadPass, strings);
PASS(DetectPass, numeric);
PASS(DetectPass, mixed);
PASS(DetectPass, strings);
#undef PASS

}  // namespace
}  // namespace textwizard
