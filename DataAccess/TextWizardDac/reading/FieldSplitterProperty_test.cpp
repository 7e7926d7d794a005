// Cutting by bytes gives the fields of the character walk, and both those of a splitter that is
// written as plainly as the rules are, on random rules and records.
#include <array>
#include <random>
#include <tuple>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "reading/FieldSplitter.h"

namespace textwizard {
namespace {

using Strings = std::vector<std::string>;
using Positions = std::vector<std::size_t>;

struct Cut {
  Strings fields;
  Positions undecodable;
  bool operator==(const Cut&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Cut& cut) {
  for (const std::string& field : cut.fields) out << '[' << testing::PrintToString(field) << ']';
  return out << testing::PrintToString(cut.undecodable);
}

// One record at a time, as a list of characters.
class PlainSplitter {
 public:
  PlainSplitter(const ImportSettings& settings, SplitUse use) : settings_(settings), use_(use) {
    const char* at = settings.delimiters.c_str();
    std::uint32_t ch = 0;
    for (int n = 0; n < 10 && *at; ++n) {
      at += QANTMBU32Get_A(&ch, at, 0, 8);
      delimiters_.push_back(ch);
    }
    if (settings.qualifierSet) QANTMBU32Get_A(&qualifier_, settings.qualifier.c_str(), 0, 8);
  }

  Cut Split(const std::string& record) {
    Cut cut;
    std::size_t at = 0;
    while (at < record.size()) cut.fields.push_back(Field(record, at, cut.undecodable));
    return cut;
  }

 private:
  bool IsDelimiter(std::uint32_t ch) const {
    return delimiters_.find(static_cast<char32_t>(ch)) != std::u32string::npos;
  }

  std::string Field(const std::string& record, std::size_t& at, Positions& undecodable) const {
    const bool blankCuts = IsDelimiter(' ');
    const bool holds =
        settings_.multipleSpaces || (use_ == SplitUse::kReading && settings_.leadingSpaces);
    Strings field;
    int state = 0;
    while (at < record.size()) {
      std::uint32_t ch = 0;
      int length = QANTMBU32Get_A(&ch, record.c_str() + at, 0, 8);
      if (length < 1) {
        undecodable.push_back(at);
        length = 1;
        ch = static_cast<unsigned char>(record[at]);
      }
      const std::string bytes = record.substr(at, static_cast<std::size_t>(length));
      at += bytes.size();
      const bool isQualifier = qualifier_ != 0 && ch == qualifier_;
      if (state == 0) {
        if (ch == ' ' && blankCuts && holds) {
          field.push_back(bytes);
        } else if (IsDelimiter(ch)) {
          break;
        } else if (isQualifier) {
          state = 2;
        } else {
          field.push_back(bytes);
          state = 1;
        }
      } else if (state == 1) {
        if (ch == ' ' && blankCuts) {
          const bool another = at < record.size() && record[at] != ' ' &&
                               IsDelimiter(static_cast<unsigned char>(record[at]));
          if (!another || !settings_.multipleSpaces) break;
        } else if (IsDelimiter(ch)) {
          break;
        } else if (isQualifier) {
          if (!field.empty() && field.front() == " ") field.pop_back();
          state = 2;
        } else {
          field.push_back(bytes);
        }
      } else if (state == 2) {
        if (isQualifier) {
          state = 3;
        } else {
          field.push_back(bytes);
        }
      } else if (isQualifier) {
        field.push_back(bytes);
        state = 2;
      } else if (IsDelimiter(ch)) {
        break;
      } else {
        state = 1;
      }
    }
    std::string text;
    for (const std::string& bytes : field) text += bytes;
    if (settings_.leadingSpaces) {
      while (!text.empty() && text.front() == ' ') text.erase(0, 1);
    }
    if (settings_.multipleSpaces && blankCuts) {
      for (std::size_t two; (two = text.find("  ")) != std::string::npos;) text.erase(two, 1);
    }
    return text;
  }

  const ImportSettings& settings_;
  SplitUse use_;
  std::u32string delimiters_;
  std::uint32_t qualifier_ = 0;
};

class KeptPositions : public UndecodableListener {
 public:
  void OnUndecodable(const UndecodableRun& run) override {
    for (std::size_t i = 0; i < run.count; ++i) positions.push_back(run.position + i);
  }
  Positions positions;
};

class RandomRecords : public testing::Test {
 protected:
  std::size_t Random(std::size_t below) { return random_() % below; }

  // Up to `most` of the given characters.
  std::string Text(const Strings& characters, std::size_t most) {
    std::string text;
    for (std::size_t n = Random(most + 1); n > 0; --n)
      text += characters[Random(characters.size())];
    return text;
  }

  ImportSettings Rules(const Strings& delimiters, const Strings& qualifiers) {
    ImportSettings settings;
    settings.delimiters = Text(delimiters, 3);
    settings.qualifierSet = Random(4) != 0;
    settings.qualifier = qualifiers[Random(qualifiers.size())];
    settings.leadingSpaces = Random(2) != 0;
    settings.multipleSpaces = Random(2) != 0;
    return settings;
  }

