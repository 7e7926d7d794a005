// The component's shared library shows the host its entries and nothing else, and it cannot print,
// abort or exit, because it imports no function that does. And what the build's files load.

#include <array>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "TreePaths.h"

namespace {

// What a command writes; empty when it fails.
std::string OutputOf(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return {};
  std::string output;
  std::array<char, 4096> block;
  while (const std::size_t n = fread(block.data(), 1, block.size(), pipe)) {
    output.append(block.data(), n);
  }
  return pclose(pipe) == 0 ? output : std::string();
}

// The dynamic symbols that `nm` lists with `option`; empty when the library cannot be read.
std::set<std::string> DynamicSymbols(const std::string& option,
                                     const std::string& library = "libTextWizardDac.so") {
  std::istringstream lines(OutputOf("nm -D --format=posix " + option +
                                    " '" TEXTWIZARD_BINARY_DIR "/lib/" + library + "' 2>&1"));
  std::set<std::string> names;
  for (std::string line; std::getline(lines, line);) {
    const std::string name = line.substr(0, line.find(' '));
    names.insert(name.substr(0, name.find('@')));
  }
  return names;
}

TEST(LibrarySymbols, OnlyTheEntriesAreVisible) {
  const std::set<std::string> visible = DynamicSymbols("--defined-only");
  const std::set<std::string> entries = {"ProcessDACSyntax", "DllMain"};
  ASSERT_TRUE(visible.contains("ProcessDACSyntax"));
  for (const std::string& name : visible) {
    EXPECT_TRUE(entries.contains(name)) << name << " is visible";
  }
}

TEST(LibrarySymbols, TheLibraryShowsItsInterfaceAndNothingElse) {
  const std::set<std::string> visible = DynamicSymbols("--defined-only", "libtextwizard.so");
  ASSERT_TRUE(visible.contains("textwizard_open_command"));
  for (const std::string& name : visible) {
    EXPECT_TRUE(name.starts_with("textwizard_")) << name << " is visible";
  }
  // Each function of the header is there.
  std::ifstream header(TEXTWIZARD_SOURCE_DIR "/library/include/textwizard/textwizard.h");
  const std::string text{std::istreambuf_iterator<char>(header), {}};
  const std::regex declared("TEXTWIZARD_API [^;(]*?(textwizard_[a-z_]+)\\(");
  std::size_t functions = 0;
  for (std::sregex_iterator at(text.begin(), text.end(), declared), end; at != end; ++at) {
    EXPECT_TRUE(visible.contains((*at)[1])) << (*at)[1] << " is not there";
    ++functions;
  }
  EXPECT_EQ(functions, visible.size());
}

TEST(LibrarySymbols, NothingThatPrintsAbortsOrExitsIsImported) {
  const std::set<std::string> imported = DynamicSymbols("--undefined-only");
  // What the component cannot do without: proof that the list was read.
  ASSERT_TRUE(imported.contains("_Z16IocvConvertInputPKcmiiPd"));
  for (const char* name :
       {"abort",          "exit",       "_exit",        "_Exit",         "quick_exit",
        "__assert_fail",  "raise",      "kill",         "printf",        "vprintf",
        "puts",           "putchar",    "putc",         "fputc",         "fputs",
        "fprintf",        "vfprintf",   "__printf_chk", "__vprintf_chk", "__fprintf_chk",
        "__vfprintf_chk", "fwrite",     "perror",       "write",         "dprintf",
        "vdprintf",       "syslog",     "system",       "_ZSt4cout",     "_ZSt4cerr",
        "_ZSt4clog",      "_ZSt5wcout", "_ZSt5wcerr",   "stdout",        "stderr"}) {
    EXPECT_FALSE(imported.contains(name)) << name << " is imported";
  }
}

// The lines that `readelf -d` lists for one of the build's files.
std::vector<std::string> DynamicEntries(const std::string& file) {
  const std::string command = "readelf -dW '" TEXTWIZARD_BINARY_DIR "/" + file + "' 2>&1";
  std::istringstream lines(OutputOf(command));
  std::vector<std::string> entries;
  for (std::string line; std::getline(lines, line);) entries.push_back(line);
  return entries;
}

class LoadedLibraries : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(, LoadedLibraries,
                         testing::Values("lib/libTextWizardDac.so", "lib/libHostFramework.so",
                                         "lib/libtextwizard.so", "bin/textwizard"),
                         [](const auto& file) {
                           std::string name = file.param;
                           for (char& c : name) c = std::isalnum(c) != 0 ? c : '_';
                           return name;
                         });

// Highway's shared library measures the processor's clock when it is loaded, which takes longer
// than a small import.
TEST_P(LoadedLibraries, HighwayIsNone) {
  bool listed = false;
  for (const std::string& entry : DynamicEntries(GetParam())) {
    listed = listed || entry.find("libstdc++") != std::string::npos;
    EXPECT_EQ(entry.find("libhwy"), std::string::npos) << entry;
  }
  EXPECT_TRUE(listed);
}

TEST(LoadedLibrary, HasAVersionInItsName) {
  bool named = false;
  for (const std::string& entry : DynamicEntries("lib/libtextwizard.so")) {
    named = named || entry.find("Library soname: [libtextwizard.so.1]") != std::string::npos;
  }
  EXPECT_TRUE(named);
}

// An empty entry of the search path is the folder in which a program is run.
TEST_P(LoadedLibraries, AreNotLookedForInTheCurrentFolder) {
  for (const std::string& entry : DynamicEntries(GetParam())) {
    if (entry.find("(RUNPATH)") == std::string::npos && entry.find("(RPATH)") == std::string::npos)
      continue;
    const std::string path = entry.substr(entry.find('['));
    EXPECT_EQ(path.find("::"), std::string::npos) << entry;
    EXPECT_EQ(path.find("[:"), std::string::npos) << entry;
    EXPECT_EQ(path.find(":]"), std::string::npos) << entry;
  }
}

}  // namespace
