#include "HostFramework/Names.h"

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace embedded {
namespace {

TEST(ValidateName, Valid) {
  const InCodePage utf8(nullptr);
  for (const char* name : {"a", "A1", "_x", "@x", "#x", "$x", "_", "a.b", "a.b_c@d#e$9",
                           "\xC3\xA9t\xC3\xA9", "\xE6\x97\xA5\xE6\x9C\xAC",
                           // A letter and an Arabic-Indic digit.
                           "x\xD9\xA3", "ALLY", "B", "WITHOUT", "TO1", "THRU"}) {
    EXPECT_EQ(ValidateQANTName(name), 0) << name;
  }
}

TEST(ValidateName, Empty) {
  EXPECT_EQ(ValidateQANTName(""), 1);
  EXPECT_EQ(ValidateQANTName(nullptr), 1);
}

TEST(ValidateName, LongerThan64Bytes) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(ValidateQANTName(std::string(64, 'a').c_str()), 0);
  EXPECT_EQ(ValidateQANTName(std::string(65, 'a').c_str()), 2);
  std::string accented;
  for (int i = 0; i < 32; ++i) accented += "\xC3\xA9";
  EXPECT_EQ(ValidateQANTName(accented.c_str()), 0);
  EXPECT_EQ(ValidateQANTName((accented + "a").c_str()), 2);
  // The length is seen first, whatever stands in the name.
  EXPECT_EQ(ValidateQANTName(std::string(1000, ' ').c_str()), 2);
}

TEST(ValidateName, FirstCharacter) {
  const InCodePage utf8(nullptr);
  for (const char* name :
       {"1a", ".a", ".", " a", "-", "!", "\xD9\xA3x", "\xE2\x82\xAC", "\xFFx", "\xC3"}) {
    EXPECT_EQ(ValidateQANTName(Terminated(name).get()), 3) << name;
  }
}

TEST(ValidateName, LaterCharacter) {
  const InCodePage utf8(nullptr);
  for (const char* name :
       {"a b", "a-b", "a!", "a.", "a..", "a\xE2\x82\xAC", "a\xFF", "a\xC3", "a\tb", "a/b"}) {
    EXPECT_EQ(ValidateQANTName(Terminated(name).get()), 4) << name;
  }
}

TEST(ValidateName, ReservedWordsInAnyCase) {
  const InCodePage utf8(nullptr);
  for (const char* name : {"ALL", "and", "By", "NOT", "oR", "to", "WITH"}) {
    EXPECT_EQ(ValidateQANTName(name), 5) << name;
  }
}

TEST(ValidateName, LettersOfTheActivePage) {
  {
    const InCodePage in("windows-1252");
    EXPECT_EQ(ValidateQANTName("\xE9t\xE9"), 0);
    EXPECT_EQ(ValidateQANTName("\x80"), 3);
    EXPECT_EQ(ValidateQANTName("x\x80"), 4);
  }
  {
    const InCodePage in("ISO-8859-1");
    EXPECT_EQ(ValidateQANTName("\xE9"), 0);
    EXPECT_EQ(ValidateQANTName("\xD7"), 3);
  }
  const InCodePage in("Shift_JIS");
  EXPECT_EQ(ValidateQANTName("\x93\xFA\x95\x5C"), 0);
  EXPECT_EQ(ValidateQANTName("a\x81\x41"), 4);
}

TEST(ExtName, OpensTheFileItNames) {
  const std::string path = TestFile("ext-name-\xC3\xA9");
  ExtNameStr name;
  name.SetGeneric(path.c_str());
  FILE* file = name.fopen("wb");
  ASSERT_NE(file, nullptr);
  std::fputs("text", file);
  std::fclose(file);
  file = name.fopen("rb");
  ASSERT_NE(file, nullptr);
  char read[8] = {};
  EXPECT_STREQ(std::fgets(read, sizeof read, file), "text");
  std::fclose(file);
  std::remove(path.c_str());
  EXPECT_EQ(name.fopen("rb"), nullptr);
}

TEST(ExtName, NoNameOpensNothing) {
  ExtNameStr name;
  EXPECT_EQ(name.fopen("rb"), nullptr);
  name.SetGeneric(nullptr);
  EXPECT_EQ(name.fopen("rb"), nullptr);
}

TEST(ExtName, KeepsACopy) {
  char text[] = "/dev/null";
  ExtNameStr name;
  name.SetGeneric(text);
  text[1] = 'x';
  FILE* file = name.fopen("rb");
  ASSERT_NE(file, nullptr);
  std::fclose(file);
}

}  // namespace
}  // namespace embedded
