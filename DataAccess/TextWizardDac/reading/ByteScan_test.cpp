// Every scan equals a byte-by-byte one, at every alignment and length, on every instruction set of
// the machine.
#include "reading/ByteScan.h"

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "hwy/targets.h"

namespace textwizard {
namespace {

bool NaiveUtf8(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  for (std::size_t i = 0; i < text.size();) {
    const unsigned lead = byte(i);
    if (lead >= 1 && lead < 0x80) {
      ++i;
      continue;
    }
    const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    if (length == 0 || i + length > text.size()) return false;
    unsigned code = lead & (0xFFU >> (length + 1));
    for (std::size_t k = 1; k < length; ++k) {
      if ((byte(i + k) & 0xC0) != 0x80) return false;
      code = code << 6 | (byte(i + k) & 0x3FU);
    }
    if (length == 3 && (code < 0x800 || (code >= 0xD800 && code <= 0xDFFF))) return false;
    if (length == 4 && (code < 0x10000 || code > 0x10FFFF)) return false;
    i += length;
  }
  return true;
}

bool NaiveAscii(std::string_view text) {
  for (const char ch : text) {
    if (ch <= 0) return false;
  }
  return true;
}

std::size_t NaiveLineEnd8(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && text[i] != '\n' && text[i] != '\r' && text[i] != '\0') ++i;
  return i;
}

std::size_t NaiveLineEnd16(std::string_view text) {
  std::size_t i = 0;
  for (; i + 2 <= text.size(); i += 2) {
    const unsigned unit =
        static_cast<unsigned char>(text[i]) + 256U * static_cast<unsigned char>(text[i + 1]);
    for (const unsigned special : {0x000DU, 0x0D00U, 0x000AU, 0x0A00U, 0xFFFFU, 0x0000U}) {
      if (unit == special) return i;
    }
  }
  return i;
}

LineRun NaiveLineRun(std::string_view text, std::uint32_t most, bool allLines) {
  LineRun run;
  for (std::size_t begin = 0;;) {
    const std::size_t end = begin + NaiveLineEnd8(text.substr(begin));
    if (end == text.size() || text[end] == '\0') return run;
    std::size_t next = end + 1;
    if (text[end] == '\r') {
      if (next == text.size()) return run;
      if (text[next] == '\n') ++next;
    }
    if (end > begin || allLines) {
      if (run.records == most) return run;
      run = {next, run.records + 1};
    }
    begin = next;
  }
}

std::vector<std::uint64_t> NaiveMarks(std::string_view text, const ByteSet& set) {
  std::vector<std::uint64_t> words((text.size() + 63) / 64);
  for (std::size_t i = 0; i < text.size(); ++i) {
    for (std::size_t k = 0; k < set.count; ++k) {
      if (static_cast<unsigned char>(text[i]) == set.bytes[k]) {
        words[i / 64] |= std::uint64_t{1} << (i % 64);
      }
    }
  }
  return words;
}

ByteSet SetOf(std::string_view bytes) {
  ByteSet set;
  for (const char byte : bytes) set.bytes[set.count++] = static_cast<std::uint8_t>(byte);
  return set;
}

// The bytes behind `offset` unused ones in memory of exactly that size: a sanitizer sees every read
// outside of them.
class Placed {
 public:
  Placed(std::string_view bytes, std::size_t offset)
      : memory_(new char[offset + bytes.size()]), offset_(offset), size_(bytes.size()) {
    std::memset(memory_.get(), 0x55, offset);
    std::memcpy(memory_.get() + offset, bytes.data(), bytes.size());
  }
  std::string_view view() const { return {memory_.get() + offset_, size_}; }

 private:
  std::unique_ptr<char[]> memory_;
  std::size_t offset_;
  std::size_t size_;
};

// Runs each test on one instruction set.
class ByteScan : public testing::TestWithParam<std::int64_t> {
 protected:
  void SetUp() override { UseScanTarget(GetParam()); }
  void TearDown() override { UseScanTarget(0); }

