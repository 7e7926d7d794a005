#include "HostFramework/embedded/values/PlainNumber.h"

#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace embedded {
namespace {

bool IsPlain(const std::string& text, char decimal) {
  std::size_t decimals = 0;
  std::size_t digits = 0;
  for (const char byte : text) {
    if (byte == decimal) {
      ++decimals;
    } else if (byte >= '0' && byte <= '9') {
      ++digits;
    } else {
      return false;
    }
  }
  return digits > 0 && decimals <= 1;
}

// Digits with one or no decimal character, at times with something else among them.
std::string Draw(std::mt19937& random) {
  constexpr std::string_view kOthers = ".,.,-+ /:;'\x01\x7F\x80\xB2\xFF$eE";
  std::string text;
  for (std::size_t length = 1 + random() % PlainNumber::kLongest; text.size() < length;) {
    text += random() % 24 == 0 ? kOthers[random() % kOthers.size()]
                               : static_cast<char>('0' + random() % 10);
  }
  return text;
}

TEST(PlainNumber, LooksAsItReads) {
  std::mt19937 random(16);
  for (int round = 0; round < 300'000; ++round) {
    const std::string text = Draw(random);
    const char decimal = random() % 2 == 0 ? '.' : ',';
    double value = 0;
    std::size_t places = 99;
    const bool reads = PlainNumber::Read(text.data(), text.size(), decimal, false, &value);
    ASSERT_EQ(PlainNumber::Look(text.data(), text.size(), decimal, &places), reads) << text;
    if (!reads) continue;
    ASSERT_TRUE(IsPlain(text, decimal)) << text;
    const std::size_t at = text.find(decimal);
    ASSERT_EQ(places, at == std::string::npos ? PlainNumber::kNoDecimal : text.size() - at - 1)
        << text;
  }
}

TEST(PlainNumber, TakesEveryPlainTextButIntegersThatADoubleDoesNotHold) {
  std::mt19937 random(17);
  for (int round = 0; round < 300'000; ++round) {
    const std::string text = Draw(random);
    if (!IsPlain(text, '.')) continue;
    std::size_t places;
    const bool holds = text.size() < PlainNumber::kLongest || text.find('.') != std::string::npos ||
                       text <= "9007199254740992";
    ASSERT_EQ(PlainNumber::Look(text.data(), text.size(), '.', &places), holds) << text;
  }
}

}  // namespace
}  // namespace embedded
