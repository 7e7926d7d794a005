#include "cli/wizard/WorkerProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "HostFramework/Names.h"

namespace cli {
namespace {

constexpr std::size_t kMostErrors = 8192;

// Descriptors that are closed when nobody took them.
struct Ends {
  ~Ends() {
    for (const int end : all) {
      if (end >= 0) close(end);
    }
  }
  int Take(std::size_t index) { return std::exchange(all[index], -1); }
  // Standard input; read and write ends of standard output and standard error.
  std::array<int, 5> all{-1, -1, -1, -1, -1};
};

struct Actions {
  Actions() { posix_spawn_file_actions_init(&actions); }
  ~Actions() { posix_spawn_file_actions_destroy(&actions); }
  posix_spawn_file_actions_t actions{};
};

[[noreturn]] void Fail(const char* what, int code) {
  throw std::runtime_error(fmt::format("{}: {}", what, std::strerror(code)));
}

void OpenEnds(const std::string& input, Ends* ends) {
  ends->all[0] = memfd_create("input", MFD_CLOEXEC);
  if (ends->all[0] < 0 || pipe2(&ends->all[1], O_CLOEXEC) != 0 ||
      pipe2(&ends->all[3], O_CLOEXEC) != 0) {
    Fail("no process can be started", errno);
  }
  for (std::size_t written = 0; written < input.size();) {
    const ssize_t length = write(ends->all[0], input.data() + written, input.size() - written);
    if (length <= 0) Fail("no process can be started", errno);
    written += static_cast<std::size_t>(length);
  }
  lseek(ends->all[0], 0, SEEK_SET);
}

}  // namespace

WorkerProcess::WorkerProcess(const Settings& settings) {
  Ends ends;
  OpenEnds(settings.input, &ends);
  Actions actions;
  posix_spawn_file_actions_adddup2(&actions.actions, ends.all[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions.actions, ends.all[2], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions.actions, ends.all[4], STDERR_FILENO);
  std::vector<std::string> words = {settings.program};
  words.insert(words.end(), settings.arguments.begin(), settings.arguments.end());
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const int code = posix_spawn(&process_, settings.program.c_str(), &actions.actions, nullptr,
                               arguments.data(), environ);
  if (code != 0) {
    process_ = -1;
    Fail("no process can be started", code);
  }
  output_ = ends.Take(1);
  error_ = ends.Take(3);
  fcntl(output_, F_SETFL, O_NONBLOCK);
  fcntl(error_, F_SETFL, O_NONBLOCK);
}

WorkerProcess::~WorkerProcess() {
  if (process_ > 0) {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  if (output_ >= 0) close(output_);
  if (error_ >= 0) close(error_);
}

void WorkerProcess::TakeErrors() {
  std::array<char, 1024> block;
  ssize_t length = 0;
  while ((length = read(error_, block.data(), block.size())) > 0) {
    const std::size_t room = kMostErrors - std::min(kMostErrors, errors_.size());
    errors_.append(block.data(), std::min(room, static_cast<std::size_t>(length)));
  }
  if (length == 0) {
    close(error_);
    error_ = -1;
  }
}

WorkerProcess::Told WorkerProcess::NextLine(std::chrono::milliseconds wait, std::string* line) {
  const auto until = std::chrono::steady_clock::now() + wait;
  for (;;) {
    if (const std::size_t end = pending_.find('\n'); end != std::string::npos) {
      line->assign(pending_, 0, end);
      pending_.erase(0, end + 1);
      return Told::kLine;
    }
    if (output_ < 0) return Told::kEnd;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        until - std::chrono::steady_clock::now());
    std::array<pollfd, 2> ends = {{{output_, POLLIN, 0}, {error_, POLLIN, 0}}};
    const int ready =
        poll(ends.data(), ends.size(), static_cast<int>(std::max<long long>(0, left.count())));
    if (ready == 0) return Told::kNothing;
    if (ready < 0) {
      if (errno == EINTR) return Told::kNothing;
      return Told::kEnd;
    }
    if (error_ >= 0 && ends[1].revents != 0) TakeErrors();
    if (ends[0].revents == 0) continue;
    std::array<char, 65536> block;
    const ssize_t length = read(output_, block.data(), block.size());
    if (length > 0) {
      pending_.append(block.data(), static_cast<std::size_t>(length));
    } else if (length == 0 || (errno != EAGAIN && errno != EINTR)) {
      close(output_);
      output_ = -1;
    }
  }
}

void WorkerProcess::Interrupt() const {
  if (process_ > 0) kill(process_, SIGINT);
}

int WorkerProcess::Wait() {
  if (process_ <= 0) return status_;
  int status = 0;
  while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = -1;
  if (error_ >= 0) TakeErrors();
  constexpr int kSignalled = 128;
  status_ = WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
  return status_;
}

long long WorkerProcess::bytesRead() const {
  const FileHandle file(std::fopen(fmt::format("/proc/{}/io", process_).c_str(), "re"));
  char line[64];
  constexpr std::string_view kKey = "rchar: ";
  if (!file || std::fgets(line, sizeof line, file.get()) == nullptr) return -1;
  const std::string_view text(line);
  if (!text.starts_with(kKey)) return -1;
  long long bytes = -1;
  std::from_chars(text.data() + kKey.size(), text.data() + text.size(), bytes);
  return bytes;
}

}  // namespace cli
