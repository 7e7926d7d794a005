// One import from opening to its last case, as Python asks for it.
#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "native/Columns.h"

namespace python {

// What an import gave. Texts are UTF-8 and empty where there is none.
struct Imported {
  std::shared_ptr<const Columns> cases;
  std::shared_ptr<const Columns> problems;
  std::string command;
  std::string dictionary;  // JSON, with the ledger
  std::string reading;     // JSON: how a bare file was read
  std::string digest;
  std::vector<std::string> warnings;
};

// Raised as an exception of the package, which the package makes of it.
class ImportError {
 public:
  explicit ImportError(textwizard::Error error) : error_(std::move(error)) {}
  const textwizard::Error& error() const { return error_; }

 private:
  textwizard::Error error_;
};

// Reads a bare file or runs a command (UTF-8) to its end, without the GIL but for signals and
// `progress` (None, or called with cases, bytes and all bytes). Imports of several threads take
// turns. The dictionaries hold members of textwizard_file_options and textwizard_options by their
// names; what they lack, or None, is left to the library. Throws ImportError; what a signal handler
// or `progress` raises is raised.
Imported ReadFile(const std::string& path, const pybind11::dict& file_options,
                  const pybind11::dict& options, const pybind11::object& progress);
Imported RunCommand(const std::string& command, const pybind11::dict& options,
                    const pybind11::object& progress);

// JSON: how a bare file is built. Throws ImportError.
std::string SniffFile(const std::string& path, const pybind11::dict& file_options);

}  // namespace python
