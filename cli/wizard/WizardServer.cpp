#include "cli/wizard/WizardServer.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <httplib.h>

#include "HostFramework/Threads.h"
#include "cli/wizard/Assets.h"

namespace cli {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t kLongestBody = std::size_t{1} << 20;
constexpr int kTimeout = 5;  // seconds for a request to come in, and for an answer to be taken
constexpr std::size_t kThreads = 16;
// A page that is loaded anew closes and comes back.
constexpr milliseconds kReturn(3000);
constexpr milliseconds kEventPause(1000);

// Nothing but what this server sends is loaded, run, framed or sent to.
constexpr char kContentPolicy[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

std::int64_t Now() {
  return std::chrono::duration_cast<milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

void Refuse(httplib::Response& response, int status, const std::string& text) {
  response.status = status;
  response.set_content(ErrorJson(RequestRefused(text)).dump(), "application/json");
}

// An answer as it stands: what the library would compress costs more time than it saves on the way
// to this very machine.
void Answer(httplib::Response& response, std::string text, const char* type) {
  const auto body = std::make_shared<const std::string>(std::move(text));
  response.set_content_provider(
      body->size(), type, [body](std::size_t at, std::size_t length, httplib::DataSink& sink) {
        return sink.write(body->data() + at, length);
      });
}

std::string Header(const httplib::Request& request, const char* name) {
  return request.get_header_value(name);
}

}  // namespace

nlohmann::json ErrorJson(const RequestRefused& error) {
  nlohmann::json json = {{"text", error.what()}};
  if (error.number != 0) json["number"] = error.number;
  if (error.line != 0) {
    json["line"] = error.line;
    json["column"] = error.column;
  }
  return {{"error", json}};
}

// The jobs that the page knows, and their threads.
struct WizardServer::Jobs {
  struct Running {
    std::shared_ptr<Job> job;
    std::thread thread;
  };
  sfMutex mutex;
  int last SF_GUARDED_BY(mutex) = 0;
  std::map<int, Running> running SF_GUARDED_BY(mutex);

  std::shared_ptr<Job> Find(int number) {
    const sfGuard guard(mutex);
    const auto found = running.find(number);
    return found == running.end() ? nullptr : found->second.job;
  }
};

WizardServer::WizardServer(int port, WizardService& service)
    : service_(service),
      server_(std::make_unique<httplib::Server>()),
      jobs_(std::make_unique<Jobs>()) {
  server_->new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
  // A port that another server listens on is taken: the library would share it.
  server_->set_socket_options([](socket_t socket) {
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  });
  server_->set_payload_max_length(kLongestBody);
  server_->set_read_timeout(kTimeout);
  server_->set_write_timeout(kTimeout);
  server_->set_keep_alive_timeout(kTimeout);
  // Heads and bodies go out at once: the page has many small requests.
  server_->set_tcp_nodelay(true);
  server_->set_default_headers({{"Content-Security-Policy", kContentPolicy},
                                {"X-Content-Type-Options", "nosniff"},
                                {"X-Frame-Options", "DENY"},
                                {"Referrer-Policy", "no-referrer"},
                                {"Cross-Origin-Opener-Policy", "same-origin"},
                                {"Cross-Origin-Resource-Policy", "same-origin"},
                                {"Cache-Control", "no-store"}});
  server_->set_pre_routing_handler(
      [this](const httplib::Request& request, httplib::Response& response) {
        return Admit(request, response) ? httplib::Server::HandlerResponse::Unhandled
                                        : httplib::Server::HandlerResponse::Handled;
      });
  const auto serve = [this](const httplib::Request& request, httplib::Response& response) {
    Serve(request, response);
  };
  server_->Get(".*", serve);
  server_->Post(".*", serve);
  constexpr char kLoopback[] = "127.0.0.1";
  if (port == 0) {
    port_ = server_->bind_to_any_port(kLoopback);
  } else if (server_->bind_to_port(kLoopback, port)) {
    port_ = port;
  }
  if (port_ <= 0) {
    throw std::runtime_error(
        port == 0 ? "no port is free on this machine"
                  : fmt::format("port {} is taken: leave --port away for a free one", port));
  }
  guard_ = std::make_unique<RequestGuard>(port_);
}

WizardServer::~WizardServer() { Stop(); }

std::string WizardServer::Address() const {
  return fmt::format("http://127.0.0.1:{}/?token={}", port_, guard_->token());
}

void WizardServer::Start() {
  listener_ = std::thread([this] { server_->listen_after_bind(); });
  while (!server_->is_running()) std::this_thread::yield();
}

void WizardServer::Stop() {
  stopping_ = true;
  std::map<int, Jobs::Running> running;
  {
    const sfGuard guard(jobs_->mutex);
    running.swap(jobs_->running);
  }
  for (auto& [number, one] : running) one.job->Cancel();
  for (auto& [number, one] : running) one.thread.join();
  server_->stop();
  if (listener_.joinable()) listener_.join();
}

bool WizardServer::PageClosed() const {
  const std::int64_t closed = closedAt_.load();
  return closed != 0 && Now() - closed > kReturn.count();
}

bool WizardServer::Admit(const httplib::Request& request, httplib::Response& response) {
  const std::string host = Header(request, "Host");
  const std::string origin = Header(request, "Origin");
  const std::string site = Header(request, "Sec-Fetch-Site");
  const std::string cookie = Header(request, "Cookie");
  const std::string type = Header(request, "Content-Type");
  const RequestOrigin from{request.method, host, origin, site, cookie, type};
  Admission admission =
      request.get_header_value_count("Host") == 1 ? guard_->AdmitHost(from) : Admission::kForbidden;
  if (admission == Admission::kAdmitted) {
    admission = guard_->AdmitSession(from);
    const bool known = admission == Admission::kAdmitted;
    if (request.method == "GET" && request.path == "/" && request.has_param("token") &&
        (known || guard_->IsToken(request.get_param_value("token")))) {
      // The token opens the page once; who has the session already is sent on.
      if (known || !tokenUsed_.exchange(true)) {
        if (!known) response.set_header("Set-Cookie", guard_->SessionCookie());
        response.set_redirect("/", 303);
        return false;
      }
    }
  }
  switch (admission) {
    case Admission::kAdmitted:
      return true;
    case Admission::kUnauthorized:
      Refuse(response, 401, "Open the address that the program printed.");
      return false;
    case Admission::kForbidden:
      Refuse(response, 403, "Only the page of this program may ask.");
      return false;
    case Admission::kNotJson:
      Refuse(response, 415, "A request is JSON.");
      return false;
    case Admission::kMethodRefused:
      break;
  }
  Refuse(response, 405, "GET or POST.");
  return false;
}

void WizardServer::Serve(const httplib::Request& request, httplib::Response& response) {
  try {
    if (request.method == "GET" && !request.path.starts_with("/api/jobs/")) {
      ServeAsset(request, response);
    } else {
      ServeRequest(request, response);
    }
  } catch (const RequestRefused& error) {
    response.status = 400;
    response.set_content(
        ErrorJson(error).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace),
        "application/json");
  } catch (const nlohmann::json::exception&) {
    Refuse(response, 400, "The request is not what this program understands.");
  } catch (const std::exception& error) {
    Refuse(response, 500, error.what());
  }
}

void WizardServer::ServeAsset(const httplib::Request& request, httplib::Response& response) {
  const Asset* const asset = FindAsset(request.path == "/" ? "/index.html" : request.path);
  if (asset == nullptr) return Refuse(response, 404, "There is no such page.");
  closedAt_ = 0;
  Answer(response, std::string(asset->bytes), asset->type);
}

void WizardServer::ServeRequest(const httplib::Request& request, httplib::Response& response) {
  constexpr std::string_view kPrefix = "/api/";
  constexpr std::string_view kJobs = "jobs/";
  if (!request.path.starts_with(kPrefix)) return Refuse(response, 404, "There is no such request.");
  const std::string name = request.path.substr(kPrefix.size());
  if (name.starts_with(kJobs)) return ServeJob(name.substr(kJobs.size()), request, response);
  const nlohmann::json body = nlohmann::json::parse(request.body);
  if (!body.is_object()) return Refuse(response, 400, "A request is a JSON object.");
  if (name == "close") {
    closedAt_ = Now();
    return response.set_content("{}", "application/json");
  }
  closedAt_ = 0;
  std::optional<nlohmann::json> answer;
  if (std::function<void(Job&)> work = service_.Work(name, body)) {
    answer = nlohmann::json{{"job", StartJob(std::move(work))}};
  } else {
    answer = service_.Answer(name, body);
  }
  if (!answer) return Refuse(response, 404, "There is no such request.");
  Answer(response, answer->dump(-1, ' ', false, nlohmann::json::error_handler_t::replace),
         "application/json");
}

void WizardServer::ServeJob(const std::string& rest, const httplib::Request& request,
                            httplib::Response& response) {
  int number = 0;
  const char* const end = rest.data() + rest.size();
  const auto [at, error] = std::from_chars(rest.data(), end, number);
  const std::shared_ptr<Job> job = error == std::errc() ? jobs_->Find(number) : nullptr;
  if (!job || at == end || *at != '/') return Refuse(response, 404, "There is no such job.");
  const std::string_view name(at + 1, static_cast<std::size_t>(end - at - 1));
  if (request.method == "GET") {
    if (name == "events") return ServeEvents(job, response);
    return Refuse(response, 404, "There is no such request.");
  }
  if (name == "cancel") {
    job->Cancel();
    return response.set_content("{}", "application/json");
  }
  const auto result = job->result();
  const auto answer =
      result ? result->Answer(name, nlohmann::json::parse(request.body)) : std::nullopt;
  if (!answer) return Refuse(response, 404, "There is no such request.");
  Answer(response, answer->dump(-1, ' ', false, nlohmann::json::error_handler_t::replace),
         "application/json");
}

void WizardServer::ServeEvents(const std::shared_ptr<Job>& job, httplib::Response& response) const {
  auto seen = std::make_shared<std::size_t>(0);
  response.set_chunked_content_provider(
      "text/event-stream", [this, job, seen](std::size_t, httplib::DataSink& sink) {
        const auto event = job->Next(seen.get(), kEventPause);
        // A comment now and then tells whether anybody listens.
        const std::string text =
            event ? fmt::format("event: {}\ndata: {}\n\n", event->name, event->data) : ":\n\n";
        if (stopping_ || !sink.write(text.data(), text.size())) return false;
        if (job->EndedAt(*seen)) sink.done();
        return true;
      });
}

int WizardServer::StartJob(std::function<void(Job&)> work) {
  const sfGuard guard(jobs_->mutex);
  if (stopping_) throw RequestRefused("The program is ending.");
  // Jobs that have ended keep their events for who follows them, but not their threads for ever.
  constexpr std::size_t kKept = 64;
  for (auto one = jobs_->running.begin();
       one != jobs_->running.end() && jobs_->running.size() > kKept;) {
    if (!one->second.job->ended()) {
      ++one;
      continue;
    }
    one->second.thread.join();
    one = jobs_->running.erase(one);
  }
  const auto job = std::make_shared<Job>();
  std::thread thread([job, work = std::move(work)] {
    try {
      work(*job);
    } catch (const RequestRefused& error) {
      job->Failed(ErrorJson(error));
    } catch (const std::exception& error) {
      job->Failed(ErrorJson(RequestRefused(error.what())));
    }
    job->Failed(ErrorJson(RequestRefused("The work ended without a result.")));
  });
  jobs_->running.emplace(++jobs_->last, Jobs::Running{job, std::move(thread)});
  return jobs_->last;
}

}  // namespace cli
