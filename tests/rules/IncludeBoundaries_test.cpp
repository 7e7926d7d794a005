// The targets depend one way: the component sees only the host's declarations, the embedded host
// knows nothing of the component, the library is a host that also calls the component's units, and
// the program sees the library and the host, the component itself only as a library to load.

#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "TreePaths.h"

namespace {

namespace fs = std::filesystem;

struct Include {
  std::string file;
  std::string target;
};

bool IsSource(const fs::path& path) {
  return path.extension() == ".cpp" || path.extension() == ".h";
}

bool IsTestOrBenchmark(const std::string& file) {
  return file.ends_with("_test.cpp") || file.ends_with("_benchmark.cpp") ||
         file.find("/testing/") != std::string::npos;
}

// The quoted includes of the sources below `folder`, with paths relative to the project.
std::vector<Include> Includes(const std::string& folder) {
  static const std::regex quoted("^\\s*#\\s*include\\s*\"([^\"]+)\"");
  const fs::path root = TEXTWIZARD_SOURCE_DIR;
  std::vector<Include> found;
  for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
    if (!IsSource(entry.path())) continue;
    std::ifstream text(entry.path());
    std::smatch match;
    for (std::string line; std::getline(text, line);) {
      if (std::regex_search(line, match, quoted)) {
        found.push_back({fs::relative(entry.path(), root).string(), match[1]});
      }
    }
  }
  return found;
}

void ExpectAll(const std::vector<Include>& includes,
               const std::function<bool(const Include&)>& allowed) {
  ASSERT_FALSE(includes.empty());
  for (const Include& include : includes) {
    EXPECT_TRUE(allowed(include)) << include.file << " includes " << include.target;
  }
}

const fs::path kComponent = fs::path(TEXTWIZARD_SOURCE_DIR) / "DataAccess/TextWizardDac";

bool IsComponentHeader(const std::string& target) { return fs::exists(kComponent / target); }

bool IsDeclaration(const std::string& target) {
  return target.starts_with("HostFramework/") && !target.starts_with("HostFramework/embedded/");
}

TEST(IncludeBoundaries, TheComponentSeesOnlyTheHostsDeclarations) {
  ExpectAll(Includes("DataAccess/TextWizardDac"), [](const Include& include) {
    if (IsTestOrBenchmark(include.file)) return true;
    return IsDeclaration(include.target) || IsComponentHeader(include.target) ||
           include.target.ends_with("hwy/highway.h") || include.target == "hwy/foreach_target.h";
  });
}

TEST(IncludeBoundaries, TheEmbeddedHostKnowsNothingOfTheComponent) {
  ExpectAll(Includes("HostFramework"), [](const Include& include) {
    if (IsTestOrBenchmark(include.file) && include.target == "TreePaths.h") return true;
    return include.target.starts_with("HostFramework/");
  });
}

TEST(IncludeBoundaries, TheDeclarationsSeeOnlyEachOther) {
  ExpectAll(Includes("HostFramework/include"),
            [](const Include& include) { return IsDeclaration(include.target); });
}

TEST(IncludeBoundaries, TheLibrarySeesTheHostAndTheComponentsUnits) {
  ExpectAll(Includes("library"), [](const Include& include) {
    if (IsTestOrBenchmark(include.file) && include.target == "TreePaths.h") return true;
    return include.target.starts_with("library/") || include.target.starts_with("HostFramework/") ||
           IsComponentHeader(include.target);
  });
}

TEST(IncludeBoundaries, TheProgramSeesTheLibraryAndTheHost) {
  ExpectAll(Includes("cli"), [](const Include& include) {
    return include.target.starts_with("library/") || include.target.starts_with("HostFramework/") ||
           include.target.starts_with("cli/");
  });
}

}  // namespace
