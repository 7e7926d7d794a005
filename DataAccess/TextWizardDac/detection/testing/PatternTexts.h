// Texts to test patterns with: near the layouts of the table, and far from them.
#pragma once

#include <random>
#include <string>

namespace textwizard {

// A layout of dates, times, amounts or percentages filled at random, then perhaps changed in a few
// places, with characters beyond ASCII among the changes; or characters at random.
std::string RandomPatternText(std::mt19937& random);

}  // namespace textwizard
