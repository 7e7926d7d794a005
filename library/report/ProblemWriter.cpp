#include "library/report/ProblemWriter.h"

#include <charconv>
#include <functional>

#include "library/report/ProblemKind.h"

namespace library {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{64} * 1024;
constexpr std::string_view kHeader = "kind,case,line,byte,variable,format,text,detail\n";

// Texts of values that are kept as they were written: how many, and how long in bytes.
constexpr std::size_t kSaidTexts = 4096;
constexpr std::size_t kLongestSaid = 64;

// No decision within the loops and bytes only, so that they take many characters at once.
bool HasCsvSpecial(std::string_view text) {
  unsigned char found = 0;
  for (const char c : text) {
    found |= static_cast<unsigned char>((c == ',') | (c == '"') | (c == '\r') | (c == '\n'));
  }
  return found != 0;
}

bool HasJsonSpecial(std::string_view text) {
  unsigned char found = 0;
  for (const char c : text) {
    found |= static_cast<unsigned char>((c == '"') | (c == '\\'));
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
  if (left_ <= 0) return;
  // What is said of a record depends on more than its text.
  if (problem.variable < 0 || problem.text.size() > kLongestSaid) {
    return WriteRow(made_.Of(problem));
  }
  --left_;
  AppendPlace(made_.file(), NameOf(problem.kind), problem.caseNumber, problem.line, problem.byte);
  Said& said = SaidOf(problem);
  if (said.IsOf(problem)) {
    rows_ += said.written;
  } else {
    const std::size_t begin = rows_.size();
    AppendSaid(made_.Of(problem));
    said.written.clear();
    said.kind = problem.kind;
    said.variable = problem.variable;
    said.amount = problem.amount;
    said.text = problem.text;
    said.written.assign(rows_, begin);
  }
  EndRow();
}

ProblemWriter::Said& ProblemWriter::SaidOf(const ImportProblem& problem) {
  if (said_.empty()) said_.resize(kSaidTexts);
  const std::size_t hash = std::hash<std::string_view>()(problem.text);
  const std::size_t place = (hash + static_cast<std::size_t>(problem.variable)) % kSaidTexts;
  Said& one = said_[place];
  Said& other = said_[place ^ 1];
  if (one.IsOf(problem)) return one;
  if (other.IsOf(problem)) return other;
  if (one.written.empty() || other.written.empty()) return one.written.empty() ? one : other;
  replacesOther_ = !replacesOther_;
  return replacesOther_ ? other : one;
}

void ProblemWriter::WriteRow(const ProblemRow& row) {
  if (left_ <= 0) return;
  --left_;
  AppendPlace(row.file, row.kind, row.caseNumber, row.line, row.byte);
  AppendSaid(row);
  EndRow();
}

void ProblemWriter::EndRow() {
  if (rows_.size() >= kBufferBytes) Flush();
}

void ProblemWriter::Flush() {
  sink_.Append(rows_);
  rows_.clear();
}

void ProblemWriter::AppendPlace(std::string_view file, std::string_view kind,
                                std::int64_t caseNumber, std::int64_t line, std::int64_t byte) {
  const bool csv = format_ == ProblemFormat::kCsv;
  if (csv) {
    if (files_ == Files::kSeveral) {
      AppendCsvField(file);
      rows_ += ',';
    }
    rows_ += kind;
  } else {
    rows_ += '{';
    if (files_ == Files::kSeveral) {
      rows_ += "\"file\":";
      AppendJsonText(file);
      rows_ += ',';
    }
    rows_ += "\"kind\":\"";
    rows_ += kind;
    rows_ += '"';
  }
  // A column stays, empty; a key does not.
  const auto append = [&](std::string_view key, std::int64_t number, bool present) {
    if (csv) rows_ += ',';
    if (!present) return;
    if (!csv) rows_ += key;
    AppendNumber(number);
  };
  append(",\"case\":", caseNumber, caseNumber > 0);
  append(",\"line\":", line, line > 0);
  append(",\"byte\":", byte, byte >= 0);
}

void ProblemWriter::AppendSaid(const ProblemRow& row) {
  if (format_ == ProblemFormat::kCsv) {
    for (const std::string_view text : {row.variable, row.format, row.text, row.detail}) {
      rows_ += ',';
      AppendCsvField(text);
    }
    rows_ += '\n';
    return;
  }
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
