#include "library/outputs/OutputFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "library/outputs/WholeWrite.h"

namespace library {
namespace {

constexpr std::size_t kBufferSize = std::size_t{256} * 1024;
// A text of so many bytes is not copied to the buffer: that would take longer than a call of the
// system.
constexpr std::size_t kWrittenAsItStands = std::size_t{64} * 1024;
// The same of pieces that are given to the system together.
constexpr std::size_t kGatheredAsItStands = 1024;
constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPermissions = 07777;

std::string CannotWrite(const std::string& target, int code) {
  return "cannot write " + (target == "-" ? "standard output" : target) + ": " +
         std::strerror(code);
}

// The file that `target` stands for: behind symbolic links, so that the file they name is replaced
// and not the link.
std::string BehindLinks(const std::string& target) {
  std::error_code failed;
  const auto resolved = std::filesystem::weakly_canonical(target, failed);
  return failed || resolved.empty() ? target : resolved.string();
}

// A new file beside `target`, with a name that nobody else has; -1 with errno when there is none.
int MakeTemporary(const std::filesystem::path& target, std::string* name) {
  static unsigned made = 0;
  int descriptor = -1;
  do {
    const std::string own =
        ".textwizard-" + std::to_string(getpid()) + "-" + std::to_string(++made) + ".tmp";
    *name = (target.parent_path() / own).string();
    descriptor = open(name->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
  } while (descriptor < 0 && errno == EEXIST);
  return descriptor;
}

// Has the system put what was written through `descriptor` onto the disk; false, with errno set,
// when that fails. Where the file system knows no such thing there is nothing to do.
bool Settle(int descriptor) {
  int result = fsync(descriptor);
  while (result != 0 && errno == EINTR) result = fsync(descriptor);
  return result == 0 || errno == EINVAL || errno == ENOTSUP;
}

// The same of the folder that holds `file`, and with it the file's name. A folder that may be
// written but not read cannot be asked for it.
bool SettleFolderOf(const std::filesystem::path& file) {
  const std::filesystem::path parent = file.parent_path();
  const int folder =
      open(parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return true;
  const bool settled = Settle(folder);
  const int code = errno;
  close(folder);
  errno = code;
  return settled;
}

}  // namespace

OutputFile::OutputFile(std::string target) : target_(std::move(target)), buffer_(kBufferSize) {}

std::unique_ptr<OutputFile> OutputFile::Open(const std::string& target, std::string* error) {
  // First: when memory lacks, nothing has been made that would stay behind.
  std::unique_ptr<OutputFile> file(new OutputFile(target));
  if (file->OpenTarget()) return file;
  *error = file->error();
  return nullptr;
}

bool OutputFile::OpenTarget() {
  descriptor_ = STDOUT_FILENO;
  if (target_ == "-") return true;
  struct stat present {};
  const bool exists = stat(target_.c_str(), &present) == 0;
  if (exists && !S_ISREG(present.st_mode)) {
    descriptor_ = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
  } else {
    final_ = BehindLinks(target_);
    descriptor_ = MakeTemporary(final_, &temporary_);
  }
  if (descriptor_ < 0) {
    Fail(errno);
    temporary_.clear();
    return false;
  }
  if (!temporary_.empty()) {
    unfinished_.emplace(temporary_.c_str());
    // A file that is replaced keeps its permissions where the system allows it.
    if (exists) static_cast<void>(fchmod(descriptor_, present.st_mode & kPermissions));
  }
  return true;
}

OutputFile::~OutputFile() {
  if (descriptor_ > STDERR_FILENO) close(descriptor_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void OutputFile::Append(std::string_view text) {
  if (text.size() >= kWrittenAsItStands) {
    Flush();
    if (ok() && !WriteWhole(descriptor_, text)) Fail(errno);
    return;
  }
  while (!text.empty()) {
    if (used_ == buffer_.size()) Flush();
    const std::size_t part = std::min(text.size(), buffer_.size() - used_);
    std::memcpy(buffer_.data() + used_, text.data(), part);
    used_ += part;
    text.remove_prefix(part);
  }
}

void OutputFile::AppendPieces(const std::vector<std::string_view>& pieces) {
  std::size_t bytes = 0;
  for (const std::string_view piece : pieces) bytes += piece.size();
  // The system takes longer for a small piece than the copy does.
  if (bytes < pieces.size() * kGatheredAsItStands) {
    ByteSink::AppendPieces(pieces);
    return;
  }
  Flush();
  if (ok() && !WriteWhole(descriptor_, pieces)) Fail(errno);
}

void OutputFile::Flush() {
  const std::string_view text(buffer_.data(), used_);
  used_ = 0;
  if (ok() && !WriteWhole(descriptor_, text)) Fail(errno);
}

bool OutputFile::Finish() {
  Flush();
  // Before the file takes its name: after a power cut the name must not stand for half of it.
  if (!temporary_.empty() && ok() && !Settle(descriptor_)) Fail(errno);
  if (descriptor_ > STDERR_FILENO) {
    if (close(descriptor_) != 0 && ok()) Fail(errno);
    descriptor_ = -1;
  }
  return ok();
}

bool OutputFile::Publish() {
  if (!ok()) return false;
  if (temporary_.empty()) return true;
  if (std::rename(temporary_.c_str(), final_.c_str()) != 0) {
    Fail(errno);
    return false;
  }
  unfinished_.reset();
  temporary_.clear();
  if (!SettleFolderOf(final_)) Fail(errno);
  return ok();
}

void OutputFile::SetFailed(std::string_view why) {
  if (!ok()) return;
  error_ = "cannot write " + target_ + ": " + std::string(why);
  failed_.store(true, std::memory_order_release);
}

void OutputFile::Fail(int code) {
  if (!ok()) return;
  error_ = CannotWrite(target_, code);
  interrupted_ = code == EINTR;
  failed_.store(true, std::memory_order_release);
}

}  // namespace library
