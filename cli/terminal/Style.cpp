#include "cli/terminal/Style.h"

#include <cstdlib>
#include <string>

#include <unistd.h>

namespace cli {

Style Style::Of(int descriptor) {
  const char* const none = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  const bool wanted = none == nullptr || *none == '\0';
  const bool able =
      terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
  return Style(wanted && able && isatty(descriptor) != 0);
}

std::string Style::Painted(std::string_view code, std::string_view text) const {
  std::string painted;
  if (!coloured_ || text.empty()) return painted.append(text);
  return painted.append("\x1B[").append(code).append("m").append(text).append("\x1B[0m");
}

}  // namespace cli
