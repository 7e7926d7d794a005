#include "library/import/CaseSampler.h"

#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

namespace library {
namespace {

TEST(CaseSampler, KeepsWhatTheRuleKeeps) {
  std::srand(42);
  std::vector<bool> expected;
  for (int count = 0; count < 1000; ++count) {
    expected.push_back(!(std::rand() / 2147483647.0 > 0.3));
  }
  CaseSampler sampler(0.3, 42U);
  for (const bool keep : expected) EXPECT_EQ(sampler.Keep(), keep);
}

TEST(CaseSampler, KeepsEveryCaseWithoutAFraction) {
  CaseSampler sampler(std::nullopt, 1U);
  for (int count = 0; count < 100; ++count) EXPECT_TRUE(sampler.Keep());
}

TEST(CaseSampler, AHundredPercentKeepsEveryCase) {
  CaseSampler sampler(1.0, 1U);
  for (int count = 0; count < 1000; ++count) EXPECT_TRUE(sampler.Keep());
}

}  // namespace
}  // namespace library
