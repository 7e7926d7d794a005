#include "cli/terminal/Progress.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string_view>

#include <fmt/format.h>

#include "HostFramework/Names.h"

namespace cli {
namespace {

constexpr std::chrono::milliseconds kInterval{200};
constexpr double kMegabyte = 1e6;

// Bytes that this process has read from files so far, or -1 where the system does not tell. A case
// iterator does not say where it is; while it reads, it is who reads.
long long BytesRead() {
  const FileHandle file(std::fopen("/proc/self/io", "re"));
  char line[64];
  constexpr std::string_view kKey = "rchar: ";
  if (!file || std::fgets(line, sizeof line, file.get()) == nullptr) return -1;
  const std::string_view text(line);
  if (text.substr(0, kKey.size()) != kKey) return -1;
  long long bytes = -1;
  std::from_chars(text.data() + kKey.size(), text.data() + text.size(), bytes);
  return bytes;
}

}  // namespace

Progress::Progress(Console& console, long long fileBytes)
    : console_(console),
      fileBytes_(fileBytes),
      readBefore_(console.showsProgress() ? BytesRead() : -1),
      start_(std::chrono::steady_clock::now()),
      shown_(start_) {}

Progress::~Progress() { console_.ClearProgress(); }

void Progress::Tick(long long cases) {
  if (!console_.showsProgress()) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - shown_ < kInterval) return;
  shown_ = now;
  const long long bytes = readBefore_ < 0 ? -1 : BytesRead();
  console_.ShowProgress(
      ProgressText(cases, bytes < 0 ? -1 : std::min(bytes - readBefore_, fileBytes_), fileBytes_,
                   std::chrono::duration<double>(now - start_).count()));
}

void StageProgress::Tick(long long bytes, long long fileBytes) {
  if (!console_.showsProgress()) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - shown_ < kInterval) return;
  shown_ = now;
  console_.ShowProgress(fmt::format("{}: {:.1f} of {:.1f} MB", stage_,
                                    static_cast<double>(bytes) / kMegabyte,
                                    static_cast<double>(fileBytes) / kMegabyte));
}

std::string ProgressText(long long cases, long long bytesRead, long long fileBytes,
                         double seconds) {
  std::string text = fmt::format("{} case{}", cases, cases == 1 ? "" : "s");
  if (bytesRead < 0 || seconds <= 0) return text;
  const double rate = static_cast<double>(bytesRead) / seconds;
  text +=
      fmt::format(", {:.1f} of {:.1f} MB, {:.1f} MB/s", static_cast<double>(bytesRead) / kMegabyte,
                  static_cast<double>(fileBytes) / kMegabyte, rate / kMegabyte);
  if (rate > 0) {
    const auto left =
        static_cast<long long>(std::ceil(static_cast<double>(fileBytes - bytesRead) / rate));
    text += fmt::format(", {}:{:02} left", left / 60, left % 60);
  }
  return text;
}

}  // namespace cli
