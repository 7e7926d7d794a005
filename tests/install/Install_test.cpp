// An installation in a folder of its own: the program, two projects outside the tree that find the
// libraries by pkg-config and by CMake, a Python script, the examples of the documentation; all of
// it while the source tree is out of reach where the system lets a test do that.

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/wait.h>

#include "TreePaths.h"
#include "library/testing/TestFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr char kSource[] = TEXTWIZARD_SOURCE_DIR;

// Standard output and error; the status behind them where it is not 0.
std::string OutputOf(const std::string& command) {
  FILE* const pipe = popen(("( " + command + " ) 2>&1").c_str(), "r");
  std::string output;
  std::array<char, 4096> block;
  while (const std::size_t n = fread(block.data(), 1, block.size(), pipe)) {
    output.append(block.data(), n);
  }
  const int status = pclose(pipe);
  if (status != 0) output += "[status " + std::to_string(WEXITSTATUS(status)) + "]";
  return output;
}

std::string TextOf(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The first block of the documentation in that language behind a heading.
std::string Example(const std::string& heading, const std::string& language) {
  const std::string text = TextOf(std::string(kSource) + "/docs/embedding.md");
  const std::size_t section = text.find("\n## " + heading);
  const std::string fence = "\n```" + language + "\n";
  const std::size_t begin = text.find(fence, section);
  if (section == std::string::npos || begin == std::string::npos) return {};
  const std::size_t first = begin + fence.size();
  return text.substr(first, text.find("\n```\n", first) + 1 - first);
}

class Installed : public testing::Test {
 protected:
  // Once for all tests of a process.
  static void Install() {
    prefix_ = new library::TestFolder("installed");
    installed_ = OutputOf("cmake --install '" TEXTWIZARD_BINARY_DIR "' --prefix '" +
                          prefix_->path().string() + "'");
    // Away from the sources, as those who install it are.
    for (const char* file : {"c/rows.c", "cmake/CMakeLists.txt", "cmake/rows.cpp"}) {
      fs::create_directories((prefix_->path() / "outside" / file).parent_path());
      fs::copy(fs::path(kSource) / "tests/install" / file, prefix_->path() / "outside" / file);
    }
    prefix_->Write("outside/c/columns.c", Example("The C interface", "c"));
    prefix_->Write("outside/cmake/host.cpp",
                   Example("The class interface: a complete host", "c++"));
    prefix_->Write("survey.csv", "name,age\nAda,36\nZo\xC3\xAB,\nBob,7\n");
    const std::string hidden = "mount -t tmpfs none '" + std::string(kSource) + "'";
    hides_ = OutputOf("unshare -m sh -c \"" + hidden + "\"").empty();
  }
  static void TearDownTestSuite() {
    delete prefix_;
    prefix_ = nullptr;
  }
  void SetUp() override {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "others do not link with a sanitizer's libraries";
#endif
    if (prefix_ == nullptr) Install();
    ASSERT_THAT(installed_, testing::Not(HasSubstr("[status"))) << installed_;
  }

  static std::string In(const std::string& file) { return *prefix_ / file; }
  // Runs a command in the prefix, without the source tree.
  static std::string Away(const std::string& command) {
    prefix_->Write("away.sh", "cd '" + prefix_->path().string() + "' || exit 1\n" + command + "\n");
    const std::string script = "sh '" + In("away.sh") + "'";
    if (!hides_) return OutputOf(script);
    return OutputOf("unshare -m sh -c \"mount -t tmpfs none '" + std::string(kSource) +
                    "' && cd / && exec " + script + "\"");
  }

  static library::TestFolder* prefix_;
  static std::string installed_;
  static bool hides_;
};

library::TestFolder* Installed::prefix_ = nullptr;
std::string Installed::installed_;
bool Installed::hides_ = false;

TEST_F(Installed, TheProgramFindsItsLibraryAndItsCatalogue) {
  EXPECT_THAT(Away("bin/textwizard sniff --json survey.csv"), HasSubstr("\"delimiter\":\",\""));
  prefix_->Write("none.sps", "GET DATA /TYPE=TXT /FILE='none' /DELIMITERS=',' /VARIABLES=n F4.0.");
  EXPECT_THAT(Away("bin/textwizard run none.sps"), testing::StartsWith("error: [2269] "));
}

TEST_F(Installed, AProjectFindsTheLibraryByPkgConfig) {
  const std::string build =
      "export PKG_CONFIG_PATH=lib/pkgconfig\n"
      "cc -std=c11 -Wall -Wextra -Werror -pedantic outside/c/rows.c"
      " $(pkg-config --cflags --libs textwizard) -o rows || exit 1\n"
      "export LD_LIBRARY_PATH=lib\n";
  EXPECT_EQ(Away(build + "./rows survey.csv"), "3\n");
  EXPECT_THAT(Away(build + "./rows none.csv"), HasSubstr("none.csv"));
}

TEST_F(Installed, AProjectFindsTheLibraryByCMake) {
  const std::string build = Away(
      "cmake -S outside/cmake -B built -DCMAKE_PREFIX_PATH=\"$PWD\" -DCMAKE_CXX_FLAGS=-Werror"
      " >log 2>&1 && cmake --build built >>log 2>&1 || cat log");
  ASSERT_EQ(build, "");
  EXPECT_EQ(Away("built/rows survey.csv"), "name u\nage l\n3\n");
  // The host that the documentation shows, with a file that is no ASCII.
  EXPECT_EQ(Away("built/host lib/libTextWizardDac.so survey.csv"),
            " Ada                  36\n Zo\xC3\xAB                 .\n Bob                  7\n");
}

TEST_F(Installed, PythonFindsThePackage) {
  prefix_->Write("script.py",
                 "import sys, textwizard\n"
                 "table = textwizard.read(sys.argv[1])\n"
                 "print(textwizard.__file__, table.shape, table.to_pandas()['age'].sum())\n");
  const std::string run = "PYTHONPATH=lib/python3/dist-packages /usr/bin/python3 script.py ";
  EXPECT_EQ(Away(run + "survey.csv"),
            In("lib/python3/dist-packages/textwizard/__init__.py") + " (3, 2) 43\n");
  EXPECT_THAT(Away(run + "none.csv"), HasSubstr("textwizard._errors.FileError: none.csv"));
}

TEST_F(Installed, TheFirstExampleOfTheDocumentationCompilesAndRuns) {
  EXPECT_EQ(Away("export PKG_CONFIG_PATH=lib/pkgconfig\n"
                 "cc outside/c/columns.c $(pkg-config --cflags --libs textwizard) -o columns || "
                 "exit 1\nLD_LIBRARY_PATH=lib ./columns"),
            "2 columns, 3 cases\n");
}

TEST_F(Installed, AMovedInstallationStillWorks) {
  EXPECT_THAT(Away("mkdir -p moved && cp -a bin lib share include moved/\n"
                   "mv lib hidden-lib\nmoved/bin/textwizard sniff --json survey.csv\n"
                   "export PKG_CONFIG_PATH=moved/lib/pkgconfig\n"
                   "pkg-config --variable=prefix textwizard >/dev/null &&"
                   " cc outside/c/rows.c $(pkg-config --cflags --libs textwizard) -o moved/rows &&"
                   " LD_LIBRARY_PATH=moved/lib moved/rows survey.csv\nmv hidden-lib lib"),
              testing::AllOf(HasSubstr("\"delimiter\":\",\""), testing::EndsWith("\n3\n")));
}

TEST_F(Installed, EveryOptionHasItsPlaceInTheManualAndTheCompletions) {
  const std::string completion = TextOf(In("share/bash-completion/completions/textwizard"));
  // The subcommands, as the program lists them.
  std::istringstream whole(OutputOf("'" + In("bin/textwizard") + "' --help"));
  std::vector<std::string> subcommands;
  bool listed = false;
  for (std::string line; std::getline(whole, line);) {
    if (listed && !line.starts_with("  ")) break;
    if (listed) subcommands.push_back(line.substr(2, line.find(' ', 2) - 2));
    listed = listed || line == "Subcommands:";
  }
  EXPECT_GE(subcommands.size(), 3U);
  for (const std::string& subcommand : subcommands) {
    const std::string help = OutputOf("'" + In("bin/textwizard") + "' " + subcommand + " --help");
    const std::string manual = TextOf(In("share/man/man1/textwizard-" + subcommand + ".1"));
    std::size_t options = 0;
    for (std::size_t at = help.find("\n  -"); at != std::string::npos;
         at = help.find("\n  -", at + 1)) {
      const std::size_t begin = help.find("--", at);
      const std::string option = help.substr(begin, help.find_first_of(" \n", begin) - begin);
      std::string escaped;
      for (const char c : option) escaped += c == '-' ? "\\-" : std::string(1, c);
      EXPECT_THAT(manual, HasSubstr(escaped)) << subcommand;
      EXPECT_THAT(completion, HasSubstr(option)) << subcommand;
      ++options;
    }
    EXPECT_GT(options, 1U) << subcommand;
  }
  EXPECT_THAT(TextOf(In("share/man/man3/textwizard.3")), HasSubstr("textwizard_open_command"));
  EXPECT_EQ(OutputOf("bash -c '. " + In("share/bash-completion/completions/textwizard") +
                     "; COMP_WORDS=(textwizard run --decimal p); COMP_CWORD=3; _textwizard;"
                     " echo \"${COMPREPLY[@]}\"'"),
            "point\n");
}

TEST_F(Installed, TheLibrariesAreHardened) {
  for (const char* file : {"lib/libtextwizard.so", "lib/libHostFramework.so",
                           "lib/libTextWizardDac.so", "bin/textwizard"}) {
    const std::string dynamic = OutputOf("readelf -dW '" + In(file) + "'");
    EXPECT_THAT(dynamic, HasSubstr("NOW")) << file;
    const std::string segments = OutputOf("readelf -lW '" + In(file) + "'");
    EXPECT_THAT(segments, HasSubstr("GNU_RELRO")) << file;
    EXPECT_THAT(segments, testing::Not(testing::ContainsRegex("GNU_STACK.*RWE"))) << file;
    EXPECT_THAT(dynamic, testing::Not(HasSubstr(kSource))) << file;
  }
}

}  // namespace
