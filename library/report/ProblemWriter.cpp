#include "library/report/ProblemWriter.h"

#include <array>
#include <charconv>

#include "library/report/ProblemKind.h"

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
    : format_(format), variables_(variables), left_(limit), sink_(sink), detail_(variables) {}

void ProblemWriter::WriteHeader() {
  if (format_ == ProblemFormat::kCsv) rows_ += kHeader;
}

void ProblemWriter::Write(const ImportProblem& problem) {
  if (left_ <= 0) return;
  --left_;
  const ReportVariable* variable = VariableAt(variables_, problem.variable);
  if (format_ == ProblemFormat::kCsv) {
    AppendCsv(problem, variable);
  } else {
    AppendJson(problem, variable);
  }
  if (rows_.size() >= kBufferBytes) Flush();
}

void ProblemWriter::Flush() {
  sink_.Append(rows_);
  rows_.clear();
}

void ProblemWriter::AppendCsv(const ImportProblem& problem, const ReportVariable* variable) {
  rows_ += NameOf(problem.kind);
  rows_ += ',';
  if (problem.caseNumber > 0) AppendNumber(problem.caseNumber);
  rows_ += ',';
  AppendNumber(problem.line);
  rows_ += ',';
  AppendNumber(problem.byte);
  rows_ += ',';
  if (variable != nullptr) AppendCsvField(variable->name);
  rows_ += ',';
  if (variable != nullptr) AppendCsvField(variable->format);
  rows_ += ',';
  AppendCsvField(text_.Escaped(problem.text));
  rows_ += ',';
  AppendCsvField(detail_.Of(problem));
  rows_ += '\n';
}

void ProblemWriter::AppendJson(const ImportProblem& problem, const ReportVariable* variable) {
  rows_ += "{\"kind\":\"";
  rows_ += NameOf(problem.kind);
  rows_ += '"';
  if (problem.caseNumber > 0) {
    rows_ += ",\"case\":";
    AppendNumber(problem.caseNumber);
  }
  rows_ += ",\"line\":";
  AppendNumber(problem.line);
  rows_ += ",\"byte\":";
  AppendNumber(problem.byte);
  if (variable == nullptr) {
    rows_ += ",\"variable\":null,\"format\":null";
  } else {
    rows_ += ",\"variable\":";
    AppendJsonText(variable->name);
    rows_ += ",\"format\":";
    AppendJsonText(variable->format);
  }
  rows_ += ",\"text\":";
  AppendJsonText(text_.Escaped(problem.text));
  rows_ += ",\"detail\":";
  AppendJsonText(detail_.Of(problem));
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
