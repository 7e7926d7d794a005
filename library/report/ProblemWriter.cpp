#include "library/report/ProblemWriter.h"

#include <charconv>
#include <cstring>

#include "library/report/ProblemKind.h"

namespace library {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{64} * 1024;
constexpr std::string_view kHeader = "kind,case,line,byte,variable,format,text,detail\n";

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

void AppendNumber(std::int64_t number, std::string& to) {
  char digits[24];
  to.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void AppendCsvField(std::string_view text, std::string& to) {
  if (!HasCsvSpecial(text)) {
    to += text;
    return;
  }
  to += '"';
  for (std::size_t quote; (quote = text.find('"')) != std::string_view::npos;) {
    to += text.substr(0, quote + 1);
    to += '"';
    text.remove_prefix(quote + 1);
  }
  to += text;
  to += '"';
}

// The text has no control character: it was escaped.
void AppendJsonText(std::string_view text, std::string& to) {
  to += '"';
  if (!HasJsonSpecial(text)) {
    to += text;
  } else {
    for (const char character : text) {
      if (character == '"' || character == '\\') to += '\\';
      to += character;
    }
  }
  to += '"';
}

}  // namespace

ProblemWriter::ProblemWriter(ProblemFormat format, const ReportVariables& variables,
                             std::int64_t limit, ByteSink& sink, Files files)
    : format_(format), files_(files), left_(limit), sink_(sink), made_(variables) {}

void ProblemWriter::WriteHeader() {
  if (format_ != ProblemFormat::kCsv) return;
  if (files_ == Files::kSeveral) rows_.Append("file,");
  rows_.Append(kHeader);
}

void ProblemWriter::Write(const ImportProblem& problem) {
  if (left_ <= 0) return;
  --left_;
  if (!PlaceIsOf(problem)) {
    placeKnown_ = false;
    MakePlace(made_.file(), NameOf(problem.kind), problem.caseNumber, problem.line,
              problem.byte >= 0);
    kind_ = problem.kind;
    case_ = problem.caseNumber;
    line_ = problem.line;
    hasByte_ = problem.byte >= 0;
    placeKnown_ = true;
  }
  const bool canKeep = SaidProblems::CanKeep(problem);
  if (canKeep) {
    if (const std::string* const known = said_.Find(problem)) {
      return AppendRow(problem.byte, *known);
    }
  }
  MakeSaid(made_.Of(problem));
  if (canKeep) said_.Keep(problem, written_);
  AppendRow(problem.byte, written_);
}

void ProblemWriter::WriteRow(const ProblemRow& row) {
  if (left_ <= 0) return;
  --left_;
  placeKnown_ = false;
  MakePlace(row.file, row.kind, row.caseNumber, row.line, row.byte >= 0);
  MakeSaid(row);
  AppendRow(row.byte, written_);
}

void ProblemWriter::AppendRow(std::int64_t byte, std::string_view said) {
  char* to = rows_.Reserve(place_.size() + RisingNumber::kMostBytes + said.size());
  std::memcpy(to, place_.data(), place_.size());
  to += place_.size();
  if (byte >= 0) to = byte_.Write(byte, to);
  std::memcpy(to, said.data(), said.size());
  rows_.Advance(to + said.size());
  if (rows_.size() >= kBufferBytes) Flush();
}

void ProblemWriter::Flush() {
  sink_.Append(rows_.view());
  rows_.Clear();
}

void ProblemWriter::MakePlace(std::string_view file, std::string_view kind, std::int64_t caseNumber,
                              std::int64_t line, bool hasByte) {
  place_.clear();
  const bool csv = format_ == ProblemFormat::kCsv;
  if (csv) {
    if (files_ == Files::kSeveral) {
      AppendCsvField(file, place_);
      place_ += ',';
    }
    place_ += kind;
  } else {
    place_ += '{';
    if (files_ == Files::kSeveral) {
      place_ += "\"file\":";
      AppendJsonText(file, place_);
      place_ += ',';
    }
    place_ += "\"kind\":\"";
    place_ += kind;
    place_ += '"';
  }
  // A column stays, empty; a key does not.
  const auto append = [&](std::string_view key, bool present) {
    if (csv) {
      place_ += ',';
    } else if (present) {
      place_ += key;
    }
  };
  append(",\"case\":", caseNumber > 0);
  if (caseNumber > 0) AppendNumber(caseNumber, place_);
  append(",\"line\":", line > 0);
  if (line > 0) AppendNumber(line, place_);
  append(",\"byte\":", hasByte);
}

void ProblemWriter::MakeSaid(const ProblemRow& row) {
  written_.clear();
  if (format_ == ProblemFormat::kCsv) {
    for (const std::string_view text : {row.variable, row.format, row.text, row.detail}) {
      written_ += ',';
      AppendCsvField(text, written_);
    }
    written_ += '\n';
    return;
  }
  if (row.variable.empty()) {
    written_ += ",\"variable\":null,\"format\":null";
  } else {
    written_ += ",\"variable\":";
    AppendJsonText(row.variable, written_);
    written_ += ",\"format\":";
    AppendJsonText(row.format, written_);
  }
  written_ += ",\"text\":";
  AppendJsonText(row.text, written_);
  written_ += ",\"detail\":";
  AppendJsonText(row.detail, written_);
  written_ += "}\n";
}

}  // namespace library
