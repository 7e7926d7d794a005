#include "cli/wizard/Job.h"

#include <utility>

namespace cli {

void Job::Progress(const nlohmann::json& data) {
  {
    const sfGuard guard(mutex_);
    if (ended_) return;
    latest_ = {"progress", TextOf(data)};
    ++count_;
  }
  told_.notify_all();
}

void Job::Keep(std::shared_ptr<const JobResult> result) {
  const sfGuard guard(mutex_);
  result_ = std::move(result);
}

std::shared_ptr<const JobResult> Job::result() {
  const sfGuard guard(mutex_);
  return result_;
}

void Job::End(JobEvent event) {
  {
    const sfGuard guard(mutex_);
    if (ended_) return;
    latest_ = std::move(event);
    ++count_;
    ended_ = true;
  }
  told_.notify_all();
}

std::optional<JobEvent> Job::Next(std::size_t* seen, std::chrono::milliseconds wait) {
  const sfGuard guard(mutex_);
  const auto told = [this, seen]() SF_REQUIRES(mutex_) { return count_ > *seen; };
  if (!told_.wait_for(mutex_, wait, told)) return std::nullopt;
  *seen = count_;
  return latest_;
}

bool Job::EndedAt(std::size_t seen) {
  const sfGuard guard(mutex_);
  return ended_ && seen >= count_;
}

bool Job::ended() {
  const sfGuard guard(mutex_);
  return ended_;
}

}  // namespace cli
