#include "cli/run/HostOptions.h"

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/HostText.h"

namespace cli {

bool SetHost(const HostOptions& options, std::string* error) {
  const bool utf8 = options.codePage.empty();
  if (!embedded::SetCodePage(utf8 ? nullptr : options.codePage.c_str())) {
    *error = "--code-page: " + embedded::CodePageRefusal(options.codePage);
    return false;
  }
  if (!options.localeCodePage.empty() &&
      !embedded::SetLocaleCodePage(options.localeCodePage.c_str())) {
    *error = "--locale-code-page: " + embedded::CodePageRefusal(options.localeCodePage);
    return false;
  }
  if (options.decimalComma) {
    iocvsetdeccharcomma_();
  } else {
    iocvsetdecchardot_();
  }
  return true;
}

}  // namespace cli
