// The problems of one pass, counted by variable and kind.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "library/report/ReportText.h"

namespace library {

// Counts exactly, however many there are; memory grows with the pairs of variable and kind that
// have a problem, and by some bytes with the variables, not with the problems. One thread.
class ProblemLog {
 public:
  // All problems of one kind of one variable.
  struct Entry {
    std::int32_t variable;  // -1: the record's
    ImportProblemKind kind;
    std::int64_t count;
    std::int64_t firstLine;
    std::string firstText;       // UTF-8, escaped
    std::string firstFile = {};  // UTF-8; empty where there is one file only
    bool operator==(const Entry&) const = default;
  };

  // A problem that was told. Told in file order: the first of its pair gives line and text.
  void Add(const ImportProblem& problem) { Add(&problem, 1); }
  // Some that follow one another.
  void Add(const ImportProblem* problems, std::size_t count);
  // All problems of one kind of one variable, told or not.
  void SetCount(const ImportProblemCount& all);
  // Adds the problems of a later part of the same import.
  void Add(const ProblemLog& later);
  // The same problems as those of the file of that name (UTF-8) among several, whose variables are
  // `variables` of all.
  ProblemLog OfFile(const std::string& name, const std::vector<std::size_t>& variables) const;

  std::int64_t total() const { return total_; }
  // Of one kind, of all variables.
  std::int64_t CountOf(ImportProblemKind kind) const {
    return ofKind_[static_cast<std::size_t>(kind)];
  }
  // Of one kind of one variable.
  std::int64_t CountOf(ImportProblemKind kind, std::int32_t variable) const;
  // Null when there is no problem of that kind of that variable.
  const Entry* Find(ImportProblemKind kind, std::int32_t variable) const;
  // By variable in dictionary order, those of records first, and by kind.
  std::vector<Entry> Entries() const;

 private:
  // From 0; problems of no variable come first.
  static std::size_t PlaceOf(ImportProblemKind kind, std::int32_t variable) {
    return static_cast<std::size_t>(variable + 1) * kImportProblemKinds +
           static_cast<std::size_t>(kind);
  }
  // Takes the line and text of the first one of its pair.
  void AddFirst(const ImportProblem& problem);
  Entry& EntryOf(ImportProblemKind kind, std::int32_t variable);

  std::vector<Entry> entries_;
  // By variable and kind, as far as there are problems: the entry's number, from 1; 0: none.
  std::vector<std::uint32_t> numbers_;
  std::array<std::int64_t, kImportProblemKinds> ofKind_{};
  std::int64_t total_ = 0;
  ReportText text_;
};

}  // namespace library
