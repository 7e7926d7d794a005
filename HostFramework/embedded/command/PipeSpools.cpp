#include "HostFramework/embedded/command/PipeSpools.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

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

std::string TemporaryFolder() {
  const char* const chosen = std::getenv("TMPDIR");
  return chosen && *chosen ? chosen : "/tmp";
}

// A new file without a name, or -1.
int OpenUnnamed(const std::string& folder) {
  const int file = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file >= 0) return file;
  // The file system cannot make files without a name, so take the name away.
  std::string pattern = folder + "/textwizard-XXXXXX";
  const int named = mkostemp(pattern.data(), O_CLOEXEC);
  if (named >= 0) unlink(pattern.c_str());
  return named;
}

// Repeats a system call that a signal interrupted, unless the signal was the user's wish to stop.
template <typename Call>
auto Persistently(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR && !AttentionRequested()) result = call();
  return result;
}

bool WriteWhole(int file, const char* data, std::size_t bytes) {
  while (bytes > 0) {
    const ssize_t written = Persistently([&] { return write(file, data, bytes); });
    if (written < 0) return false;
    data += written;
    bytes -= static_cast<std::size_t>(written);
  }
  return true;
}

// Copies `from` to `to` up to its end; false, with errno set, when that fails.
bool CopyAll(int from, int to) {
  const std::unique_ptr<char[]> block(new (std::nothrow) char[kCopyBlock]);
  if (!block) {
    errno = ENOMEM;
    return false;
  }
  for (;;) {
    const ssize_t got = Persistently([&] { return read(from, block.get(), kCopyBlock); });
    if (got < 0) return false;
    if (got == 0) return true;
    if (!WriteWhole(to, block.get(), static_cast<std::size_t>(got))) return false;
    if (AttentionRequested()) {
      errno = EINTR;
      return false;
    }
  }
}

// A descriptor of the copy of a pipe, or -1 with errno set.
int Spool(const std::string& path, const std::string& folder) {
  const bool standardInput = path == kStandardInput;
  const int pipe = standardInput
                       ? STDIN_FILENO
                       : Persistently([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC); });
  if (pipe < 0) return -1;
  int copy = OpenUnnamed(folder);
  if (copy >= 0 && !CopyAll(pipe, copy)) {
    const int problem = errno;
    close(copy);
    errno = problem;
    copy = -1;
  }
  const int problem = errno;
  if (!standardInput) close(pipe);
  errno = problem;
  return copy;
}

}  // namespace

PipeSpools::~PipeSpools() {
  for (const auto& [path, copy] : copies_) {
    if (copy.descriptor >= 0) close(copy.descriptor);
  }
}

std::string PipeSpools::PathOf(const std::string& path) {
  const auto found = copies_.find(path);
  if (found != copies_.end()) return found->second.path;
  if (!IsPipe(path)) return path;
  const std::string folder = TemporaryFolder();
  const int descriptor = Spool(path, folder);
  const std::string problem = descriptor < 0 ? std::strerror(errno) : "";
  std::string result = descriptor < 0 ? path + " (not copied into " + folder + ": " + problem + ")"
                                      : "/proc/self/fd/" + std::to_string(descriptor);
  copies_.emplace(path, Copy{descriptor, result});
  return result;
}

}  // namespace embedded
