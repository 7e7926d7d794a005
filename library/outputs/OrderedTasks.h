// Work that is done on several threads and whose results are wanted in its order.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <future>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "HostFramework/Threads.h"

namespace library {

// Add and Take are called by one thread. What a task throws, its Take throws.
template <class Result>
class OrderedTasks {
 public:
  // Where no thread can be started, or none is wanted, Take does the work.
  explicit OrderedTasks(std::size_t threads) {
    for (std::size_t i = 0; i < threads; ++i) {
      try {
        threads_.emplace_back([this] { Work(); });
      } catch (const std::system_error&) {
        break;
      }
    }
  }
  OrderedTasks(const OrderedTasks&) = delete;
  OrderedTasks& operator=(const OrderedTasks&) = delete;
  // Waits for the tasks that have begun; the others are dropped.
  ~OrderedTasks() {
    {
      const sfGuard guard(mutex_);
      ended_ = true;
    }
    added_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }

  void Add(std::function<Result()> task) {
    std::packaged_task<Result()> packaged(std::move(task));
    results_.push_back(packaged.get_future());
    {
      const sfGuard guard(mutex_);
      waiting_.push_back(std::move(packaged));
    }
    added_.notify_one();
  }
  // Tasks whose results have not been taken.
  std::size_t pending() const { return results_.size(); }
  // Waits for the oldest of them and takes its result.
  Result Take() {
    std::future<Result> result = std::move(results_.front());
    results_.pop_front();
    while (threads_.empty() && RunOne()) {
    }
    return result.get();
  }

 private:
  using Task = std::packaged_task<Result()>;

  bool RunOne() {
    std::optional<Task> task;
    {
      const sfGuard guard(mutex_);
      task = NextTask();
    }
    if (task) (*task)();
    return task.has_value();
  }
  void Work() {
    while (std::optional<Task> task = AwaitTask()) (*task)();
  }
  // Nothing once no more tasks are to be done.
  std::optional<Task> AwaitTask() {
    const sfGuard guard(mutex_);
    while (!ended_ && waiting_.empty()) added_.wait(mutex_);
    return ended_ ? std::nullopt : NextTask();
  }
  std::optional<Task> NextTask() SF_REQUIRES(mutex_) {
    if (waiting_.empty()) return std::nullopt;
    std::optional<Task> task = std::move(waiting_.front());
    waiting_.pop_front();
    return task;
  }

  sfMutex mutex_;
  std::condition_variable_any added_;
  std::deque<Task> waiting_ SF_GUARDED_BY(mutex_);
  bool ended_ SF_GUARDED_BY(mutex_) = false;

  std::deque<std::future<Result>> results_;
  std::vector<std::thread> threads_;
};

}  // namespace library
