// The HTTP server behind the wizard's page: its assets, requests, jobs and their events.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include <nlohmann/json.hpp>

#include "cli/wizard/Job.h"
#include "cli/wizard/RequestGuard.h"

namespace httplib {
class Server;
struct Request;
struct Response;
}  // namespace httplib

namespace cli {

// A request that cannot be answered: what the page shows.
class RequestRefused : public std::runtime_error {
 public:
  explicit RequestRefused(const std::string& text, std::int32_t messageNumber = 0, int atLine = 0,
                          int atColumn = 0)
      : std::runtime_error(text), number(messageNumber), line(atLine), column(atColumn) {}
  const std::int32_t number;
  const int line;
  const int column;
};

// {"error": {...}} as the page understands it.
nlohmann::json ErrorJson(const RequestRefused& error);

// What the server does for the page. Called on the server's threads, several at the same time; each
// may throw RequestRefused.
class WizardService {
 public:
  virtual ~WizardService() = default;
  // Answers the request `name` ("sniff", "head", ...); nothing when it knows none of that name.
  virtual std::optional<nlohmann::json> Answer(std::string_view name,
                                               const nlohmann::json& body) = 0;
  // The work of the request `name` ("types", "import"), which goes on behind its answer; null when
  // it knows none of that name. The work ends the job, or throws.
  virtual std::function<void(Job&)> Work(std::string_view name, const nlohmann::json& body) = 0;
};

// Listens on the loopback interface only. Made, started and stopped by one thread.
class WizardServer {
 public:
  // `port` 0: any free one. Throws std::runtime_error when it cannot listen there.
  WizardServer(int port, WizardService& service);
  // Cancels the jobs and waits for them.
  ~WizardServer();

  // The address to open, with the token.
  std::string Address() const;
  void Start();
  void Stop();
  // The page was closed and has not come back since.
  bool PageClosed() const;

 private:
  struct Jobs;

  bool Admit(const httplib::Request& request, httplib::Response& response);
  void Serve(const httplib::Request& request, httplib::Response& response);
  void ServeAsset(const httplib::Request& request, httplib::Response& response);
  void ServeRequest(const httplib::Request& request, httplib::Response& response);
  void ServeJob(const std::string& rest, const httplib::Request& request,
                httplib::Response& response);
  void ServeEvents(const std::shared_ptr<Job>& job, httplib::Response& response) const;
  int StartJob(std::function<void(Job&)> work);

  WizardService& service_;
  const std::unique_ptr<httplib::Server> server_;
  int port_ = 0;
  std::unique_ptr<RequestGuard> guard_;
  std::atomic<bool> tokenUsed_{false};
  std::atomic<std::int64_t> closedAt_{0};
  std::atomic<bool> stopping_{false};
  const std::unique_ptr<Jobs> jobs_;
  std::thread listener_;
};

}  // namespace cli
