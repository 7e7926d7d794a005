#include "cli/run/HostOptions.h"

namespace cli {

bool SetHost(const HostOptions& options, std::string* error) {
  library::HostSetting wrong{};
  std::string why;
  if (library::SetHost(options, &wrong, &why)) return true;
  const bool locale = wrong == library::HostSetting::kLocaleCodePage;
  *error = (locale ? "--locale-code-page: " : "--code-page: ") + why;
  return false;
}

}  // namespace cli
