// The server as others on this machine may try it: over real sockets, with whatever bytes they
// like.
#include "cli/wizard/WizardServer.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace cli {
namespace {

using nlohmann::json;

// Knows one question.
class EchoResult : public JobResult {
 public:
  std::optional<json> Answer(std::string_view name, const json& question) const override {
    if (name != "problems") return std::nullopt;
    return json{{"name", name}, {"question", question}};
  }
};

// Answers what it was asked.
class EchoService : public WizardService {
 public:
  std::optional<json> Answer(std::string_view name, const json& body) override {
    if (name == "refuse") throw RequestRefused("no <b>such</b> \"column\"", 2265, 3, 7);
    if (name != "echo") return std::nullopt;
    return json{{"name", name}, {"body", body}};
  }
  std::function<void(Job&)> Work(std::string_view name, const json& body) override {
    if (name == "count") {
      return [to = body.at("to").get<int>()](Job& job) {
        for (int i = 1; i <= to; ++i) job.Progress({{"at", i}});
        job.Keep(std::make_shared<EchoResult>());
        job.Done({{"counted", to}});
      };
    }
    if (name == "wait") {
      return [](Job& job) {
        while (!job.cancelRequested()) std::this_thread::yield();
        job.Cancelled();
      };
    }
    if (name == "fail") return [](Job&) { throw RequestRefused("could not"); };
    return nullptr;
  }
};

class WizardServerTest : public testing::Test {
 protected:
  WizardServerTest() : server_(0, service_) {
    server_.Start();
    const std::string address = server_.Address();
    const std::string host = address.substr(7, address.find("/?") - 7);
    host_ = host;
    port_ = static_cast<std::uint16_t>(std::stoi(host.substr(host.find(':') + 1)));
    token_ = address.substr(address.find("token=") + 6);
  }

  // An answer that says how long its body is has come whole.
  static bool IsWhole(const std::string& answer) {
    const std::size_t body = answer.find("\r\n\r\n");
    const std::size_t length = answer.find("Content-Length: ");
    return body != std::string::npos && length < body &&
           answer.size() - body - 4 >= std::stoul(answer.substr(length + 16));
  }
  // A socket to the server, -1 when it listens no more.
  int Connect() const {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port_);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
      close(socket);
      return -1;
    }
    const timeval wait{60, 0};
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
    return socket;
  }
  // Sends bytes as they are; the answer until it is whole or the server closes. `nothingFollows`:
  // so that the server does not wait for more.
  std::string Send(const std::string& bytes, bool nothingFollows = false) const {
    const int socket = Connect();
    EXPECT_GE(socket, 0);
    for (std::size_t sent = 0; sent < bytes.size();) {
      const ssize_t done = ::send(socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
      if (done <= 0) break;
      sent += static_cast<std::size_t>(done);
    }
    if (nothingFollows) shutdown(socket, SHUT_WR);
    std::string answer;
    char buffer[4096];
    for (ssize_t got = 0; (got = recv(socket, buffer, sizeof buffer, 0)) > 0;) {
      answer.append(buffer, static_cast<std::size_t>(got));
      if (IsWhole(answer)) break;
    }
    close(socket);
    return answer;
  }

  std::string Headers(const std::string& first) const {
    return first + " HTTP/1.1\r\nHost: " + host_ + "\r\nConnection: close\r\n";
  }
  std::string Get(const std::string& path, const std::string& more = "") const {
    return Send(Headers("GET " + path) + more + "\r\n");
  }
  // A request as the page sends it.
  std::string Post(const std::string& path, const std::string& body) const {
    return Send(Headers("POST " + path) + "Origin: http://" + host_ + "\r\nCookie: " + cookie_ +
                "\r\nContent-Type: application/json\r\nContent-Length: " +
                std::to_string(body.size()) + "\r\n\r\n" + body);
  }
  // Exchanges the token for the cookie.
  void OpenPage() {
    const std::string answer = Get("/?token=" + token_);
    ASSERT_EQ(Status(answer), 303) << answer;
    const std::size_t at = answer.find("Set-Cookie: ") + 12;
    cookie_ = answer.substr(at, answer.find(';', at) - at);
  }

  static int Status(const std::string& answer) {
    return answer.size() < 12 ? 0 : std::stoi(answer.substr(9, 3));
  }
  static json Body(const std::string& answer) {
    return json::parse(answer.substr(answer.find("\r\n\r\n") + 4));
  }

  EchoService service_;
  WizardServer server_;
  std::string host_;
  std::uint16_t port_ = 0;
  std::string token_;
  std::string cookie_;
};

