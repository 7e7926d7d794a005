#include "HostFramework/embedded/command/Adapter.h"

#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostFramework/FileStream.h"
#include "HostFramework/embedded/messages/Attention.h"

namespace {

using embedded::Adapter;
using embedded::CommandToken;
using testing::HasSubstr;

std::string CurrentText(const DACTokenSource& source) {
  const char* text = nullptr;
  int length = -1;
  source.TokenText(&text, &length);
  return text ? std::string(text, static_cast<std::size_t>(length)) : "none";
}

TEST(Adapter, TokensStartOnTheFirstAndEnd) {
  Adapter adapter({{embedded::kTokenWord, "FILE", 1, 1},
                   {embedded::kTokenSign, "=", 1, 5},
                   {embedded::kTokenLiteral, std::string("a\0b", 3), 1, 6}},
                  nullptr, nullptr, 0, 0);
  DACTokenSource* source = adapter.GetTokenSource();
  EXPECT_EQ(CurrentText(*source), "FILE");
  EXPECT_NE(source->TokenKind(), kDACTokenLiteral);
  ASSERT_TRUE(source->NextToken());
  EXPECT_EQ(CurrentText(*source), "=");
  ASSERT_TRUE(source->NextToken());
  EXPECT_EQ(CurrentText(*source), std::string("a\0b", 3));
  EXPECT_EQ(source->TokenKind(), kDACTokenLiteral);
  EXPECT_FALSE(source->NextToken());
  EXPECT_EQ(CurrentText(*source), "none");
  EXPECT_FALSE(source->NextToken());
}

TEST(Adapter, ACommandMayHaveNoTokens) {
  Adapter adapter({}, nullptr, nullptr, 0, 0);
  const char* text = "x";
  int length = -1;
  adapter.GetTokenSource()->TokenText(&text, &length);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(length, 0);
  EXPECT_NE(adapter.GetTokenSource()->TokenKind(), kDACTokenLiteral);
  EXPECT_FALSE(adapter.GetTokenSource()->NextToken());
}

TEST(Adapter, AnEmptyLiteralIsATokenOfNoLength) {
  Adapter adapter({{embedded::kTokenLiteral, "", 1, 1}}, nullptr, nullptr, 0, 0);
  const char* text = nullptr;
  int length = -1;
  adapter.GetTokenSource()->TokenText(&text, &length);
  EXPECT_NE(text, nullptr);
  EXPECT_EQ(length, 0);
}

TEST(Adapter, PassesOnWhatItWasMadeWith) {
  const ErrorCallback callback = [](const char*, int) {};
  int context = 0;
  Adapter adapter({}, callback, &context, 3, 7);
  EXPECT_EQ(adapter.GetErrorCallback(), callback);
  EXPECT_EQ(adapter.GetAdapterContext(), &context);
  EXPECT_EQ(adapter.GetSourceParamA(), 3);
  EXPECT_EQ(adapter.GetSourceParamB(), 7);
}

// Bytes of the file that a converted path names, or "closed".
std::string Contents(const std::string& path) {
  QANT_FileStream stream;
  if (!stream.Open(path.c_str(), "", "rb")) return "closed";
  std::string text;
  for (auto block = stream.Buffered(); !block.empty(); block = stream.Buffered()) {
    text += block;
    stream.Consume(block.size());
  }
  return stream.ReadFailed() ? "failed" : text;
}

class AdapterPaths : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "adapter-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    standardInput_ = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
  }
  void TearDown() override {
    if (writer_.joinable()) writer_.join();
    if (standardInput_ >= 0) {
      dup2(standardInput_, STDIN_FILENO);
      close(standardInput_);
    }
    unlink((folder_ + "/pipe").c_str());
    rmdir(folder_.c_str());
    unsetenv("TMPDIR");
    embedded::ClearAttention();
  }
  // Makes a pipe standard input, and sends `text` through it.
  void Send(std::string text) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    ASSERT_EQ(dup2(ends[0], STDIN_FILENO), STDIN_FILENO);
    close(ends[0]);
    const int end = ends[1];
    writer_ = std::thread([end, text = std::move(text)] {
      std::size_t sent = 0;
      while (sent < text.size()) {
        const ssize_t written = write(end, text.data() + sent, text.size() - sent);
        if (written <= 0) break;
        sent += static_cast<std::size_t>(written);
      }
      close(end);
    });
  }
  std::string Convert(const std::string& path) {
    std::string result = "before";
    EXPECT_EQ(&adapter_.ConvertFilePath(result, path, false), &result);
    return result;
  }

  std::string folder_;
  int standardInput_ = -1;
  std::thread writer_;
  Adapter adapter_{{}, nullptr, nullptr, 0, 0};
};

