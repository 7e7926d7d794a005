// The bytes of a batch that are no character, on their way from a worker to the host's thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "reading/UndecodableScan.h"

namespace textwizard {

// Runs of bytes, packed: a run takes fewer bytes than it and what separates it from the run before,
// but for a few. So the notes never take much more memory than the batch text, whatever it holds.
// One thread at a time.
class UndecodableNotes {
 public:
  // Of record `record` of the batch, from 0.
  struct Note {
    std::uint32_t record = 0;
    UndecodableRun run;
  };

  // Starts an empty batch.
  void Clear();
  // In the order of the records, and of their bytes. Throws when there is no memory for it, and has
  // then noted nothing.
  void Add(std::uint32_t record, const UndecodableRun& run);
  // The next note of a record below `records`; null when there is none. Good until the next call.
  const Note* Next(std::uint32_t records);
  // Bytes that the batch's notes take.
  std::size_t bytes() const { return packed_.size(); }

 private:
  std::uint64_t Take();

  std::vector<std::uint8_t> packed_;
  // What was added last.
  std::uint32_t lastRecord_ = 0;
  std::size_t lastEnd_ = 0;
  // Where reading is in packed_, and what was read last; `held_` is still to be handed out.
  std::size_t cursor_ = 0;
  Note next_;
  bool held_ = false;
};

}  // namespace textwizard
