// An import that is open: its texts, its cases batch by batch or all at once, or into a file.
#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "native/Columns.h"
#include "native/Settings.h"

namespace python {

// Raised as an exception of the package, which the package makes of it.
class ImportError {
 public:
  explicit ImportError(textwizard::Error error) : error_(std::move(error)) {}
  const textwizard::Error& error() const { return error_; }

 private:
  textwizard::Error error_;
};

class Callbacks;

// Everything is done without the GIL but for signals and the progress function (None, or called
// with cases, bytes and all bytes), and throws ImportError; what a signal handler or the function
// raises is raised. Operations of all imports of the process take turns. The dictionaries hold
// members of textwizard_file_options and textwizard_options by their names; what they lack, or
// None, is left to the library. Texts are UTF-8 and empty where there is none.
class OpenImport {
 public:
  static std::unique_ptr<OpenImport> OfFile(const std::string& path,
                                            const pybind11::dict& file_options,
                                            const pybind11::dict& options,
                                            pybind11::object progress);
  static std::unique_ptr<OpenImport> OfCommand(const std::string& command,
                                               const pybind11::dict& options,
                                               pybind11::object progress);
  // `summary`: bytes of the merged summary of all parts of a file.
  static std::unique_ptr<OpenImport> OfSummary(const std::string& summary,
                                               const pybind11::dict& file_options,
                                               const pybind11::dict& options,
                                               pybind11::object progress);
  static std::unique_ptr<OpenImport> OfRecipe(const std::string& recipe,
                                              const pybind11::dict& options,
                                              pybind11::object progress);
  ~OpenImport();
  OpenImport(const OpenImport&) = delete;
  OpenImport& operator=(const OpenImport&) = delete;

  // No case, with the columns' names and types.
  std::shared_ptr<const Columns> NoCases();
  // The next batch of the pass, which begins with the first call; null behind the last one.
  std::shared_ptr<const Columns> Next();
  // All cases, from the first on.
  std::shared_ptr<const Columns> AllCases();
  std::shared_ptr<const Columns> Problems();
  // A pass into a file; `format` None: as the path ends.
  void Write(const std::string& path, const std::optional<std::string>& format, bool arrowLz4);

  std::string Command() { return import().Command(); }
  std::string Dictionary();
  std::string Reading() { return import().Reading(); }
  std::string Ledger() { return import().Ledger(); }
  std::string Digest() { return import().Digest(); }
  std::string Recipe() { return import().Recipe(); }
  // What it warned of since the last call.
  std::vector<std::string> TakeWarnings();
  // Ends it. What was given stays; what is asked for from then on is a SettingError.
  void Close();

 private:
  explicit OpenImport(pybind11::object progress);
  template <class Open>
  static std::unique_ptr<OpenImport> Opened(const pybind11::dict& options,
                                            pybind11::object progress, Open open);
  // Does it when the turn has come; raises what a callback raised rather than the cancellation that
  // follows it.
  template <class Work>
  void InTurn(Work work);
  textwizard::Import& import();
  std::shared_ptr<const Columns> Drained(textwizard::Stream stream);
  [[noreturn]] void FailPass(textwizard::Stream& stream, int error);

  Settings settings_;
  const std::unique_ptr<Callbacks> callbacks_;
  std::optional<textwizard::Import> import_;
  // Of the pass by batches.
  std::optional<textwizard::Stream> cases_;
};

// JSON: how a bare file is built. Throws ImportError.
std::string SniffFile(const std::string& path, const pybind11::dict& file_options);

// Bytes of summaries; throw as above.
pybind11::bytes SummarizePart(const std::string& path, std::int64_t number, std::int64_t count,
                              const pybind11::dict& file_options, const pybind11::dict& options);
pybind11::bytes MergeSummaries(const std::vector<std::string>& summaries, bool linesOnly);
std::string SummaryJson(const std::string& summary);

// The files that paths and patterns name. Paths are bytes.
std::vector<pybind11::bytes> ListFiles(const std::vector<std::string>& given);
// Several files as one data set: "command", "dictionary", "reading", "files" (texts) and "recipes"
// (a list, None where a file is not read), "warnings". `set_options` holds members of
// textwizard_data_set_options by their names.
pybind11::dict OpenDataSet(const std::vector<std::string>& paths,
                           const std::vector<std::string>& summaries,
                           const pybind11::dict& set_options, const pybind11::dict& file_options,
                           const pybind11::dict& options);

}  // namespace python
