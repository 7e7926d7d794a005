// Random imports: a command and a file that fit together, small and full of what is awkward.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "tests/differential/NaiveImport.h"

namespace naive {

struct RandomImport {
  std::string command;
  std::string bytes;
  Settings settings;
  std::vector<Variable> variables;
};

// The import of that seed, reading `path`.
RandomImport MakeRandomImport(std::uint64_t seed, const std::string& path);

}  // namespace naive
