#include "cli/wizard/ImportOrder.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <string_view>

#include "cli/wizard/WizardServer.h"
#include "library/outputs/CasesFile.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

// What says how a file is read: options with how many words follow each.
const std::map<std::string_view, int> kReadingOptions = {{"--decimal", 1},
                                                         {"--code-page", 1},
                                                         {"--locale-code-page", 1},
                                                         {"--byte-order-mark", 1},
                                                         {"--null", 1},
                                                         {"--join-quoted-lines", 0},
                                                         {"--backslash-escapes", 0},
                                                         {"--keep-stray-qualifiers", 0}};

}  // namespace

bool IsCommandFile(const std::string& output) { return output.ends_with(".sps"); }

std::vector<std::string> CheckedOptions(const json& options) {
  auto words = options.get<std::vector<std::string>>();
  for (std::size_t i = 0; i < words.size(); ++i) {
    const auto known = kReadingOptions.find(words[i]);
    if (known == kReadingOptions.end()) {
      throw RequestRefused("An import of this page does not take " + words[i]);
    }
    i += static_cast<std::size_t>(known->second);
    if (i >= words.size()) throw RequestRefused(words.back() + " needs a value");
  }
  return words;
}

std::string CheckedOutput(const std::string& path, const ImportOrder& order, bool replace) {
  std::error_code ignored;
  if (path == order.data || fs::equivalent(path, order.data, ignored)) {
    throw RequestRefused("An output cannot be the file that is imported: " + path);
  }
  if (std::count(order.outputs.begin(), order.outputs.end(), path) > 0) {
    throw RequestRefused("Two outputs have one name: " + path);
  }
  if (!IsCommandFile(path) && !library::CaseFormatOfFile(path)) {
    throw RequestRefused("The ending of " + path +
                         " names no format: " + library::CaseFormatNames());
  }
  if (!replace && fs::exists(path, ignored)) {
    throw RequestRefused("There is a file " + path + " already: allow that it is replaced.");
  }
  return path;
}

}  // namespace cli
