#include "library/rewriting/Controls.h"

#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"

namespace library {
namespace {

TEST(Controls, AreCountedButForTabsAndLineEnds) {
  EXPECT_FALSE(HoldsControl("a\tb\r\nc\x7F"));
  EXPECT_FALSE(HoldsControl(""));
  const std::string text = std::string(100, 'x') + '\x05' + std::string(70, '\xFF') + "\x05\x1F";
  EXPECT_TRUE(HoldsControl(text));
  std::array<std::int64_t, 32> counts{};
  CountControls(text, &counts);
  CountControls(text, &counts);
  EXPECT_EQ(counts[5], 4);
  EXPECT_EQ(counts[0x1F], 2);
  EXPECT_EQ(counts[6], 0);
}

TEST(FindControls, FindsControlCharactersOfTheFilesUnits) {
  std::string text(200000, 'x');
  text[77] = '\t';
  text[78] = '\n';
  text[131071] = '\x05';
  text[199999] = '\x1F';
  ControlSet expected;
  expected.set(5);
  expected.set(0x1F);
  const auto found = [](const std::string& bytes, FileUnits units, std::size_t most) {
    const auto faults = std::make_shared<embedded::StreamFaults>();
    faults->mostBytes = most;
    embedded::FaultyDevice device(std::make_unique<embedded::MemoryDevice>(bytes), faults);
    ControlSet held;
    EXPECT_TRUE(FindControls(device, units, &held));
    // Whether white space is in the set is left open.
    for (const std::size_t blank : {9, 10, 13}) held.reset(blank);
    return held;
  };
  EXPECT_EQ(found(text, FileUnits::kBytes, 0), expected);
  EXPECT_EQ(found(text, FileUnits::kBytes, 1001), expected);
  std::string little, big;
  for (const char byte : text) {
    (little += byte) += '\0';
    (big += '\0') += byte;
  }
  EXPECT_EQ(found(little, FileUnits::kUtf16LittleEndian, 1001), expected);
  EXPECT_EQ(found(big, FileUnits::kUtf16BigEndian, 0), expected);
  EXPECT_EQ(found("\x05\x30", FileUnits::kUtf16LittleEndian, 0), ControlSet())
      << "half of another character";

  const auto faults = std::make_shared<embedded::StreamFaults>();
  faults->failAt = 1000;
  embedded::FaultyDevice device(std::make_unique<embedded::MemoryDevice>(text), faults);
  ControlSet held;
  EXPECT_FALSE(FindControls(device, FileUnits::kBytes, &held));
}

}  // namespace
}  // namespace library
