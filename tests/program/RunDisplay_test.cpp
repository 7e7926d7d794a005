// What `textwizard run` shows: tables, counts, figures, progress; and what Ctrl-C does.

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/program/Program.h"

namespace program {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class RunDisplay : public ProgramTest {
 protected:
  void SetUp() override { WriteTowns(); }
  Ended Shown(std::vector<std::string> arguments = {}) const {
    folder_.Write("command.sps", Towns());
    arguments.insert(arguments.begin(), {"run", "command.sps"});
    return Run(arguments);
  }
};

constexpr char kVariables[] =
    "Variable  Format   Width\nid        F4           4\ntown      A20         20\n"
    "founded   ADATE10     10\nfee       F8.2         8\n\n";

// What became of the towns' data.
constexpr char kReport[] =
    "\n1 problem\n"
    "Variable  Kind        Count  First line  First text\n"
    "fee       unreadable      1           4  none\n\n"
    "ledger: 97 bytes = 20 skipped + 74 records + 3 line ends; 3 records; 12 cells = 10 read + 1 "
    "empty + 1 unreadable\n";

TEST_F(RunDisplay, ShowsVariablesCasesAndCounts) {
  const Ended ended = Shown();
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.out, std::string(kVariables) +
                           "id  town                  founded      fee\n"
                           " 1  Bern               1891-05-15      2.5\n"
                           " 2  Chur, Graubuenden           .  1000000\n"
                           " 3  Olten              2020-01-31        .\n\n"
                           "3 cases, 4 variables\n" +
                           kReport);
  EXPECT_THAT(ended.err, IsEmpty());
}

TEST_F(RunDisplay, ShowsAsManyCasesAsAskedFor) {
  EXPECT_THAT(Shown({"--show", "1"}).out,
              testing::EndsWith("id  town     founded  fee\n 1  Bern  1891-05-15  2.5\n\n"
                                "3 cases, 4 variables\n" +
                                std::string(kReport)));
  EXPECT_EQ(Shown({"--show", "0"}).out,
            std::string(kVariables) + "3 cases, 4 variables\n" + kReport);
}

TEST_F(RunDisplay, RawValuesAreShownRaw) {
  EXPECT_THAT(Shown({"--values", "raw"}).out, HasSubstr("9737971200"));
}

TEST_F(RunDisplay, QuietShowsNothing) {
  const Ended ended = Shown({"--quiet"});
  EXPECT_THAT(ended.out, IsEmpty());
  EXPECT_THAT(ended.err, IsEmpty());
}

TEST_F(RunDisplay, SeveralCommandsAreTold) {
  folder_.Write("command.sps", Towns() + Towns("/IMPORTCASE=FIRST 1"));
  const Ended ended = Run({"run", "command.sps", "--show", "0"});
  EXPECT_EQ(ended.out, "Command 1 (line 1)\n\n" + std::string(kVariables) +
                           "3 cases, 4 variables\n" + kReport + "\nCommand 2 (line 3)\n\n" +
                           kVariables +
                           "1 case, 4 variables\n0 problems\n"
                           "ledger: 97 bytes = 20 skipped + 21 records + 1 line ends + 55 unread; "
                           "1 record; 4 cells = 4 read\n");
}

TEST_F(RunDisplay, ControlCharactersAreVisible) {
  folder_.Write("c.csv", "a\x1B[31mb\n");
  folder_.Write("command.sps",
                "GET DATA /TYPE=TXT /FILE='c.csv' /DELCASE=LINE /DELIMITERS=',' /VARIABLES=s A20.");
  const Ended ended = Run({"run", "command.sps"});
  EXPECT_THAT(ended.out, HasSubstr("a\\x1B[31mb"));
  EXPECT_THAT(ended.out, Not(HasSubstr("\x1B")));
}

TEST_F(RunDisplay, StatsAreOneLineWithItsKeysInOrder) {
  const Ended ended = Shown({"--quiet", "--stats"});
  EXPECT_EQ(std::count(ended.out.begin(), ended.out.end(), '\n'), 1);
  const auto stats = nlohmann::ordered_json::parse(ended.out);
  std::vector<std::string> keys;
  for (const auto& [key, value] : stats.items()) keys.push_back(key);
  EXPECT_THAT(keys,
              testing::ElementsAre("cases", "variables", "bytes", "dictionary_seconds",
                                   "read_seconds", "write_seconds", "peak_rss_bytes", "threads"));
  EXPECT_EQ(stats["cases"], 3);
  EXPECT_EQ(stats["variables"], 4);
  EXPECT_EQ(stats["bytes"], std::filesystem::file_size(folder_ / "town.csv"));
  EXPECT_GT(stats["dictionary_seconds"], 0.0);
  EXPECT_GT(stats["read_seconds"], 0.0);
  EXPECT_EQ(stats["write_seconds"], 0.0);
  EXPECT_GT(stats["peak_rss_bytes"], 1000000);
  EXPECT_GE(stats["threads"], 1);
}

