// Conversion of records, and decoding character by character.
#include <string>

#include <benchmark/benchmark.h>

#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/HostText.h"

namespace {

// A record of about 100 bytes.
std::string Record(const std::string& word) {
  std::string record;
  while (record.size() < 100) record.append("12345.67,").append(word).append(",2020-01-31,");
  return record;
}

void ToU8(benchmark::State& state, const char* localePage, const std::string& record) {
  embedded::SetCodePage(nullptr);
  embedded::SetLocaleCodePage(localePage);
  std::string out;
  for (auto _ : state) {
    QANTMBCodePageToU8(nullptr, out, record);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * record.size()));
}
BENCHMARK_CAPTURE(ToU8, Latin1Ascii, "windows-1252", Record("plain"));
BENCHMARK_CAPTURE(ToU8, Latin1Accents, "windows-1252",
                  Record("caf\xE9 \xFC"
                         "ber"));
BENCHMARK_CAPTURE(ToU8, Utf8Accents, "UTF-8",
                  Record("caf\xC3\xA9 \xC3\xBC"
                         "ber"));
BENCHMARK_CAPTURE(ToU8, ShiftJis, "Shift_JIS", Record("\x93\xFA\x96\x7B\x8C\xEA"));
BENCHMARK_CAPTURE(ToU8, Gb18030FourBytes, "GB18030", Record("\x94\x39\xFC\x36"));

void FromUtf8(benchmark::State& state, const char* page, const std::string& record) {
  embedded::SetCodePage(page);
  std::string out;
  for (auto _ : state) {
    QANTMBU8ToCodePage(nullptr, out, record);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * record.size()));
  embedded::SetCodePage(nullptr);
}
BENCHMARK_CAPTURE(FromUtf8, Latin1, "windows-1252",
                  Record("caf\xC3\xA9 \xC3\xBC"
                         "ber"));
BENCHMARK_CAPTURE(FromUtf8, ShiftJis, "Shift_JIS", Record("\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E"));

void Utf16(benchmark::State& state) {
  embedded::SetCodePage(nullptr);
  std::string units;
  for (const char byte : Record("caf\xE9")) (units += byte) += '\0';
  std::string out(units.size() * 3, '\0');
  for (auto _ : state) {
    benchmark::DoNotOptimize(QANTMB16to8(out.data(), out.size(), units.data(), units.size()));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * units.size()));
}
BENCHMARK(Utf16);

void Characters(benchmark::State& state, const char* page, const std::string& record) {
  embedded::SetCodePage(page);
  QANTMBConverter* converter = QANTMBConverterNew_A(nullptr);
  for (auto _ : state) {
    std::uint32_t ch = 0;
    for (const char* at = record.c_str(); *at != '\0';) {
      at += QANTMBU32GetC_A(converter, &ch, at, 0, 8);
      benchmark::DoNotOptimize(ch);
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * record.size()));
  QANTMBConverterDelete_A(converter);
  embedded::SetCodePage(nullptr);
}
BENCHMARK_CAPTURE(Characters, Utf8, nullptr,
                  Record("caf\xC3\xA9 \xC3\xBC"
                         "ber"));
BENCHMARK_CAPTURE(Characters, Latin1, "windows-1252",
                  Record("caf\xE9 \xFC"
                         "ber"));
BENCHMARK_CAPTURE(Characters, ShiftJis, "Shift_JIS", Record("\x93\xFA\x96\x7B\x8C\xEA"));

void CopyToFixed(benchmark::State& state) {
  embedded::SetCodePage(nullptr);
  const std::string text = "caf\xC3\xA9 \xC3\xBC";
  char field[16];
  for (auto _ : state) {
    QANTMBCopyToFixed_A(field, sizeof field, text.data(), static_cast<int>(text.size()));
    benchmark::DoNotOptimize(field);
  }
}
BENCHMARK(CopyToFixed);

}  // namespace
