#include "TxtWzMultiThreadMgr/RecordBatch.h"

#include <new>

namespace textwizard {

bool RecordBatch::Begin(std::size_t bytes) {
  fUsed = 0;
  fRecordCount = 0;
  // A text that grew for one record is given back after it.
  if (bytes > fCapacity || bytes < fCapacity / 2) {
    fText.reset();
    fCapacity = 0;
    fRoom = 0;
    fText.reset(new (std::nothrow) char[bytes + kReadableCells]);
    if (!fText) return false;
    std::memset(fText.get() + bytes, 0, kReadableCells);
    fCapacity = bytes;
  }
  fRoom = bytes;
  return true;
}

}  // namespace textwizard
