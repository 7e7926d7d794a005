// A consumer in C++17, for the tests.
#pragma once

#include <cstdint>
#include <string>

// The number of cases of a command; -1 when it fails.
std::int64_t RowsInCpp17(const std::string& command);
