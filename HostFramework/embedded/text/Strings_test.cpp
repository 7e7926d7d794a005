// The string functions of host text.
#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace embedded {
namespace {

int Sign(int value) { return (value > 0) - (value < 0); }

// Sign of the comparison both ways, which must be opposite.
int Compare(const char* left, const char* right) {
  const int sign = Sign(QANTMBstricmp_A(left, right));
  EXPECT_EQ(Sign(QANTMBstricmp_A(right, left)), -sign);
  return sign;
}

std::string Upper(std::string text) { return QANTMBstrupr_A(text.data()); }
std::string Lower(std::string text) { return QANTMBstrlwr_A(text.data()); }

// The copy, in memory of exactly the room that the function asks for.
std::string Copied(std::string_view text, std::size_t bytes) {
  const std::unique_ptr<char[]> target(new char[bytes + 1]);
  std::memset(target.get(), '#', bytes + 1);
  EXPECT_EQ(QANTMBstrncpy_A(target.get(), Terminated(text).get(), bytes), target.get());
  return target.get();
}

// The field, in memory of exactly its width.
std::string Fixed(std::string_view text, int width) {
  const std::unique_ptr<char[]> field(new char[static_cast<std::size_t>(width)]);
  QANTMBCopyToFixed_A(field.get(), width, Exact(text).get(), static_cast<int>(text.size()));
  return {field.get(), static_cast<std::size_t>(width)};
}

TEST(Stricmp, DisregardsCase) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(Compare("", ""), 0);
  EXPECT_EQ(Compare("Variables", "VARIABLES"), 0);
  EXPECT_EQ(Compare("abc", "ABD"), -1);
  EXPECT_EQ(Compare("abc", "AB"), 1);
  EXPECT_EQ(Compare("", "a"), -1);
  EXPECT_EQ(Compare("\xC3\xA9t\xC3\xA9", "\xC3\x89T\xC3\x89"), 0);
  EXPECT_EQ(Compare("\xC3\xA9", "\xC3\xA8"), 1);
  EXPECT_EQ(Compare("\xCE\xA3", "\xCF\x82"), 0);
  // The two cases of this letter differ in length.
  EXPECT_EQ(Compare("\xC8\xBA", "\xE2\xB1\xA5"), 0);
  // @ and ` are no letters although they differ by the same bit.
  EXPECT_NE(Compare("@", "`"), 0);
}

TEST(Stricmp, BytesThatAreNoCharacterEqualOnlyThemselves) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(Compare("a\xFF", "A\xFF"), 0);
  EXPECT_EQ(Compare("a\xFE", "a\xFF"), -1);
  EXPECT_EQ(Compare("\xC3\xA9", "\xE9"), -1);
  EXPECT_EQ(Compare(Terminated("\xE2\x82").get(), "\xE2\x82"), 0);
}

TEST(Stricmp, ComparesCharactersOfTheActivePage) {
  {
    const InCodePage in("windows-1252");
    EXPECT_EQ(Compare("\xE9", "\xC9"), 0);
    EXPECT_EQ(Compare("\xFF", "\x9F"), 0);
  }
  {
    const InCodePage in("ISO-8859-1");
    EXPECT_EQ(Compare("\xE9", "\xC9"), 0);
  }
  const InCodePage in("Shift_JIS");
  // The second bytes are those of "a" and "A", but the characters are different.
  EXPECT_NE(Compare("\x83\x61", "\x83\x41"), 0);
  // Full-width a and A.
  EXPECT_EQ(Compare("\x82\x81", "\x82\x60"), 0);
}

TEST(Strcspn, CountsBytesBeforeACharacterOfTheSet) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(QANTMBstrcspn_A("abc", ""), 3u);
  EXPECT_EQ(QANTMBstrcspn_A("", "abc"), 0u);
  EXPECT_EQ(QANTMBstrcspn_A("a b", " \r\n\t"), 1u);
  EXPECT_EQ(QANTMBstrcspn_A("\xC3\xA9=x", "=/"), 2u);
  EXPECT_EQ(QANTMBstrcspn_A("ab\xE2\x82\xAC", "\xE2\x82\xAC"), 2u);
  // Shares bytes with a member of the set and is another character.
  EXPECT_EQ(QANTMBstrcspn_A("\xC3\xA9x", "\xC3\xA8"), 3u);
  EXPECT_EQ(QANTMBstrcspn_A("\xC2\xA9x\xC3\xA9", "\xC3\xA9"), 3u);
  EXPECT_EQ(QANTMBstrcspn_A(Terminated("x\xE2\x82").get(), Terminated("\xC3\xA9").get()), 3u);
}

TEST(Strcspn, ASecondByteIsNoCharacter) {
  {
    const InCodePage in("Shift_JIS");
    EXPECT_EQ(QANTMBstrcspn_A("\x95\x5C\\", "\\"), 2u);
    EXPECT_EQ(QANTMBstrcspn_A("a\x95\x5C", "\x95\x5C"), 1u);
    EXPECT_EQ(QANTMBstrcspn_A(Terminated("ab\x95").get(), "/"), 3u);
  }
  const InCodePage in("windows-1252");
  EXPECT_EQ(QANTMBstrcspn_A("ab\xE9", "\xE9"), 2u);
}

