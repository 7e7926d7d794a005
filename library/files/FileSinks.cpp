#include "library/files/FileSinks.h"

#include <utility>

namespace library {
namespace {

// What each of the sinks has made.
class Parts : public CasePart {
 public:
  std::vector<std::unique_ptr<CasePart>> parts;
};

}  // namespace

FileCases::Room FileCases::TakeRoom(std::size_t cells) const {
  Room room;
  {
    const sfGuard guard(mutex_);
    if (!rooms_.empty()) {
      room = std::move(rooms_.back());
      rooms_.pop_back();
    }
  }
  if (room.size() < cells) room.resize(cells);
  return room;
}

void FileCases::GiveRoom(Room room) const {
  const sfGuard guard(mutex_);
  rooms_.push_back(std::move(room));
}

std::unique_ptr<CasePart> FileCases::Make(const OBS* cases, std::size_t count,
                                          std::int64_t firstCase) const {
  auto made = std::make_unique<Parts>();
  made->parts.reserve(sinks_.size());
  const auto make = [&](const OBS* all) {
    for (const CaseSink* sink : sinks_) {
      made->parts.push_back(sink->Make(all, count, casesBefore_ + firstCase));
    }
  };
  if (layout_.isSame()) {
    make(cases);
    return made;
  }
  Room room = TakeRoom(count * layout_.cells());
  layout_.Copy(cases, count, room.data());
  make(room.data());
  GiveRoom(std::move(room));
  return made;
}

void FileCases::Take(std::unique_ptr<CasePart> part) {
  std::vector<std::unique_ptr<CasePart>>& parts = static_cast<Parts&>(*part).parts;
  for (std::size_t i = 0; i < sinks_.size(); ++i) sinks_[i]->Take(std::move(parts[i]));
}

void FileProblems::Write(const ImportProblem& problem) {
  ImportProblem moved = problem;
  if (moved.caseNumber > 0) moved.caseNumber += casesBefore_;
  if (moved.variable >= 0) {
    moved.variable =
        static_cast<std::int32_t>(variables_[static_cast<std::size_t>(moved.variable)]);
  }
  ++written_;
  for (ProblemSink* sink : sinks_) sink->Write(moved);
}

}  // namespace library