  // The cut of a record whose text lies in memory of exactly its size.
  static Cut CutOf(FieldSplitter& splitter, KeptPositions& kept, const std::string& record) {
    const embedded::Exact exact(record);
    Cut cut;
    kept.positions.clear();
    std::string_view field;
    for (splitter.SetRecord(exact.view()); splitter.Next(field);) cut.fields.emplace_back(field);
    cut.undecodable = kept.positions;
    return cut;
  }

  // Compares on `rounds` random rules. Returns how many records were cut by bytes and how many were
  // walked.
  std::pair<int, int> Compare(int rounds, const Strings& delimiters, const Strings& qualifiers,
                              const Strings& characters) {
    std::pair<int, int> ways;
    for (int round = 0; round < rounds; ++round) {
      const ImportSettings settings = Rules(delimiters, qualifiers);
      const SplitUse use = Random(2) != 0 ? SplitUse::kReading : SplitUse::kSuppliedRecord;
      const FieldRules rules(settings);
      KeptPositions kept;
      FieldSplitter splitter(rules, use, &kept);
      PlainSplitter plain(settings, use);
      for (int i = 0; i < 40; ++i) {
        const std::string record = Text(characters, i % 4 == 0 ? 200 : 20);
        ++(splitter.CutsByBytes(record) ? ways.first : ways.second);
        const Cut expected = plain.Split(record);
        EXPECT_EQ(CutOf(splitter, kept, record), expected)
            << "delimiters <" << settings.delimiters << "> qualifier <"
            << (settings.qualifierSet ? settings.qualifier : "") << "> leading "
            << settings.leadingSpaces << " multiple " << settings.multipleSpaces << " record "
            << testing::PrintToString(record);
        if (HasFailure()) return ways;
      }
    }
    return ways;
  }

