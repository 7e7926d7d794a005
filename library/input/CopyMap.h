// The way back from a copy of a text to the text.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "library/input/ByteSource.h"
#include "library/input/LineEndBytes.h"

namespace library {

// What stands where in a copy that has the same characters as a file in the same order, and maybe
// blanks that the file lacks. Little is kept: from time to time how the copying stood, so that a
// stretch can be gone through again when one of its places is asked for. One thread.
class CopyMap {
 public:
  // Characters of the same lengths: from `copy` on each has copyBytes bytes in the copy and, from
  // `file` on, fileBytes in the file: 0 for blanks that the file lacks.
  struct Run {
    std::int64_t copy;
    std::int64_t file;
    std::int64_t copyBytes;
    std::int64_t fileBytes;
  };
  // Goes through a stretch again: appends the runs of `bytes`, which the file holds from `file` on
  // and the copy from `copy` on. `ends`: nothing follows them.
  using Replay = std::function<void(std::string_view bytes, std::int64_t file, std::int64_t copy,
                                    bool ends, std::vector<Run>* runs)>;

  // `file`: what is copied.
  explicit CopyMap(std::unique_ptr<ByteSource> file) : file_(std::move(file)) {}

  // While the copy is made: so many bytes of file and copy are done; `replay` goes on from here.
  // Rising, the first time at the beginning of both.
  void AddStretch(std::int64_t file, std::int64_t copy, Replay replay);
  // The copy is complete.
  void End(std::int64_t file, std::int64_t copy);
  // Of the text: the mark that the copy lacks, how it writes line ends, and what each of them and
  // each NUL byte has there for one byte in the copy.
  void SetText(std::int64_t markBytes, LineEndBytes lineEnds, std::int64_t unitBytes);

  // Offset in the file of an offset in the copy: of the character that begins there, or of what
  // follows blanks that the file lacks; its size at the copy's end.
  std::int64_t FileOffset(std::int64_t copied);
  std::int64_t markBytes() const { return markBytes_; }
  std::int64_t unitBytes() const { return unitBytes_; }
  const LineEndBytes& lineEnds() const { return lineEnds_; }
  ByteSource& file() { return *file_; }

 private:
  struct Stretch {
    std::int64_t file;
    std::int64_t copy;
    Replay replay;
  };
  // A stretch that was gone through again.
  struct Known {
    std::size_t stretch = SIZE_MAX;
    std::vector<Run> runs;
  };

  const std::vector<Run>& RunsOf(std::size_t stretch);

  const std::unique_ptr<ByteSource> file_;
  std::vector<Stretch> stretches_;
  std::int64_t fileEnd_ = 0;
  std::int64_t copyEnd_ = 0;
  std::int64_t markBytes_ = 0;
  std::int64_t unitBytes_ = 1;
  LineEndBytes lineEnds_;
  // Places are asked for nearly in file order.
  std::array<Known, 2> known_;
  std::size_t oldest_ = 0;
};

// Of a copy of a copy and so on, the first one of the file itself: the offset in that.
std::int64_t FileOffset(const std::vector<std::shared_ptr<CopyMap>>& copies, std::int64_t offset);

}  // namespace library
