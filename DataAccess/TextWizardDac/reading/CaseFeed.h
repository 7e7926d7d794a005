// Cases of a pass that are made ahead of the iterator that delivers them.
#pragma once

#include <cstdint>

namespace textwizard {

// Delivers every case of a pass from the first one on, in the order of the file, and tells of them
// what the iterator would: messages to its monitor, notes of the map, whatever an observer hears.
// Made for one iterator, which outlives it. Host's thread; nothing is thrown.
class CaseFeed {
 public:
  CaseFeed() = default;
  CaseFeed(const CaseFeed&) = delete;
  CaseFeed& operator=(const CaseFeed&) = delete;
  // Ends a pass that has not come to its end.
  virtual ~CaseFeed() = default;

  // Puts the next case, or the last one of the next batch, into the iterator's case buffer; false
  // when there is none.
  virtual bool Next() = 0;
  // Cases delivered so far.
  virtual std::int64_t caseCount() const = 0;
  // Of the latest case: the file position of the record read last for it.
  virtual std::int64_t recordPosition() const = 0;
  // Tells the observer that the pass ends here, though cases may still be asked for.
  virtual void EndTelling() = 0;
};

}  // namespace textwizard
