// A batch of records on its way from the reader thread to a worker: one text, each record ended by
// a LF, the whole by a zero byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "TxtWzMultiThreadMgr/StoreText.h"
#include "reading/RecordReader.h"

namespace textwizard {

// Belongs to one thread at a time: it is filled by the reader and read by the worker that it was
// handed to. Its memory is kept from batch to batch.
class RecordBatch {
 public:
  // Starts a batch with room for `bytes` of text; false, and the batch is empty, when there is no
  // memory for it.
  bool Begin(std::size_t bytes);
  // Adds a record; false when it does not fit.
  bool Append(std::string_view record) {
    if (record.size() + 1 >= fRoom - fUsed) return false;
    std::memcpy(fText.get() + fUsed, record.data(), record.size());
    fUsed += record.size();
    fText[fUsed++] = '\n';
    ++fRecordCount;
    return true;
  }
  // Adds the records that `reader` can copy at once, at most `most`.
  void AppendRun(RecordReader& reader, std::uint32_t most) {
    std::uint32_t count = 0;
    fUsed += reader.ReadRun(fText.get() + fUsed, fRoom - fUsed, most, &count);
    fRecordCount += count;
  }
  // Ends the text. `firstCase`: cases before the batch. `decoded`: the records are host text
  // already.
  void End(std::int64_t firstCase, bool decoded) {
    fText[fUsed] = '\0';
    fFirstCase = firstCase;
    fDecoded = decoded;
  }

  std::string_view text() const { return {fText.get(), fUsed}; }
  std::uint32_t recordCount() const { return fRecordCount; }
  std::int64_t firstCase() const { return fFirstCase; }
  bool decoded() const { return fDecoded; }
  // `text` is a part of the batch text, behind which kReadableCells more bytes can be read.
  bool Contains(std::string_view text) const {
    const auto address = [](const char* at) { return reinterpret_cast<std::uintptr_t>(at); };
    return address(text.data()) - address(fText.get()) < fUsed;
  }

 private:
  // The text and kReadableCells bytes.
  std::unique_ptr<char[]> fText;
  std::size_t fCapacity = 0;
  std::size_t fRoom = 0;
  std::size_t fUsed = 0;
  std::uint32_t fRecordCount = 0;
  std::int64_t fFirstCase = 0;
  bool fDecoded = false;
};

}  // namespace textwizard
