// Several bare files of one structure understood as one data set: which column of each is which,
// what types they have together, and the command that imports each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "library/files/Drift.h"
#include "library/import/BareImport.h"
#include "library/input/InputFiles.h"
#include "library/parts/SummaryFile.h"

namespace library {

enum class FileAlignment : std::uint8_t {
  kAuto,      // by name where there are names above the columns
  kName,      // by what stands above the columns
  kPosition,  // by place
};

struct DataSetSettings {
  // Of each file, but for names and types, which are of the data set's columns; nothing is told
  // while a file grows. Types are from the first `sampleLines` lines of each file.
  BareImportSettings file;
  FileAlignment by = FileAlignment::kAuto;
  // A file that does not fit is left out; else it is an error.
  bool skipMisfits = false;
  // Sums up file number `file` (from 0) instead of SummarizeFile; as BareImportSettings::summarize.
  std::function<bool(std::size_t file, const FileSummarySettings& data,
                     const RewritingOptions& rewriting, std::int64_t shownMark,
                     PartSummary* summary, std::string* problem)>
      summarize;
  // How sentences name these settings to whoever gives them.
  std::string skipMisfitsName = "--skip-misfits";
  std::string byPositionName = "--by position";
  // Told before each file is read how many of how many were.
  std::function<void(std::size_t done, std::size_t files)> progress;
};

struct DataSetFile {
  enum class Kind : std::uint8_t {
    kData,        // records, or at least a line of names
    kHeaderOnly,  // a line of names and nothing else; it is read, and gives no case
    kEmpty,       // nothing, or blank lines; it is not read
    kLeftOut,     // it does not belong; it is not read
  };
  // As it was named (host text).
  std::string name;
  Kind kind = Kind::kData;
  // Why it is left out, or what it is: a sentence (UTF-8).
  std::string problem;
  // As it was when it was read; nothing of a pipe.
  std::optional<FileState> state;
  // How it is read: of `summary` lines and records only. Its columns have the data set's names and
  // types; its command has them, too.
  BareImport import;
  // Of each column of the file that of the data set.
  std::vector<std::size_t> columns;
  // Lines of the files before it.
  std::int64_t linesBefore = 0;

  bool isRead() const { return kind == Kind::kData || kind == Kind::kHeaderOnly; }
};

struct DataSetPlan {
  // In the order given, all of them.
  std::vector<DataSetFile> files;
  // The names that the files have, for reports (UTF-8).
  std::vector<std::string> names;
  // The file that has the structure of most; its columns come first.
  std::size_t reference = 0;
  FileAlignment by = FileAlignment::kName;
  std::vector<BareColumn> columns;
  // What all files hold together: lines are counted through all files (linesBefore).
  std::vector<ColumnEvidence> evidence;
  TypeChoice types;
  std::vector<Drift> drift;

  // The file that a line counted through all files is of, and the line in it.
  std::size_t FileOfLine(std::int64_t line, std::int64_t* lineInFile) const;
  // "line 7 of b.csv".
  std::string PlaceOf(std::int64_t line) const;
};

// Plans the import of these files (host text). `files` opens them. False when one cannot be read or
// does not fit, when none holds data, or a setting cannot be used; *problem is then a sentence
// (UTF-8) that names the file, empty after an interrupt. The host is in UTF-8 mode before. Host's
// thread.
bool PlanDataSet(const std::vector<std::string>& names, InputFiles& files,
                 const DataSetSettings& settings, DataSetPlan* plan, std::string* problem);

// The commands of the files that are read, one behind the other.
std::string CommandsText(const DataSetPlan& plan);

// What the plan says of its columns, a sentence each, as RemarksOf.
std::vector<std::string> RemarksOf(const DataSetPlan& plan);

// What is wrong with a file that should be as it was: a sentence that names it; empty when it is.
std::string ChangeOf(const std::string& name, const FileState& before);

}  // namespace library