  std::mt19937 random_{20};
  std::size_t Random(std::size_t below) {
    return std::uniform_int_distribution<std::size_t>(0, below - 1)(random_);
  }
  std::string RandomText(std::size_t size, std::string_view alphabet) {
    std::string text(size, ' ');
    for (char& ch : text) ch = alphabet[Random(alphabet.size())];
    return text;
  }
};

INSTANTIATE_TEST_SUITE_P(Targets, ByteScan, testing::ValuesIn(ScanTargets()),
                         [](const auto& target) { return hwy::TargetName(target.param); });

void ExpectLineRun(std::string_view text, std::uint32_t most) {
  for (const bool allLines : {false, true}) {
    const LineRun expected = NaiveLineRun(text, most, allLines);
    for (std::size_t offset = 0; offset < 3; ++offset) {
      const Placed placed(text, offset);
      const LineRun run =
          allLines ? FindRunOfAllLines(placed.view(), most) : FindLineRun(placed.view(), most);
      ASSERT_EQ(run.length, expected.length) << testing::PrintToString(text) << most << allLines;
      ASSERT_EQ(run.records, expected.records) << testing::PrintToString(text) << most << allLines;
    }
  }
}

TEST_P(ByteScan, LineRunsHaveWholeLinesWithoutNul) {
  const auto run = [](std::string_view text, std::uint32_t most = 100) {
    const LineRun found = FindLineRun(text, most);
    return std::to_string(found.length) + ":" + std::to_string(found.records);
  };
  using namespace std::string_view_literals;
  EXPECT_EQ(run(""), "0:0");
  EXPECT_EQ(run("ab"), "0:0");
  EXPECT_EQ(run("\n\r\r\n"), "0:0");
  EXPECT_EQ(run("ab\ncd\nef"), "6:2");
  EXPECT_EQ(run("ab\r\ncd\r\nef"), "8:2");
  EXPECT_EQ(run("ab\rcd\ref"), "6:2");
  EXPECT_EQ(run("\n\nab\n\r\n\ncd\n\n\nef"), "11:2");
  // Whether a LF belongs to the last CR is not known.
  EXPECT_EQ(run("ab\rcd\r"), "3:1");
  EXPECT_EQ(run("ab\r\n\n\rcd\r"), "4:1");
  EXPECT_EQ(run("ab\r"), "0:0");
  EXPECT_EQ(run("ab\r\n"), "4:1");
  EXPECT_EQ(run("ab\ncd\0\nef\n"sv), "3:1");
  EXPECT_EQ(run("ab\r\0\n"sv), "3:1");
  EXPECT_EQ(run("ab\r\ncd\nef\n", 2), "7:2");
  EXPECT_EQ(run("ab\r\ncd\nef\n", 1), "4:1");
  EXPECT_EQ(run("ab\n", 0), "0:0");
}

TEST_P(ByteScan, RunsOfAllLinesHaveEmptyOnes) {
  const auto run = [](std::string_view text, std::uint32_t most = 100) {
    const LineRun found = FindRunOfAllLines(text, most);
    return std::to_string(found.length) + ":" + std::to_string(found.records);
  };
  using namespace std::string_view_literals;
  EXPECT_EQ(run(""), "0:0");
  EXPECT_EQ(run("ab"), "0:0");
  EXPECT_EQ(run("\n"), "1:1");
  EXPECT_EQ(run("\n\r\r\n"), "4:3");
  EXPECT_EQ(run("\n\nab\n\r\n\ncd\n\n\nef"), "13:8");
  EXPECT_EQ(run("ab\r\ncd\r\nef"), "8:2");
  // Whether a LF belongs to the last CR is not known.
  EXPECT_EQ(run("\r"), "0:0");
  EXPECT_EQ(run("ab\r\r"), "3:1");
  EXPECT_EQ(run("ab\r\n\r"), "4:1");
  EXPECT_EQ(run("ab\n\ncd\r"), "4:2");
  EXPECT_EQ(run("\n\0\n"sv), "1:1");
  EXPECT_EQ(run("ab\r\0\n"sv), "3:1");
  EXPECT_EQ(run("\r\n\n\n", 2), "3:2");
  EXPECT_EQ(run("\r\n\n\n", 1), "2:1");
  EXPECT_EQ(run("\n", 0), "0:0");
  // Across words.
  EXPECT_EQ(run(std::string(63, 'x') + "\r\ny\n"), "67:2");
}

TEST_P(ByteScan, LineRunsOfRandomText) {
  for (int round = 0; round < 4000; ++round) {
    const std::size_t size = Random(round % 2 == 0 ? 40 : 300);
    std::string text = RandomText(size, Random(2) != 0 ? "a\n\r" : "abcdefghijklmnopqr\n\r,;");
    if (size > 0 && Random(3) == 0) text[Random(size)] = '\0';
    ExpectLineRun(text, 1000);
    ExpectLineRun(text, static_cast<std::uint32_t>(Random(20)));
  }
}

constexpr std::string_view kLineBytes("abcdefgh\n\r\t\x0B\x0C\x0E\0\x80\x8A\xFF", 18);

TEST_P(ByteScan, FindsTheLineEndAtEveryPlaceLengthAndAlignment) {
  for (std::size_t size = 0; size <= 140; ++size) {
    for (std::size_t offset = 0; offset < 4; ++offset) {
      std::string text(size, 'x');
      EXPECT_EQ(FindLineEnd8(Placed(text, offset).view()), size);
      for (std::size_t at = 0; at < size; ++at) {
        const char end = "\n\r\0"[at % 3];
        text[at] = end;
        ASSERT_EQ(FindLineEnd8(Placed(text, offset).view()), at);
        text[at] = 'x';
      }
    }
  }
}

TEST_P(ByteScan, FindsTheFirstOfManyLineEnds) {
  for (int round = 0; round < 4000; ++round) {
    const std::string text = std::string(Random(70), 'q') + RandomText(Random(100), kLineBytes);
    ASSERT_EQ(FindLineEnd8(Placed(text, Random(40)).view()), NaiveLineEnd8(text));
  }
}

TEST_P(ByteScan, FindsTheSixUnitsThatEnd16BitText) {
  for (std::size_t size = 0; size <= 140; ++size) {
    std::string text(size, 'x');
    EXPECT_EQ(FindLineEnd16(Placed(text, size % 5).view()), size / 2 * 2);
    for (std::size_t at = 0; at + 2 <= size; at += 2) {
      for (const char* unit : {"\x0D\0", "\0\x0D", "\x0A\0", "\0\x0A", "\xFF\xFF", "\0\0"}) {
        text.replace(at, 2, unit, 2);
        ASSERT_EQ(FindLineEnd16(Placed(text, size % 5).view()), at);
      }
      text.replace(at, 2, "xx");
    }
  }
}

TEST_P(ByteScan, TakesNoOther16BitUnitForAnEnd) {
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    const char bytes[2] = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    std::string text;
    for (int i = 0; i < 17; ++i) text.append(bytes, 2);
    ASSERT_EQ(FindLineEnd16(text), NaiveLineEnd16(text)) << unit;
  }
}

