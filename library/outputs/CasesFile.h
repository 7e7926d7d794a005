// One file of cases, of any kind.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HostFramework/DataSource.h"
#include "library/columns/ColumnBuilder.h"
#include "library/columns/ColumnField.h"
#include "library/outputs/CaseSink.h"
#include "library/outputs/CaseWriter.h"
#include "library/outputs/Misfits.h"
#include "library/outputs/OutputFile.h"
#include "library/outputs/ProblemRow.h"

namespace library {

enum class CaseFormat : std::uint8_t { kCsv, kTsv, kJsonLines, kArrow, kParquet, kSqlite };

// The format of a name such as "csv" or "parquet"; nothing when it names none.
std::optional<CaseFormat> CaseFormatNamed(std::string_view name);
// The format that a file's ending names; nothing when it names none.
std::optional<CaseFormat> CaseFormatOfFile(std::string_view file);
// Whether a file of the format has a place for problems, or for keys and texts beside the cases.
bool HoldsProblems(CaseFormat format);
bool HoldsMetadata(CaseFormat format);
// The names of all formats, as a sentence has them.
std::string CaseFormatNames();

// Whether the batches in a columnar file are compressed.
enum class ArrowBody : std::uint8_t { kPlain, kLz4 };

struct CasesFileOptions {
  ValueStyle values = ValueStyle::kDisplay;  // of text and SQLite
  ArrowBody arrowBody = ArrowBody::kPlain;
  // Threads that encode columns; below 1 for one per processor.
  int threads = 0;
  // Of the variables of the source, in their order; each may be empty. Labels (UTF-8) stand for the
  // variables' names as names of columns unless `namesAsVariables`.
  std::vector<std::string> labels = {};
  bool namesAsVariables = false;
  // Numbers that are whole and within 2^53 in every case.
  std::vector<bool> integers = {};
  // The cases are of several files: problems name theirs.
  bool severalFiles = false;
};

// Conversion threads of an import whose cases are written or made into columns: as many as are
// wanted; where that is below 1, for one per processor, two more. Writing takes processors from the
// thread that takes the batches in their order, and a worker whose batch waits for it has nothing
// to do.
int WorkersWhileWriting(int wanted);

// The variables of a source whose formats say that they are whole numbers: without decimals.
std::vector<bool> WholeNumberFormats(const QANT_DataSource& source);

// The columns of a source as files of columns have them, and as a consumer of columns gets them.
std::vector<ColumnField> FieldsOf(const QANT_DataSource& source, const CasesFileOptions& options);

// Opened before anything is read; begun when the dictionary is known; finished and then published
// when all cases are there. What is not published leaves nothing behind. One thread.
class CasesFile {
 public:
  // Null when the file cannot be written; then *error says so.
  static std::unique_ptr<CasesFile> Open(const std::string& target, CaseFormat format,
                                         std::string* error);
  virtual ~CasesFile() = default;

  // The sink of the source's cases; belongs to this object. Once. Throws std::runtime_error with a
  // sentence for what the format cannot hold.
  virtual CaseSink& Begin(const QANT_DataSource& source, const CasesFileOptions& options) = 0;
  CaseFormat format() const { return format_; }
  // Between Begin and Finish, where the format holds problems; else it does nothing. Throws as
  // above.
  virtual void AddProblem(const ProblemRow& /*problem*/) {}
  // Ends the file with keys and texts (UTF-8) that go with the table, where the format has a place
  // for them. Throws as above.
  virtual void Finish(const std::vector<std::pair<std::string, std::string>>& metadata) = 0;
  // What its columns could not hold, once all cases were taken; empty for formats that hold every
  // value.
  virtual std::vector<Misfit> Misfits() const { return {}; }

  // The file itself: whether it could be written, and its publishing.
  OutputFile& file() { return *file_; }
  const OutputFile& file() const { return *file_; }

 protected:
  CasesFile(std::unique_ptr<OutputFile> file, CaseFormat format)
      : file_(std::move(file)), format_(format) {}

 private:
  const std::unique_ptr<OutputFile> file_;
  const CaseFormat format_;
};

}  // namespace library
