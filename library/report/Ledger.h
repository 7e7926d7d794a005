// The books of an import: where every byte of the file, every record and every cell went, and
// whether that adds up.
#pragma once

#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

#include "HostFramework/ImportObserver.h"

namespace library {

// Books of a whole, or of a part: those of parts add up. One thread.
class Ledger {
 public:
  // What the host counted itself, apart from what the observer was told.
  struct Counts {
    std::int64_t bytes = 0;      // size of the data file (decompressed)
    std::int64_t cases = 0;      // delivered, or kept where the host samples
    std::int64_t variables = 0;  // of the dictionary
    std::int64_t recordsInCases = 0;
    std::int64_t recordsWithoutCase = 0;  // of an incomplete case that was not delivered
  };

  void AddSpan(const ImportSpan& span);
  void AddCells(const ImportCellCounts& cells);
  // The cases have other variables as well: `absent` cells of each lack a value, `read` have one.
  void AddVariables(std::int64_t absent, std::int64_t read);
  void SetCounts(const Counts& counts) { counts_ = counts; }
  // Adds the books of another part of the same import, which has the same variables.
  Ledger& operator+=(const Ledger& part);

  // "ledger does not balance: ..." with each sum that does not hold; empty when all do.
  std::string Imbalance() const;

  std::int64_t bytes() const { return counts_.bytes; }
  // NUL bytes that were dropped.
  std::int64_t dropped() const { return bytes_.dropped; }

  // One line for a person, without what is zero.
  std::string Line() const;
  nlohmann::ordered_json Json() const;
  bool operator==(const Ledger& other) const {
    return gaps_ == other.gaps_ && Json() == other.Json();
  }

 private:
  struct Bytes {
    std::int64_t mark = 0;
    std::int64_t skipped = 0;
    std::int64_t records = 0;
    std::int64_t lineEnds = 0;
    std::int64_t dropped = 0;
    std::int64_t unread = 0;
  };
  std::int64_t BytesAccounted() const;
  std::int64_t CellsAccounted() const;

  Counts counts_;
  Bytes bytes_;
  std::int64_t recordsRead_ = 0;
  ImportCellCounts cells_;
  // Stretches that did not join the one before: bytes that are in none, or in two.
  std::int64_t gaps_ = 0;
  std::int64_t nextOffset_ = -1;
};

}  // namespace library
