// Type detection of values alone.
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "HostFramework/embedded/text/HostText.h"
#include "detection/DetectionCounters.h"
#include "detection/testing/ValueTexts.h"

namespace textwizard {
namespace {

const bool kUtf8Host = embedded::SetCodePage(nullptr);

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

BENCHMARK_CAPTURE(CountValues, strings, ShortString, DetectionPass::kSampling);
BENCHMARK_CAPTURE(CountValues, numbers, NumberText, DetectionPass::kSampling);
BENCHMARK_CAPTURE(CountValues, dates, DateText, DetectionPass::kSampling);
BENCHMARK_CAPTURE(CountValues, mixed_dates, MixedDateText, DetectionPass::kSampling);
BENCHMARK_CAPTURE(CountValues, worker_dates, DateText, DetectionPass::kWorker);
}  // namespace
}  // namespace textwizard
