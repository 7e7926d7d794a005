// Dictionaries of whole files through the sampling pass, on one thread.
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include <benchmark/benchmark.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "detection/testing/ValueTexts.h"
#include "model/FormatCode.h"
#include "plan/TxtWzDlmLines.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard {
namespace {

const bool kUtf8Host = embedded::SetCodePage(nullptr);

constexpr int kColumns = 10;
constexpr std::size_t kFileBytes = 20'000'000;

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

BENCHMARK_CAPTURE(SampleFile, strings, ShortString)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SampleFile, numbers, NumberText)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SampleFile, dates, DateText)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SampleFile, mixed_dates, MixedDateText)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace textwizard
