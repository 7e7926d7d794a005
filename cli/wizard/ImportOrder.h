// What the page may order of an import.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace cli {

struct ImportOrder {
  std::string program;  // this program's file
  std::string command;
  std::string data;                  // the file that the command names, by its path
  std::vector<std::string> options;  // of `run`
  std::vector<std::string> outputs;  // paths; one that IsCommandFile holds the command
};

// The options of `run` that may go with a command: how the file is read, and nothing that names a
// file. Throws RequestRefused for any other.
std::vector<std::string> CheckedOptions(const nlohmann::json& options);

// `path` as one more output of `order`. Throws RequestRefused where that is the data, where another
// output has that name, where the name's ending says no format, and, unless `replace`, where a file
// is there.
std::string CheckedOutput(const std::string& path, const ImportOrder& order, bool replace);

// The output holds the command, not cases.
bool IsCommandFile(const std::string& output);

}  // namespace cli
