#include "library/report/ProblemWriter.h"

#include <algorithm>
#include <cstring>

#include "library/report/ProblemKind.h"

namespace library {
namespace {

// The place of most rows fits one.
constexpr std::size_t kBlock = 32;
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

void AppendNumber(std::int64_t number, RisingNumber& digits, std::string& to) {
  char written[RisingNumber::kMostBytes];
  to.append(written, digits.Write(number, written));
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

void ProblemWriter::WriteAll(const ImportProblem* problems, std::size_t count) {
  if (left_ < static_cast<std::int64_t>(count)) {
    count = static_cast<std::size_t>(std::max<std::int64_t>(left_, 0));
  }
  left_ -= static_cast<std::int64_t>(count);
  for (const ImportProblem* const end = problems + count; problems != end;) {
    const auto left = static_cast<std::size_t>(end - problems);
    const ImportProblem* const some = problems + std::min(left, keys_.size());
    problems = WriteKnown(problems, some);
    if (problems != some) WriteNew(*problems++);
  }
}

void ProblemWriter::MakePlace(const ImportProblem& problem) {
  if (PlaceIsOf(problem)) return;
  placeKnown_ = false;
  MakePlace(made_.file(), NameOf(problem.kind), problem.caseNumber, problem.line,
            problem.byte >= 0);
  kind_ = problem.kind;
  case_ = problem.caseNumber;
  line_ = problem.line;
  hasByte_ = problem.byte >= 0;
  placeKnown_ = true;
}

const ImportProblem* ProblemWriter::WriteKnown(const ImportProblem* problems,
                                               const ImportProblem* end) {
  // Of some at once, so that what is looked at is near when its turn comes.
  std::size_t count = 0;
  for (; problems + count != end && SaidProblems::CanKeep(problems[count]); ++count) {
    keys_[count] = SaidProblems::Key(problems[count]);
    said_.Prefetch(keys_[count]);
  }
  std::size_t known = 0;
  std::size_t room = 0;
  for (; known < count; ++known) {
    texts_[known] = said_.Find(keys_[known]);
    if (texts_[known].empty()) break;
    room += texts_[known].size();
  }
  for (std::size_t next = 0; next < known;) {
    MakePlace(problems[next]);
    char* to = rows_.Reserve(room + (known - next) * (place_.size() + RisingNumber::kMostBytes));
    for (; next < known && PlaceIsOf(problems[next]); ++next) {
      to = WritePlace(problems[next].byte, to);
      std::memcpy(to, texts_[next].data(), texts_[next].size());
      to += texts_[next].size();
    }
    EndRows(to);
  }
  return problems + known;
}

void ProblemWriter::WriteNew(const ImportProblem& problem) {
  MakePlace(problem);
  MakeSaid(made_.Of(problem));
  if (SaidProblems::CanKeep(problem)) said_.Keep(SaidProblems::Key(problem), written_);
  AppendWritten(problem.byte);
}

void ProblemWriter::WriteRow(const ProblemRow& row) {
  if (left_ <= 0) return;
  --left_;
  placeKnown_ = false;
  MakePlace(row.file, row.kind, row.caseNumber, row.line, row.byte >= 0);
  MakeSaid(row);
  AppendWritten(row.byte);
}

void ProblemWriter::AppendWritten(std::int64_t byte) {
  char* to = rows_.Reserve(place_.size() + RisingNumber::kMostBytes + written_.size());
  to = WritePlace(byte, to);
  std::memcpy(to, written_.data(), written_.size());
  EndRows(to + written_.size());
}

// There is room for the place with the block behind it.
inline char* ProblemWriter::WritePlace(std::int64_t byte, char* to) {
  const std::size_t bytes = place_.size() - kBlock;
  if (bytes <= kBlock) {
    // Of a size known here, so that it is no call.
    std::memcpy(to, place_.data(), kBlock);
  } else {
    std::memcpy(to, place_.data(), bytes);
  }
  to += bytes;
  return byte >= 0 ? byteDigits_.Write(byte, to) : to;
}

inline void ProblemWriter::EndRows(const char* end) {
  rows_.Advance(end);
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
  if (caseNumber > 0) AppendNumber(caseNumber, caseDigits_, place_);
  append(",\"line\":", line > 0);
  if (line > 0) AppendNumber(line, lineDigits_, place_);
  append(",\"byte\":", hasByte);
  place_.append(kBlock, '\0');
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
