#include "library/files/FileNames.h"

#include <algorithm>
#include <memory>
#include <unordered_set>

#include <fmt/format.h>
#include <glob.h>
#include <sys/stat.h>

namespace library {
namespace {

bool Exists(const std::string& name) {
  struct stat file {};
  return lstat(name.c_str(), &file) == 0;
}

// The files that match, by their bytes.
bool Match(const std::string& pattern, std::vector<std::string>* names, std::string* problem) {
  glob_t found{};
  const int failed = glob(pattern.c_str(), GLOB_MARK | GLOB_NOSORT | GLOB_ERR, nullptr, &found);
  const std::unique_ptr<glob_t, void (*)(glob_t*)> release(&found, globfree);
  if (failed == GLOB_NOSPACE) {
    *problem = "there is not enough memory for the names of the files";
    return false;
  }
  if (failed == GLOB_ABORTED) {
    *problem = fmt::format("{}: a folder cannot be read", pattern);
    return false;
  }
  for (std::size_t i = 0; i < found.gl_pathc; ++i) {
    const std::string name = found.gl_pathv[i];
    if (!name.ends_with('/')) names->push_back(name);
  }
  std::sort(names->begin(), names->end());
  if (!names->empty()) return true;
  *problem = fmt::format("no file matches {}", pattern);
  return false;
}

}  // namespace

bool IsPattern(const std::string& name) { return name.find_first_of("*?[") != std::string::npos; }

bool ExpandFileNames(const std::vector<std::string>& given, std::vector<std::string>* names,
                     std::string* problem) {
  names->clear();
  std::unordered_set<std::string> taken;
  for (const std::string& name : given) {
    std::vector<std::string> matching;
    if (name == "-" || !IsPattern(name) || Exists(name)) {
      matching.push_back(name);
    } else if (!Match(name, &matching, problem)) {
      return false;
    }
    for (std::string& file : matching) {
      if (taken.insert(file).second) names->push_back(std::move(file));
    }
  }
  return true;
}

}  // namespace library
