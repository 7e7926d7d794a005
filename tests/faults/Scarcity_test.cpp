// What a command needs besides its file runs out: copies of the stream, descriptors, threads,
// memory for cases. It ends with one numbered error each time, and the next command works.

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/data/CaseBuffer.h"
#include "HostFramework/embedded/threads/ThreadStarts.h"
#include "library/testing/TestFolder.h"
#include "tests/faults/FaultyFile.h"

namespace whole {
namespace {

class Scarcity : public FaultTest, public testing::WithParamInterface<Arrangement> {};

TEST_P(Scarcity, CopiesOfTheStreamRunOut) {
  const FaultyFile file("1,aa\n2,bb\n3,cc\n4,dd\n");
  const Pass expected = Import(GetParam().command).Read(Reading::kChosen);
  // Finding types takes a copy, and so does every iterator.
  const int forCommand = GetParam().found ? 1 : 0;
  for (const bool oneThread : {false, true}) {
    const ScopedOneThreadDetection detection(oneThread);
    for (int copies = 0; copies <= 2; ++copies) {
      SCOPED_TRACE(std::to_string(copies) + " copies");
      file.faults->duplicatesLeft = copies;
      const Import import(GetParam().command);
      if (copies < forCommand) {
        ExpectFailed(import);
        continue;
      }
      ASSERT_TRUE(import.made());
      const Pass pass = import.Read(Reading::kChosen);
      if (copies < forCommand + 1) {
        EXPECT_EQ(EndedBy(pass), 2269);
        EXPECT_EQ(pass.cases, 0u);
        EXPECT_EQ(pass.rowCount, -1);
        // The source is as good as before once there are copies again.
        file.faults->duplicatesLeft = -1;
        EXPECT_EQ(import.Read(Reading::kChosen), expected);
      } else {
        EXPECT_EQ(pass, expected);
      }
    }
    file.faults->duplicatesLeft = -1;
  }
  EXPECT_EQ(iocvgetdecchar_(), '.');
}

TEST_P(Scarcity, TheOneThreadIteratorWithoutACopyPostsItsError) {
  const FaultyFile file("1,aa\n2,bb\n");
  const Import import(GetParam().command);
  file.faults->duplicatesLeft = 0;
  const Pass pass = import.Read(Reading::kOneThread);
  EXPECT_EQ(pass.cases, 0u);
  EXPECT_EQ(pass.messages, Messages{ReadFailure()});
}

TEST_P(Scarcity, NoMemoryForACase) {
  const FaultyFile file("1,aa\n2,bb\n");
  const Import import(GetParam().command);
  const Pass expected = import.Read(Reading::kChosen);
  embedded::SetCaseBufferLimit(import.source().GetObsAreaSize() - 1);
  const Pass pass = import.Read(Reading::kChosen);
  embedded::SetCaseBufferLimit(0);
  EXPECT_TRUE(pass.noMemory);
  EXPECT_EQ(pass.cases, 0u);
  EXPECT_EQ(import.Read(Reading::kChosen).bytes, expected.bytes);
}

INSTANTIATE_TEST_SUITE_P(All, Scarcity, testing::ValuesIn(Arrangements()),
                         [](const auto& test) { return std::string(test.param.name); });

class ThreadLimit {
 public:
  explicit ThreadLimit(int threads) { embedded::SetThreadStartLimit(threads); }
  ~ThreadLimit() { embedded::SetThreadStartLimit(-1); }
};

class ThreadScarcity : public FaultTest {
 protected:
  // Three batches, so that a ring of three takes four threads.
  static std::string Batches() {
    std::string text;
    for (int i = 0; i < 3 * 12499; ++i) text += "000000007\n";
    return text;
  }
  static constexpr int kThreads = 4;
};

TEST_F(ThreadScarcity, CasesEndWithTheLastThreadThereWas) {
  const FaultyFile file(Batches());
  const char* const command =
      "GET DATA /TYPE=TXT /FILE='faulty.txt' /DELIMITERS=',' /VARIABLES=n F9.0.";
  for (int threads = 0; threads <= kThreads; ++threads) {
    SCOPED_TRACE(std::to_string(threads) + " threads");
    const Import import(command, 3);
    ASSERT_TRUE(import.made());
    Pass pass;
    {
      const ThreadLimit limit(threads);
      pass = import.Read(Reading::kChosen);
    }
    // The reader is one of them; every other one converts a batch before the next one is missed.
    const auto batches = static_cast<std::size_t>(std::max(0, threads - 1));
    EXPECT_EQ(pass.cases, batches * 12499);
    EXPECT_EQ(EndedBy(pass), threads < kThreads ? 2269 : 0);
    EXPECT_EQ(pass.rowCount, threads < kThreads ? -1 : 3 * 12499);
    EXPECT_EQ(import.Read(Reading::kChosen).cases, 3u * 12499);
  }
}

TEST_F(ThreadScarcity, DetectionFailsWithTheCommand) {
  const FaultyFile file(Batches());
  const char* const command =
      "GET DATA /TYPE=TXT /FILE='faulty.txt' /DELIMITERS=',' /VARIABLES=n AUTO.";
  for (int threads = 0; threads < kThreads; ++threads) {
    SCOPED_TRACE(std::to_string(threads) + " threads");
    const ThreadLimit limit(threads);
    ExpectFailed(Import(command, 3));
    // On one thread none is needed.
    const ScopedOneThreadDetection detection(true);
    EXPECT_TRUE(Import(command, 3).made());
  }
}

TEST_F(ThreadScarcity, OneThreadReadsWithoutAny) {
  const FaultyFile file("1\n2\n3\n");
  const Import import("GET DATA /TYPE=TXT /FILE='faulty.txt' /DELIMITERS=',' /VARIABLES=n F9.0.");
  const ThreadLimit limit(0);
  const Pass pass = import.Read(Reading::kOneThread);
  EXPECT_EQ(pass.cases, 3u);
  EXPECT_EQ(EndedBy(pass), 0);
}

// Takes all descriptors of the process but `left` of them, while it lives.
class FewDescriptors {
 public:
  explicit FewDescriptors(std::size_t left) {
    getrlimit(RLIMIT_NOFILE, &before_);
    rlimit few = before_;
    few.rlim_cur = 256;
    setrlimit(RLIMIT_NOFILE, &few);
    for (int next; (next = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) taken_.push_back(next);
    for (; left > 0 && !taken_.empty(); --left) {
      close(taken_.back());
      taken_.pop_back();
    }
  }
  ~FewDescriptors() {
    for (const int descriptor : taken_) close(descriptor);
    setrlimit(RLIMIT_NOFILE, &before_);
  }
  FewDescriptors(const FewDescriptors&) = delete;
  FewDescriptors& operator=(const FewDescriptors&) = delete;

 private:
  rlimit before_;
  std::vector<int> taken_;
};

class DescriptorScarcity : public FaultTest {
 protected:
  void SetUp() override {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer's check of object types needs descriptors itself";
#endif
    FaultTest::SetUp();
    path_ = folder_.Write("data.txt", "1,a\n2,b\n3,c\n");
    // The messages' file is read before there are no descriptors.
    textwizard::MessageText(textwizard::kReadFailed, nullptr);
  }
  std::string Command(const std::string& format) const {
    return "GET DATA /TYPE=TXT /FILE='" + path_ + "' /DELIMITERS=',' /VARIABLES=n " + format + ".";
  }
  Message Failure() const { return {kMessageError, textwizard::ReadFailedError(path_).text}; }

