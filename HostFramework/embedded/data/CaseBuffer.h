// A case buffer of a data source, and the values in it.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "HostFramework/DataSource.h"

namespace embedded {

// The cells of one case. The source must have all its variables before, and outlive the buffer.
class CaseBuffer {
 public:
  // Every number starts missing and every string blank. Without memory the buffer is empty.
  explicit CaseBuffer(const QANT_DataSource& source);

  // What MakeIterator takes; null when there was no memory.
  OBS* obs() const { return cells_.get(); }
  // The value of a number, and the text of a string with the blanks that pad it to its width.
  // `column` counts the source's variables and must name one of that kind. The text lives until the
  // case changes.
  double Number(std::size_t column) const;
  std::string_view Text(std::size_t column) const;

 private:
  const QANT_DataSource& source_;
  std::unique_ptr<OBS[]> cells_;
};

// Case buffers of more bytes than this find no memory, so that its lack can be tried out; 0 is no
// limit (the default). Any thread.
void SetCaseBufferLimit(std::size_t bytes);

}  // namespace embedded