TEST_F(WizardServerTest, TheTokenOpensThePageOnce) {
  OpenPage();
  EXPECT_EQ(Status(Get("/?token=" + token_)), 401);
  const std::string page = Get("/", "Cookie: " + cookie_ + "\r\n");
  EXPECT_EQ(Status(page), 200);
  EXPECT_NE(page.find("text/html"), std::string::npos);
  EXPECT_NE(page.find("<!doctype html>"), std::string::npos);
  EXPECT_EQ(Status(Get("/?token=" + token_, "Cookie: " + cookie_ + "\r\n")), 303);
}

TEST_F(WizardServerTest, NothingIsAnsweredWithoutTheCookie) {
  for (const char* path : {"/", "/app.js", "/style.css", "/api/jobs/1/events", "/favicon.ico",
                           "/?token=", "/?token=0000", "/?TOKEN=x", "//", "/../etc/passwd"}) {
    const std::string answer = Get(path);
    EXPECT_EQ(Status(answer), 401) << path;
    EXPECT_EQ(answer.find("doctype"), std::string::npos) << path;
  }
  EXPECT_EQ(Status(Post("/api/echo", "{}")), 401);
}

TEST_F(WizardServerTest, RequestsForOtherHostsAreForbiddenWithTheCookieToo) {
  OpenPage();
  const std::string port = std::to_string(port_);
  for (const std::string& host :
       {std::string("evil.example"), "evil.example:" + port, "127.0.0.1.evil.example:" + port,
        std::string("127.0.0.1"), std::string("127.0.0.1:1"), "0.0.0.0:" + port, std::string()}) {
    const std::string answer = Send("GET / HTTP/1.1\r\nHost: " + host +
                                    "\r\nConnection: close\r\nCookie: " + cookie_ + "\r\n\r\n");
    EXPECT_EQ(Status(answer), 403) << host;
  }
  EXPECT_EQ(Status(Send("GET / HTTP/1.1\r\nConnection: close\r\nCookie: " + cookie_ + "\r\n\r\n")),
            403);
  EXPECT_EQ(Status(Get("/", "Host: evil.example\r\nCookie: " + cookie_ + "\r\n")), 403);
}

TEST_F(WizardServerTest, OtherPagesCannotPost) {
  OpenPage();
  const std::string start = Headers("POST /api/echo") + "Cookie: " + cookie_ + "\r\n";
  const std::string end = "Content-Length: 2\r\n\r\n{}";
  const std::string typed = "Content-Type: application/json\r\n";
  for (const char* origin :
       {"http://evil.example", "null", "https://127.0.0.1", "http://localhost"}) {
    EXPECT_EQ(Status(Send(start + "Origin: " + origin + "\r\n" + typed + end)), 403) << origin;
  }
  EXPECT_EQ(Status(Send(start + typed + end)), 403) << "no origin";
  const std::string own = start + "Origin: http://" + host_ + "\r\n";
  EXPECT_EQ(Status(Send(own + "Sec-Fetch-Site: cross-site\r\n" + typed + end)), 403);
  for (const char* type :
       {"text/plain", "application/x-www-form-urlencoded", "multipart/form-data"}) {
    EXPECT_EQ(Status(Send(own + "Content-Type: " + type + "\r\n" + end)), 415) << type;
  }
  EXPECT_EQ(Status(Send(own + typed + end)), 200);
}

TEST_F(WizardServerTest, OtherMethodsAreRefused) {
  OpenPage();
  for (const char* method : {"PUT", "DELETE", "PATCH", "OPTIONS"}) {
    EXPECT_EQ(Status(Send(Headers(std::string(method) + " /") + "Cookie: " + cookie_ + "\r\n\r\n")),
              405)
        << method;
  }
}

TEST_F(WizardServerTest, AssetsAreThosePackedAndNoFiles) {
  OpenPage();
  const std::string cookie = "Cookie: " + cookie_ + "\r\n";
  EXPECT_EQ(Status(Get("/app.js", cookie)), 200);
  for (const char* path :
       {"/../cli/main.cpp", "/..%2f..%2fetc/passwd", "/%2e%2e/%2e%2e/etc/passwd", "/etc/passwd",
        "/app.js/", "/steps", "/steps/..", "/README.md", "/app.js%00.html", "/\\..\\secret"}) {
    EXPECT_EQ(Status(Get(path, cookie)), 404) << path;
  }
}

