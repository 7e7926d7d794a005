#include "library/report/ProblemWriter.h"

#include <array>
#include <charconv>

namespace library {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{64} * 1024;
constexpr std::string_view kHeader = "kind,case,line,byte,variable,format,text,detail\n";

using CharacterSet = std::array<bool, 256>;

constexpr CharacterSet SetOf(std::string_view characters) {
  CharacterSet set{};
  for (const char character : characters) set[static_cast<unsigned char>(character)] = true;
  return set;
}

constexpr CharacterSet kCsvSpecial = SetOf(",\"\r\n");
constexpr CharacterSet kJsonSpecial = SetOf("\"\\");

bool Has(std::string_view text, const CharacterSet& set) {
  bool found = false;
  for (const char character : text) found |= set[static_cast<unsigned char>(character)];
  return found;
}

}  // namespace

ProblemWriter::ProblemWriter(ProblemFormat format, const ReportVariables& variables,
                             std::int64_t limit, ByteSink& sink)
    : format_(format), left_(limit), sink_(sink), made_(variables) {}

void ProblemWriter::WriteHeader() {
  if (format_ == ProblemFormat::kCsv) rows_ += kHeader;
}

void ProblemWriter::Write(const ImportProblem& problem) {
  if (left_ > 0) WriteRow(made_.Of(problem));
}

void ProblemWriter::WriteRow(const ProblemRow& row) {
  if (left_ <= 0) return;
  --left_;
  if (format_ == ProblemFormat::kCsv) {
    AppendCsv(row);
  } else {
    AppendJson(row);
  }
  if (rows_.size() >= kBufferBytes) Flush();
}

void ProblemWriter::Flush() {
  sink_.Append(rows_);
  rows_.clear();
}

void ProblemWriter::AppendCsv(const ProblemRow& row) {
  rows_ += row.kind;
  rows_ += ',';
  if (row.caseNumber > 0) AppendNumber(row.caseNumber);
  rows_ += ',';
  if (row.line > 0) AppendNumber(row.line);
  rows_ += ',';
  if (row.byte >= 0) AppendNumber(row.byte);
  rows_ += ',';
  AppendCsvField(row.variable);
  rows_ += ',';
  AppendCsvField(row.format);
  rows_ += ',';
  AppendCsvField(row.text);
  rows_ += ',';
  AppendCsvField(row.detail);
  rows_ += '\n';
}

void ProblemWriter::AppendJson(const ProblemRow& row) {
  rows_ += "{\"kind\":\"";
  rows_ += row.kind;
  rows_ += '"';
  const auto appendNumber = [this](const char* key, std::int64_t number, bool present) {
    if (!present) return;
    rows_ += key;
    AppendNumber(number);
  };
  appendNumber(",\"case\":", row.caseNumber, row.caseNumber > 0);
  appendNumber(",\"line\":", row.line, row.line > 0);
  appendNumber(",\"byte\":", row.byte, row.byte >= 0);
  if (row.variable.empty()) {
    rows_ += ",\"variable\":null,\"format\":null";
  } else {
    rows_ += ",\"variable\":";
    AppendJsonText(row.variable);
    rows_ += ",\"format\":";
    AppendJsonText(row.format);
  }
  rows_ += ",\"text\":";
  AppendJsonText(row.text);
  rows_ += ",\"detail\":";
  AppendJsonText(row.detail);
  rows_ += "}\n";
}

void ProblemWriter::AppendNumber(std::int64_t number) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  rows_.append(digits, end);
}

void ProblemWriter::AppendCsvField(std::string_view text) {
  if (!Has(text, kCsvSpecial)) {
    rows_ += text;
    return;
  }
  rows_ += '"';
  for (const char character : text) {
    if (character == '"') rows_ += '"';
    rows_ += character;
  }
  rows_ += '"';
}

// The text has no control character: it was escaped.
void ProblemWriter::AppendJsonText(std::string_view text) {
  rows_ += '"';
  if (!Has(text, kJsonSpecial)) {
    rows_ += text;
  } else {
    for (const char character : text) {
      if (character == '"' || character == '\\') rows_ += '\\';
      rows_ += character;
    }
  }
  rows_ += '"';
}

}  // namespace library
