// Tells a host that watches an import of its file what it would be told of that file itself, where
// the component reads a copy of it.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "library/input/CopyMap.h"
#include "library/report/ForwardingObserver.h"

namespace library {

// Stands between the component and the host's observer: offsets and numbers of bytes are those of
// the file. Lines are the same. Threads as those of ImportObserver; the maps are asked on the
// host's.
class OriginalObserver final : public ForwardingObserver {
 public:
  using Copies = std::vector<std::shared_ptr<CopyMap>>;

  // `observer` may be null; it outlives this object. `copies`: of the file, of the copy and so on;
  // not empty. `fromStart`: passes begin with the file, not with a part of it.
  OriginalObserver(ImportObserver* observer, Copies copies, bool fromStart);

  // The file itself, and how it writes line ends.
  ByteSource& file() const { return copies_.front()->file(); }
  const LineEndBytes& lineEnds() const { return copies_.front()->lineEnds(); }

  void OnPassBegin() override;
  void OnProblem(const ImportProblem& problem) override;
  void OnProblemCase(const ImportCaseSpan& span) override;
  void OnSpan(const ImportSpan& span) override;
  void OnPassEnd(const ImportPassEnd& end) override;

 private:
  std::int64_t FileOffset(std::int64_t copied) const;

  const Copies copies_;
  // Bytes of the file for one of a line end, or of a NUL, in the copy.
  std::int64_t unitBytes_ = 1;
  const bool fromStart_;
  // Of a pass that is of a part, where that begins in the copy, once it is known; negative before.
  std::int64_t begin_ = -1;
};

}  // namespace library
