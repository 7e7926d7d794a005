// What the lines of a part of a data file come to: how many they are, what of cases they hold, and
// where in them cases may begin.
#pragma once

#include <cstdint>
#include <vector>

namespace library {

// A part is a range of bytes and owns the lines that begin in it. Two parts that follow one another
// become one by Append, in any grouping the same.
//
// Cases are made of units, a fixed number each: records, or values where these run across lines.
struct PartLines {
  // The beginning of a line at which a case begins when the number of units before the part and in
  // front of the line in it is a multiple of those of a case.
  struct Start {
    std::int64_t units = 0;  // of the part before it
    std::int64_t lines = 0;
    std::int64_t byte = 0;  // offset in the file
    bool operator==(const Start&) const = default;
  };

  std::int64_t unitsPerCase = 1;
  // Physical lines that begin in the part, and their units.
  std::int64_t lines = 0;
  std::int64_t units = 0;
  // The data ends in the part, whatever bytes follow.
  bool dataEnds = false;
  // Where the first line that begins in the part does, and where the line behind its last one will;
  // -1 where no line begins in it.
  std::int64_t begin = -1;
  std::int64_t end = -1;
  // The first start for each remainder of its units by those of a case, in the order of the file.
  std::vector<Start> starts;

  // The first start of a case when `unitsBefore` units stand before the part; null when none begins
  // with a line of it.
  const Start* CaseStart(std::int64_t unitsBefore) const;
  // Notes a start unless there is one before with its remainder.
  void AddStart(const Start& start);
  // `next` has as many units a case.
  void Append(const PartLines& next);
  bool operator==(const PartLines& other) const {
    return unitsPerCase == other.unitsPerCase && lines == other.lines && units == other.units &&
           dataEnds == other.dataEnds && starts == other.starts;
  }

 private:
  // Of `starts`, by remainder: whether there is one.
  std::vector<bool> taken_;
};

}  // namespace library
