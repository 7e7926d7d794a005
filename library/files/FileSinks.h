// Hands what one of several files gives on to those who take all of it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "HostFramework/Threads.h"
#include "library/files/CaseLayout.h"
#include "library/outputs/CaseSink.h"
#include "library/report/ProblemSink.h"

namespace library {

// The cases, as those of the data set. What it is made of outlives it.
class FileCases final : public CaseSink {
 public:
  // `casesBefore` cases stand before those of the file.
  FileCases(const CaseLayout& layout, const std::vector<CaseSink*>& sinks, std::int64_t casesBefore)
      : layout_(layout), sinks_(sinks), casesBefore_(casesBefore) {}

  std::unique_ptr<CasePart> Make(const OBS* cases, std::size_t count,
                                 std::int64_t firstCase) const override;
  void Take(std::unique_ptr<CasePart> part) override;
  // Others go on taking cases.
  void Finish() override {}

 private:
  using Room = std::vector<OBS>;
  Room TakeRoom(std::size_t cells) const;
  void GiveRoom(Room room) const;

  const CaseLayout& layout_;
  const std::vector<CaseSink*>& sinks_;
  const std::int64_t casesBefore_;
  mutable sfMutex mutex_;
  // Those that no thread works with.
  mutable std::vector<Room> rooms_ SF_GUARDED_BY(mutex_);
};

// The problems, with the data set's cases and variables.
class FileProblems final : public ProblemSink {
 public:
  // `variables`: of each variable of the file that of the data set.
  FileProblems(const std::vector<ProblemSink*>& sinks, const std::vector<std::size_t>& variables,
               std::int64_t casesBefore)
      : sinks_(sinks), variables_(variables), casesBefore_(casesBefore) {}

  void Write(const ImportProblem& problem) override;
  std::int64_t written() const { return written_; }

 private:
  const std::vector<ProblemSink*>& sinks_;
  const std::vector<std::size_t>& variables_;
  const std::int64_t casesBefore_;
  std::int64_t written_ = 0;
};

}  // namespace library
