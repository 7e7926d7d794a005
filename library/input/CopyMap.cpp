#include "library/input/CopyMap.h"

#include <algorithm>

namespace library {

void CopyMap::AddStretch(std::int64_t file, std::int64_t copy, Replay replay) {
  stretches_.push_back({file, copy, std::move(replay)});
}

void CopyMap::End(std::int64_t file, std::int64_t copy) {
  fileEnd_ = file;
  copyEnd_ = copy;
}

void CopyMap::SetText(std::int64_t markBytes, LineEndBytes lineEnds, std::int64_t unitBytes) {
  markBytes_ = markBytes;
  lineEnds_ = std::move(lineEnds);
  unitBytes_ = unitBytes;
}

const std::vector<CopyMap::Run>& CopyMap::RunsOf(std::size_t stretch) {
  for (const Known& known : known_) {
    if (known.stretch == stretch) return known.runs;
  }
  Known& known = known_[oldest_];
  oldest_ = 1 - oldest_;
  known.stretch = stretch;
  known.runs.clear();
  const bool ends = stretch + 1 == stretches_.size();
  const Stretch& begin = stretches_[stretch];
  const std::int64_t end = ends ? fileEnd_ : stretches_[stretch + 1].file;
  std::string bytes(static_cast<std::size_t>(end - begin.file), '\0');
  std::size_t read = 0;
  std::string problem;
  // A file that cannot be read again has the places of the stretch's beginning.
  if (!file_->ReadAt(static_cast<std::uint64_t>(begin.file), bytes.data(), bytes.size(), &read,
                     &problem)) {
    return known.runs;
  }
  bytes.resize(read);
  begin.replay(bytes, begin.file, begin.copy, ends, &known.runs);
  return known.runs;
}

std::int64_t CopyMap::FileOffset(std::int64_t copied) {
  if (copied >= copyEnd_) return fileEnd_;
  const auto behind =
      std::upper_bound(stretches_.begin(), stretches_.end(), copied,
                       [](std::int64_t at, const Stretch& stretch) { return at < stretch.copy; });
  if (behind == stretches_.begin()) return 0;
  const auto stretch = static_cast<std::size_t>(behind - stretches_.begin()) - 1;
  const std::vector<Run>& runs = RunsOf(stretch);
  const auto next = std::upper_bound(runs.begin(), runs.end(), copied,
                                     [](std::int64_t at, const Run& run) { return at < run.copy; });
  if (next == runs.begin()) return stretches_[stretch].file;
  const Run& run = *(next - 1);
  return run.file + (copied - run.copy) / run.copyBytes * run.fileBytes;
}

std::int64_t FileOffset(const std::vector<std::shared_ptr<CopyMap>>& copies, std::int64_t offset) {
  for (auto copy = copies.rbegin(); copy != copies.rend(); ++copy)
    offset = (*copy)->FileOffset(offset);
  return offset;
}

}  // namespace library
