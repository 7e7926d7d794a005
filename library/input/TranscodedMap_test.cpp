#include "library/input/TranscodedMap.h"

#include <random>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unicode/unistr.h>
#include <unistd.h>

#include "library/input/Transcoding.h"
#include "library/testing/TestFolder.h"

namespace library {
namespace {

using std::string_literals::operator""s;

class TranscodedMapTest : public testing::Test {
 protected:
  // Converts a file of those bytes and maps it.
  void Convert(const std::string& bytes, const std::string& encoding) {
    const std::string path = folder_.Write("data", bytes);
    std::string problem;
    map_ = std::make_unique<CopyMap>(FileSource::Open(path, &problem));
    text_.clear();
    const TranscodingListener listener{.write =
                                           [&](std::string_view more, std::string*) {
                                             text_ += more;
                                             return true;
                                           },
                                       .progress = [](std::int64_t) { return true; }};
    const int file = open(path.c_str(), O_RDONLY);
    std::int64_t undecodable = 0;
    EXPECT_TRUE(Transcode(file, encoding, listener, &undecodable, &problem, map_.get())) << problem;
    close(file);
  }
  // Where the character of the text stands.
  std::int64_t PlaceOf(const std::string& character) {
    return map_->FileOffset(static_cast<std::int64_t>(text_.find(character)));
  }

