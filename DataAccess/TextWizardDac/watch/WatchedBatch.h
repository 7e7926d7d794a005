// What is to be told of a batch of cases when they are delivered: their bytes in the file, what
// became of their cells, their problems.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "watch/NotedProblems.h"
#include "watch/RecordPlace.h"

namespace textwizard {

// Belongs to one thread at a time, as its batch does: filled where cases are converted, told by the
// host's thread. Its memory is kept from batch to batch.
class WatchedBatch {
 public:
  // Records without anything between them, with line ends of one length. Of several nothing was
  // dropped.
  struct Stretch {
    std::uint32_t records;
    std::int64_t begin;
    std::int64_t end;
    std::int64_t droppedBytes;
    std::uint32_t lineEndBytes;
  };
  // A case with cells that were not read.
  struct CellsNotRead {
    std::uint32_t record = 0;
    std::uint32_t empty = 0;
    std::uint32_t null = 0;
    std::uint32_t unreadable = 0;
    std::uint32_t absent = 0;
  };
  struct ProblemCase {
    std::uint32_t record;
    std::int64_t line;
    std::int64_t begin;
    std::int64_t end;
  };

  explicit WatchedBatch(std::size_t variables) : problems(variables) {}

  // Forgets all; see NotedProblems.
  void Clear(bool allProblems) {
    stretches.clear();
    ends.clear();
    recordsBehind.clear();
    cells.clear();
    problems.Clear(allProblems);
    cases.clear();
    beyondColumn.clear();
  }
  // Adds a record, none of a later case having been added.
  void AddRecord(const RecordPlace& place) {
    if (!stretches.empty()) {
      Stretch& last = stretches.back();
      if (last.end == place.begin && last.lineEndBytes == place.lineEndBytes &&
          (last.droppedBytes | place.droppedBytes) == 0) {
        last.end = place.end;
        ++last.records;
        return;
      }
    }
    stretches.push_back({1, place.begin, place.end, place.droppedBytes, place.lineEndBytes});
  }

  // The same of a record right behind the latest one, with a line end of the same length.
  void AddNext(std::int64_t end) {
    Stretch& last = stretches.back();
    last.end = end;
    ++last.records;
  }

  // Records that belong to the batch's first `count` cases.
  std::uint32_t RecordsOf(std::uint32_t count) const {
    if (count == 0) return 0;
    if (!recordsBehind.empty()) return recordsBehind[count - 1];
    return ends.empty() ? UINT32_MAX : count;
  }

  std::vector<Stretch> stretches;
  // Where batches may be delivered in part: the end of the last record that belongs to a case or
  // to one before it, and, where a case need not have one record, how many records these are.
  std::vector<std::int64_t> ends;
  std::vector<std::uint32_t> recordsBehind;
  std::vector<CellsNotRead> cells;
  NotedProblems problems;
  std::vector<ProblemCase> cases;
  // Fixed columns: the variable of each text that goes on behind its column.
  struct BeyondColumn {
    std::uint32_t record;
    std::uint32_t variable;
  };
  std::vector<BeyondColumn> beyondColumn;
};

}  // namespace textwizard
