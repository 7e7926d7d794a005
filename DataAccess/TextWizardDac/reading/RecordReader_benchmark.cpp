// Bytes per second of reading records, by length of line and width of unit.
#include "reading/RecordReader.h"

#include <vector>

#include <benchmark/benchmark.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"

namespace textwizard {
namespace {

constexpr std::size_t kFileSize = 32 << 20;

// A file of lines of `length` bytes and the given line end.
std::string Lines(std::size_t length, std::string_view lineEnd) {
  std::string file;
  file.reserve(kFileSize + length + 2);
  while (file.size() < kFileSize) file.append(length, 'x').append(lineEnd);
  return file;
}

std::string Wide(const std::string& file) {
  std::string units = "\xFF\xFE";
  units.reserve(2 * file.size() + 2);
  for (const char ch : file) units.append({ch, '\0'});
  return units;
}

void ReadAll(benchmark::State& state, std::string file) {
  const auto size = static_cast<std::int64_t>(file.size());
  const embedded::ScopedMemoryFiles files("data.txt", std::move(file));
  QANT_FileStream stream;
  stream.Open("data.txt", "", "rb");
  RecordReader reader(stream);
  std::int64_t records = 0;
  for (auto _ : state) {
    reader.SeekBegin();
    reader.HandleByteOrderMark();
    while (reader.Read(false)) {
      benchmark::DoNotOptimize(reader.record().data());
      ++records;
    }
  }
  state.SetBytesProcessed(size * state.iterations());
  state.SetItemsProcessed(records);
}

void BM_Records(benchmark::State& state) {
  ReadAll(state, Lines(static_cast<std::size_t>(state.range(0)), "\n"));
}
BENCHMARK(BM_Records)->Arg(10)->Arg(50)->Arg(100)->Arg(1000);

// The way of the multi-threaded engine: runs copied at once, what they leave one by one.
void ReadRuns(benchmark::State& state, std::string_view lineEnd) {
  std::string file = Lines(static_cast<std::size_t>(state.range(0)), lineEnd);
  const auto size = static_cast<std::int64_t>(file.size());
  const embedded::ScopedMemoryFiles files("data.txt", std::move(file));
  QANT_FileStream stream;
  stream.Open("data.txt", "", "rb");
  RecordReader reader(stream);
  std::vector<char> batch(125000);
  std::int64_t records = 0;
  for (auto _ : state) {
    reader.SeekBegin();
    for (std::uint32_t count = 0; reader.Read(false); records += count + 1) {
      reader.ReadRun(batch.data(), batch.size(), 0xFFFFFFFF, &count);
      benchmark::DoNotOptimize(batch.data());
    }
  }
  state.SetBytesProcessed(size * state.iterations());
  state.SetItemsProcessed(records);
}

void BM_Runs(benchmark::State& state) { ReadRuns(state, "\n"); }
BENCHMARK(BM_Runs)->Arg(10)->Arg(50)->Arg(100)->Arg(1000);

void BM_RunsCrLf(benchmark::State& state) { ReadRuns(state, "\r\n"); }
BENCHMARK(BM_RunsCrLf)->Arg(10)->Arg(50)->Arg(100)->Arg(1000);

void BM_RunsCr(benchmark::State& state) { ReadRuns(state, "\r"); }
BENCHMARK(BM_RunsCr)->Arg(10)->Arg(50)->Arg(100)->Arg(1000);

// Every second line is empty.
void BM_RunsEmptyLines(benchmark::State& state) { ReadRuns(state, "\n\n"); }
BENCHMARK(BM_RunsEmptyLines)->Arg(10)->Arg(50);

void BM_RecordsCrLf(benchmark::State& state) { ReadAll(state, Lines(50, "\r\n")); }
BENCHMARK(BM_RecordsCrLf);

void BM_RecordsCr(benchmark::State& state) { ReadAll(state, Lines(50, "\r")); }
BENCHMARK(BM_RecordsCr);

void BM_RecordsEmptyLines(benchmark::State& state) { ReadAll(state, Lines(50, "\n\n")); }
BENCHMARK(BM_RecordsEmptyLines);

void BM_RecordsUtf16(benchmark::State& state) { ReadAll(state, Wide(Lines(50, "\n"))); }
BENCHMARK(BM_RecordsUtf16);

}  // namespace
}  // namespace textwizard
