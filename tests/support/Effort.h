// How much of a heavy loop a build does. Sanitizers make everything many times slower, and what
// they look for shows in a part of the work, so their builds take every so-many-th step only.
#pragma once

#include <cstddef>

namespace whole {

#if defined(__has_feature)
#define WHOLE_HAS_FEATURE(feature) __has_feature(feature)
#else
#define WHOLE_HAS_FEATURE(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || \
    WHOLE_HAS_FEATURE(address_sanitizer) || WHOLE_HAS_FEATURE(thread_sanitizer)
inline constexpr std::size_t kEffortDivisor = 5;
#else
inline constexpr std::size_t kEffortDivisor = 1;
#endif

#undef WHOLE_HAS_FEATURE

// Rounds of a loop that repeats the same.
constexpr std::size_t Rounds(std::size_t all) {
  return all < kEffortDivisor ? 1 : all / kEffortDivisor;
}

}  // namespace whole
