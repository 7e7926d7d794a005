// Something that the wizard's server does for a while, and what it says of it.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "HostFramework/Threads.h"

namespace cli {

// An event as the page gets it.
struct JobEvent {
  std::string name;
  std::string data;  // JSON
  bool operator==(const JobEvent&) const = default;
};

// What a job leaves behind for those who ask later. Any thread.
class JobResult {
 public:
  virtual ~JobResult() = default;
  // Answers the question `name`; nothing when it knows none of that name. May throw RequestRefused.
  virtual std::optional<nlohmann::json> Answer(std::string_view name,
                                               const nlohmann::json& question) const = 0;
};

// Told by one thread, followed by any number of others. Of progress only the latest is kept for who
// comes late.
class Job {
 public:
  // --- The thread that does it
  void Progress(const nlohmann::json& data);
  // Before it ends.
  void Keep(std::shared_ptr<const JobResult> result);
  // Ends it; each at most once.
  void Done(const nlohmann::json& data) { End({"done", TextOf(data)}); }
  void Failed(const nlohmann::json& error) { End({"failed", TextOf(error)}); }
  void Cancelled() { End({"cancelled", "{}"}); }
  bool cancelRequested() const { return cancel_.load(); }

  // --- Any thread
  void Cancel() { cancel_.store(true); }
  // The event behind the first `seen` ones, waited for at most so long; nothing when none came.
  // *seen counts it.
  std::optional<JobEvent> Next(std::size_t* seen, std::chrono::milliseconds wait);
  // No event comes behind the first `seen` ones.
  bool EndedAt(std::size_t seen);
  bool ended();
  // Null when it left nothing, or has not yet.
  std::shared_ptr<const JobResult> result();

 private:
  // Bytes of file names may be no UTF-8.
  static std::string TextOf(const nlohmann::json& data) {
    return data.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  }
  void End(JobEvent event);

  std::atomic<bool> cancel_{false};
  sfMutex mutex_;
  std::condition_variable_any told_;
  // How many there were; the latest of progress, and the last one.
  std::size_t count_ SF_GUARDED_BY(mutex_) = 0;
  JobEvent latest_ SF_GUARDED_BY(mutex_);
  bool ended_ SF_GUARDED_BY(mutex_) = false;
  std::shared_ptr<const JobResult> result_ SF_GUARDED_BY(mutex_);
};

}  // namespace cli
