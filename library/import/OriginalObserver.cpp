#include "library/import/OriginalObserver.h"

#include <utility>

namespace library {

OriginalObserver::OriginalObserver(ImportObserver* observer, Copies copies, bool fromStart)
    : ForwardingObserver(observer), copies_(std::move(copies)), fromStart_(fromStart) {
  for (const std::shared_ptr<CopyMap>& copy : copies_) unitBytes_ *= copy->unitBytes();
}

std::int64_t OriginalObserver::FileOffset(std::int64_t copied) const {
  return library::FileOffset(copies_, copied);
}

void OriginalObserver::OnPassBegin() {
  observer().OnPassBegin();
  begin_ = fromStart_ ? 0 : -1;
  // The mark that the copy lacks stands in front of its first byte: what is told of the others
  // comes later, and some of it only after the first problems.
  const std::int64_t markBytes = fromStart_ ? copies_.front()->markBytes() : 0;
  if (markBytes == 0) return;
  observer().OnSpan({.kind = ImportSpan::kMark,
                     .offset = 0,
                     .bytes = markBytes,
                     .records = 0,
                     .lineEndBytes = 0,
                     .droppedBytes = 0});
}

void OriginalObserver::OnProblem(const ImportProblem& problem) {
  ImportProblem restored = problem;
  restored.byte = FileOffset(problem.byte);
  observer().OnProblem(restored);
}

void OriginalObserver::OnProblemCase(const ImportCaseSpan& span) {
  ImportCaseSpan restored = span;
  restored.begin = FileOffset(span.begin);
  restored.end = FileOffset(span.end);
  observer().OnProblemCase(restored);
}

void OriginalObserver::OnSpan(const ImportSpan& span) {
  if (begin_ < 0) begin_ = span.offset;
  ImportSpan restored = span;
  restored.offset = FileOffset(span.offset);
  restored.bytes = FileOffset(span.offset + span.bytes) - restored.offset;
  restored.lineEndBytes *= unitBytes_;
  restored.droppedBytes *= unitBytes_;
  observer().OnSpan(restored);
}

void OriginalObserver::OnPassEnd(const ImportPassEnd& end) {
  ImportPassEnd restored = end;
  if (fromStart_) {
    restored.bytes = FileOffset(end.bytes);
  } else if (begin_ >= 0) {
    restored.bytes = FileOffset(begin_ + end.bytes) - FileOffset(begin_);
  }
  observer().OnPassEnd(restored);
}

}  // namespace library
