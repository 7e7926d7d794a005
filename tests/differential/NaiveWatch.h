// What a naive import has to say about itself: the problems, bytes and cells of a pass. Plain
// records of what the observer's declarations tell, to be compared with what an observer was told.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "HostFramework/ImportObserver.h"

namespace naive {

struct Problem {
  ImportProblemKind kind = ImportProblemKind::kUnreadable;
  std::int32_t variable = -1;
  std::int64_t caseNumber = 0;
  std::int64_t line = 0;
  std::int64_t byte = 0;
  std::int64_t amount = 0;
  std::string text;
  bool operator==(const Problem&) const = default;
};

struct CaseSpan {
  std::int64_t caseNumber = 0;
  std::int64_t line = 0;
  std::int64_t begin = 0;
  std::int64_t end = 0;
  bool operator==(const CaseSpan&) const = default;
};

struct Span {
  ImportSpan::Kind kind = ImportSpan::kUnread;
  std::int64_t offset = 0;
  std::int64_t bytes = 0;
  std::int64_t records = 0;
  std::int64_t lineEndBytes = 0;
  std::int64_t droppedBytes = 0;
  bool operator==(const Span&) const = default;
};

struct Cells {
  std::int64_t read = 0;
  std::int64_t empty = 0;
  std::int64_t null = 0;
  std::int64_t unreadable = 0;
  std::int64_t absent = 0;
  bool operator==(const Cells&) const = default;
};

struct Watched {
  std::vector<Problem> problems;
  std::vector<CaseSpan> cases;
  std::vector<Span> spans;
  // Of each case.
  std::vector<Cells> cells;
  std::int64_t recordsInCases = 0;
  std::vector<std::int64_t> textsBeyondColumn;
  bool operator==(const Watched&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Problem& problem);
std::ostream& operator<<(std::ostream& out, const CaseSpan& span);
std::ostream& operator<<(std::ostream& out, const Span& span);
std::ostream& operator<<(std::ostream& out, const Cells& cells);
// All of it, a line for each; cells of each case only when `cellsPerCase`.
std::string Shown(const Watched& watched, bool cellsPerCase);

// Joins `next` to the spans: empty ones are left out, neighbours of a kind become one.
void AppendSpan(std::vector<Span>& spans, const Span& next);

// The number that `text` was read as has other digits than `text`, which has 16 or more of them,
// zeros at both ends aside.
bool IsRounded(const std::string& text, double value);

}  // namespace naive
