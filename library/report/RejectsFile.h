// The records of cases that had a problem, as they stand in the data file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "HostFramework/ImportObserver.h"
#include "library/input/ByteSource.h"
#include "library/input/LineEndBytes.h"
#include "library/outputs/ByteSink.h"

namespace library {

// Copies bytes of the data file: the head (byte-order mark and lines before the first case), then
// the records of cases with their line ends, so that the command that read the data file reads the
// copy alike. One thread; data and sink outlive it.
class RejectsFile {
 public:
  // `ends`: how the data writes them.
  RejectsFile(ByteSource& data, ByteSink& sink, LineEndBytes ends = {})
      : data_(data), sink_(sink), ends_(std::move(ends)) {}

  // The head goes on up to `end`. Before any case.
  void CopyHead(std::int64_t end);
  // Cases come in file order and do not overlap. One that ends within a line (values run across
  // lines) gets a line end; a CR gets its LF where the LF of an empty record would follow and make
  // one line end of two.
  void CopyCase(const ImportCaseSpan& span);
  // Writes what is held back.
  void Finish();

  // Why the data could not be copied, a sentence (UTF-8); empty while it could.
  const std::string& problem() const { return problem_; }

 private:
  void CopyPending();
  void NoteEnd(std::string_view written);
  // A LF begins at `offset`; false at the end of the data.
  bool IsLineFeedAt(std::int64_t offset);

  ByteSource& data_;
  ByteSink& sink_;
  const LineEndBytes ends_;
  std::string problem_;
  std::string block_;
  // Stretch that is to be copied.
  std::int64_t begin_ = 0;
  std::int64_t end_ = 0;
  // What was written last ended a line, or nothing was.
  bool atLineStart_ = true;
  // It was a CR alone.
  bool afterReturn_ = false;
};

}  // namespace library
