#include "TxtWzMultiThreadMgr/RecordBatch.h"

#include <cstring>
#include <new>
#include <utility>

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

bool RecordBatch::Grow(std::size_t bytes) {
  std::unique_ptr<char[]> text(new (std::nothrow) char[bytes + kReadableCells]);
  if (!text) return false;
  std::memcpy(text.get(), fText.get(), fUsed);
  std::memset(text.get() + bytes, 0, kReadableCells);
  fText = std::move(text);
  fCapacity = fRoom = bytes;
  return true;
}

void BatchRecords::MarkFrom(std::size_t word) {
  // Decoded text has no CR that ends a line; a byte of it may look like one.
  static constexpr ByteSet kRaw = {{'\n', '\r'}, 2};
  static constexpr ByteSet kDecoded = {{'\n'}, 1};
  const std::string_view text = fText.substr(64 * word, 64 * kMarkWords);
  MarkBytes(text, fDecoded ? kDecoded : kRaw, fMarks.data());
  fFirstMark = word;
  fMarkCount = (text.size() + 63) / 64;
}

}  // namespace textwizard
