#include "library/import/ImportStats.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include <sys/resource.h>

namespace library {
namespace {

constexpr long long kBytesPerKilobyte = 1024;

}  // namespace

void ImportStats::Add(const ImportStats& other) {
  cases += other.cases;
  variables += other.variables;
  bytes += other.bytes;
  dictionarySeconds += other.dictionarySeconds;
  readSeconds += other.readSeconds;
  writeSeconds += other.writeSeconds;
  threads = std::max(threads, other.threads);
}

// Of this program alone, where the system tells: ru_maxrss begins at what the process held that
// started it.
long long PeakMemory() {
  constexpr std::string_view kPeak = "VmHWM:";
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(kPeak)) {
      return std::strtoll(line.c_str() + kPeak.size(), nullptr, 10) * kBytesPerKilobyte;
    }
  }
  struct rusage usage {};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss * kBytesPerKilobyte;
}

}  // namespace library
