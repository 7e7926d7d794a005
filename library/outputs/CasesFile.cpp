#include "library/outputs/CasesFile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>

#include <fmt/format.h>

#include "HostFramework/Threads.h"
#include "library/outputs/ColumnSink.h"
#include "library/outputs/DelimitedWriter.h"
#include "library/outputs/JsonLinesWriter.h"
#include "library/outputs/TextSink.h"
#include "library/outputs/WriteBehind.h"
#include "library/outputs/arrow/ArrowFileWriter.h"
#include "library/outputs/parquet/ParquetWriter.h"
#include "library/outputs/sqlite/SqliteWriter.h"

namespace library {
namespace {

struct NamedFormat {
  std::string_view name;
  CaseFormat format;
};

constexpr std::array kFormats = {
    NamedFormat{"csv", CaseFormat::kCsv},         NamedFormat{"tsv", CaseFormat::kTsv},
    NamedFormat{"jsonl", CaseFormat::kJsonLines}, NamedFormat{"arrow", CaseFormat::kArrow},
    NamedFormat{"parquet", CaseFormat::kParquet}, NamedFormat{"sqlite", CaseFormat::kSqlite}};

// Whom a Parquet file names as its writer.
constexpr char kCreator[] = "TextWizard";

std::size_t CellsOf(const QANT_DataSource& source) { return source.GetObsAreaSize() / sizeof(OBS); }

std::size_t ThreadsOf(const CasesFileOptions& options) {
  const int threads = options.threads < 1 ? getLogicalCPUCount() : options.threads;
  return static_cast<std::size_t>(std::max(threads, 1));
}

// The name that variable `index` has as a column.
std::string ColumnName(const CasesFileOptions& options, std::size_t index,
                       const std::string& variable) {
  const bool labelled =
      !options.namesAsVariables && index < options.labels.size() && !options.labels[index].empty();
  return labelled ? options.labels[index] : variable;
}

// CSV, TSV, JSON Lines.
class TextCasesFile final : public CasesFile {
 public:
  TextCasesFile(std::unique_ptr<OutputFile> output, CaseFormat format)
      : CasesFile(std::move(output), format) {}

  CaseSink& Begin(const QANT_DataSource& source, const CasesFileOptions& options) override {
    std::vector<CaseColumn> columns = ColumnsOf(source, options.values);
    for (std::size_t i = 0; i < columns.size(); ++i) {
      columns[i].name = ColumnName(options, i, columns[i].name);
    }
    sink_ = std::make_unique<TextSink>(MakeWriter(std::move(columns)), CellsOf(source), file());
    return *sink_;
  }
  void Finish(const std::vector<std::pair<std::string, std::string>>&) override {}

 private:
  std::unique_ptr<CaseWriter> MakeWriter(std::vector<CaseColumn> columns) const {
    if (format() == CaseFormat::kJsonLines) {
      return std::make_unique<JsonLinesWriter>(std::move(columns));
    }
    return std::make_unique<DelimitedWriter>(format() == CaseFormat::kTsv ? '\t' : ',',
                                             std::move(columns));
  }

  std::unique_ptr<TextSink> sink_;
};

// Arrow, Parquet, SQLite.
class ColumnCasesFile final : public CasesFile {
 public:
  ColumnCasesFile(std::unique_ptr<OutputFile> output, CaseFormat format)
      : CasesFile(std::move(output), format) {}

  CaseSink& Begin(const QANT_DataSource& source, const CasesFileOptions& options) override {
    fields_ = FieldsOf(source, options);
    Writing([&] { MakeWriter(fields_, options); });
    sink_ = std::make_unique<ColumnSink>(
        fields_, CellsOf(source), ColumnSink::Batches::kInPieces,
        [this](ColumnPieces batch) { Writing([&] { writer_->Write(std::move(batch)); }); });
    return *sink_;
  }
  void AddProblem(const ProblemRow& problem) override {
    if (database_ == nullptr) return;
    Writing([&] { database_->AddProblem(problem); });
  }
  void Finish(const std::vector<std::pair<std::string, std::string>>& metadata) override {
    Writing([&] { writer_->Finish(metadata); });
  }
  std::vector<Misfit> Misfits() const override {
    return sink_ == nullptr ? std::vector<Misfit>() : MisfitsOf(fields_, sink_->misfits());
  }

