// What characters do, and which text is cut by its bytes, by the rules and the host's code page.
#include "reading/CharacterKinds.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace textwizard {
namespace {

// The kinds of rules with these delimiters and this qualifier (null: none).
class Kinds {
 public:
  Kinds(const char* delimiters, const char* qualifier)
      : rules_(Settings(delimiters, qualifier)),
        converter_(QANTMBConverterNew_A(nullptr)),
        kinds_(rules_) {
    kinds_.UseRules(converter_.get());
  }
  const CharacterKinds* operator->() const { return &kinds_; }

 private:
  static ImportSettings Settings(const char* delimiters, const char* qualifier) {
    ImportSettings settings;
    settings.delimiters = delimiters;
    settings.qualifierSet = qualifier != nullptr;
    if (qualifier) settings.qualifier = qualifier;
    return settings;
  }

  FieldRules rules_;
  ConverterHandle converter_;
  CharacterKinds kinds_;
};

std::string Cutting(const Kinds& kinds) {
  const ByteSet& set = kinds->cutting();
  return {set.bytes.begin(), set.bytes.begin() + set.count};
}

TEST(CharacterKinds, ADelimiterBeforeTheQualifierAndTheBlankApart) {
  const Kinds kinds(", '", "'");
  EXPECT_EQ(kinds->Of(','), CharacterKind::kDelimiter);
  EXPECT_EQ(kinds->Of(' '), CharacterKind::kBlankDelimiter);
  EXPECT_EQ(kinds->Of('\''), CharacterKind::kDelimiter);
  EXPECT_EQ(kinds->Of('a'), CharacterKind::kData);
  const Kinds quoted(",", "\"");
  EXPECT_EQ(quoted->Of('"'), CharacterKind::kQualifier);
  EXPECT_EQ(quoted->OfByte('"'), CharacterKind::kQualifier);
  EXPECT_EQ(quoted->Of(' '), CharacterKind::kData);
  EXPECT_EQ(Cutting(quoted), "\",");
}

TEST(CharacterKinds, CharactersBeyondAsciiCutDecodedOnly) {
  const Kinds kinds("\xC2\xA6", nullptr);
  EXPECT_EQ(kinds->Of(0xA6), CharacterKind::kDelimiter);
  EXPECT_EQ(kinds->OfByte('\xA6'), CharacterKind::kData);
  EXPECT_EQ(Cutting(kinds), "");
  EXPECT_TRUE(kinds->CutsByBytes("abc")) << "ASCII holds no such character";
  EXPECT_FALSE(kinds->CutsByBytes("\xC3\xA9"));
  EXPECT_FALSE(kinds->CutsBrokenTextByBytes("\xFF"));
}

TEST(CharacterKinds, BrokenTextIsCutByBytesInUtf8WithAsciiRules) {
  const Kinds kinds(",", "\"");
  EXPECT_TRUE(kinds->CutsByBytes("\xC3\xA9,"));
  EXPECT_FALSE(kinds->CutsByBytes("\xFF,"));
  EXPECT_TRUE(kinds->CutsBrokenTextByBytes("\xFF,"));
  EXPECT_FALSE(kinds->CutsBrokenTextByBytes(std::string("\xFF\0,", 3)));
  const embedded::InCodePage page("windows-1252");
  EXPECT_FALSE(Kinds(",", "\"")->CutsBrokenTextByBytes("\xFF,")) << "every byte is a character";
}

TEST(CharacterKinds, InASingleByteCodePageEveryByteHasItsKind) {
  const embedded::InCodePage page("windows-1252");
  const Kinds kinds("\xA6", "\xAB");
  EXPECT_EQ(kinds->OfByte('\xA6'), CharacterKind::kDelimiter);
  EXPECT_EQ(kinds->OfByte('\xAB'), CharacterKind::kQualifier);
  EXPECT_TRUE(kinds->CutsByBytes("a\xA6\xE9"));
  EXPECT_FALSE(kinds->CutsByBytes(std::string("a\0", 2)));
  EXPECT_FALSE(kinds->utf8());
}

TEST(CharacterKinds, AByteMayHaveADelimitersNumberAndBeNone) {
  // The number of the delimiter U+00A6 is that of a byte which in UTF-8 goes on a character.
  const Kinds kinds("\xC2\xA6 ", nullptr);
  EXPECT_TRUE(kinds->HasDelimitersNumber('\xA6'));
  EXPECT_FALSE(kinds->HasDelimitersNumber(' ')) << "the blank is not meant";
  EXPECT_FALSE(kinds->HasDelimitersNumber('\xC2'));
}

}  // namespace
}  // namespace textwizard
