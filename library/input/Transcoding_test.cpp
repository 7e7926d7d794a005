#include "library/input/Transcoding.h"

#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "library/testing/TestFolder.h"

namespace library {
namespace {

class TranscodingTest : public testing::Test {
 protected:
  // The bytes as UTF-8; "!" and why, where that fails.
  std::string Utf8(const std::string& bytes, const std::string& encoding) {
    const int file = open(folder_.Write("data", bytes).c_str(), O_RDONLY);
    std::string text;
    std::string problem;
    const TranscodingListener listener{.write =
                                           [&](std::string_view more, std::string*) {
                                             text += more;
                                             return true;
                                           },
                                       .progress =
                                           [this](std::int64_t read) {
                                             read_ = read;
                                             return goesOn_;
                                           }};
    const bool done = Transcode(file, encoding, listener, &undecodable_, &problem);
    close(file);
    return done ? text : "!" + problem;
  }

  TestFolder folder_;
  std::int64_t undecodable_ = 0;
  std::int64_t read_ = 0;
  bool goesOn_ = true;
};

TEST(NeedsTranscoding, WhatTheComponentCannotRead) {
  for (const char* name :
       {"UTF-32", "UTF-32LE", "UTF-32BE", "ISO-2022-JP", "ISO-2022-KR", "HZ", "UTF-7", "SCSU"}) {
    EXPECT_TRUE(NeedsTranscoding(name)) << name;
  }
  for (const char* name : {"UTF-8", "UTF-16", "UTF-16BE", "windows-1252", "Shift_JIS", "GB18030",
                           "there is no such name"}) {
    EXPECT_FALSE(NeedsTranscoding(name)) << name;
  }
}

TEST_F(TranscodingTest, GivesUtf8) {
  EXPECT_EQ(Utf8(std::string("a\0\0\0\xAC\x20\0\0", 8), "UTF-32LE"), "a\xE2\x82\xAC");
  EXPECT_EQ(Utf8(std::string("\0\0\0a\0\1\xF3\x33", 8), "UTF-32BE"), "a\xF0\x9F\x8C\xB3");
  EXPECT_EQ(Utf8("x\x1B$B0l\x1B(By\n", "ISO-2022-JP"), "x\xE4\xB8\x80y\n");
  EXPECT_EQ(Utf8("", "UTF-32LE"), "");
  EXPECT_EQ(undecodable_, 0);
}

TEST_F(TranscodingTest, CharactersAcrossBlocksAreWhole) {
  std::string bytes;
  std::string text;
  for (int i = 0; i < 300001; ++i) {
    bytes += std::string("\xAC\x20\0\0", 4);
    text += "\xE2\x82\xAC";
    if (i % 1000 == 0) bytes += std::string("\n\0\0\0", 4), text += '\n';
  }
  EXPECT_EQ(Utf8(bytes, "UTF-32LE"), text);
  EXPECT_EQ(read_, static_cast<std::int64_t>(bytes.size()));
}

TEST_F(TranscodingTest, WhatIsNoCharacterIsCounted) {
  EXPECT_EQ(Utf8(std::string("a\0\0\0\0\0\x11\0b\0\0\0", 12), "UTF-32LE"),
            "a\xFF"
            "b");
  EXPECT_EQ(undecodable_, 1);
  // The last character is not all there.
  EXPECT_EQ(Utf8(std::string("a\0\0\0b\0", 6), "UTF-32LE"), "a\xFF");
  EXPECT_EQ(undecodable_, 1);
}

TEST_F(TranscodingTest, EndsWhereItIsTold) {
  goesOn_ = false;
  EXPECT_EQ(Utf8(std::string(100, 'a'), "UTF-8"), "!");
  EXPECT_EQ(Utf8("a", "no such name"), "!there is no encoding no such name");
}

}  // namespace
}  // namespace library