TEST(Strncpy, CopiesWholeCharacters) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(Copied("abc", 0), "");
  EXPECT_EQ(Copied("abc", 2), "ab");
  EXPECT_EQ(Copied("abc", 3), "abc");
  EXPECT_EQ(Copied("abc", 9), "abc");
  EXPECT_EQ(Copied("", 4), "");
  EXPECT_EQ(Copied("a\xC3\xA9"
                   "b",
                   2),
            "a");
  EXPECT_EQ(Copied("a\xC3\xA9"
                   "b",
                   3),
            "a\xC3\xA9");
  for (std::size_t room = 0; room < 4; ++room) {
    EXPECT_EQ(Copied("\xF0\x9F\x98\x80", room), "");
    EXPECT_EQ(Copied("\xF0\x9F\x98\x80x", room), "");
  }
  EXPECT_EQ(Copied("\xF0\x9F\x98\x80x", 4), "\xF0\x9F\x98\x80");
}

TEST(Strncpy, BytesThatAreNoCharacterAreCopiedOneByOne) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(Copied("\x80\x80\x80\x80", 3), "\x80\x80\x80");
  EXPECT_EQ(Copied("\xE2\x82x", 1), "\xE2");
  EXPECT_EQ(Copied("\xC3\xA9\xA9\xA9", 3), "\xC3\xA9\xA9");
}

TEST(Strncpy, AnyAmountOfRoomMayBeGiven) {
  const InCodePage utf8(nullptr);
  char target[8];
  EXPECT_STREQ(QANTMBstrncpy_A(target, "abc", static_cast<std::size_t>(-1)), "abc");
}

TEST(Strncpy, InCodePages) {
  {
    const InCodePage in("Shift_JIS");
    EXPECT_EQ(Copied("a\x93\xFA"
                     "b",
                     2),
              "a");
    EXPECT_EQ(Copied("a\x93\xFA"
                     "b",
                     3),
              "a\x93\xFA");
    EXPECT_EQ(Copied("\x93\xFA\x96\x7B", 3), "\x93\xFA");
  }
  {
    const InCodePage in("GB18030");
    EXPECT_EQ(Copied("\x94\x39\xFC\x36x", 3), "");
    EXPECT_EQ(Copied("\x94\x39\xFC\x36x", 4), "\x94\x39\xFC\x36");
  }
  const InCodePage in("windows-1252");
  EXPECT_EQ(Copied("\xE9\xE8\xEA", 2), "\xE9\xE8");
}

TEST(LetterCase, Utf8) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(Upper("abc xyz 19 _@`{"), "ABC XYZ 19 _@`{");
  EXPECT_EQ(Lower("ABC XYZ 19 _@[`"), "abc xyz 19 _@[`");
  EXPECT_EQ(Upper("\xC3\xA9\xCF\x80\xD0\xB6"), "\xC3\x89\xCE\xA0\xD0\x96");
  EXPECT_EQ(Lower("\xC3\x89\xCE\xA0\xD0\x96"), "\xC3\xA9\xCF\x80\xD0\xB6");
  // A four-byte letter (Deseret).
  EXPECT_EQ(Upper("\xF0\x90\x90\xA8"), "\xF0\x90\x90\x80");
}

TEST(LetterCase, ACharacterWhoseOtherCaseHasAnotherLengthStays) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(Lower("\xC8\xBA"), "\xC8\xBA");
  EXPECT_EQ(Upper("\xC4\xB1"), "\xC4\xB1");
  EXPECT_EQ(Lower("\xE2\x84\xAA"), "\xE2\x84\xAA");
  EXPECT_EQ(Upper("\xC3\x9F"), "\xC3\x9F");
}

TEST(LetterCase, BytesThatAreNoCharacterStay) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(Upper("a\xFFz\xE2\x82"), "A\xFFZ\xE2\x82");
  EXPECT_EQ(Lower("A\xC3"), "a\xC3");
}

TEST(LetterCase, InCodePages) {
  {
    const InCodePage in("windows-1252");
    EXPECT_EQ(Upper("\xE9\xFF"), "\xC9\x9F");
    EXPECT_EQ(Lower("\xC9\x9F"), "\xE9\xFF");
    // The capital of the micro sign is not in the page.
    EXPECT_EQ(Upper("\xB5"), "\xB5");
  }
  {
    const InCodePage in("ISO-8859-1");
    EXPECT_EQ(Upper("\xE9\xFF"), "\xC9\xFF");
  }
  const InCodePage in("Shift_JIS");
  // A second byte that looks like a letter is left alone; full-width letters change.
  EXPECT_EQ(Upper("\x83\x61z\x82\x81"), "\x83\x61Z\x82\x60");
  EXPECT_EQ(Lower("\x83\x41Z\x82\x60"), "\x83\x41z\x82\x81");
}

