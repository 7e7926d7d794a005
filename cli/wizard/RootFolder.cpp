#include "cli/wizard/RootFolder.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 4096;

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  int number() const { return number_; }
  int Release() { return std::exchange(number_, -1); }

 private:
  int number_;
};

// The parts of a name, or nothing when one of them may not be there.
std::optional<std::vector<std::string>> PartsOf(std::string_view name) {
  if (name.size() > kLongestName || name.find('\0') != std::string_view::npos) return std::nullopt;
  std::vector<std::string> parts;
  while (!name.empty()) {
    const std::size_t end = std::min(name.find('/'), name.size());
    const std::string_view part = name.substr(0, end);
    if (part.empty() || part == "." || part == "..") return std::nullopt;
    parts.emplace_back(part);
    name.remove_prefix(end);
    if (name.size() == 1) return std::nullopt;
    if (!name.empty()) name.remove_prefix(1);
  }
  return parts;
}

}  // namespace

RootFolder::RootFolder(const std::string& folder) {
  std::error_code error;
  path_ = fs::canonical(folder, error).string();
  descriptor_ = error ? -1 : open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor_ < 0) {
    throw std::runtime_error(fmt::format("{} is no folder that can be read: {}", folder,
                                         error ? error.message() : std::strerror(errno)));
  }
}

RootFolder::~RootFolder() { close(descriptor_); }

// Goes from folder to folder and follows no link.
int RootFolder::Open(std::string_view name, int flags) const {
  const auto parts = PartsOf(name);
  if (!parts) return -1;
  Descriptor at(openat(descriptor_, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  for (std::size_t i = 0; i < parts->size() && at.number() >= 0; ++i) {
    const int wanted = i + 1 == parts->size() ? flags : O_RDONLY | O_DIRECTORY;
    at = Descriptor(
        openat(at.number(), (*parts)[i].c_str(), wanted | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  }
  return at.Release();
}

std::optional<std::string> RootFolder::File(std::string_view name) const {
  const Descriptor file(Open(name, O_RDONLY));
  struct stat status {};
  if (file.number() < 0 || fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  return path_ + "/" + std::string(name);
}

std::optional<std::string> RootFolder::Output(std::string_view name) const {
  const auto parts = PartsOf(name);
  if (!parts || parts->empty()) return std::nullopt;
  const std::size_t slash = name.rfind('/');
  const std::string_view folder = slash == std::string_view::npos ? "" : name.substr(0, slash);
  const Descriptor at(Open(folder, O_RDONLY | O_DIRECTORY));
  if (at.number() < 0) return std::nullopt;
  struct stat status {};
  if (fstatat(at.number(), parts->back().c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
    if (!S_ISREG(status.st_mode)) return std::nullopt;
  } else if (errno != ENOENT) {
    return std::nullopt;
  }
  return path_ + "/" + std::string(name);
}

std::optional<std::vector<FolderEntry>> RootFolder::List(std::string_view folder) const {
  Descriptor at(Open(folder, O_RDONLY | O_DIRECTORY));
  if (at.number() < 0) return std::nullopt;
  const int number = at.number();
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(fdopendir(at.Release()), closedir);
  if (!entries) return std::nullopt;
  std::vector<FolderEntry> found;
  while (const dirent* entry = readdir(entries.get())) {
    if (entry->d_name[0] == '.') continue;
    struct stat status {};
    if (fstatat(number, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
    const bool isFolder = S_ISDIR(status.st_mode);
    if (!isFolder && !S_ISREG(status.st_mode)) continue;
    found.push_back({entry->d_name, isFolder, isFolder ? 0 : status.st_size});
  }
  std::sort(found.begin(), found.end(), [](const FolderEntry& one, const FolderEntry& other) {
    return one.folder != other.folder ? one.folder : one.name < other.name;
  });
  return found;
}

std::optional<std::string> RootFolder::NameOf(const std::string& path) const {
  std::error_code error;
  const fs::path whole = fs::canonical(path, error);
  if (error) return std::nullopt;
  const fs::path name = whole.lexically_relative(path_);
  if (name.empty() || *name.begin() == ".." || name == ".") return std::nullopt;
  return name.string();
}

}  // namespace cli
