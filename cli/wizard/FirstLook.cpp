#include "cli/wizard/FirstLook.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <utility>

namespace cli {
namespace {

using nlohmann::json;

// Gives the promise what `ask` returns or throws; null where it threw.
json Fulfil(std::promise<json> promise, const std::function<json()>& ask) {
  try {
    json answer = ask();
    promise.set_value(answer);
    return answer;
  } catch (...) {
    promise.set_exception(std::current_exception());
    return nullptr;
  }
}

}  // namespace

FirstLook::FirstLook(Ask ask, std::string path) : path_(std::move(path)), state_(StateOf(path_)) {
  const json given = {{"path", path_}, {"given", json::object()}};
  json ofHead = given;
  ofHead["count"] = kCases;
  threads_.emplace_back(
      [ask, ofHead, head = Keep("head", ofHead)](const std::stop_token& stop) mutable {
        Fulfil(std::move(head), [&] { return ask("head", ofHead, stop); });
      });
  threads_.emplace_back([this, ask, given, sniff = Keep("sniff", given),
                         raw = Keep("raw", nullptr)](const std::stop_token& stop) mutable {
    const json sniffed = Fulfil(std::move(sniff), [&] { return ask("sniff", given, stop); });
    if (sniffed.is_null() || stop.stop_requested()) return;
    // The lines are shown in the encoding that was found.
    const json ofLines = {{"path", path_},
                          {"encoding", sniffed.at("reading").at("encoding")},
                          {"first", 1},
                          {"count", kRecords}};
    SetRawBody(ofLines);
    Fulfil(std::move(raw), [&] { return ask("raw", ofLines, stop); });
  });
}

FirstLook::State FirstLook::StateOf(const std::string& path) {
  std::error_code none;
  return {std::filesystem::file_size(path, none), std::filesystem::last_write_time(path, none)};
}

std::promise<json> FirstLook::Keep(std::string name, json body) {
  std::promise<json> promise;
  const sfGuard guard(mutex_);
  questions_.push_back({std::move(name), std::move(body), promise.get_future()});
  return promise;
}

void FirstLook::SetRawBody(const json& body) {
  const sfGuard guard(mutex_);
  for (Question& question : questions_) {
    if (question.name == "raw") question.body = body;
  }
}

std::optional<json> FirstLook::Whole(std::chrono::milliseconds wait) {
  const auto until = std::chrono::steady_clock::now() + wait;
  json answers = json::object();
  for (const char* name : {"head", "sniff", "raw"}) {
    std::shared_future<json> answer;
    {
      const sfGuard guard(mutex_);
      const auto kept = std::find_if(questions_.begin(), questions_.end(),
                                     [&](const Question& one) { return one.name == name; });
      if (kept == questions_.end()) return std::nullopt;
      answer = kept->answer;
    }
    if (answer.wait_until(until) != std::future_status::ready) return std::nullopt;
    try {
      answers[name] = answer.get();
    } catch (const std::exception&) {
      return std::nullopt;  // Take tells it
    }
  }
  const sfGuard guard(mutex_);
  // Somebody else may have taken one meanwhile.
  if (questions_.size() != answers.size() || StateOf(path_) != state_) return std::nullopt;
  questions_.clear();
  return answers;
}

std::optional<json> FirstLook::Take(std::string_view name, const json& body) {
  std::shared_future<json> answer;
  {
    const sfGuard guard(mutex_);
    const auto kept = std::find_if(questions_.begin(), questions_.end(), [&](const Question& one) {
      return one.name == name && one.body == body;
    });
    if (kept == questions_.end()) return std::nullopt;
    answer = kept->answer;
    questions_.erase(kept);
  }
  if (StateOf(path_) != state_) return std::nullopt;
  return answer.get();
}

}  // namespace cli
