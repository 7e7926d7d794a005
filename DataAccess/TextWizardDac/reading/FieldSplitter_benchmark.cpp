// Bytes and fields per second of cutting records, by kind of text and way of cutting.
#include "reading/FieldSplitter.h"

#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

#include "HostFramework/embedded/text/HostText.h"

namespace textwizard {
namespace {

struct Text {
  ImportSettings settings;
  std::string text;
  std::vector<std::string_view> records;
};

// About 1 MB of copies of `line`.
Text Repeated(std::string_view line, const char* delimiters, bool qualified) {
  Text result;
  result.settings.delimiters = delimiters;
  result.settings.qualifierSet = qualified;
  result.settings.qualifier = "\"";
  while (result.text.size() < (1 << 20)) result.text.append(line).append("\n");
  const std::string_view all = result.text;
  for (std::size_t at = 0; at < all.size(); at += line.size() + 1) {
    result.records.push_back(all.substr(at, line.size()));
  }
  return result;
}

enum class Way { kRecords, kText };

void CutAll(benchmark::State& state, const Text& text, Way way) {
  embedded::SetCodePage(nullptr);
  const FieldRules rules(text.settings);
  FieldSplitter splitter(rules, SplitUse::kReading, nullptr);
  std::int64_t fields = 0;
  for (auto _ : state) {
    if (way == Way::kText && splitter.CutsByBytes(text.text)) splitter.SetByteText(text.text);
    for (const std::string_view record : text.records) {
      if (way == Way::kText) {
        splitter.SetRecordOfText(record);
      } else {
        splitter.SetRecord(record);
      }
      std::string_view field;
      while (splitter.Next(field)) {
        benchmark::DoNotOptimize(field.data());
        ++fields;
      }
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(text.text.size()) * state.iterations());
  state.SetItemsProcessed(fields);
}

constexpr std::string_view kNumbers =
    "12345,6.75,981,0.5,77.125,3,42,1000000,8.25,19,12345,6.75,981,0.5,77.125,3,42,1000000,8.25,19";
constexpr std::string_view kMixed =
    "4711,2024-01-31,\"Some quoted, longer note with \"\"two\"\" "
    "words\",12.5,Berlin,\"x\",,17:45:00";
constexpr std::string_view kQuoted =
    R"("alpha","beta gamma","a quoted text, with a comma","delta","epsilon zeta eta")";
constexpr std::string_view kBlanks = "  12.50    3.75  -17.00     8.10   99.99    0.01    5.55";

void BM_Numbers(benchmark::State& state) {
  CutAll(state, Repeated(kNumbers, ",", true), Way::kRecords);
}
void BM_NumbersOfText(benchmark::State& state) {
  CutAll(state, Repeated(kNumbers, ",", true), Way::kText);
}
void BM_Mixed(benchmark::State& state) {
  CutAll(state, Repeated(kMixed, ",", true), Way::kRecords);
}
void BM_MixedOfText(benchmark::State& state) {
  CutAll(state, Repeated(kMixed, ",", true), Way::kText);
}
void BM_Quoted(benchmark::State& state) { CutAll(state, Repeated(kQuoted, ",", true), Way::kText); }
void BM_Blanks(benchmark::State& state) {
  Text text = Repeated(kBlanks, " ", false);
  text.settings.leadingSpaces = text.settings.multipleSpaces = true;
  CutAll(state, text, Way::kText);
}
void BM_CharacterWalk(benchmark::State& state) {
  CutAll(state, Repeated("4711,caf\xE9,12.5,\"quoted, text\",Berlin", ",", true), Way::kRecords);
}
BENCHMARK(BM_Numbers);
BENCHMARK(BM_NumbersOfText);
BENCHMARK(BM_Mixed);
BENCHMARK(BM_MixedOfText);
BENCHMARK(BM_Quoted);
BENCHMARK(BM_Blanks);
BENCHMARK(BM_CharacterWalk);

}  // namespace
}  // namespace textwizard
