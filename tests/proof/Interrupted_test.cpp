// Whatever ends a run, nothing stands half under an output's name: kills at any moment, devices
// that are full.

#include <chrono>
#include <filesystem>
#include <random>

#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include "tests/program/Program.h"
#include "tests/support/Effort.h"

namespace program {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class InterruptedWriting : public ProgramTest {
 protected:
  static constexpr const char* kOutputs[] = {"c.csv", "d.json", "p.csv", "r.txt"};

  void WriteData(int lines) const {
    std::string bytes;
    for (int line = 0; line < lines; ++line) {
      bytes += std::to_string(line) + (line % 5 == 0 ? ",none,text\n" : ",2.5,text\n");
    }
    folder_.Write("d.txt", bytes);
    folder_.Write("command.sps",
                  "GET DATA /TYPE=TXT /FILE='d.txt' /DELCASE=LINE /DELIMITERS=','"
                  " /VARIABLES=a F8.0 b F8.2 c A8.");
  }
  static std::vector<std::string> Arguments(const std::string& folder = "") {
    return {"run",           "--quiet",         "command.sps", "--cases",        folder + "c.csv",
            "--dictionary",  folder + "d.json", "--problems",  folder + "p.csv", "--rejects",
            folder + "r.txt"};
  }
};

TEST_F(InterruptedWriting, AKillAtAnyMomentLeavesNoHalfFile) {
  WriteData(20000);
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(Run(Arguments()).status, 0);
  const auto wholeRun = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - start);
  std::vector<std::string> whole;
  for (const char* name : kOutputs) whole.push_back(folder_.Text(name));

  std::mt19937 random(7);
  std::size_t killed = 0;
  std::size_t replaced = 0;
  // Somewhat longer than a whole run takes.
  auto longest = static_cast<useconds_t>(wholeRun.count() * 5 / 4 + 1);
  for (std::size_t round = 0; round < whole::Rounds(100); ++round) {
    for (const char* name : kOutputs) folder_.Write(name, "as it was\n");
    const pid_t child = Start(Arguments());
    usleep(static_cast<useconds_t>(random() % longest));
    kill(child, SIGKILL);
    const int status = Wait(child).status;
    // Neither most rounds end by themselves nor most are killed.
    longest = status == 0 ? longest * 4 / 5 + 1 : longest + longest / 4;
    killed += status == -SIGKILL ? 1 : 0;
    for (std::size_t index = 0; index < whole.size(); ++index) {
      const std::string text = folder_.Text(kOutputs[index]);
      ASSERT_TRUE(text == "as it was\n" || text == whole[index])
          << kOutputs[index] << " has " << text.size() << " bytes";
      replaced += text == whole[index] ? 1 : 0;
    }
    // What a kill leaves has a name of its own.
    for (const auto& entry : fs::directory_iterator(folder_.path())) {
      const std::string name = entry.path().filename().string();
      if (name.starts_with(".textwizard-")) fs::remove(entry.path());
    }
  }
  // Both happened.
  EXPECT_GT(killed, 0U);
  EXPECT_GT(replaced, 0U);
}

TEST_F(InterruptedWriting, ADeviceThatIsFullIsSaidForEveryOutput) {
  WriteData(100);
  for (const char* option : {"--problems", "--rejects"}) {
    for (const char* other : {"--cases", "--dictionary"}) {
      std::vector<std::string> arguments{"run",
                                         "--quiet",
                                         "command.sps",
                                         option,
                                         "/dev/full",
                                         other,
                                         std::string(other) == "--cases" ? "c.csv" : "d.json"};
      if (std::string(option) == "--problems") {
        arguments.insert(arguments.end(), {"--problems-format", "csv"});
      }
      const Ended ended = Run(arguments);
      EXPECT_EQ(ended.status, 2);
      EXPECT_EQ(ended.err, "error: cannot write /dev/full: No space left on device\n");
      EXPECT_EQ(folder_.Count(), 2U);
    }
  }
}

TEST_F(InterruptedWriting, ALimitOnTheSizeOfFilesIsSaid) {
  WriteData(60000);
  const pid_t child = fork();
  if (child == 0) {
    const rlimit limit{4096 * 16, 4096 * 16};
    setrlimit(RLIMIT_FSIZE, &limit);
    const int err = open((folder_ / "err.txt").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(err, STDERR_FILENO);
    Execute(Arguments());
  }
  int waited = 0;
  ASSERT_EQ(waitpid(child, &waited, 0), child);
  EXPECT_EQ(StatusOf(waited), 2);
  EXPECT_THAT(folder_.Text("err.txt"), HasSubstr(": File too large\n"));
  fs::remove(folder_ / "err.txt");
  EXPECT_EQ(folder_.Count(), 2U);
}

TEST_F(InterruptedWriting, AFileSystemThatIsFullIsSaid) {
  WriteData(60000);
  fs::create_directory(folder_ / "small");
  const pid_t child = fork();
  if (child == 0) {
    // A file system of its own, which nobody else sees.
    const std::string small = folder_ / "small";
    if (unshare(CLONE_NEWNS) != 0 ||
        mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("none", small.c_str(), "tmpfs", 0, "size=64k") != 0) {
      _exit(125);
    }
    const pid_t program = fork();
    if (program == 0) {
      const int err = open((folder_ / "err.txt").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      dup2(err, STDERR_FILENO);
      Execute(Arguments("small/"));
    }
    int waited = 0;
    waitpid(program, &waited, 0);
    const bool isEmpty = fs::directory_iterator(small) == fs::directory_iterator();
    _exit(isEmpty ? StatusOf(waited) : 100);
  }
  int waited = 0;
  ASSERT_EQ(waitpid(child, &waited, 0), child);
  if (StatusOf(waited) == 125) GTEST_SKIP() << "file systems cannot be mounted here";
  EXPECT_EQ(StatusOf(waited), 2) << "100: files were left";
  EXPECT_THAT(folder_.Text("err.txt"), HasSubstr(": No space left on device\n"));
}

}  // namespace
}  // namespace program
