// The folder that the wizard's page may see.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct FolderEntry {
  std::string name;
  bool folder;
  std::int64_t size;
  bool operator==(const FolderEntry&) const = default;
};

// Names of a page are relative to the root, with `/` between folders. A name that leads out of it,
// by `..`, by an absolute path or by a symbolic link anywhere on the way, names nothing. Any
// thread.
class RootFolder {
 public:
  // Throws std::runtime_error when `folder` is no folder that can be read.
  explicit RootFolder(const std::string& folder);
  ~RootFolder();
  RootFolder(const RootFolder&) = delete;
  RootFolder& operator=(const RootFolder&) = delete;

  // The path of a regular file below the root; nothing when there is none of that name.
  std::optional<std::string> File(std::string_view name) const;
  // The path that a new file, or one that is there and regular, has below the root; nothing when
  // its folder is not there.
  std::optional<std::string> Output(std::string_view name) const;
  // Folders and regular files of a folder below the root ("": the root), by name, hidden ones left
  // out; nothing when there is no such folder.
  std::optional<std::vector<FolderEntry>> List(std::string_view folder) const;
  // The absolute path of the root.
  const std::string& path() const { return path_; }
  // The name below the root of an absolute or relative path; nothing when it is not below.
  std::optional<std::string> NameOf(const std::string& path) const;

 private:
  // A descriptor of what the name leads to, -1 when it leads nowhere.
  int Open(std::string_view name, int flags) const;

  std::string path_;
  int descriptor_;
};

}  // namespace cli
