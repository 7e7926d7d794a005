#include "cli/Version.h"

#include "TextWizardVersion.h"

namespace cli {

const char* Version() { return TEXTWIZARD_VERSION; }

}  // namespace cli
