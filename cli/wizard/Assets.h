// The files of the wizard's page, which the program carries in itself.
#pragma once

#include <string_view>

namespace cli {

struct Asset {
  std::string_view path;  // such as "/app.js"
  const char* type;       // such as "text/javascript; charset=utf-8"
  std::string_view bytes;
};

// The file that the page knows by that path; null when there is none.
const Asset* FindAsset(std::string_view path);

}  // namespace cli
