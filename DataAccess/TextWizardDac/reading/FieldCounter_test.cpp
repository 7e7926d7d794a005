#include "reading/FieldCounter.h"

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/HostText.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace textwizard {
namespace {

ImportSettings Settings(const std::string& delimiters, const std::string& qualifier) {
  ImportSettings settings;
  settings.delimiters = delimiters;
  settings.qualifier = qualifier;
  settings.qualifierSet = !qualifier.empty();
  return settings;
}

std::size_t CutRecord(FieldSplitter& splitter, std::string_view record) {
  splitter.SetRecord(record);
  std::size_t count = 0;
  for (std::string_view field; splitter.Next(field);) ++count;
  return count;
}

std::size_t CutLines(const FieldRules& rules, std::string_view lines) {
  FieldSplitter splitter(rules, SplitUse::kReading, nullptr);
  std::size_t count = 0;
  while (!lines.empty()) {
    const std::size_t length = std::min(lines.find_first_of("\r\n"), lines.size());
    count += CutRecord(splitter, lines.substr(0, length));
    lines.remove_prefix(std::min(length + 1, lines.size()));
  }
  return count;
}

// Lines of anything that matters to the splitter and characters of several bytes.
std::string AnyLines(std::mt19937& random) {
  static const char* const kPieces[] = {
      "a",
      "1.5",
      ",",
      ",",
      ",",
      ";",
      " ",
      "  ",
      "\t",
      "\n",
      "\n",
      "\r",
      "\r\n",
      "\"",
      "\"\"",
      "\",",
      "long text that fills more than a word of marks and goes on behind it, too, \"somewhere\"",
      "\xC3\xA4",
      "\xE2\x82\xAC",
      "\xFF",
      "\xE2\x82",
      "\x81,"};
  // Some text has no qualifier, some nothing beyond ASCII.
  const std::size_t pieces = random() % 3 == 0 ? 13 : random() % 2 == 0 ? 17 : 22;
  std::string lines;
  for (std::size_t size = random() % 400; lines.size() < size;) {
    lines += kPieces[random() % pieces];
  }
  if (random() % 4 == 0) lines = std::string(4000 + random() % 200, 'x') + lines;
  return lines + "\n";
}

// Often enclosed fields, or any order; short lines and long ones.
std::string QualifiedLines(std::mt19937& random) {
  const auto enclosed = random() % 3;
  const auto ends = 1 + random() % 40;
  const std::size_t size = random() % 20 == 0 ? 5000 + random() % 5000 : random() % 300;
  std::string lines;
  while (lines.size() < size) {
    if (random() % 3 < enclosed) {
      lines += ",\"" + std::string(random() % 90, "a, "[random() % 3]) + "\",";
    } else if (random() % ends == 0) {
      lines += "\n\r"[random() % 2];
    } else {
      lines += "a,,\"\" b"[random() % 7];
    }
  }
  return lines + "\n";
}

TEST(FieldCounter, CountsTheFieldsOfLines) {
  const embedded::InCodePage host(nullptr);
  const FieldRules rules(Settings(",;", "\""));
  FieldCounter counter(rules);
  EXPECT_EQ(counter.CountLines(""), 0u);
  EXPECT_EQ(counter.CountLines("\n\r\n\r"), 0u);
  EXPECT_EQ(counter.CountLines("a\n"), 1u);
  // A delimiter that ends a record is not followed by a field.
  EXPECT_EQ(counter.CountLines("a,\n"), 1u);
  EXPECT_EQ(counter.CountLines(",\n"), 1u);
  EXPECT_EQ(counter.CountLines(",,;b\r\n\r\nc\rd;e\n"), 7u);
  // A line ends what a qualifier opened; a stray one takes in what follows.
  EXPECT_EQ(counter.CountLines("a,\"b,c\nd\",e\nf,g\n"), 5u);
  EXPECT_EQ(counter.CountLines("a,b\n\"c,d\",e\n\n\"f\"\ng,h\n"), 7u);
}

TEST(FieldCounter, CountsNoDelimiterInsideQualifiers) {
  const embedded::InCodePage host(nullptr);
  const FieldRules rules(Settings(",", "\""));
  FieldCounter counter(rules);
  EXPECT_EQ(counter.CountLines("\"a,b\",\"c\"\"d,e\",f\n"), 3u);
  // A delimiter that a line ends behind, inside qualifiers, is text of a last field.
  EXPECT_EQ(counter.CountLines("a,\"b,\nc,d\n"), 4u);
  // A qualifier within a field opens, too, whatever stands before it.
  EXPECT_EQ(counter.CountLines("a\"b,c\"d,e\n"), 2u);
  EXPECT_EQ(counter.CountLines("\"a\"b\"c,d\",e\n"), 2u);
  // Each place in a word of marks and behind it.
  for (std::size_t size = 0; size < 140; ++size) {
    const std::string before(size, 'x');
    EXPECT_EQ(counter.CountLines(before + ",\"a,b\",c\n"), 3u) << size;
    EXPECT_EQ(counter.CountLines("\"" + before + ",b\",c\n"), 2u) << size;
    EXPECT_EQ(counter.CountLines("\"" + before + "\nb,c\n"), 3u) << size;
  }
}

TEST(FieldCounter, KeepsStrayQualifiersWhereTheRulesDo) {
  const embedded::InCodePage host(nullptr);
  ImportSettings settings = Settings(",", "\"");
  settings.keepsStrayQualifiers = true;
  const FieldRules rules(settings);
  FieldCounter counter(rules);
  EXPECT_EQ(counter.CountLines("a\"b,c\"d,e\n"), 3u);
  EXPECT_EQ(counter.CountLines("a\"\",c\"\"d\",e\n"), 3u);
  // Blanks before it, or an earlier one that opened the field, make no stray one of it.
  EXPECT_EQ(counter.CountLines("a,  \"b,c\",d\n"), 3u);
  EXPECT_EQ(counter.CountLines("\"a\"b\"c,d\",e\n"), 2u);
  for (std::size_t size = 1; size < 140; ++size) {
    const std::string before(size, 'x');
    EXPECT_EQ(counter.CountLines(before + "\",\"a,b\",c\n"), 3u) << size;
    EXPECT_EQ(counter.CountLines("a" + std::string(size, ' ') + "\",\"a,b\",c\n"), 3u) << size;
    EXPECT_EQ(counter.CountLines(std::string(size, ' ') + "\",\"a,b\",c\n"), 3u) << size;
  }
}

TEST(FieldCounter, CountsARecordUpToAField) {
  const embedded::InCodePage host(nullptr);
  const FieldRules rules(Settings(",", "\""));
  FieldCounter counter(rules);
  std::size_t offset = 0;
  EXPECT_EQ(counter.CountRecord("ab,\"c,d\",e,", 2, &offset), 2u);
  EXPECT_EQ(offset, 9u);
  EXPECT_EQ(counter.CountRecord("ab,\"c,d\",e,", 5, &offset), 1u);
  EXPECT_EQ(offset, 11u);
  EXPECT_EQ(counter.CountRecord("ab,\"c,d\",e,", 5, &offset), 0u);
  offset = 0;
  EXPECT_EQ(counter.CountRecord("", 5, &offset), 0u);
}

TEST(FieldCounter, CountsWhatTheSplitterCuts) {
  std::mt19937 random(20);
  const auto compare = [&](ImportSettings settings, const std::string& lines) {
    settings.keepsStrayQualifiers = random() % 2 == 0;
    const FieldRules rules(settings);
    FieldCounter counter(rules);
    ASSERT_EQ(counter.CountLines(lines), CutLines(rules, lines))
        << testing::PrintToString(lines) << settings.delimiters << settings.keepsStrayQualifiers;
  };
  for (const char* const page : {"UTF-8", "windows-1252", "Shift_JIS"}) {
    SCOPED_TRACE(page);
    const embedded::InCodePage host(std::string_view(page) == "UTF-8" ? nullptr : page);
    for (int round = 0; round < 1500 && !testing::Test::HasFailure(); ++round) {
      static const char* const kDelimiters[] = {",", ",;", " ", ", ", "\t", "\n,", ""};
      ImportSettings settings = Settings(kDelimiters[random() % 7], random() % 3 == 0 ? "" : "\"");
      settings.leadingSpaces = random() % 4 == 0;
      settings.multipleSpaces = random() % 4 == 0;
      compare(settings, AnyLines(random));
      compare(Settings(random() % 4 == 0 ? ", " : ",", "\""), QualifiedLines(random));
    }
  }
}

}  // namespace
}  // namespace textwizard