TEST_F(RunDisplay, PeakMemoryIsOfTheProgramAlone) {
  const std::string held(std::size_t{400} << 20, 'x');
  const auto stats = nlohmann::json::parse(Shown({"--quiet", "--stats"}).out);
  EXPECT_LT(stats["peak_rss_bytes"], static_cast<std::int64_t>(held.size()));
}

TEST_F(RunDisplay, WritingHasItsOwnTime) {
  const Ended ended = Shown({"--quiet", "--stats", "--cases", "c.csv"});
  EXPECT_GT(nlohmann::json::parse(ended.out)["write_seconds"], 0.0);
}

TEST_F(RunDisplay, StatsOfSeveralCommandsAreAddedUp) {
  const Ended ended = Quiet(Towns() + Towns("/IMPORTCASE=FIRST 1"), {"--stats"});
  const auto stats = nlohmann::json::parse(ended.out);
  EXPECT_EQ(stats["cases"], 4);
  EXPECT_EQ(stats["variables"], 8);
  EXPECT_EQ(stats["bytes"], 2 * std::filesystem::file_size(folder_ / "town.csv"));
}

TEST_F(RunDisplay, StatsAreTheLastLineAfterAFailureToo) {
  const Ended ended = Quiet("LIST.", {"--stats"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(nlohmann::json::parse(ended.out)["cases"], 0);
}

// Takes what is written into a pipe, but not at once: whoever writes more than the pipe holds has
// to wait, however fast it is.
class SlowPipe {
 public:
  explicit SlowPipe(const std::string& path) {
    EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
    // Open for writing too, so that neither side waits for the other to open it.
    pipe_ = open(path.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_GE(pipe_, 0);
  }
  void Start() {
    drain_ = std::thread([this] { Drain(); });
  }
  ~SlowPipe() {
    ended_ = true;
    if (drain_.joinable()) drain_.join();
    close(pipe_);
  }
  SlowPipe(const SlowPipe&) = delete;
  SlowPipe& operator=(const SlowPipe&) = delete;

 private:
  void Drain() {
    // Longer than the program waits before it shows how far it is.
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    std::vector<char> block(1 << 16);
    pollfd ready{pipe_, POLLIN, 0};
    while (!ended_) {
      if (poll(&ready, 1, 10) <= 0) continue;
      EXPECT_GT(read(pipe_, block.data(), block.size()), 0);
    }
  }

  int pipe_ = -1;
  std::atomic<bool> ended_{false};
  std::thread drain_;
};

// Runs with standard error on a terminal and returns what was written there.
class RunOnTerminal : public RunDisplay {
 protected:
  void SetUp() override {
    std::string rows;
    for (int number = 0; number < 1000000; ++number) rows += "1234567,some text,2020-01-31\n";
    folder_.Write("many.csv", rows);
    folder_.Write("command.sps",
                  "GET DATA /TYPE=TXT /FILE='many.csv' /DELCASE=LINE /DELIMITERS=','"
                  " /VARIABLES=n F8.0 s A12 d SDATE10.");
  }
  std::string TerminalText(std::vector<std::string> arguments) const {
    const std::string cases = folder_ / "cases";
    std::filesystem::remove(cases);
    SlowPipe pipe(cases);
    arguments.insert(arguments.begin(),
                     {"run", "command.sps", "--cases", "cases", "--format", "csv"});
    return OnTerminal(arguments, [&pipe] { pipe.Start(); });
  }
};

TEST_F(RunOnTerminal, TheProgressLineDisappears) {
  const std::string text = TerminalText({"--show", "0"});
  EXPECT_THAT(text, HasSubstr(" of 29.0 MB, "));
  EXPECT_THAT(text, HasSubstr(" MB/s, "));
  EXPECT_THAT(text, HasSubstr(" left\r\x1B[K"));
  EXPECT_THAT(text, HasSubstr("\r\x1B[K1000000 cases, 3 variables\r\n0 problems\r\n"));
}

TEST_F(RunOnTerminal, NoProgressLineWhereNoneIsWanted) {
  EXPECT_THAT(TerminalText({"--no-progress"}), Not(HasSubstr("MB/s")));
  EXPECT_EQ(TerminalText({"--quiet"}), "");
}

// A run that cannot end by itself: its cases go into a pipe that is full until the test reads it.
class RunInterrupted : public ProgramTest {
 protected:
  void SetUp() override {
    std::string rows;
    for (int number = 0; number < 300000; ++number) rows += "1234567\n";
    folder_.Write("many.csv", rows);
    folder_.Write("command.sps", kImport + kImport);
    const std::string pipe = folder_ / "pipe1";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    // To the thread sanitizer, a program that ends at once leaks the threads it leaves.
    const char* const options = std::getenv("TSAN_OPTIONS");
    const std::string before = options ? options : "";
    setenv("TSAN_OPTIONS", (before + ":report_thread_leaks=0").c_str(), 1);
    child_ = Start({"run", "command.sps", "--show", "0", "--cases", "pipe%d", "--format", "csv",
                    "--dictionary", "d%d.json", "--stats"});
    setenv("TSAN_OPTIONS", before.c_str(), 1);
    pipe_ = open(pipe.c_str(), O_RDONLY);
    ASSERT_GE(pipe_, 0);
    // The first bytes: it has read cases and goes on reading.
    char byte = 0;
    ASSERT_EQ(read(pipe_, &byte, 1), 1);
  }
  void TearDown() override { close(pipe_); }

  const std::string kImport =
      "GET DATA /TYPE=TXT /FILE='many.csv' /DELCASE=LINE /DELIMITERS=',' /VARIABLES=n F8.0.\n";
  pid_t child_ = -1;
  int pipe_ = -1;
};

TEST_F(RunInterrupted, OnceReportsWhatWasReadAndLeavesNothingUnfinished) {
  ASSERT_EQ(kill(child_, SIGINT), 0);
  char block[65536];
  while (read(pipe_, block, sizeof block) > 0) {
  }
  const Ended ended = Wait(child_);
  EXPECT_EQ(ended.status, 130);
  const auto stats = nlohmann::json::parse(ended.out.substr(ended.out.rfind("{")));
  EXPECT_GT(stats["cases"], 0);
  EXPECT_LT(stats["cases"], 300000);
  const std::string cases = std::to_string(stats["cases"].get<long long>()) + " cases";
  EXPECT_THAT(ended.out, HasSubstr("\n" + cases + ", 1 variable\n"));
  EXPECT_EQ(ended.err, "interrupted: " + cases + " read; unfinished outputs were removed\n");
  EXPECT_THAT(ended.out, Not(HasSubstr("Command 2")));
  EXPECT_EQ(folder_.Count(), 3U);  // the data, the command, the pipe
}

// Waits until nothing more goes into the pipe: whoever writes more than it holds is in a write that
// waits.
void AwaitFullPipe(const std::string& path) {
  const int pipe = open(path.c_str(), O_WRONLY | O_NONBLOCK);
  ASSERT_GE(pipe, 0);
  pollfd room{pipe, POLLOUT, 0};
  while (poll(&room, 1, 0) > 0) std::this_thread::yield();
  close(pipe);
}

TEST_F(RunInterrupted, OnceEndsAWriteThatWaits) {
  // Nobody reads the pipe any more.
  AwaitFullPipe(folder_ / "pipe1");
  ASSERT_EQ(kill(child_, SIGINT), 0);
  const Ended ended = Wait(child_);
  EXPECT_EQ(ended.status, 130);
  EXPECT_THAT(ended.err, testing::MatchesRegex(
                             "interrupted: [0-9]+ cases read; unfinished outputs were removed\n"));
  EXPECT_EQ(folder_.Count(), 3U);
}

TEST_F(RunInterrupted, TwiceEndsAtOnce) {
  // Nobody reads the pipe any more: only a signal that ends the process ends it.
  int waited = 0;
  for (int count = 0; waitpid(child_, &waited, WNOHANG) == 0; ++count) {
    ASSERT_LT(count, 1000);
    kill(child_, SIGINT);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  EXPECT_EQ(StatusOf(waited), 130);
  EXPECT_EQ(folder_.Count(), 3U);
}

}  // namespace
}  // namespace program
