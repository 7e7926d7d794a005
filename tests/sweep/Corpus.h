// The files that are imported in every way there is: the examples, and awkward ones made here.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace whole {

struct CorpusImport {
  std::string name;
  // A whole command.
  std::string command;
  // Makes what the file holds that the command names; none when that is a file on disk. Called by
  // the test of the import only, as every test of the program lists the whole corpus.
  std::function<std::string()> bytes;
  // By the rules, detection on workers and on one thread find the same types, widths and decimals.
  bool detectionAgrees = true;
  // Too large for blocks of a few bytes.
  bool large = false;
  // Settings of the host.
  std::string localePage;
  bool decimalComma = false;
};

inline std::ostream& operator<<(std::ostream& out, const CorpusImport& import) {
  return out << import.name;
}

// The path of every file that is not on disk.
inline constexpr const char* kCorpusPath = "corpus.txt";

// A command for a delimited file at kCorpusPath.
std::string DelimitedCommand(const std::string& subcommands, const std::string& variables);

std::vector<CorpusImport> ExampleImports();
std::vector<CorpusImport> GeneratedImports();

}  // namespace whole
