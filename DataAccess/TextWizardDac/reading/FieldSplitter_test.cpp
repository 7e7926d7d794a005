// The rules by which a record is cut into fields.
#include "reading/FieldSplitter.h"

#include <utility>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace textwizard {
namespace {

using embedded::InCodePage;
using Strings = std::vector<std::string>;

enum Options { kNone = 0, kLeading = 1, kMultiple = 2, kSupplied = 4 };

ImportSettings Settings(const char* delimiters, const char* qualifier, int options) {
  ImportSettings settings;
  settings.delimiters = delimiters;
  settings.qualifierSet = qualifier != nullptr;
  if (qualifier) settings.qualifier = qualifier;
  settings.leadingSpaces = (options & kLeading) != 0;
  settings.multipleSpaces = (options & kMultiple) != 0;
  return settings;
}

class KeptPositions : public UndecodableListener {
 public:
  void OnUndecodable(const UndecodableRun& run) override {
    for (std::size_t i = 0; i < run.count; ++i) positions.push_back(run.position + i);
  }
  std::vector<std::size_t> positions;
};

struct Cut {
  Strings fields;
  std::vector<std::size_t> undecodable;
};

Cut CutAll(std::string_view record, const ImportSettings& settings, SplitUse use) {
  const FieldRules rules(settings);
  KeptPositions kept;
  FieldSplitter splitter(rules, use, &kept);
  Cut cut;
  std::string_view field;
  for (splitter.SetRecord(record); splitter.Next(field);) cut.fields.emplace_back(field);
  EXPECT_EQ(field, "");
  cut.undecodable = kept.positions;
  return cut;
}

Strings Fields(std::string_view record, const char* delimiters, const char* qualifier = nullptr,
               int options = kNone) {
  const SplitUse use = (options & kSupplied) != 0 ? SplitUse::kSuppliedRecord : SplitUse::kReading;
  return CutAll(record, Settings(delimiters, qualifier, options), use).fields;
}

TEST(FieldSplitter, DelimitersCutAndQualifiedTextIsData) {
  EXPECT_EQ(Fields(R"(a,"b,c",,"d""e")", ",", "\""), (Strings{"a", "b,c", "", "d\"e"}));
}

TEST(FieldSplitter, TheCharacterBehindAClosingQualifierIsDropped) {
  EXPECT_EQ(Fields(R"("ab"x,z)", ",", "\""), (Strings{"ab", "z"}));
  EXPECT_EQ(Fields(R"("ab"xyz,w)", ",", "\""), (Strings{"abyz", "w"}));
}

TEST(FieldSplitter, ARecordThatIsUsedUpHasNoMoreFields) {
  EXPECT_EQ(Fields("", ","), Strings{});
  EXPECT_EQ(Fields("a", ","), Strings{"a"});
  // The last delimiter is followed by nothing, which is no field.
  EXPECT_EQ(Fields("a,", ","), Strings{"a"});
  EXPECT_EQ(Fields(",", ","), Strings{""});
  EXPECT_EQ(Fields(",,", ","), (Strings{"", ""}));
}

TEST(FieldSplitter, WithoutDelimitersTheRecordIsOneField) {
  EXPECT_EQ(Fields("a,b c", ""), Strings{"a,b c"});
  EXPECT_EQ(Fields("'a'b", "", "'"), Strings{"a"});
}

TEST(FieldSplitter, AnUnclosedQualifierRunsToTheEndOfTheRecord) {
  EXPECT_EQ(Fields("\"a,b", ",", "\""), Strings{"a,b"});
  EXPECT_EQ(Fields("x,\"", ",", "\""), (Strings{"x", ""}));
  EXPECT_EQ(Fields("x,\"a\"\"", ",", "\""), (Strings{"x", "a\""}));
}

TEST(FieldSplitter, AQualifierInsideAFieldStartsQualifiedText) {
  EXPECT_EQ(Fields("ab\"c,d\",e", ",", "\""), (Strings{"abc,d", "e"}));
  EXPECT_EQ(Fields("\"\",\"\"\"\"", ",", "\""), (Strings{"", "\""}));
}

TEST(FieldSplitter, ABlankAtTheStartOfAFieldLosesItsLastCharacterAtAQualifier) {
  // The blank between a delimiter and a qualifier is not kept...
  EXPECT_EQ(Fields("a, \"b c\", \"d\"", ",", "\""), (Strings{"a", "b c", "d"}));
  // ...of several, one goes; and so does a character that stands there.
  EXPECT_EQ(Fields("  \"b\"", ",", "\""), Strings{" b"});
  EXPECT_EQ(Fields(" ab\"c\"", ",", "\""), Strings{" ac"});
  EXPECT_EQ(Fields("ab\"c\"", ",", "\""), Strings{"abc"});
  // A whole character.
  EXPECT_EQ(Fields(" a\xC3\xA9\"c\"", ",", "\""), Strings{" ac"});
}

TEST(FieldSplitter, BlanksAsDelimitersCutOneByOne) {
  EXPECT_EQ(Fields("1  2", " "), (Strings{"1", "", "2"}));
  EXPECT_EQ(Fields(" 1 ", " "), (Strings{"", "1"}));
}

TEST(FieldSplitter, MultipleSpacesHoldsBlanksAtTheStartOfAField) {
  EXPECT_EQ(Fields("1  2", " ", nullptr, kMultiple), (Strings{"1", " 2"}));
  EXPECT_EQ(Fields("1  2", " ", nullptr, kMultiple | kLeading), (Strings{"1", "2"}));
  EXPECT_EQ(Fields("1     2", " ", nullptr, kMultiple), (Strings{"1", " 2"}));
  EXPECT_EQ(Fields("   ", " ", nullptr, kMultiple), Strings{" "});
  EXPECT_EQ(Fields("   ", " ", nullptr, kMultiple | kLeading), Strings{""});
}

TEST(FieldSplitter, LeadingSpacesHoldsThemToo) {
  EXPECT_EQ(Fields("1  2", " ", nullptr, kLeading), (Strings{"1", "2"}));
  EXPECT_EQ(Fields("  1,2", " ,", nullptr, kLeading), (Strings{"1", "2"}));
}

TEST(FieldSplitter, OnASuppliedRecordOnlyMultipleSpacesHoldsBlanks) {
  EXPECT_EQ(Fields("1  2", " ", nullptr, kLeading | kSupplied), (Strings{"1", "", "2"}));
  EXPECT_EQ(Fields("1  2", " ", nullptr, kMultiple | kSupplied), (Strings{"1", " 2"}));
  EXPECT_EQ(Fields("1  2", " ", nullptr, kMultiple | kLeading | kSupplied), (Strings{"1", "2"}));
}

TEST(FieldSplitter, ABlankBeforeAnotherDelimiterIsDroppedWithMultipleSpaces) {
  EXPECT_EQ(Fields("1 ,2", " ,"), (Strings{"1", "", "2"}));
  EXPECT_EQ(Fields("1 ,2", " ,", nullptr, kMultiple), (Strings{"1", "2"}));
  EXPECT_EQ(Fields("1 ,", " ,", nullptr, kMultiple), Strings{"1"});
  // Only the blank right before it: the first of two ends the field.
  EXPECT_EQ(Fields("1  ,2", " ,", nullptr, kMultiple), (Strings{"1", " ", "2"}));
  EXPECT_EQ(Fields("\"1\"xy ,2", " ,", "\"", kMultiple), (Strings{"1y", "2"}));
  // A blank that ends qualified text is a delimiter like any other.
  EXPECT_EQ(Fields("\"1\" ,2", " ,", "\"", kMultiple), (Strings{"1", "", "2"}));
}

TEST(FieldSplitter, RunsOfBlanksBecomeOneOnlyWhereBlanksDelimit) {
  EXPECT_EQ(Fields("'a   b  c' d", " ", "'", kMultiple), (Strings{"a b c", "d"}));
  EXPECT_EQ(Fields("a   b,c", ",", nullptr, kMultiple), (Strings{"a   b", "c"}));
}

TEST(FieldSplitter, LeadingSpacesAreRemovedFromQualifiedTextToo) {
  EXPECT_EQ(Fields("'  a ',  b", ",", "'", kLeading), (Strings{"a ", "b"}));
  EXPECT_EQ(Fields("  '  a' b", " ", "'", kLeading), (Strings{"a", "b"}));
}

TEST(FieldSplitter, HeldBlanksBeforeQualifiedTextLoseOneAtTheQualifierOnlyWithText) {
  // At the start of a field a qualifier takes nothing away: the held blank stays.
  EXPECT_EQ(Fields("x  'a'", " ", "'", kMultiple), (Strings{"x", " a"}));
}

TEST(FieldSplitter, ADelimiterThatIsTheQualifierCuts) {
  EXPECT_EQ(Fields("a'b'c", "'", "'"), (Strings{"a", "b", "c"}));
}

TEST(FieldSplitter, KeepsAtMostTenDelimiters) {
  EXPECT_EQ(Fields("0a1b2c3d4e5f6g7h8i9j0k1", "abcdefghijk"),
            (Strings{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "0k1"}));
}

TEST(FieldSplitter, CharactersBeyondAsciiCutAndQualify) {
  EXPECT_EQ(Fields("a\xC2\xA6\xC2\xAB"
                   "b\xC2\xA6"
                   "c\xC2\xAB\xC2\xA6"
                   "d",
                   "\xC2\xA6", "\xC2\xAB"),
            (Strings{"a",
                     "b\xC2\xA6"
                     "c",
                     "d"}));
}

TEST(FieldSplitter, CharactersBeyondAsciiAreDataWhole) {
  EXPECT_EQ(Fields("\xC3\xA9,\"\xE2\x82\xAC,\"\xF0\x9F\x98\x80x", ",", "\""),
            (Strings{"\xC3\xA9", "\xE2\x82\xAC,x"}));
}

TEST(FieldSplitter, TellsOfBytesThatAreNoCharacterAndTakesEachAsOne) {
  const Cut cut = CutAll("a\xFF,\xC3,b\xE2\x82", Settings(",", nullptr, kNone), SplitUse::kReading);
  EXPECT_EQ(cut.fields, (Strings{"a\xFF", "\xC3", "b\xE2\x82"}));
  EXPECT_EQ(cut.undecodable, (std::vector<std::size_t>{1, 3, 6, 7}));
}

TEST(FieldSplitter, TellsOnlyOfFieldsThatAreCut) {
  const FieldRules rules(Settings(",", nullptr, kNone));
  KeptPositions kept;
  FieldSplitter splitter(rules, SplitUse::kReading, &kept);
  splitter.SetRecord("a,b,\xFF");
  std::string_view field;
  ASSERT_TRUE(splitter.Next(field));
  ASSERT_TRUE(splitter.Next(field));
  EXPECT_TRUE(kept.positions.empty());
}

TEST(FieldSplitter, GoesOnFromAnyOffset) {
  const FieldRules rules(Settings(",", "'", kNone));
  FieldSplitter splitter(rules, SplitUse::kReading, nullptr);
  splitter.SetRecord("ab,cd,'e''f'");
  std::string_view field;
  ASSERT_TRUE(splitter.Next(field));
  EXPECT_EQ(splitter.offset(), 3u);
  splitter.SetOffset(6);
  ASSERT_TRUE(splitter.Next(field));
  EXPECT_EQ(field, "e'f");
  EXPECT_EQ(splitter.offset(), 12u);
  EXPECT_FALSE(splitter.Next(field));
  splitter.SetOffset(1);
  ASSERT_TRUE(splitter.Next(field));
  EXPECT_EQ(field, "b");
}

TEST(FieldSplitter, AFieldWithoutChangesIsAViewOfTheRecord) {
  const FieldRules rules(Settings(",", "'", kNone));
  FieldSplitter splitter(rules, SplitUse::kReading, nullptr);
  const std::string record = "ab,'c,d',e\xC3\xA9";
  splitter.SetRecord(record);
  std::string_view field;
  for (const std::size_t at : {0u, 4u, 9u}) {
    ASSERT_TRUE(splitter.Next(field));
    EXPECT_EQ(field.data(), record.data() + at);
  }
}

TEST(FieldSplitter, RulesMayChangeBetweenRecords) {
  FieldRules rules(Settings(",", nullptr, kNone));
  FieldSplitter splitter(rules, SplitUse::kReading, nullptr);
  rules.SetWideDelimiters(";");
  splitter.UseRules();
  splitter.SetRecord("a,b;c");
  std::string_view field;
  ASSERT_TRUE(splitter.Next(field));
  EXPECT_EQ(field, "a,b");
}

TEST(FieldSplitter, KnowsWhichTextIsCutByBytes) {
  const FieldRules ascii(Settings(",", "\"", kNone));
  const FieldRules wide(Settings("\xC2\xA6", nullptr, kNone));
  const FieldSplitter byAscii(ascii, SplitUse::kReading, nullptr);
  const FieldSplitter byWide(wide, SplitUse::kReading, nullptr);
  EXPECT_TRUE(byAscii.CutsByBytes(""));
  EXPECT_TRUE(byAscii.CutsByBytes("a,b"));
  EXPECT_TRUE(byAscii.CutsByBytes("\xC3\xA9,b"));
  EXPECT_FALSE(byAscii.CutsByBytes("\xE9,b"));
  EXPECT_FALSE(byAscii.CutsByBytes(std::string_view("a\0b", 3)));
  EXPECT_TRUE(byWide.CutsByBytes("a,b"));
  EXPECT_FALSE(byWide.CutsByBytes("\xC3\xA9,b"));
}

TEST(FieldSplitter, ASingleByteCodePageIsCutByBytes) {
  const InCodePage host("windows-1252");
  // In this page A6 is a broken bar and AB a guillemet.
  const FieldRules rules(Settings("\xA6", "\xAB", kNone));
  const FieldSplitter splitter(rules, SplitUse::kReading, nullptr);
  EXPECT_TRUE(splitter.CutsByBytes("a\xA6\xE9"));
  EXPECT_EQ(Fields("a\xA6\xAB"
                   "b\xA6"
                   "c\xAB\xA6\xE9",
                   "\xA6", "\xAB"),
            (Strings{"a",
                     "b\xA6"
                     "c",
                     "\xE9"}));
  EXPECT_EQ(Fields("1 \xA6"
                   "2",
                   " \xA6", nullptr, kMultiple),
            (Strings{"1", "2"}));
}

TEST(FieldSplitter, TheByteBehindABlankIsComparedAsItStands) {
  const InCodePage windows("windows-1252");
  // 80 is the euro sign, whose number is another: it ends a field, but it is no delimiter that a
  // blank is dropped before.
  EXPECT_EQ(Fields("1 \x80"
                   "2",
                   " \x80", nullptr, kMultiple),
            (Strings{"1", "", "2"}));
  const InCodePage dos("IBM850");
  // 82 has the number E9, and the byte E9 is data.
  EXPECT_EQ(Fields("1 \xE9"
                   "2\x82"
                   "3 \x82"
                   "4",
                   " \x82", nullptr, kMultiple),
            (Strings{"1\xE9"
                     "2",
                     "3", "", "4"}));
}

TEST(FieldSplitter, AMultibyteCodePageIsWalkedCharacterByCharacter) {
  const InCodePage host("Shift_JIS");
  // 83 7C is one character whose second byte is a bar.
  EXPECT_EQ(Fields("a|\x83\x7C|b", "|"), (Strings{"a", "\x83\x7C", "b"}));
  const FieldRules rules(Settings("|", nullptr, kNone));
  const FieldSplitter splitter(rules, SplitUse::kReading, nullptr);
  EXPECT_FALSE(splitter.CutsByBytes("\x83\x7C"));
  EXPECT_TRUE(splitter.CutsByBytes("a|b"));
}

TEST(FieldSplitter, TenThousandDelimitersAreTenThousandFields) {
  const Strings fields = Fields(std::string(10000, ','), ",");
  EXPECT_EQ(fields.size(), 10000u);
  EXPECT_EQ(fields.back(), "");
}

}  // namespace
}  // namespace textwizard
