// What the page asks first about the file that it opens on, found out while the browser still
// starts.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <future>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <nlohmann/json.hpp>

#include "HostFramework/Threads.h"

namespace cli {

// Any thread. Of a file that changes meanwhile nothing is told: it is to be asked again.
class FirstLook {
 public:
  // Records and cases that the page shows of the file's head.
  static constexpr int kRecords = 40;
  static constexpr int kCases = 30;

  // Answers a question as the page puts it ("sniff", "raw", "head"), with the file's path; throws
  // when it cannot, or is to stop.
  using Ask = std::function<nlohmann::json(std::string_view name, const nlohmann::json& body,
                                           const std::stop_token& stop)>;

  // Begins to ask about the file `path`.
  FirstLook(Ask ask, std::string path);
  // Ends what is still asked.
  ~FirstLook() = default;
  FirstLook(const FirstLook&) = delete;
  FirstLook& operator=(const FirstLook&) = delete;

  // All answers by their names, once, where they are there within `wait`.
  std::optional<nlohmann::json> Whole(std::chrono::milliseconds wait) SF_EXCLUDES(mutex_);
  // The answer to that question, once, where it is one of the first; waits for it. Throws what
  // asking threw.
  std::optional<nlohmann::json> Take(std::string_view name, const nlohmann::json& body)
      SF_EXCLUDES(mutex_);

 private:
  struct Question {
    std::string name;
    nlohmann::json body;
    std::shared_future<nlohmann::json> answer;
  };
  // What a file is known by: a changed one has another.
  struct State {
    std::uintmax_t size = 0;
    std::filesystem::file_time_type written{};
    bool operator==(const State&) const = default;
  };

  static State StateOf(const std::string& path);
  // Keeps a question; its answer is given by what is returned.
  std::promise<nlohmann::json> Keep(std::string name, nlohmann::json body) SF_EXCLUDES(mutex_);
  // Of the raw lines, once the file's encoding is known.
  void SetRawBody(const nlohmann::json& body) SF_EXCLUDES(mutex_);

  const std::string path_;
  const State state_;
  sfMutex mutex_;
  std::vector<Question> questions_ SF_GUARDED_BY(mutex_);
  // Last: they end before what they use does.
  std::vector<std::jthread> threads_;
};

}  // namespace cli
