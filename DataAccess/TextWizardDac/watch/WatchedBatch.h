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
    // The first one's case in the batch.
    std::uint32_t record;
    std::uint32_t records;
    std::int64_t begin;
    std::int64_t end;
    std::int64_t droppedBytes;
    std::uint32_t lineEndBytes;
  };
  // A case with cells that were not read.
  struct CellsNotRead {
    std::uint32_t record;
    std::uint32_t empty;
    std::uint32_t null;
    std::uint32_t unreadable;
    std::uint32_t absent;
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
    cells.clear();
    problems.Clear(allProblems);
    cases.clear();
    beyondColumn.clear();
  }
  // Adds a record of case `record`, none of a later case having been added.
  void AddRecord(std::uint32_t record, const RecordPlace& place) {
    if (!stretches.empty()) {
      Stretch& last = stretches.back();
      if (last.end == place.begin && last.lineEndBytes == place.lineEndBytes &&
          (last.droppedBytes | place.droppedBytes) == 0) {
        last.end = place.end;
        ++last.records;
        return;
      }
    }
    stretches.push_back(
        {record, 1, place.begin, place.end, place.droppedBytes, place.lineEndBytes});
  }

  // The same of a record right behind the latest one, with a line end of the same length.
  void AddNext(std::int64_t end) {
    Stretch& last = stretches.back();
    last.end = end;
    ++last.records;
  }

  std::vector<Stretch> stretches;
  // Where the record of each case ends. Only where every case has one record.
  std::vector<std::int64_t> ends;
  std::vector<CellsNotRead> cells;
  NotedProblems problems;
  std::vector<ProblemCase> cases;
  // Fixed columns: the variable of each text that goes on behind its column.
  std::vector<std::uint32_t> beyondColumn;
};

}  // namespace textwizard