  TestFolder folder_;
  std::unique_ptr<CopyMap> map_;
  std::string text_;
};

std::string Encoded(const std::string& utf8, const char* encoding) {
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8(utf8);
  std::string bytes(static_cast<std::size_t>(text.length()) * 8 + 64, '\0');
  const std::int32_t length = text.extract(0, text.length(), bytes.data(),
                                           static_cast<std::uint32_t>(bytes.size()), encoding);
  bytes.resize(static_cast<std::size_t>(length));
  return bytes;
}

TEST_F(TranscodedMapTest, CharactersOfFourBytes) {
  Convert(Encoded("a\xC3\xA9\n\xE2\x82\xAC\xF0\x9F\x98\x80z", "UTF-32LE"), "UTF-32LE");
  EXPECT_EQ(PlaceOf("a"), 0);
  EXPECT_EQ(PlaceOf("\xC3\xA9"), 4);
  EXPECT_EQ(PlaceOf("\n"), 8);
  EXPECT_EQ(PlaceOf("\xE2\x82\xAC"), 12);
  EXPECT_EQ(PlaceOf("\xF0\x9F\x98\x80"), 16);
  EXPECT_EQ(PlaceOf("z"), 20);
  EXPECT_EQ(map_->FileOffset(static_cast<std::int64_t>(text_.size())), 24);
  EXPECT_EQ(map_->markBytes(), 0);
  EXPECT_EQ(map_->unitBytes(), 4);
  EXPECT_EQ(map_->lineEnds().feed, "\n\0\0\0"s);
  EXPECT_EQ(map_->lineEnds().carriageReturn, "\r\0\0\0"s);
}

TEST_F(TranscodedMapTest, AMarkThatTheTextLacks) {
  Convert("\xFF\xFE\0\0a\0\0\0b\0\0\0"s, "UTF-32");
  EXPECT_EQ(text_, "ab");
  EXPECT_EQ(map_->markBytes(), 4);
  EXPECT_EQ(PlaceOf("a"), 4);
  EXPECT_EQ(PlaceOf("b"), 8);
  EXPECT_EQ(map_->lineEnds().feed, "\n\0\0\0"s) << "in the mark's byte order";
  Convert("\0\0\0a"s, "UTF-32");
  EXPECT_EQ(map_->markBytes(), 0);
  EXPECT_EQ(map_->lineEnds().feed, "\0\0\0\n"s);
  Convert("\xFE\xFF\0a\0\n"s, "UTF-16");
  EXPECT_EQ(map_->markBytes(), 2);
  EXPECT_EQ(PlaceOf("\n"), 4);
  EXPECT_EQ(map_->unitBytes(), 2);
  EXPECT_EQ(map_->lineEnds().feed, "\0\n"s);
}

TEST_F(TranscodedMapTest, AMarkThatTheTextHasIsACharacter) {
  Convert(
      "\xEF\xBB\xBF"
      "ab",
      "UTF-8");
  EXPECT_EQ(text_.size(), 5U);
  EXPECT_EQ(map_->markBytes(), 0);
  EXPECT_EQ(PlaceOf("a"), 3);
}

TEST_F(TranscodedMapTest, AFileOfAMarkAlone) {
  Convert("\xFF\xFE\0\0"s, "UTF-32");
  EXPECT_EQ(text_, "");
  EXPECT_EQ(map_->markBytes(), 4);
  EXPECT_EQ(map_->FileOffset(0), 4);
}

TEST_F(TranscodedMapTest, ALineBeginsWithItsEscape) {
  // A line of two bytes a character and its escapes, one of ASCII, one that begins as the first.
  Convert("\x1B$B0l\x1B(B\nxy\n\x1B$B0l\x1B(Bz\n", "ISO-2022-JP");
  EXPECT_EQ(text_, "\xE4\xB8\x80\nxy\n\xE4\xB8\x80z\n");
  EXPECT_EQ(map_->FileOffset(0), 0);
  EXPECT_EQ(PlaceOf("\n"), 8);
  EXPECT_EQ(PlaceOf("x"), 9);
  EXPECT_EQ(map_->FileOffset(7), 12) << "in front of the escape";
  EXPECT_EQ(PlaceOf("z"), 20) << "behind the escape";
  EXPECT_EQ(map_->unitBytes(), 1);
  EXPECT_EQ(map_->lineEnds().feed, "\n");
}

TEST_F(TranscodedMapTest, WhatIsNoCharacterHasAPlace) {
  Convert("a\0\0\0\0\0\x11\0b\0\0\0c\0"s, "UTF-32LE");
  EXPECT_EQ(PlaceOf("\xFF"), 4);
  EXPECT_EQ(PlaceOf("b"), 8);
  // The last one is not all there.
  EXPECT_EQ(map_->FileOffset(3), 12);
  EXPECT_EQ(map_->FileOffset(4), 14);
}

// Lines of several megabytes in all, so that the map has many stretches: every line stands where
// its line feed before ends.
TEST_F(TranscodedMapTest, LinesOfLongFiles) {
  std::mt19937 random(7);
  const char* const letters[] = {"a", "1", ";", "\xE3\x81\x82", "\xE6\xBC\xA2", "\xD0\x96"};
  std::string text;
  while (text.size() < std::size_t{3} << 20) {
    for (std::size_t length = random() % 60; length > 0; --length) text += letters[random() % 6];
    text += random() % 5 == 0 ? "\r\n" : "\n";
  }
  for (const char* encoding :
       {"UTF-32LE", "UTF-32BE", "ISO-2022-JP", "UTF-16LE", "EUC-JP", "Shift_JIS", "UTF-8"}) {
    const std::string bytes = Encoded(text, encoding);
    Convert(bytes, encoding);
    ASSERT_EQ(text_, text) << encoding;
    const auto unit = static_cast<std::size_t>(map_->unitBytes());
    std::size_t file = 0;
    std::size_t wrong = 0;
    for (std::size_t copy = 0; copy < text.size();) {
      wrong += map_->FileOffset(static_cast<std::int64_t>(copy)) != static_cast<std::int64_t>(file);
      copy = text.find('\n', copy) + 1;
      do {
        file = bytes.find(map_->lineEnds().feed, file) + 1;
      } while ((file - 1) % unit != 0);
      file += unit - 1;
    }
    EXPECT_EQ(wrong, 0U) << encoding;
    EXPECT_EQ(file, bytes.size()) << encoding;
  }
}

}  // namespace
}  // namespace library
