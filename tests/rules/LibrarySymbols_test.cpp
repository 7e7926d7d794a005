// The component's shared library shows the host its entries and nothing else, and it cannot print,
// abort or exit, because it imports no function that does.

#include <array>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "TreePaths.h"

namespace {

// The dynamic symbols that `nm` lists with `option`; empty when the library cannot be read.
std::set<std::string> DynamicSymbols(const std::string& option) {
  const std::string command = "nm -D --format=posix " + option +
                              " '" TEXTWIZARD_BINARY_DIR "/lib/libTextWizardDac.so' 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return {};
  std::string output;
  std::array<char, 4096> block;
  while (const std::size_t n = fread(block.data(), 1, block.size(), pipe)) {
    output.append(block.data(), n);
  }
  if (pclose(pipe) != 0) return {};
  std::set<std::string> names;
  std::istringstream lines(output);
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

}  // namespace
