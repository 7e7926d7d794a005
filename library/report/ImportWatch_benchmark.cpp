// What watching costs: each reading is done with and without it, one after the other. The counters
// are medians of the quotients of both (1: it costs nothing), "ratio" of their times and
// "cpu_ratio" of the processor time that all threads took, which holds on a busy machine, too.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/text/HostText.h"
#include "library/import/CommandImport.h"
#include "library/outputs/ByteSink.h"
#include "library/report/ProblemWriter.h"

namespace library {
namespace {

constexpr std::size_t kFileBytes = std::size_t{32} << 20;
constexpr int kColumns = 10;

// A file while this lives.
class DataFile {
 public:
  DataFile(const std::string& kind, const std::function<std::string(unsigned)>& value)
      : path_(std::filesystem::temp_directory_path() /
              ("textwizard-" + std::to_string(getpid()) + "-" + kind)) {
    std::string text;
    for (unsigned n = 0; text.size() < kFileBytes; ++n) {
      text += value(n);
      text += n % kColumns == kColumns - 1 ? '\n' : ',';
    }
    while (text.back() != '\n') text.pop_back();
    std::ofstream(path_, std::ios::binary) << text;
  }
  ~DataFile() { std::filesystem::remove(path_); }
  DataFile(const DataFile&) = delete;
  DataFile& operator=(const DataFile&) = delete;

  std::vector<embedded::CommandToken> Tokens(const std::string& format) const {
    std::string text = "GET DATA /TYPE=TXT /FILE='" + path_.string() + "' /DELIMITERS=','";
    text += " /QUALIFIER='\"' /VARIABLES=";
    for (int i = 0; i < kColumns; ++i) text += "v" + std::to_string(i) + " " + format + " ";
    text += ".";
    embedded::CommandReader reader(text);
    embedded::ParsedCommand command;
    if (!reader.Next(command) || !command.ok) std::abort();
    return command.tokens;
  }

 private:
  const std::filesystem::path path_;
};

class NoMessages : public ImportMessages {
 public:
  void Post(std::string_view text, int kind) override {
    if (kind != kMessageError) return;
    std::cerr << text << std::endl;
    std::abort();
  }
};

class EveryCase : public CaseReceiver {
 public:
  void Take(const OBS* obs) override { benchmark::DoNotOptimize(obs); }
};

class Nowhere : public ByteSink {
 public:
  void Append(std::string_view bytes) override { benchmark::DoNotOptimize(bytes.data()); }
};

// Of the clock, and of the processors.
struct Seconds {
  double real = 0;
  double cpu = 0;
};

double CpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

Seconds SecondsOf(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  const double cpuBegin = CpuSeconds();
  work();
  const double cpu = CpuSeconds() - cpuBegin;
  return {std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count(), cpu};
}

// What making the dictionary took, and reading the cases.
struct Stages {
  Seconds dictionary;
  Seconds reading;
};

Stages Import(const std::vector<embedded::CommandToken>& tokens, ImportWatch* watch,
              bool writesProblems = false) {
  NoMessages messages;
  EveryCase receiver;
  Nowhere nowhere;
  Stages stages;
  CommandImport import({.workers = 2, .seed = {}, .watch = watch}, messages);
  stages.dictionary = SecondsOf([&] { import.Open(tokens); });
  const ReportVariables variables = ReportVariablesOf(import.source());
  ProblemWriter writer(ProblemFormat::kCsv, variables, 1000000, nowhere);
  if (watch != nullptr) {
    ImportWatch::Outputs outputs;
    if (writesProblems) outputs.problems.push_back(&writer);
    watch->Prepare(import.source(), outputs, {});
  }
  stages.reading = SecondsOf([&] { import.Read(receiver); });
  return stages;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// A stage of `plain` and `watched`, which take turns in going first.
void Compare(benchmark::State& state, Seconds Stages::*stage, const std::function<Stages()>& plain,
             const std::function<Stages()>& watched) {
  std::vector<double> real;
  std::vector<double> cpu;
  for (auto _ : state) {
    Seconds without;
    Seconds with;
    if (real.size() % 2 == 0) {
      without = plain().*stage;
      with = watched().*stage;
    } else {
      with = watched().*stage;
      without = plain().*stage;
    }
    real.push_back(with.real / without.real);
    cpu.push_back(with.cpu / without.cpu);
    state.SetIterationTime(with.real);
  }
  state.counters["ratio"] = Median(std::move(real));
  state.counters["cpu_ratio"] = Median(std::move(cpu));
}

std::string Clean(unsigned n) {
  return n % 2 == 0 ? std::to_string(n * 2654435761U % 100000) + "." + std::to_string(n % 100)
                    : "word" + std::to_string(n % 1000);
}

// Numbers and texts, declared: no value is a problem.
void CleanFile(benchmark::State& state) {
  embedded::SetCodePage(nullptr);
  const DataFile file("clean", Clean);
  const auto tokens = file.Tokens("A10");
  Compare(
      state, &Stages::reading, [&] { return Import(tokens, nullptr); },
      [&] {
        ImportWatch watch({});
        return Import(tokens, &watch);
      });
}

// No value can be read. Their rows are written up to the default limit.
void AllProblems(benchmark::State& state) {
  embedded::SetCodePage(nullptr);
  const DataFile file("problems", [](unsigned n) { return "x" + std::to_string(n % 1000) + "y"; });
  const auto tokens = file.Tokens("F8.2");
  Compare(
      state, &Stages::reading, [&] { return Import(tokens, nullptr); },
      [&] {
        ImportWatch watch({.problemLimit = 1000000});
        return Import(tokens, &watch, true);
      });
}

// The same without anybody who reads the rows: they are counted.
void AllProblemsCounted(benchmark::State& state) {
  embedded::SetCodePage(nullptr);
  const DataFile file("counted", [](unsigned n) { return "x" + std::to_string(n % 1000) + "y"; });
  const auto tokens = file.Tokens("F8.2");
  Compare(
      state, &Stages::reading, [&] { return Import(tokens, nullptr); },
      [&] {
        ImportWatch watch({});
        return Import(tokens, &watch);
      });
}

void Evidence(benchmark::State& state, const std::function<std::string(unsigned)>& value) {
  embedded::SetCodePage(nullptr);
  const DataFile file("evidence", value);
  const auto tokens = file.Tokens("AUTO");
  Compare(
      state, &Stages::dictionary, [&] { return Import(tokens, nullptr); },
      [&] {
        ImportWatch watch({.evidence = true});
        return Import(tokens, &watch);
      });
}

std::string Date(unsigned n) {
  return std::to_string(1 + n % 12) + "/" + std::to_string(1 + n % 28) + "/" +
         std::to_string(1990 + n % 40);
}
std::string Number(unsigned n) { return std::to_string(1 + n * 2654435761U % 100000) + ".5"; }
std::string Word(unsigned n) { return "word" + std::to_string(n % 1000); }
std::string Mixed(unsigned n) {
  return n % 10 < 4 ? Number(n) : n % 10 < 7 ? Word(n) : n % 10 < 9 ? Date(n) : "";
}

#define COST() ->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3)
BENCHMARK(CleanFile) COST();
BENCHMARK(AllProblems) COST();
BENCHMARK(AllProblemsCounted) COST();
BENCHMARK_CAPTURE(Evidence, numbers, Number) COST();
BENCHMARK_CAPTURE(Evidence, words, Word) COST();
BENCHMARK_CAPTURE(Evidence, dates, Date) COST();
BENCHMARK_CAPTURE(Evidence, mixed, Mixed) COST();
#undef COST

}  // namespace
}  // namespace library
