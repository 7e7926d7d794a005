#include "cli/wizard/Job.h"

#include <utility>

namespace cli {

void Job::Progress(const nlohmann::json& data) {
  {
    const std::lock_guard guard(mutex_);
    if (ended_) return;
    latest_ = {"progress", data.dump()};
    ++count_;
  }
  told_.notify_all();
}

void Job::End(JobEvent event) {
  {
    const std::lock_guard guard(mutex_);
    if (ended_) return;
    latest_ = std::move(event);
    ++count_;
    ended_ = true;
  }
  told_.notify_all();
}

std::optional<JobEvent> Job::Next(std::size_t* seen, std::chrono::milliseconds wait) {
  std::unique_lock lock(mutex_);
  if (!told_.wait_for(lock, wait, [&] { return count_ > *seen; })) return std::nullopt;
  *seen = count_;
  return latest_;
}

bool Job::EndedAt(std::size_t seen) {
  const std::lock_guard guard(mutex_);
  return ended_ && seen >= count_;
}

bool Job::ended() {
  const std::lock_guard guard(mutex_);
  return ended_;
}

}  // namespace cli
