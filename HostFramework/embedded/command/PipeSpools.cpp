#include "HostFramework/embedded/command/PipeSpools.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"

namespace embedded {
namespace {

constexpr std::string_view kStandardInput = "-";
constexpr std::size_t kCopyBlock = std::size_t{1} << 18;

bool IsPipe(const std::string& path) {
  struct stat status;
  return path == kStandardInput || (stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode));
}

// Repeats a system call that a signal interrupted, unless the signal was the user's wish to stop.
template <typename Call>
auto Persistently(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR && !AttentionRequested()) result = call();
  return result;
}

// Copies `from` to `to` up to its end; false, with errno set, when that fails.
bool CopyAll(int from, SpoolFile& to) {
  const std::unique_ptr<char[]> block(new (std::nothrow) char[kCopyBlock]);
  if (!block) {
    errno = ENOMEM;
    return false;
  }
  for (;;) {
    const ssize_t got = Persistently([&] { return read(from, block.get(), kCopyBlock); });
    if (got < 0) return false;
    if (got == 0) return true;
    if (!to.Append({block.get(), static_cast<std::size_t>(got)})) return false;
    if (AttentionRequested()) {
      errno = EINTR;
      return false;
    }
  }
}

// The copy of a pipe; not open, with errno set, when copying failed.
SpoolFile Spool(const std::string& path) {
  const bool standardInput = path == kStandardInput;
  const int pipe = standardInput
                       ? STDIN_FILENO
                       : Persistently([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC); });
  if (pipe < 0) return {};
  SpoolFile copy = SpoolFile::Create();
  const bool copied = copy.IsOpen() && CopyAll(pipe, copy);
  const int problem = errno;
  if (!standardInput) close(pipe);
  if (!copied) copy = {};
  errno = problem;
  return copy;
}

}  // namespace

std::string PipeSpools::PathOf(const std::string& path) {
  const auto found = copies_.find(path);
  if (found != copies_.end()) return found->second.path;
  if (!IsPipe(path)) return path;
  SpoolFile file = Spool(path);
  const std::string problem = file.IsOpen() ? "" : std::strerror(errno);
  std::string result =
      file.IsOpen() ? file.path()
                    : path + " (not copied into " + SpoolFile::Folder() + ": " + problem + ")";
  copies_.emplace(path, Copy{std::move(file), result});
  return result;
}

}  // namespace embedded
