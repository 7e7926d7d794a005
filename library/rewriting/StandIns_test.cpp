#include "library/rewriting/StandIns.h"

#include <cstring>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/CaseBuffer.h"

namespace library {
namespace {

class OneString : public QANT_DataSource {
 public:
  OneString() : QANT_DataSource(nullptr) {}
  QANT_InputCaseIterator* MakeIterator(OBS*) const override { return nullptr; }
};

TEST(StandIns, AreThreeDifferentControlCharactersThatTheFileDoesNotHold) {
  ControlSet held;
  for (int taken = 0; taken < 23; ++taken) {
    const std::optional<StandIns> chosen = ChooseStandIns(held);
    ASSERT_TRUE(chosen) << taken;
    EXPECT_NE(chosen->lineFeed, chosen->carriageReturn);
    EXPECT_NE(chosen->lineFeed, chosen->nothing);
    EXPECT_NE(chosen->carriageReturn, chosen->nothing);
    for (const char standIn : {chosen->lineFeed, chosen->carriageReturn, chosen->nothing}) {
      const auto number = static_cast<unsigned>(standIn);
      ASSERT_LT(number, 0x20U);
      EXPECT_FALSE(held.test(number));
      EXPECT_EQ(std::string_view("\0\t\n\r\x1A\x1C", 6).find(standIn), std::string_view::npos);
    }
    held.set(static_cast<unsigned>(chosen->lineFeed));
  }
}

TEST(StandIns, AFileOfAllControlCharactersLeavesNone) {
  ControlSet held;
  held.set();
  EXPECT_EQ(ChooseStandIns(held), std::nullopt);
  held.reset(1);
  held.reset(2);
  EXPECT_EQ(ChooseStandIns(held), std::nullopt) << "two are too few";
  held.reset(3);
  EXPECT_NE(ChooseStandIns(held), std::nullopt);
}

TEST(TextRestorer, PutsBackWhatTheStandInsStandFor) {
  const TextRestorer restorer({'\x01', '\x02', '\x03'});
  std::string room;
  EXPECT_EQ(restorer.Restore("a\x02\x01"
                             "b",
                             room),
            "a\r\nb");
  EXPECT_EQ(restorer.Restore("\x03\\ and \x03x", room), "\\ and x");
  EXPECT_EQ(restorer.Restore("\x03\x03", room), "");
  EXPECT_EQ(restorer.Restore("other \x04 controls, a text of many more bytes\x01", room),
            "other \x04 controls, a text of many more bytes\n");
}

TEST(TextRestorer, ATextWithoutStandInsIsNotCopied) {
  const TextRestorer restorer({'\x01', '\x02', '\x03'});
  std::string room;
  const std::string text = "Z\xC3\xBCrich\t\x1F, and some more of it";
  EXPECT_EQ(restorer.Restore(text, room).data(), text.data());
}

TEST(CaseRestorer, ChangesStringsOnlyAndPadsThem) {
  OneString source;
  QANT_DataSource::MakeVariable(&source, 6, nullptr);
  QANT_DataSource::MakeVariable(&source, 0, nullptr);
  QANT_DataSource::MakeVariable(&source, 12, nullptr);
  const std::size_t bytes = source.GetObsAreaSize();
  ASSERT_EQ(bytes, 32u);
  std::vector<OBS> cases(2 * bytes / sizeof(OBS));
  char* const text = reinterpret_cast<char*>(cases.data());
  const std::string stored(
      "a\x01"
      "b\x03"
      "c   \x01\x02\x03\x01\x02\x03\x01\x02\x03\\x        y",
      29);
  std::memcpy(text, stored.data(), stored.size());
  std::memset(text + stored.size(), ' ', 32 - stored.size());
  std::memcpy(text + 32, text, 32);
  const CaseRestorer restorer({'\x01', '\x02', '\x03'}, source);
  for (int time = 0; time < 2; ++time) {
    restorer.Restore(cases.data(), 2);
    for (const char* at : {text, text + 32}) {
      EXPECT_EQ(std::string(at, 8), "a\nbc    ");
      EXPECT_EQ(std::string(at + 8, 8), std::string("\x01\x02\x03\x01\x02\x03\x01\x02", 8))
          << "a number keeps its bytes";
      EXPECT_EQ(std::string(at + 16, 12), "\\x        y ");
    }
  }
}

}  // namespace
}  // namespace library
