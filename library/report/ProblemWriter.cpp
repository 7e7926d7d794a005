#include "library/report/ProblemWriter.h"

#include <charconv>

namespace library {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{64} * 1024;
constexpr std::string_view kHeader = "kind,case,line,byte,variable,format,text,detail\n";

// No decision within the loops, so that they take many characters at once.
bool HasCsvSpecial(std::string_view text) {
  unsigned found = 0;
  for (const char c : text) {
    found |= static_cast<unsigned>(c == ',') | static_cast<unsigned>(c == '"') |
             static_cast<unsigned>(c == '\r') | static_cast<unsigned>(c == '\n');
  }
  return found != 0;
}

bool HasJsonSpecial(std::string_view text) {
  unsigned found = 0;
  for (const char c : text) {
    found |= static_cast<unsigned>(c == '"') | static_cast<unsigned>(c == '\\');
  }
  return found != 0;
}

}  // namespace

ProblemWriter::ProblemWriter(ProblemFormat format, const ReportVariables& variables,
                             std::int64_t limit, ByteSink& sink, Files files)
    : format_(format), files_(files), left_(limit), sink_(sink), made_(variables) {}

void ProblemWriter::WriteHeader() {
  if (format_ != ProblemFormat::kCsv) return;
  if (files_ == Files::kSeveral) rows_ += "file,";
  rows_ += kHeader;
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
  if (files_ == Files::kSeveral) {
    AppendCsvField(row.file);
    rows_ += ',';
  }
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
  rows_ += '{';
  if (files_ == Files::kSeveral) {
    rows_ += "\"file\":";
    AppendJsonText(row.file);
    rows_ += ',';
  }
  rows_ += "\"kind\":\"";
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
  if (!HasCsvSpecial(text)) {
    rows_ += text;
    return;
  }
  rows_ += '"';
  for (std::size_t quote; (quote = text.find('"')) != std::string_view::npos;) {
    rows_ += text.substr(0, quote + 1);
    rows_ += '"';
    text.remove_prefix(quote + 1);
  }
  rows_ += text;
  rows_ += '"';
}

// The text has no control character: it was escaped.
void ProblemWriter::AppendJsonText(std::string_view text) {
  rows_ += '"';
  if (!HasJsonSpecial(text)) {
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
