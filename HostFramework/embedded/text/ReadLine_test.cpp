#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace embedded {
namespace {

// A stream of these bytes.
class Stream {
 public:
  explicit Stream(std::string_view bytes) : file_(std::tmpfile()) {
    std::fwrite(bytes.data(), 1, bytes.size(), file_);
    std::rewind(file_);
  }
  ~Stream() { std::fclose(file_); }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  FILE* get() const { return file_; }

 private:
  FILE* file_;
};

TEST(ReadLine, KeepsTheLineFeed) {
  const Stream stream("one\r\n\ntwo");
  char buffer[16];
  EXPECT_EQ(ReadLine(buffer, sizeof buffer, stream.get()), buffer);
  EXPECT_STREQ(buffer, "one\r\n");
  ASSERT_NE(ReadLine(buffer, sizeof buffer, stream.get()), nullptr);
  EXPECT_STREQ(buffer, "\n");
  ASSERT_NE(ReadLine(buffer, sizeof buffer, stream.get()), nullptr);
  EXPECT_STREQ(buffer, "two");
  EXPECT_EQ(ReadLine(buffer, sizeof buffer, stream.get()), nullptr);
}

TEST(ReadLine, ALineLongerThanTheBufferGoesOnInTheNextCall) {
  const Stream stream("abcdef\nx");
  const std::unique_ptr<char[]> buffer(new char[4]);
  ASSERT_NE(ReadLine(buffer.get(), 4, stream.get()), nullptr);
  EXPECT_STREQ(buffer.get(), "abc");
  ASSERT_NE(ReadLine(buffer.get(), 4, stream.get()), nullptr);
  EXPECT_STREQ(buffer.get(), "def");
  ASSERT_NE(ReadLine(buffer.get(), 4, stream.get()), nullptr);
  EXPECT_STREQ(buffer.get(), "\n");
}

TEST(ReadLine, AnEmptyFileHasNoLine) {
  const Stream stream("");
  char buffer[4];
  EXPECT_EQ(ReadLine(buffer, sizeof buffer, stream.get()), nullptr);
}

TEST(ReadLine, ABufferWithoutRoomReadsNothing) {
  const Stream stream("abc");
  EXPECT_EQ(ReadLine(nullptr, 0, stream.get()), nullptr);
  char buffer[4];
  ASSERT_NE(ReadLine(buffer, sizeof buffer, stream.get()), nullptr);
  EXPECT_STREQ(buffer, "abc");
}

}  // namespace
}  // namespace embedded
