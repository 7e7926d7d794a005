// The tree whose rules are tested.
#pragma once

#include <cstdlib>
#include <filesystem>

#include "TreePaths.h"

namespace rules {

// This tree, or the one that TEXTWIZARD_TREE names: tools/lint plants violations in a copy.
inline std::filesystem::path TreeRoot() {
  const char* const named = std::getenv("TEXTWIZARD_TREE");
  return named ? named : TEXTWIZARD_SOURCE_DIR;
}

}  // namespace rules
