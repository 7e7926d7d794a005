// Fixed columns whose edges fall inside characters.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "HostFramework/FileStream.h"
#include "reading/ImportSource.h"

namespace library {

// Looks at the data file a second time, apart from the import. Files that are ASCII all, as most
// are, are told on a thread of its own while the import reads; only others are looked at closely.
// Made and asked on the host's thread.
class ColumnEdgeCheck {
 public:
  // Before the import reads the cases of `source`, which outlives it.
  explicit ColumnEdgeCheck(const textwizard::ImportSource& source);
  ~ColumnEdgeCheck();
  ColumnEdgeCheck(const ColumnEdgeCheck&) = delete;
  ColumnEdgeCheck& operator=(const ColumnEdgeCheck&) = delete;

  // Says where in the lines of the first `cases` cases an edge of a column first falls inside a
  // character: a sentence in host text without a full stop. Empty where none does. Once.
  std::string Advice(std::int64_t cases);

 private:
  void LookForOtherThanAscii();

  const textwizard::ImportSource& source_;
  // Edges cannot fall inside characters: the columns are not fixed, or all characters have one
  // byte.
  const bool needless_;
  QANT_FileStream stream_;
  std::atomic<bool> stop_{false};
  // Set by the thread before it ends.
  std::atomic<bool> allAscii_{false};
  std::thread scan_;
};

}  // namespace library
