// The program's version.
#pragma once

namespace cli {

// The program's version, such as "1.0.0".
const char* Version();

}  // namespace cli
