// The draw by which a random share of the cases is kept: IMPORTCASE PERCENT, wherever it is drawn.
#pragma once

#include <cstdlib>
#include <ctime>

// Starts the process's random numbers, from the time.
inline void SeedSampling() { std::srand(static_cast<unsigned>(std::time(nullptr))); }
// The same from `seed`: equal seeds keep equal cases.
inline void SeedSampling(unsigned seed) { std::srand(seed); }

// Draws whether the next case is among the share `fraction` (0 to 1) that is kept. One thread at a
// time; the process has one row of random numbers.
inline bool SampleNextCase(double fraction) {
  // What rand() gives at most on every system that this is read on.
  constexpr double kLargestDraw = 2147483647.0;
  return std::rand() / kLargestDraw <= fraction;
}
