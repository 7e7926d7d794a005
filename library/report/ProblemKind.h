// The kinds of problems as people and files name them.
#pragma once

#include <string_view>

#include "HostFramework/ImportObserver.h"

namespace library {

// Such as "few-fields".
std::string_view NameOf(ImportProblemKind kind);

}  // namespace library