 private:
  // Once the file cannot be written, nothing is.
  template <typename Work>
  void Writing(Work work) {
    if (!file().ok()) return;
    try {
      work();
    } catch (const SqliteDiskError& failure) {
      file().SetFailed(failure.what());
    }
  }
  void MakeWriter(const std::vector<ColumnField>& fields, const CasesFileOptions& options) {
    if (format() == CaseFormat::kSqlite) {
      const SqliteTimes times =
          options.values == ValueStyle::kRaw ? SqliteTimes::kNumbers : SqliteTimes::kText;
      auto database =
          std::make_unique<SqliteWriter>(file().path(), fields, times, options.severalFiles);
      database_ = database.get();
      writer_ = std::move(database);
    } else if (format() == CaseFormat::kParquet) {
      writer_ = std::make_unique<ParquetWriter>(fields, kCreator, ThreadsOf(options), file());
    } else {
      writer_ = std::make_unique<ArrowFileWriter>(
          fields,
          options.arrowBody == ArrowBody::kLz4 ? ArrowCompression::kLz4 : ArrowCompression::kNone,
          ThreadsOf(options), file());
    }
    // A pipe may wait for its reader, which only the import's own thread can be interrupted in, and
    // a database takes problems between the cases.
    if (database_ == nullptr && !file().path().empty()) {
      writer_ = std::make_unique<WriteBehind>(std::move(writer_));
    }
  }

  std::vector<ColumnField> fields_;
  SqliteWriter* database_ = nullptr;
  std::unique_ptr<ColumnWriter> writer_;
  std::unique_ptr<ColumnSink> sink_;
};

}  // namespace

int WorkersWhileWriting(int wanted) {
  constexpr int kAhead = 2;
  return wanted < 1 ? getLogicalCPUCount() + kAhead : wanted;
}

std::optional<CaseFormat> CaseFormatNamed(std::string_view name) {
  const auto* const found =
      std::find_if(kFormats.begin(), kFormats.end(),
                   [name](const NamedFormat& format) { return format.name == name; });
  return found == kFormats.end() ? std::nullopt : std::optional(found->format);
}

std::optional<CaseFormat> CaseFormatOfFile(std::string_view file) {
  std::string ending = std::filesystem::path(file).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(), [](unsigned char character) {
    return static_cast<char>(std::tolower(character));
  });
  return ending.empty() ? std::nullopt : CaseFormatNamed(std::string_view(ending).substr(1));
}

bool HoldsProblems(CaseFormat format) { return format == CaseFormat::kSqlite; }

bool HoldsMetadata(CaseFormat format) {
  return format == CaseFormat::kArrow || format == CaseFormat::kParquet ||
         format == CaseFormat::kSqlite;
}

std::string CaseFormatNames() {
  std::string names;
  for (std::size_t i = 0; i < kFormats.size(); ++i) {
    names += i == 0 ? "" : i + 1 == kFormats.size() ? " or " : ", ";
    names += kFormats[i].name;
  }
  return names;
}

std::vector<ColumnField> FieldsOf(const QANT_DataSource& source, const CasesFileOptions& options) {
  Utf8Converter hostText;
  std::vector<ColumnField> fields;
  fields.reserve(source.GetNVariables());
  for (std::size_t i = 0; i < source.GetNVariables(); ++i) {
    const QANT_Variable& variable = *source.GetVariable(i);
    ColumnField field;
    field.variable = hostText.ToUtf8(variable.GetName());
    field.name = ColumnName(options, i, field.variable);
    if (i < options.labels.size()) field.label = options.labels[i];
    field.format = FormatName(variable.GetFormat());
    field.width = variable.GetDisplayWidth();
    field.bytes = static_cast<std::size_t>(variable.GetType());
    field.cell = variable.ObsIndex();
    field.type = TypeOf(variable.GetFormat().type, field.bytes);
    if (field.type == ColumnType::kFloat64 && i < options.integers.size() && options.integers[i]) {
      field.type = ColumnType::kInt64;
    }
    fields.push_back(std::move(field));
  }
  return fields;
}

std::vector<bool> WholeNumberFormats(const QANT_DataSource& source) {
  std::vector<bool> whole(source.GetNVariables());
  for (std::size_t i = 0; i < whole.size(); ++i) {
    whole[i] = source.GetVariable(i)->GetFormat().decimals == 0;
  }
  return whole;
}

std::unique_ptr<CasesFile> CasesFile::Open(const std::string& target, CaseFormat format,
                                           std::string* error) {
  std::unique_ptr<OutputFile> output = OutputFile::Open(target, error);
  if (!output) return nullptr;
  switch (format) {
    case CaseFormat::kCsv:
    case CaseFormat::kTsv:
    case CaseFormat::kJsonLines:
      return std::make_unique<TextCasesFile>(std::move(output), format);
    case CaseFormat::kSqlite:
      if (output->path().empty()) {
        *error = "cannot write " + target + ": an SQLite database is a file of its own";
        return nullptr;
      }
      break;
    case CaseFormat::kArrow:
    case CaseFormat::kParquet:
      break;
  }
  return std::make_unique<ColumnCasesFile>(std::move(output), format);
}

}  // namespace library
