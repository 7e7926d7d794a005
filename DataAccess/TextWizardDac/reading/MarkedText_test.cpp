// Bytes of a set are found where a plain search finds them, wherever the blocks begin and end.
#include "reading/MarkedText.h"

#include <algorithm>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

ByteSet Bytes(std::string_view bytes) {
  ByteSet set;
  for (const char byte : bytes) set.bytes[set.count++] = static_cast<std::uint8_t>(byte);
  return set;
}

// Longer than what is marked at a time.
std::string RandomText(std::mt19937& random, std::size_t size, unsigned rarity) {
  std::string text(size, 'x');
  for (char& byte : text) {
    if (random() % rarity == 0) byte = random() % 2 ? ',' : '"';
  }
  return text;
}

TEST(MarkedText, FindsWhatAPlainSearchFinds) {
  std::mt19937 random(1);
  MarkedText marked;
  marked.SetBytes(Bytes(",\""));
  for (const unsigned rarity : {2U, 20U, 500U, 9000U}) {
    for (const std::size_t size : {0U, 1U, 63U, 64U, 65U, 4095U, 4096U, 4097U, 12'345U}) {
      const std::string text = RandomText(random, size, rarity);
      marked.SetText(text);
      for (int search = 0; search < 200; ++search) {
        std::size_t from = random() % (size + 1), to = random() % (size + 1);
        if (from > to) std::swap(from, to);
        const char* const end = text.data() + to;
        const char* const expected =
            std::find_if(text.data() + from, end, [](char c) { return c == ',' || c == '"'; });
        ASSERT_EQ(marked.Next(text.data() + from, end) - text.data(), expected - text.data())
            << "from " << from << " to " << to << " of " << size;
      }
    }
  }
}

TEST(MarkedText, TellsSixtyFourBytesAtOnce) {
  std::string text(70, 'x');
  text[0] = text[63] = text[65] = ',';
  MarkedText marked;
  marked.SetBytes(Bytes(","));
  marked.SetText(text);
  EXPECT_EQ(marked.MarksAt(0), 1U | std::uint64_t{1} << 63);
  EXPECT_EQ(marked.MarksAt(1), 2U) << "nothing behind the end";
}

TEST(MarkedText, ANewTextAndNewBytesForgetTheOldMarks) {
  const std::string first = "a,b;c", second = "ab,;c";
  MarkedText marked;
  marked.SetBytes(Bytes(","));
  marked.SetText(first);
  EXPECT_EQ(marked.Next(first.data(), first.data() + 5), first.data() + 1);
  marked.SetBytes(Bytes(";"));
  EXPECT_EQ(marked.Next(first.data(), first.data() + 5), first.data() + 3);
  marked.SetText(second);
  EXPECT_EQ(marked.MarksAt(0), 8U);
  EXPECT_EQ(marked.Next(second.data() + 4, second.data() + 5), second.data() + 5);
}

TEST(MarkedText, WithoutBytesNothingIsFound) {
  const std::string text(100, ',');
  MarkedText marked;
  marked.SetText(text);
  EXPECT_EQ(marked.Next(text.data(), text.data() + 100), text.data() + 100);
}

}  // namespace
}  // namespace textwizard
