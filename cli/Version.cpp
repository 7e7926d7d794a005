#include "cli/Version.h"

namespace cli {

const char* Version() { return "1.0.0"; }

}  // namespace cli
