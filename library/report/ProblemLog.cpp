#include "library/report/ProblemLog.h"

#include <algorithm>
#include <tuple>

namespace library {

void ProblemLog::Add(const ImportProblem* problems, std::size_t count) {
  total_ += static_cast<std::int64_t>(count);
  for (const ImportProblem* const end = problems + count; problems != end;) {
    // Most are of the kind of the one before.
    const ImportProblemKind kind = problems->kind;
    const ImportProblem* const first = problems;
    for (; problems != end && problems->kind == kind; ++problems) {
      const std::size_t place = PlaceOf(kind, problems->variable);
      const std::uint32_t number = place < numbers_.size() ? numbers_[place] : 0;
      if (number == 0 || entries_[number - 1].firstLine == 0) AddFirst(*problems);
      ++entries_[numbers_[place] - 1].count;
    }
    ofKind_[static_cast<std::size_t>(kind)] += problems - first;
  }
}

void ProblemLog::AddFirst(const ImportProblem& problem) {
  Entry& entry = EntryOf(problem.kind, problem.variable);
  entry.firstLine = problem.line;
  entry.firstText = text_.Escaped(problem.text);
}

void ProblemLog::SetCount(const ImportProblemCount& all) {
  Entry& entry = EntryOf(all.kind, all.variable);
  const std::int64_t more = all.count - entry.count;
  entry.count += more;
  ofKind_[static_cast<std::size_t>(all.kind)] += more;
  total_ += more;
}

void ProblemLog::Add(const ProblemLog& later) {
  for (const Entry& other : later.entries_) {
    Entry& entry = EntryOf(other.kind, other.variable);
    if (entry.firstLine == 0) {
      entry.firstLine = other.firstLine;
      entry.firstText = other.firstText;
      entry.firstFile = other.firstFile;
    }
    SetCount({other.kind, other.variable, entry.count + other.count});
  }
}

ProblemLog ProblemLog::OfFile(const std::string& name,
                              const std::vector<std::size_t>& variables) const {
  ProblemLog log;
  for (const Entry& entry : entries_) {
    const std::int32_t variable =
        entry.variable < 0
            ? entry.variable
            : static_cast<std::int32_t>(variables[static_cast<std::size_t>(entry.variable)]);
    Entry& moved = log.EntryOf(entry.kind, variable);
    moved = entry;
    moved.variable = variable;
    moved.firstFile = name;
  }
  log.ofKind_ = ofKind_;
  log.total_ = total_;
  return log;
}

std::int64_t ProblemLog::CountOf(ImportProblemKind kind, std::int32_t variable) const {
  const Entry* entry = Find(kind, variable);
  return entry == nullptr ? 0 : entry->count;
}

const ProblemLog::Entry* ProblemLog::Find(ImportProblemKind kind, std::int32_t variable) const {
  const std::size_t place = PlaceOf(kind, variable);
  if (place >= numbers_.size() || numbers_[place] == 0) return nullptr;
  return &entries_[numbers_[place] - 1];
}

std::vector<ProblemLog::Entry> ProblemLog::Entries() const {
  std::vector<Entry> entries = entries_;
  std::sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
    return std::tie(left.variable, left.kind) < std::tie(right.variable, right.kind);
  });
  return entries;
}

ProblemLog::Entry& ProblemLog::EntryOf(ImportProblemKind kind, std::int32_t variable) {
  const std::size_t place = PlaceOf(kind, variable);
  if (place >= numbers_.size()) numbers_.resize(place + 1);
  if (numbers_[place] == 0) {
    entries_.push_back({variable, kind, 0, 0, {}, {}});
    numbers_[place] = static_cast<std::uint32_t>(entries_.size());
  }
  return entries_[numbers_[place] - 1];
}

}  // namespace library
