// The exit status of the program.
#pragma once

namespace cli {

inline constexpr int kExitSuccess = 0;
inline constexpr int kExitCommandFailed = 1;
inline constexpr int kExitUsage = 2;  // also: a file of the program's own cannot be read or written
inline constexpr int kExitInterrupted = 130;

}  // namespace cli
