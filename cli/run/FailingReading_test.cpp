// Runs over data that fails or changes while it is read: what is said, and that nothing is left.

#include <atomic>
#include <climits>
#include <filesystem>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "cli/run/CommandFileRunner.h"
#include "library/testing/TestFolder.h"

namespace cli {
namespace {

using library::TestFolder;
using testing::HasSubstr;
using testing::StartsWith;

// Every copy of it after the first `same` reads other bytes. Copies are counted.
class ChangingDevice : public embedded::MemoryDevice {
 public:
  ChangingDevice(std::string first, std::string later, int same, std::atomic<int>& copies)
      : MemoryDevice(first),
        first_(std::move(first)),
        later_(std::move(later)),
        same_(same),
        copies_(copies) {}
  std::unique_ptr<embedded::StreamDevice> Duplicate() const override {
    return std::make_unique<MemoryDevice>(copies_++ < same_ ? first_ : later_);
  }

 private:
  const std::string first_;
  const std::string later_;
  const int same_;
  std::atomic<int>& copies_;
};

class FailingReading : public testing::Test {
 protected:
  ~FailingReading() override { embedded::SetStreamDeviceOpener(nullptr); }

  struct Ended {
    int status;
    std::string out;
    std::string err;
  };
  // Runs the command over d.txt with every output.
  Ended Run(const std::string& command, bool verify = false) {
    RunOptions options;
    options.commandFile = folder_.Write(
        "command.sps", "GET DATA /TYPE=TXT /FILE='" + (folder_ / "d.txt") + "' " + command + ".");
    options.quiet = true;
    options.cases = folder_ / "c.csv";
    options.dictionary = folder_ / "d.json";
    options.report.problems = folder_ / "p.csv";
    options.report.rejects = folder_ / "r.txt";
    options.report.verify = verify;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Ended ended{RunCommandFile(options), "", ""};
    ended.out = testing::internal::GetCapturedStdout();
    ended.err = testing::internal::GetCapturedStderr();
    return ended;
  }
  // The same with a second reading, before which the data changes.
  Ended RunTwice(const std::string& command, const std::string& first, const std::string& later) {
    folder_.Write("d.txt", first);
    const auto device = [&](int same) {
      copies_ = 0;
      embedded::SetStreamDeviceOpener([=, this](const char*) {
        return std::make_unique<ChangingDevice>(first, later, same, copies_);
      });
    };
    // As many copies as one reading makes stay the same.
    device(INT_MAX);
    EXPECT_EQ(Run(command).status, 0);
    for (const char* name : {"c.csv", "d.json", "p.csv", "r.txt"}) {
      std::filesystem::remove(folder_ / name);
    }
    device(copies_);
    return Run(command, true);
  }
  static std::string Lines(int count, const std::string& line) {
    std::string text;
    for (int number = 0; number < count; ++number) text += line;
    return text;
  }

  const TestFolder folder_;
  std::atomic<int> copies_{0};
};

constexpr const char* kLines = "/DELCASE=LINE /DELIMITERS=',' /VARIABLES=a F8.0 b F8.0";
constexpr const char* kAcross = "/DELCASE=VARIABLES 2 /DELIMITERS=',' /VARIABLES=a F8.0 b F8.0";
constexpr const char* kFixed = "/ARRANGEMENT=FIXED /VARIABLES=/1 a 0-1 F2.0 b 2-3 F2.0";

TEST_F(FailingReading, AReadErrorInTheMiddleLeavesNoOutput) {
  const std::string bytes = Lines(200000, "1,x\n");
  folder_.Write("d.txt", bytes);
  for (const char* command : {kLines, kAcross, kFixed}) {
    embedded::SetStreamDeviceOpener([&bytes](const char*) {
      const auto faults = std::make_shared<embedded::StreamFaults>();
      faults->failAt = 400000;
      return std::make_unique<embedded::FaultyDevice>(
          std::make_unique<embedded::MemoryDevice>(bytes), faults);
    });
    const Ended ended = Run(command);
    EXPECT_EQ(ended.status, 1) << command;
    EXPECT_THAT(ended.err, StartsWith("error: [2269]")) << command;
    // The command and its data.
    EXPECT_EQ(folder_.Count(), 2U) << command;
  }
}

TEST_F(FailingReading, ASecondReadingThatDiffersIsSaid) {
  const Ended ended = RunTwice(kAcross, "1,2\n", "1,2\n1,2\n");
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err,
              StartsWith("error: --verify: the two readings differ: the numbers of cases "
                         "are 1 and 2; the digests are "));
  EXPECT_EQ(folder_.Count(), 2U);
}

TEST_F(FailingReading, ASecondReadingNamesTheProblemThatDiffers) {
  for (const char* command : {kLines, kAcross}) {
    const Ended ended = RunTwice(command, "1,x\n2,y\n", "1,x\n2,z\n");
    EXPECT_EQ(ended.status, 1) << command;
    EXPECT_EQ(
        ended.err,
        "error: --verify: the two readings differ: problem 2 is unreadable in line 2 of b and "
        "unreadable in line 2 of b\n")
        << command;
  }
}

}  // namespace
}  // namespace cli