TEST_F(AdapterPaths, OrdinaryPathsStayAsTheyAre) {
  for (const std::string path : {"data.txt", "/no such/file", "", "./-", "--", "folder/"}) {
    EXPECT_EQ(Convert(path), path);
  }
  EXPECT_EQ(Convert(folder_), folder_);
  EXPECT_EQ(Convert("/dev/null"), "/dev/null");
}

TEST_F(AdapterPaths, StandardInputBecomesAFileThatSeeks) {
  std::string text;
  for (int i = 0; i < 200000; ++i) text += std::to_string(i) + '\n';
  Send(text);
  const std::string path = Convert("-");
  EXPECT_EQ(Contents(path), text);
  EXPECT_EQ(Contents(path), text);
}

TEST_F(AdapterPaths, AskedTwiceStandardInputIsTheSameCopy) {
  Send("a\nb\n");
  const std::string path = Convert("-");
  EXPECT_EQ(Convert("-"), path);
  EXPECT_EQ(Contents(Convert("-")), "a\nb\n");
}

TEST_F(AdapterPaths, EmptyStandardInputIsAnEmptyFile) {
  Send("");
  EXPECT_EQ(Contents(Convert("-")), "");
}

TEST_F(AdapterPaths, StandardInputMayBeAFile) {
  const int file = open(folder_.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  ASSERT_GE(file, 0);
  ASSERT_EQ(write(file, "skip\nkept\n", 10), 10);
  ASSERT_EQ(lseek(file, 5, SEEK_SET), 5);
  ASSERT_EQ(dup2(file, STDIN_FILENO), STDIN_FILENO);
  close(file);
  EXPECT_EQ(Contents(Convert("-")), "kept\n");
}

TEST_F(AdapterPaths, ANamedPipeIsCopied) {
  const std::string pipe = folder_ + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  writer_ = std::thread([pipe] {
    const int end = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
    if (end < 0 || write(end, "x;1\n", 4) != 4) std::abort();
    close(end);
  });
  const std::string path = Convert(pipe);
  EXPECT_NE(path, pipe);
  EXPECT_EQ(Contents(path), "x;1\n");
  EXPECT_EQ(Contents(Convert(pipe)), "x;1\n");
}

TEST_F(AdapterPaths, CopiesLeaveNoNameAndEndWithTheAdapter) {
  setenv("TMPDIR", folder_.c_str(), 1);
  Send("a\n");
  std::string path;
  {
    Adapter adapter({}, nullptr, nullptr, 0, 0);
    adapter.ConvertFilePath(path, "-", true);
    EXPECT_EQ(Contents(path), "a\n");
    EXPECT_EQ(rmdir(folder_.c_str()), 0) << "a name was left in the folder";
  }
  EXPECT_EQ(Contents(path), "closed");
}

TEST_F(AdapterPaths, WithoutRoomForTheCopyThePathDoesNotOpen) {
  Send("a\n");
  setenv("TMPDIR", "/nowhere", 1);
  const std::string path = Convert("-");
  EXPECT_THAT(path, HasSubstr("/nowhere"));
  EXPECT_THAT(path, HasSubstr("No such file or directory"));
  EXPECT_EQ(Contents(path), "closed");
}

TEST_F(AdapterPaths, AFailedWriteMakesAPathThatDoesNotOpen) {
  const auto before = std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit;
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
  rlimit small = limit;
  small.rlim_cur = 1000;
  Send(std::string(30000, 'x'));
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const std::string path = Convert("-");
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  std::signal(SIGXFSZ, before);
  EXPECT_THAT(path, HasSubstr("File too large"));
  EXPECT_EQ(Contents(path), "closed");
}

TEST_F(AdapterPaths, WhatIsLeftOfAPipeAfterAFailureIsNotTakenForTheData) {
  embedded::RequestAttention();
  Send(std::string(1 << 20, 'x'));
  const std::string path = Convert("-");
  embedded::ClearAttention();
  EXPECT_EQ(Convert("-"), path);
  EXPECT_EQ(Contents(path), "closed");
  // Lets the writer end.
  std::string rest(1 << 20, '\0');
  while (read(STDIN_FILENO, rest.data(), rest.size()) > 0) {
  }
}

TEST_F(AdapterPaths, AFailedReadMakesAPathThatDoesNotOpen) {
  const int folder = open(folder_.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(folder, 0);
  ASSERT_EQ(dup2(folder, STDIN_FILENO), STDIN_FILENO);
  close(folder);
  const std::string path = Convert("-");
  EXPECT_THAT(path, HasSubstr("Is a directory"));
  EXPECT_EQ(Contents(path), "closed");
}

TEST_F(AdapterPaths, TheUserMayInterruptTheCopying) {
  embedded::RequestAttention();
  Send("a\n");
  EXPECT_EQ(Contents(Convert("-")), "closed");
}

}  // namespace
