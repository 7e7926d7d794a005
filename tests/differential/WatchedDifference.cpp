#include "tests/differential/WatchedDifference.h"

#include "tests/differential/PassDifference.h"
#include "tests/support/ImportRun.h"
#include "tests/support/PassRecorder.h"

namespace naive {
namespace {

// The first line in which two texts differ.
std::string FirstDifference(const std::string& got, const std::string& wanted) {
  std::size_t line = 0;
  for (std::size_t at = 0; at < got.size() && at < wanted.size() && got[at] == wanted[at]; ++at) {
    if (got[at] == '\n') line = at + 1;
  }
  const auto lineOf = [line](const std::string& text) {
    return text.substr(line, text.find('\n', line) - line);
  };
  return "told '" + lineOf(got) + "', expected '" + lineOf(wanted) + "'";
}

std::string PassesDifference(const whole::Import& command, whole::PassRecorder& observer,
                             whole::Reading reading, std::size_t most, std::int64_t fileBytes,
                             const Import& expected) {
  const auto cases = static_cast<std::int64_t>(expected.cases.size());
  whole::Pass pass = command.Read(reading, most);
  // A host that asks for no case at all has no pass.
  if (most == 0) return observer.begun == 0 ? "" : "a pass without a case";
  if (observer.batches) {
    pass.cases = cases == 0 ? 0 : static_cast<std::size_t>(observer.batchCases);
    pass.bytes = observer.bytes;
  }
  std::string difference = PassDifference(pass, command.source(), expected);
  if (!difference.empty()) return difference;
  const auto variables = static_cast<std::int64_t>(command.source().GetNVariables());
  difference = observer.Contradiction(cases, variables, fileBytes);
  if (!difference.empty()) return difference;
  const std::string told = Shown(observer.told, observer.cellsPerCase);
  const std::string wanted = Shown(expected.watched, observer.cellsPerCase);
  if (told != wanted) return FirstDifference(told, wanted);
  if (observer.end.complete != (pass.cases < most)) return "a pass that is not complete, or is";
  return {};
}

}  // namespace

std::string WatchedDifference(RandomImport import, std::uint64_t seed, int workers,
                              const HostText& host, Import& expected) {
  whole::PassRecorder observer;
  Settings& settings = import.settings;
  observer.batches = seed % 2 == 0;
  observer.cellsPerCase = seed % 5 != 0;
  if (seed % 3 == 0) observer.nullTexts = settings.nullTexts = {"7", "x", "12:30"};
  observer.keepsStrayQualifiers = settings.keepsStrayQualifiers = seed % 4 == 0;
  std::size_t most = SIZE_MAX;
  if (seed % 7 == 0 && !observer.batches) settings.interrupt = most = seed % 3;
  expected = Read(import.bytes, settings, import.variables, host);
  const whole::Import command(import.command, workers, &observer);
  if (!command.made()) return "the command fails";
  observer.caseBytes = command.source().GetObsAreaSize();
  for (const whole::Reading reading : {whole::Reading::kOneThread, whole::Reading::kChosen}) {
    const std::string difference = PassesDifference(
        command, observer, reading, most, static_cast<std::int64_t>(import.bytes.size()), expected);
    if (difference.empty()) continue;
    return (reading == whole::Reading::kChosen ? "chosen engine: " : "one thread: ") + difference;
  }
  return {};
}

}  // namespace naive