  std::mt19937 random_{4};
};

const Strings kAsciiDelimiters = {",", " ", ";", "\t", "'", "\""};
const Strings kAsciiQualifiers = {"\"", "'", " ", "q"};

TEST_F(RandomRecords, AsciiText) {
  const auto [bytes, walked] = Compare(1500, kAsciiDelimiters, kAsciiQualifiers,
                                       {",", " ", " ", "\"", "\"", "'", "a", "b", ";", "q", "\t"});
  EXPECT_EQ(walked, 0);
  EXPECT_GT(bytes, 0);
}

TEST_F(RandomRecords, Utf8TextWithAsciiRules) {
  const auto [bytes, walked] =
      Compare(1500, kAsciiDelimiters, kAsciiQualifiers,
              {",", " ", " ", "\"", "'", "a", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"});
  EXPECT_EQ(walked, 0);
  EXPECT_GT(bytes, 0);
}

TEST_F(RandomRecords, BytesThatAreNoCharacterAmongText) {
  const auto [bytes, walked] =
      Compare(1500, kAsciiDelimiters, kAsciiQualifiers,
              {",", " ", " ", "\"", "'", "a", "\xC3", "\xA9", "\xFF", "\xE2\x82", "\xC3\xA9"});
  EXPECT_GT(bytes, 300);
  EXPECT_GT(walked, 300);
}

TEST_F(RandomRecords, RulesBeyondAscii) {
  const auto [bytes, walked] =
      Compare(1500, {",", " ", "\xC3\xA9", "\xE2\x82\xAC"}, {"\"", "\xC2\xAB"},
              {",", " ", "\"", "a", "\xC3\xA9", "\xE2\x82\xAC", "\xC2\xAB", "\xE9", "\xFF"});
  EXPECT_GT(bytes, 300);
  EXPECT_GT(walked, 300);
}

TEST_F(RandomRecords, ASingleByteCodePage) {
  const embedded::InCodePage host("ISO-8859-1");
  const auto [bytes, walked] = Compare(1500, {",", " ", "\xA6", "\xE9"}, {"\"", "\xAB"},
                                       {",", " ", "\"", "a", "\xA6", "\xE9", "\xAB", "\xFF"});
  EXPECT_EQ(walked, 0);
  EXPECT_GT(bytes, 0);
}

// Where a character's number is not its byte: the euro sign is 80, and E9, the number of an e with
// an acute accent (82), is a U with one.
TEST_F(RandomRecords, SingleByteCodePagesOfOtherNumbers) {
  for (const auto& [page, delimiter, other] :
       {std::tuple{"windows-1252", "\x80", "\x85"}, std::tuple{"IBM850", "\x82", "\xE9"}}) {
    const embedded::InCodePage host(page);
    const auto [bytes, walked] = Compare(1500, {",", " ", delimiter}, {"\"", "\xAB"},
                                         {",", " ", " ", "\"", "a", delimiter, other, "\xAB"});
    EXPECT_EQ(walked, 0);
    EXPECT_GT(bytes, 0);
  }
}

TEST_F(RandomRecords, AMultibyteCodePage) {
  const embedded::InCodePage host("Shift_JIS");
  const auto [bytes, walked] =
      Compare(1500, {",", " ", "|", "\x83\x7C"}, {"\"", "\x81\x75"},
              {",", " ", "\"", "a", "|", "\x83\x7C", "\x81\x75", "\x81", "\xB1", "\xFF"});
  EXPECT_GT(bytes, 300);
  EXPECT_GT(walked, 300);
}

// Many records that lie in one text are cut alike, though their bytes are marked across records and
// the next record's bytes follow.
TEST_F(RandomRecords, RecordsOfOneText) {
  for (int round = 0; round < 600; ++round) {
    const ImportSettings settings = Rules(kAsciiDelimiters, kAsciiQualifiers);
    const FieldRules rules(settings);
    FieldSplitter splitter(rules, SplitUse::kReading, nullptr);
    PlainSplitter plain(settings, SplitUse::kReading);
    Strings records;
    std::string text;
    for (int i = 0; i < 60; ++i) {
      records.push_back(Text({",", " ", "\"", "'", "a", "bcdefgh", "\xC3\xA9"}, i % 9 ? 30 : 900));
      text += records.back() + "\n";
    }
    ASSERT_TRUE(splitter.CutsByBytes(text));
    const embedded::Exact exact(text);
    splitter.SetByteText(exact.view());
    std::size_t at = 0;
    for (const std::string& record : records) {
      splitter.SetRecordOfText(exact.view().substr(at, record.size()));
      at += record.size() + 1;
      // Not all fields of every record are asked for.
      const Strings expected = plain.Split(record).fields;
      const std::size_t wanted = Random(3) != 0 ? expected.size() : Random(expected.size() + 1);
      std::string_view field;
      for (std::size_t i = 0; i < wanted; ++i) {
        ASSERT_TRUE(splitter.Next(field));
        ASSERT_EQ(field, expected[i]);
      }
      if (wanted == expected.size()) {
        ASSERT_FALSE(splitter.Next(field));
      }
    }
  }
}

// Fields cut several at once are those cut one by one, mixed with such, and empty behind the last.
TEST_F(RandomRecords, FieldsCutTogether) {
  int many = 0;
  for (int round = 0; round < 3000; ++round) {
    const ImportSettings settings = Rules(kAsciiDelimiters, kAsciiQualifiers);
    const FieldRules rules(settings);
    FieldSplitter splitter(rules, SplitUse::kReading, nullptr);
    PlainSplitter plain(settings, SplitUse::kReading);
    Strings records;
    std::string text;
    const std::string other = round % 5 == 0 ? "\xFF" : "\xC3\xA9";
    for (int i = 0; i < 20; ++i) {
      records.push_back(Text({",", ",", " ", "\"", "'", "a", "bcdefgh", other}, i % 9 ? 30 : 900));
      text += records.back() + "\n";
    }
    const embedded::Exact exact(text);
    const bool byBytes = splitter.CutsByBytes(text);
    if (byBytes) splitter.SetByteText(exact.view());
    std::size_t at = 0;
    for (const std::string& record : records) {
      const std::string_view view = exact.view().substr(at, record.size());
      if (byBytes) {
        splitter.SetRecordOfText(view);
      } else {
        splitter.SetRecord(view);
      }
      at += record.size() + 1;
      const Strings expected = plain.Split(record).fields;
      std::array<std::string_view, 12> fields;
      for (std::size_t i = 0; i < expected.size() + 3;) {
        const std::size_t wanted = 1 + Random(fields.size());
        const std::size_t cut = splitter.Cut(fields.data(), wanted);
        ASSERT_GE(cut, 1U);
        ASSERT_LE(cut, wanted);
        many += cut > 1;
        for (std::size_t k = 0; k < cut; ++k, ++i) {
          ASSERT_EQ(fields[k], i < expected.size() ? std::string_view(expected[i]) : "")
              << testing::PrintToString(record) << " field " << i;
        }
        std::string_view field;
        if (Random(4) != 0) continue;
        ASSERT_EQ(splitter.Next(field), i < expected.size());
        ASSERT_EQ(field, i < expected.size() ? std::string_view(expected[i]) : "");
        ++i;
      }
    }
  }
  EXPECT_GT(many, 10000);
}

// A field that is a view of the record tells where it was cut from.
TEST_F(RandomRecords, OffsetsOfViews) {
  int enclosed = 0, plain = 0;
  for (int round = 0; round < 4000; ++round) {
    ImportSettings settings = Rules({",", " "}, {"\"", "'"});
    settings.leadingSpaces = settings.multipleSpaces = false;
    const FieldRules rules(settings);
    FieldSplitter splitter(rules, SplitUse::kReading, nullptr);
    const std::string record = Text({",", "\"ab\",", "'cd',", " ", "\"", "'", "a", "bcdefgh"}, 40);
    splitter.SetRecord(record);
    std::string_view field;
    for (std::size_t begin = 0; splitter.Next(field); begin = splitter.offset()) {
      if (field.data() < record.data() || field.data() > record.data() + record.size()) continue;
      ASSERT_EQ(splitter.OffsetOf(field), begin) << testing::PrintToString(record);
      (field.data() == record.data() + begin ? plain : enclosed)++;
    }
  }
  EXPECT_GT(enclosed, 500);
  EXPECT_GT(plain, 5000);
}

}  // namespace
}  // namespace textwizard