  library::TestFolder folder_;
  std::string path_;
};

TEST_F(DescriptorScarcity, TheCommandFailsWithOneError) {
  for (const char* const format : {"F8.0", "AUTO"}) {
    for (std::size_t left = 0; left <= 2; ++left) {
      SCOPED_TRACE(std::string(format) + ", " + std::to_string(left) + " descriptors");
      const FewDescriptors few(left);
      const Import import(Command(format));
      // One for the source, one for the finding of types.
      const std::size_t needed = std::string(format) == "AUTO" ? 2 : 1;
      EXPECT_EQ(import.made(), left >= needed);
      const std::vector<std::string> errors = Texts(import.messages(), kMessageError);
      if (left < needed) {
        EXPECT_EQ(errors, std::vector<std::string>{Failure().text});
      } else {
        EXPECT_TRUE(errors.empty());
      }
    }
  }
}

TEST_F(DescriptorScarcity, ReadingFailsWithOneError) {
  const Import import(Command("F8.0"));
  ASSERT_TRUE(import.made());
  {
    const FewDescriptors few(0);
    const Pass chosen = import.Read(Reading::kChosen);
    EXPECT_EQ(chosen.messages, Messages{Failure()});
    const Pass oneThread = import.Read(Reading::kOneThread);
    EXPECT_EQ(oneThread.messages, Messages{Failure()});
  }
  EXPECT_EQ(import.Read(Reading::kChosen).cases, 3u);
}

}  // namespace
}  // namespace whole