TEST_P(ByteScan, MarksEveryByteOfTheSetAndNoOther) {
  const std::string all = [] {
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes.push_back(static_cast<char>(i));
    return bytes;
  }();
  for (const std::string_view bytes :
       {"", ",", ",\"", ",;|\t \"'", "\x80\xFF,", ",;:|!/\\ \t\"'x"}) {
    const ByteSet set = SetOf(bytes);
    for (std::size_t size = 0; size <= 200; ++size) {
      const std::string text =
          size % 2 == 0 ? RandomText(size, all) : RandomText(size, ",;\" x\x80\xFF\t");
      const Placed placed(text, size % 7);
      std::vector<std::uint64_t> words((size + 63) / 64, 0xAAAAAAAAAAAAAAAA);
      MarkBytes(placed.view(), set, words.data());
      ASSERT_EQ(words, NaiveMarks(text, set)) << size;
    }
  }
}

TEST_P(ByteScan, TellsAsciiFromAnyOtherByteAtEveryPlace) {
  for (std::size_t size = 0; size <= 100; ++size) {
    std::string text(size, '\x01');
    EXPECT_TRUE(IsAscii(Placed(text, size % 3).view()));
    for (std::size_t at = 0; at < size; ++at) {
      for (const char wrong : {'\0', '\x80', '\xFF'}) {
        text[at] = wrong;
        ASSERT_FALSE(IsAscii(Placed(text, size % 3).view())) << size << " " << at;
      }
      text[at] = '\x7F';
    }
  }
}

// Every sequence of up to two bytes, and of three and four with the bytes that matter, behind and
// before text of every length up to a vector's.
TEST_P(ByteScan, KnowsEveryShortUtf8Sequence) {
  std::vector<std::string> sequences;
  for (unsigned a = 0; a < 256; ++a) {
    sequences.push_back({static_cast<char>(a)});
    for (unsigned b = 0; b < 256; ++b) {
      sequences.push_back({static_cast<char>(a), static_cast<char>(b)});
    }
  }
  const std::string_view edges("\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC2\xE0\xF0", 11);
  for (unsigned a = 0xC0; a < 256; ++a) {
    for (unsigned b = 0x70; b < 0xD0; ++b) {
      for (const char c : edges) {
        sequences.push_back({static_cast<char>(a), static_cast<char>(b), c});
        for (const char d : edges) {
          sequences.push_back({static_cast<char>(a), static_cast<char>(b), c, d});
        }
      }
    }
  }
  std::size_t at = 0;
  for (const std::string& sequence : sequences) {
    at = (at + 7) % 67;
    ASSERT_EQ(IsUtf8(sequence), NaiveUtf8(sequence));
    const std::string text = std::string(at, 'a') + sequence + std::string(at * 5 % 41, 'b');
    ASSERT_EQ(IsUtf8(text), NaiveUtf8(text)) << at;
  }
}

TEST_P(ByteScan, TellsValidUtf8FromSpoiltAtEveryPlace) {
  const std::string_view characters[] = {"a", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "z"};
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    const std::size_t count = Random(60);
    for (std::size_t i = 0; i < count; ++i) text += characters[Random(5)];
    ASSERT_TRUE(IsUtf8(Placed(text, Random(9)).view()));
    if (text.empty()) continue;
    text[Random(text.size())] = static_cast<char>(Random(256));
    ASSERT_EQ(IsUtf8(Placed(text, Random(9)).view()), NaiveUtf8(text));
    text.resize(Random(text.size() + 1));
    ASSERT_EQ(IsUtf8(Placed(text, Random(9)).view()), NaiveUtf8(text));
    ASSERT_EQ(IsAscii(text), NaiveAscii(text));
  }
}

}  // namespace
}  // namespace textwizard