TEST(CopyToFixed, PadsWithBlanks) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(Fixed("", 4), "    ");
  EXPECT_EQ(Fixed("ab", 4), "ab  ");
  EXPECT_EQ(Fixed("abcd", 4), "abcd");
  EXPECT_EQ(Fixed("abcde", 4), "abcd");
  EXPECT_EQ(Fixed("abc", 0), "");
  EXPECT_EQ(Fixed(std::string_view("a\0b", 3), 4), std::string_view("a\0b ", 4));
}

TEST(CopyToFixed, NothingIsWrittenForAWidthOrALengthBelowOne) {
  char field[] = "##";
  QANTMBCopyToFixed_A(field, -1, "ab", 2);
  QANTMBCopyToFixed_A(field, 0, "ab", 2);
  EXPECT_STREQ(field, "##");
  QANTMBCopyToFixed_A(field, 1, "ab", -1);
  EXPECT_STREQ(field, " #");
}

TEST(CopyToFixed, NeverCutsACharacter) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(Fixed("a\xC3\xA9", 2), "a ");
  EXPECT_EQ(Fixed("a\xC3\xA9", 3), "a\xC3\xA9");
  EXPECT_EQ(Fixed("abcdefg\xE2\x82\xAC", 8), "abcdefg ");
  EXPECT_EQ(Fixed("\xF0\x9F\x98\x80", 3), "   ");
  // The text itself ends inside a character.
  EXPECT_EQ(Fixed("ab\xC3", 4), "ab  ");
  EXPECT_EQ(Fixed("ab\xE2\x82", 4), "ab  ");
  EXPECT_EQ(Fixed("\xF0\x9F\x98", 4), "    ");
}

TEST(CopyToFixed, KeepsBytesThatAreNoCharacter) {
  const InCodePage utf8(nullptr);
  EXPECT_EQ(Fixed("\xFF"
                  "a\x80\x80",
                  5),
            "\xFF"
            "a\x80\x80 ");
  EXPECT_EQ(Fixed("\xC3x", 3), "\xC3x ");
  EXPECT_EQ(Fixed("\x80\x80\x80\x80", 2), "\x80\x80");
}

TEST(CopyToFixed, InCodePages) {
  {
    const InCodePage in("Shift_JIS");
    EXPECT_EQ(Fixed("\x93\xFA\x96\x7B", 3), "\x93\xFA ");
    EXPECT_EQ(Fixed("\x93\xFA\x96", 4), "\x93\xFA  ");
    EXPECT_EQ(Fixed("a\xB1\xB2", 2), "a\xB1");
  }
  const InCodePage in("windows-1252");
  EXPECT_EQ(Fixed("\xE9\xE8\xEA", 2), "\xE9\xE8");
  EXPECT_EQ(Fixed("\xC3", 2), "\xC3 ");
}

// The rule at its plainest: take characters from the left while they fit.
std::size_t WholeByStepping(std::string_view text, std::size_t room) {
  const std::string terminated(text);
  std::size_t at = 0;
  while (at < text.size()) {
    const auto step = static_cast<std::size_t>(QANTMBmbclen_A(terminated.c_str() + at));
    if (at + step > room) break;
    at += step;
  }
  return at;
}

TEST(Strncpy, AgreesWithSteppingOnRandomBytes) {
  std::mt19937 random(2);
  for (const char* page : {static_cast<const char*>(nullptr), "windows-1252", "Shift_JIS", "GBK",
                           "GB18030", "EUC-JP"}) {
    const InCodePage in(page);
    for (int round = 0; round < 20000; ++round) {
      const std::string text = RandomBytes(random, random() % 12);
      const std::size_t room = random() % 12;
      EXPECT_EQ(Copied(text, room), text.substr(0, WholeByStepping(text, room)));
    }
  }
}

TEST(Strcspn, AgreesWithSteppingOnRandomBytes) {
  std::mt19937 random(3);
  for (const char* page : {static_cast<const char*>(nullptr), "windows-1252", "Shift_JIS", "GBK"}) {
    const InCodePage in(page);
    for (int round = 0; round < 20000; ++round) {
      const Exact text = Terminated(RandomBytes(random, random() % 12));
      const Exact set = Terminated(RandomBytes(random, random() % 4));
      const char* at = text.get();
      const auto isInSet = [&set](const char* ch) {
        const auto length = static_cast<std::size_t>(QANTMBmbclen_A(ch));
        for (const char* member = set.get(); *member != '\0'; member = QANTMBstrinc_A(member)) {
          const auto memberLength = static_cast<std::size_t>(QANTMBmbclen_A(member));
          if (std::string_view(member, memberLength) == std::string_view(ch, length)) return true;
        }
        return false;
      };
      while (*at != '\0' && !isInSet(at)) at = QANTMBstrinc_A(at);
      EXPECT_EQ(QANTMBstrcspn_A(text.get(), set.get()), static_cast<std::size_t>(at - text.get()));
    }
  }
}

}  // namespace
}  // namespace embedded