TEST_F(WizardServerTest, EveryAnswerForbidsWhatThePageDoesNotNeed) {
  OpenPage();
  const std::string answer = Get("/", "Cookie: " + cookie_ + "\r\n");
  for (const char* header : {"Content-Security-Policy: default-src 'none'; script-src 'self'",
                             "frame-ancestors 'none'", "X-Content-Type-Options: nosniff",
                             "Referrer-Policy: no-referrer", "Cache-Control: no-store"}) {
    EXPECT_NE(answer.find(header), std::string::npos) << header;
  }
  EXPECT_EQ(answer.find("unsafe-inline"), std::string::npos);
  EXPECT_EQ(answer.find("Access-Control-Allow-Origin"), std::string::npos);
}

TEST_F(WizardServerTest, RequestsThatAreNoJsonObjectAreRefusedWithAText) {
  OpenPage();
  for (const char* body : {"", "x", "[]", "1", "{", "{\"a\":}", "null", "\xFF\xFE"}) {
    const std::string answer = Post("/api/echo", body);
    EXPECT_EQ(Status(answer), 400) << body;
    EXPECT_TRUE(Body(answer).contains("error")) << body;
  }
  std::string deep(200000, '[');
  EXPECT_EQ(Status(Post("/api/echo", deep)), 400);
  EXPECT_EQ(Status(Post("/api/count", "{}")), 400);
  EXPECT_EQ(Status(Post("/api/none", "{}")), 404);
}

TEST_F(WizardServerTest, BodiesThatAreTooLongAreRefused) {
  OpenPage();
  const std::string answer = Post("/api/echo", "{\"a\":\"" + std::string(2 << 20, 'x') + "\"}");
  EXPECT_TRUE(Status(answer) == 413 || answer.empty()) << answer.substr(0, 100);
  const std::string claimed =
      Send(Headers("POST /api/echo") + "Origin: http://" + host_ + "\r\nCookie: " + cookie_ +
           "\r\nContent-Type: application/json\r\nContent-Length: "
           "99999999999\r\n\r\n{}");
  EXPECT_EQ(Status(claimed), 413);
  EXPECT_EQ(Status(Post("/api/echo", "{}")), 200);
}

TEST_F(WizardServerTest, BytesThatAreNoRequestDoNotEndTheServer) {
  OpenPage();
  for (const std::string& bytes :
       {std::string("\0\0\0\0\r\n\r\n", 8), std::string("GET\r\n\r\n"),
        std::string("GET / HTTP/9.9\r\n\r\n"),
        "GET /" + std::string(100000, 'a') + " HTTP/1.1\r\n\r\n",
        "GET / HTTP/1.1\r\nHost: " + host_ + "\r\nX: " + std::string(100000, 'b') + "\r\n\r\n",
        std::string("\x16\x03\x01\x02\x00\x01", 6) + "\r\n\r\n",
        "POST /api/echo HTTP/1.1\r\nHost: " + host_ +
            "\r\nTransfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFF\r\n"}) {
    EXPECT_NE(Status(Send(bytes, true)), 200);
  }
  EXPECT_EQ(Status(Post("/api/echo", "{}")), 200);
}

TEST_F(WizardServerTest, ManyWhoSendNothingDoNotKeepThePageOut) {
  OpenPage();
  std::vector<int> idle;
  for (int i = 0; i < 12; ++i) {
    const int socket = Connect();
    ASSERT_GE(socket, 0);
    ASSERT_EQ(::send(socket, "GET / HT", 8, MSG_NOSIGNAL), 8);
    idle.push_back(socket);
  }
  EXPECT_EQ(Status(Post("/api/echo", "{}")), 200);
  for (const int socket : idle) close(socket);
}

TEST_F(WizardServerTest, TextsOfTheServiceComeBackAsTheyAre) {
  OpenPage();
  const std::string body = R"({"name":"<script>alert(1)</script> \u0000 \" ' ü"})";
  EXPECT_EQ(Body(Post("/api/echo", body)).at("body"), json::parse(body));
  const json error = Body(Post("/api/refuse", "{}")).at("error");
  EXPECT_EQ(error.at("text"), "no <b>such</b> \"column\"");
  EXPECT_EQ(error.at("number"), 2265);
  EXPECT_EQ(error.at("line"), 3);
  EXPECT_EQ(error.at("column"), 7);
}

