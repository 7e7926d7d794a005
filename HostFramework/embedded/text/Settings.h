// The settings of HostText.h as the text functions read them.
#pragma once

#include "HostFramework/embedded/text/CodePage.h"

namespace embedded {

// The encoding of host text. Any thread; an atomic load once it is decided.
const CodePage& HostPage();
// The locale's code page: the active one outside UTF-8 mode.
const CodePage& LocalePage();

}  // namespace embedded
