#include "tests/differential/NaiveWatch.h"

#include <cstdio>
#include <sstream>

namespace naive {
namespace {

constexpr const char* kKinds[] = {"unreadable",   "rounded",         "cut",        "undecodable",
                                  "few-fields",   "surplus",         "open-quote", "stray-quote",
                                  "short-record", "incomplete-case", "nul"};
constexpr const char* kSpans[] = {"mark", "preamble", "skipped", "records", "unread"};

std::string Stripped(const std::string& digits) {
  const std::size_t first = digits.find_first_not_of('0');
  if (first == std::string::npos) return {};
  return digits.substr(first, digits.find_last_not_of('0') + 1 - first);
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Problem& p) {
  return out << kKinds[static_cast<int>(p.kind)] << " variable " << p.variable << " case "
             << p.caseNumber << " line " << p.line << " byte " << p.byte << " amount " << p.amount
             << " '" << p.text << "'";
}

std::ostream& operator<<(std::ostream& out, const CaseSpan& s) {
  return out << "case " << s.caseNumber << " line " << s.line << " bytes " << s.begin << "-"
             << s.end;
}

std::ostream& operator<<(std::ostream& out, const Span& s) {
  return out << kSpans[s.kind] << " at " << s.offset << " bytes " << s.bytes << " records "
             << s.records << " ends " << s.lineEndBytes << " dropped " << s.droppedBytes;
}

std::ostream& operator<<(std::ostream& out, const Cells& c) {
  return out << "read " << c.read << " empty " << c.empty << " null " << c.null << " unreadable "
             << c.unreadable << " absent " << c.absent;
}

std::string Shown(const Watched& watched, bool cellsPerCase) {
  std::ostringstream out;
  for (const Problem& problem : watched.problems) out << problem << '\n';
  for (const CaseSpan& span : watched.cases) out << span << '\n';
  for (const Span& span : watched.spans) out << span << '\n';
  Cells sum;
  for (const Cells& cells : watched.cells) {
    if (cellsPerCase) out << cells << '\n';
    sum.read += cells.read;
    sum.empty += cells.empty;
    sum.null += cells.null;
    sum.unreadable += cells.unreadable;
    sum.absent += cells.absent;
  }
  out << sum << '\n';
  out << "records in cases " << watched.recordsInCases << "\nbeyond their columns";
  for (const std::int64_t count : watched.textsBeyondColumn) out << ' ' << count;
  out << '\n';
  return out.str();
}

void AppendSpan(std::vector<Span>& spans, const Span& next) {
  if (next.bytes == 0 && next.records == 0) return;
  if (spans.empty() || spans.back().kind != next.kind) {
    spans.push_back(next);
    return;
  }
  Span& last = spans.back();
  last.bytes += next.bytes;
  last.records += next.records;
  last.lineEndBytes += next.lineEndBytes;
  last.droppedBytes += next.droppedBytes;
}

bool IsRounded(const std::string& text, double value) {
  std::string digits;
  for (const char c : text) {
    if (c == 'e' || c == 'E' || c == 'd' || c == 'D') break;
    if (c >= '0' && c <= '9') digits += c;
  }
  digits = Stripped(digits);
  if (digits.size() < 16) return false;
  std::string printed(digits.size() + 32, '\0');
  const int length = std::snprintf(printed.data(), printed.size(), "%.*e",
                                   static_cast<int>(digits.size()) - 1, value);
  printed.resize(static_cast<std::size_t>(length));
  std::string back;
  for (const char c : printed) {
    if (c == 'e') break;
    if (c >= '0' && c <= '9') back += c;
  }
  return Stripped(back) != digits;
}

}  // namespace naive
