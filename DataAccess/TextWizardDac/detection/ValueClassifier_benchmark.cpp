// Type detection on one thread: values alone, and whole files through the sampling pass.

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "detection/DetectionCounters.h"
#include "model/FormatCode.h"
#include "plan/TxtWzExecFile.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard {
namespace {

const bool kUtf8Host = embedded::SetCodePage(nullptr);

constexpr int kColumns = 10;
constexpr std::size_t kFileBytes = 20'000'000;

// The n-th of a fixed series of values that look random.
unsigned Draw(unsigned n) {
  n = (n ^ 61U) ^ (n >> 16);
  n *= 9U;
  n ^= n >> 4;
  n *= 0x27d4eb2dU;
  return n ^ (n >> 15);
}

std::string ShortString(unsigned n) {
  static constexpr const char* kWords[] = {"north", "Elm Street", "pending", "Dr. Novak", "blue",
                                           "n/a",   "unit-7b",    "Zoe",     "in stock",  "Oslo"};
  return kWords[Draw(n) % std::size(kWords)];
}

std::string NumberText(unsigned n) {
  char text[32];
  const unsigned draw = Draw(n);
  switch (draw % 3) {
    case 0:
      std::snprintf(text, sizeof text, "%u", draw % 1'000'000);
      break;
    case 1:
      std::snprintf(text, sizeof text, "%u.%02u", draw % 100'000, draw % 100);
      break;
    default:
      std::snprintf(text, sizeof text, "-%u.%04u", draw % 1'000, draw % 10'000);
  }
  return text;
}

// Dates in even columns, date-times in odd ones.
std::string DateText(unsigned n) {
  char text[64];
  const unsigned draw = Draw(n);
  if (n % 2 == 0) {
    std::snprintf(text, sizeof text, "%02u/%02u/%04u", draw % 12 + 1, draw % 28 + 1,
                  1950 + draw % 100);
  } else {
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u", 1950 + draw % 100,
                  draw % 12 + 1, draw % 28 + 1, draw % 24, draw % 60, draw % 59);
  }
  return text;
}

// Layouts that change from value to value, so that the adopted one seldom fits.
std::string MixedDateText(unsigned n) {
  char text[64];
  const unsigned draw = Draw(n);
  switch (draw % 4) {
    case 0:
      return DateText(2 * n);
    case 1:
      return DateText(2 * n + 1);
    case 2:
      std::snprintf(text, sizeof text, "%02u-mar-%04u %02u:%02u", draw % 28 + 1, 1950 + draw % 100,
                    draw % 24, draw % 60);
      return text;
    default:
      std::snprintf(text, sizeof text, "%02u:%02u:%02u", draw % 24, draw % 60, draw % 60);
      return text;
  }
}

using Maker = std::string (*)(unsigned);

std::vector<std::string> Values(Maker make) {
  std::vector<std::string> values;
  for (unsigned n = 0; n < 10'000; ++n) values.push_back(make(n));
  return values;
}

void CountValues(benchmark::State& state, Maker make, DetectionPass pass) {
  const std::vector<std::string> values = Values(make);
  std::size_t bytes = 0;
  for (const std::string& value : values) bytes += value.size();
  const RegExMappings table;
  DetectionRules rules;
  rules.pass = pass;
  DetectionCounters counters(table, rules);
  TxtWzVar variables[2];
  for (auto _ : state) {
    unsigned n = 0;
    for (const std::string& value : values) counters.Count(value, variables[n++ % 2]);
    benchmark::DoNotOptimize(variables);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}

void SampleFile(benchmark::State& state, Maker make) {
  std::string file;
  for (unsigned n = 0; file.size() < kFileBytes; ++n) {
    file += make(n);
    file += n % kColumns == kColumns - 1 ? '\n' : ',';
  }
  file += '\n';
  const std::size_t bytes = file.size();
  const embedded::ScopedMemoryFiles files("data.txt", std::move(file));
  setenv("DISABLE_MULTI_THREAD_AUTO", "YES", 1);
  for (auto _ : state) {
    TxtWzDlmLines plan;
    plan.settings.delimiters = ",";
    for (int i = 0; i < kColumns; ++i) {
      auto variable = std::make_unique<TxtWzVar>();
      variable->SetVarName(("v" + std::to_string(i)).c_str());
      variable->formatType = kFormatAuto;
      variable->width = variable->maxStringLength = 1;
      plan.AddVariable(std::move(variable));
    }
    plan.SetVarCount(kColumns);
    QANT_TextWizardSrc source("data.txt", 2, 0, nullptr);
    plan.Execute(&source, nullptr);
    benchmark::DoNotOptimize(source.GetNVariables());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}

BENCHMARK_CAPTURE(CountValues, strings, ShortString, DetectionPass::kSampling);
BENCHMARK_CAPTURE(CountValues, numbers, NumberText, DetectionPass::kSampling);
BENCHMARK_CAPTURE(CountValues, dates, DateText, DetectionPass::kSampling);
BENCHMARK_CAPTURE(CountValues, mixed_dates, MixedDateText, DetectionPass::kSampling);
BENCHMARK_CAPTURE(CountValues, worker_dates, DateText, DetectionPass::kWorker);
BENCHMARK_CAPTURE(SampleFile, strings, ShortString)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SampleFile, numbers, NumberText)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SampleFile, dates, DateText)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SampleFile, mixed_dates, MixedDateText)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace textwizard
