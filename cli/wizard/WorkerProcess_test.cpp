#include "cli/wizard/WorkerProcess.h"

#include <csignal>

#include <gtest/gtest.h>

namespace cli {
namespace {

using std::chrono::milliseconds;
using Told = WorkerProcess::Told;

// Long enough for any machine; nothing waits so long that does not fail.
constexpr milliseconds kLong(30000);

WorkerProcess::Settings Shell(const std::string& script, const std::string& input = "") {
  return {"/bin/sh", {"-c", script}, input};
}

TEST(WorkerProcess, LinesComeOneByOneAndThenTheEnd) {
  WorkerProcess worker(Shell("cat; printf last", "one\n\nthree\n"));
  std::string line;
  for (const char* expected : {"one", "", "three"}) {
    ASSERT_EQ(worker.NextLine(kLong, &line), Told::kLine);
    EXPECT_EQ(line, expected);
  }
  // What no line end ends is no line.
  EXPECT_EQ(worker.NextLine(kLong, &line), Told::kEnd);
  EXPECT_EQ(worker.Wait(), 0);
}

TEST(WorkerProcess, ALongInputDoesNotWaitForItsReader) {
  const std::string input(3 << 20, 'x');
  WorkerProcess worker(Shell("echo first; wc -c", input));
  std::string line;
  ASSERT_EQ(worker.NextLine(kLong, &line), Told::kLine);
  EXPECT_EQ(line, "first");
  ASSERT_EQ(worker.NextLine(kLong, &line), Told::kLine);
  EXPECT_EQ(std::stoul(line), input.size());
}

TEST(WorkerProcess, TheExitStatusAndStandardErrorAreKept) {
  WorkerProcess worker(Shell("echo it broke >&2; exit 3"));
  std::string line;
  while (worker.NextLine(kLong, &line) != Told::kEnd) {
  }
  EXPECT_EQ(worker.Wait(), 3);
  EXPECT_EQ(worker.errors(), "it broke\n");
}

TEST(WorkerProcess, ManyErrorsDoNotBlockItAndAreCut) {
  WorkerProcess worker(Shell("head -c 1000000 /dev/zero | tr '\\0' e >&2; echo done"));
  std::string line;
  ASSERT_EQ(worker.NextLine(kLong, &line), Told::kLine);
  EXPECT_EQ(line, "done");
  EXPECT_GT(worker.errors().size(), 1000U);
  EXPECT_LT(worker.errors().size(), 100000U);
}

TEST(WorkerProcess, AnInterruptEndsIt) {
  WorkerProcess worker(
      Shell("trap 'echo stopped; exit 7' INT; echo ready; while :; do sleep 0.01; done"));
  std::string line;
  ASSERT_EQ(worker.NextLine(kLong, &line), Told::kLine);
  EXPECT_EQ(worker.NextLine(milliseconds(0), &line), Told::kNothing);
  worker.Interrupt();
  ASSERT_EQ(worker.NextLine(kLong, &line), Told::kLine);
  EXPECT_EQ(line, "stopped");
  EXPECT_EQ(worker.NextLine(kLong, &line), Told::kEnd);
  EXPECT_EQ(worker.Wait(), 7);
}

TEST(WorkerProcess, OneThatRunsIsGoneWithItsObject) {
  pid_t process = 0;
  {
    WorkerProcess worker(Shell("echo $$; exec sleep 1000"));
    std::string line;
    ASSERT_EQ(worker.NextLine(kLong, &line), Told::kLine);
    process = std::stoi(line);
  }
  EXPECT_EQ(kill(process, 0), -1);
}

TEST(WorkerProcess, AProgramThatIsNotThereIsSaid) {
  EXPECT_THROW(WorkerProcess({"/no/such/program", {}}), std::runtime_error);
}

}  // namespace
}  // namespace cli
