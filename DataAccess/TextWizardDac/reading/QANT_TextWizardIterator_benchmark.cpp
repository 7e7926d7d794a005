// Bytes per second of reading whole cases on one thread, with declared formats.
#include "reading/QANT_TextWizardIterator.h"

#include <benchmark/benchmark.h>

#include "HostFramework/embedded/text/HostText.h"
#include "reading/testing/ReadingTesting.h"

namespace textwizard {
namespace {

using namespace testing_support;

void BM_Cases(benchmark::State& state) {
  embedded::SetCodePage(nullptr);
  std::string file;
  for (int i = 0; file.size() < (32 << 20); ++i) {
    file += std::to_string(i) + ",2024-01-" + std::to_string(10 + i % 20) +
            ",12.5,Berlin,\"x, y\"," + std::to_string(i % 1000) + ".25,17:45:00,ab\n";
  }
  const auto size = static_cast<std::int64_t>(file.size());
  ImportSettings settings = Delimited(",");
  settings.qualifierSet = true;
  settings.qualifier = "\"";
  TestImport import(std::move(file), settings,
                    {Number("A"), MakeVar("B", kFormatSDate, 10), Number("C"), String("D", 12),
                     String("E", 8), Number("F"), MakeVar("G", kFormatTime, 8), String("H", 2)});
  std::int64_t cases = 0;
  for (auto _ : state) {
    QANT_TextWizardIterator iterator(import.source(), import.obs());
    while (iterator.Next()) ++cases;
  }
  state.SetBytesProcessed(size * state.iterations());
  state.SetItemsProcessed(cases);
}
BENCHMARK(BM_Cases)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace textwizard