TEST_F(WizardServerTest, AJobTellsItsEventsAndItsEnd) {
  OpenPage();
  const int job = Body(Post("/api/count", R"({"to":5})")).at("job");
  const std::string events =
      Get("/api/jobs/" + std::to_string(job) + "/events", "Cookie: " + cookie_ + "\r\n");
  EXPECT_NE(events.find("text/event-stream"), std::string::npos);
  EXPECT_NE(events.find("event: done\ndata: {\"counted\":5}"), std::string::npos) << events;
  const std::string about = "/api/jobs/" + std::to_string(job);
  EXPECT_EQ(Body(Post(about + "/problems", R"({"offset":3})")).at("question").at("offset"), 3);
  EXPECT_EQ(Status(Post(about + "/secrets", "{}")), 404);
}

TEST_F(WizardServerTest, AJobCanBeCancelledAndAFailureIsTold) {
  OpenPage();
  const std::string cookie = "Cookie: " + cookie_ + "\r\n";
  const int waiting = Body(Post("/api/wait", "{}")).at("job");
  EXPECT_EQ(Status(Post("/api/jobs/" + std::to_string(waiting) + "/cancel", "{}")), 200);
  EXPECT_NE(
      Get("/api/jobs/" + std::to_string(waiting) + "/events", cookie).find("event: cancelled"),
      std::string::npos);
  const int failing = Body(Post("/api/fail", "{}")).at("job");
  EXPECT_NE(Get("/api/jobs/" + std::to_string(failing) + "/events", cookie).find("could not"),
            std::string::npos);
  EXPECT_EQ(Status(Post("/api/jobs/" + std::to_string(failing) + "/problems", "{}")), 404);
  EXPECT_EQ(Status(Get("/api/jobs/99/events", cookie)), 404);
  EXPECT_EQ(Status(Get("/api/jobs/-1/events", cookie)), 404);
  EXPECT_EQ(Status(Get("/api/jobs/99999999999999999999/events", cookie)), 404);
}

TEST_F(WizardServerTest, StoppingEndsJobsAndFollowers) {
  OpenPage();
  const int waiting = Body(Post("/api/wait", "{}")).at("job");
  const int follower = Connect();
  ASSERT_GE(follower, 0);
  const std::string request = Headers("GET /api/jobs/" + std::to_string(waiting) + "/events") +
                              "Cookie: " + cookie_ + "\r\n\r\n";
  ASSERT_EQ(::send(follower, request.data(), request.size(), MSG_NOSIGNAL),
            static_cast<ssize_t>(request.size()));
  std::string events;
  char buffer[4096];
  const auto receive = [&] {
    const ssize_t got = recv(follower, buffer, sizeof buffer, 0);
    if (got > 0) events.append(buffer, static_cast<std::size_t>(got));
    return got > 0;
  };
  while (events.find("\r\n\r\n") == std::string::npos && receive()) {
  }
  ASSERT_NE(events.find("text/event-stream"), std::string::npos) << "it follows";
  server_.Stop();
  while (receive()) {
  }
  close(follower);
  EXPECT_EQ(events.find("event: done"), std::string::npos);
}

TEST_F(WizardServerTest, NobodyFollowsAServerThatWasStopped) {
  OpenPage();
  server_.Stop();
  const int late = Connect();
  EXPECT_EQ(late, -1) << "it listens no more";
  if (late >= 0) close(late);
}

TEST_F(WizardServerTest, KnowsThatThePageWasClosed) {
  OpenPage();
  EXPECT_FALSE(server_.PageClosed());
  EXPECT_EQ(Status(Post("/api/close", "{}")), 200);
  EXPECT_FALSE(server_.PageClosed()) << "a page that is loaded anew comes back";
}

TEST(WizardServer, APortThatIsTakenIsSaid) {
  EchoService service;
  const WizardServer first(0, service);
  const std::string address = first.Address();
  const int port = std::stoi(address.substr(address.rfind(':') + 1));
  EXPECT_THROW(WizardServer(port, service), std::runtime_error);
}

}  // namespace
}  // namespace cli
