// The targets depend one way: the component sees only the host's declarations, the embedded host
// knows nothing of the component, the library is a host that also calls the component's units, and
// the program sees the library and the host, the component only through the library. Inside the
// component and the library, folders stand in levels and include only lower ones.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "library/testing/TestFolder.h"
#include "tests/rules/TreeRoot.h"

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

// The quoted includes of the sources below `folder`, with paths relative to `root`.
std::vector<Include> Includes(const std::string& folder, const fs::path& root = rules::TreeRoot()) {
  static const std::regex quoted("^\\s*#\\s*include\\s*\"([^\"]+)\"");
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

const fs::path kComponent = rules::TreeRoot() / "DataAccess/TextWizardDac";

using Levels = std::vector<std::vector<std::string>>;

// The component's folders, the lowest level first.
const Levels kComponentLevels = {{"model"},
                                 {"watch"},
                                 {"reading", "wizard"},
                                 {"detection", "map"},
                                 {"TxtWzMultiThreadMgr"},
                                 {"source"},
                                 {"plan"},
                                 {"command"},
                                 {"entry"}};

// The library's, in the same order. What tests share may be included from anywhere.
const Levels kLibraryLevels = {{"include"}, {"columns", "input", "rewriting"},
                               {"outputs"}, {"report"},
                               {"types"},   {"sniff"},
                               {"parts"},   {"command"},
                               {"import"},  {"files"},
                               {"capi"}};
constexpr std::size_t kNoLevel = SIZE_MAX;

std::size_t LevelOf(const Levels& levels, const std::string& folder) {
  for (std::size_t level = 0; level < levels.size(); ++level) {
    for (const std::string& name : levels[level]) {
      if (name == folder) return level;
    }
  }
  return kNoLevel;
}

// The includes of the sources below `root` that neither stay in their folder nor go down a level.
// Paths are relative to `root`; what is included stands behind `prefix`.
std::vector<std::string> Climbs(const fs::path& root, const Levels& levels,
                                const std::string& prefix = "") {
  std::vector<std::string> found;
  for (const Include& include : Includes("", root)) {
    if (IsTestOrBenchmark(include.file) || !include.target.starts_with(prefix)) continue;
    const std::string target = include.target.substr(prefix.size());
    if (!fs::exists(root / target)) continue;
    const std::string from = *fs::path(include.file).begin();
    const std::string to = *fs::path(target).begin();
    const bool descends =
        LevelOf(levels, from) != kNoLevel && LevelOf(levels, to) < LevelOf(levels, from);
    if (from != to && !descends) found.push_back(include.file + " includes " + target);
  }
  return found;
}

// That the folders of `root` and those of `levels` are the same ones, `besides` left out.
void ExpectEachFolderHasALevel(const fs::path& root, const Levels& levels,
                               const std::string& besides = "") {
  std::size_t folders = 0;
  for (const auto& entry : fs::directory_iterator(root)) {
    if (!entry.is_directory() || entry.path().filename() == besides) continue;
    ++folders;
    EXPECT_NE(LevelOf(levels, entry.path().filename()), kNoLevel) << entry.path();
  }
  std::size_t listed = 0;
  for (const auto& level : levels) listed += level.size();
  EXPECT_EQ(folders, listed);
}

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

TEST(IncludeBoundaries, TheComponentsFoldersIncludeOnlyLowerLevels) {
  EXPECT_EQ(Climbs(kComponent, kComponentLevels), std::vector<std::string>{});
}

TEST(IncludeBoundaries, TheLibrarysFoldersIncludeOnlyLowerLevels) {
  EXPECT_EQ(Climbs(rules::TreeRoot() / "library", kLibraryLevels, "library/"),
            std::vector<std::string>{});
}

TEST(IncludeBoundaries, EveryFolderHasALevel) {
  ExpectEachFolderHasALevel(kComponent, kComponentLevels);
  ExpectEachFolderHasALevel(rules::TreeRoot() / "library", kLibraryLevels, "testing");
}

// Climbs are seen whether files include each other from the root or behind a prefix.
TEST(IncludeBoundaries, APlantedClimbIsSeen) {
  for (const std::string prefix : {"", "library/"}) {
    const library::TestFolder folder;
    for (const char* name : {"model", "reading", "wizard", "plan", "attic"}) {
      fs::create_directory(folder.path() / name);
      folder.Write(std::string(name) + "/Header.h", "#pragma once\n");
    }
    const auto climbs = [&] { return Climbs(folder.path(), kComponentLevels, prefix); };
    folder.Write("reading/Down.cpp", "#include \"" + prefix + "reading/Header.h\"\n#include \"" +
                                         prefix + "model/Header.h\"\n" +
                                         "#include \"HostFramework/Text.h\"\n");
    EXPECT_EQ(climbs(), std::vector<std::string>{});

    const auto planted = [&](const std::string& file, const std::string& target) {
      folder.Write(file, "  # include \"" + prefix + target + "\"\n");
      const std::vector<std::string> found = climbs();
      fs::remove(folder.path() / file);
      return found == std::vector<std::string>{file + " includes " + target};
    };
    EXPECT_TRUE(planted("reading/Up.cpp", "plan/Header.h"));
    EXPECT_TRUE(planted("wizard/Aside.h", "reading/Header.h"));
    EXPECT_TRUE(planted("plan/Unlisted.h", "attic/Header.h"));
    EXPECT_TRUE(planted("attic/Unlisted.h", "model/Header.h"));
  }
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
    // The C interface, as its users include it.
    if (include.target.starts_with("textwizard/")) return true;
    if (include.target == "TextWizardVersion.h") return true;
    return include.target.starts_with("library/") || include.target.starts_with("HostFramework/") ||
           IsComponentHeader(include.target);
  });
}

TEST(IncludeBoundaries, TheProgramSeesTheLibraryAndTheHost) {
  ExpectAll(Includes("cli"), [](const Include& include) {
    return include.target.starts_with("library/") || include.target.starts_with("HostFramework/") ||
           include.target.starts_with("cli/") || include.target == "TextWizardVersion.h";
  });
}

TEST(IncludeBoundaries, ThePythonModuleSeesOnlyTheCInterface) {
  ExpectAll(Includes("python"), [](const Include& include) {
    return include.target.starts_with("native/") || include.target.starts_with("textwizard/");
  });
}

}  // namespace
