#include "library/import/ImportAdapter.h"

#include <fmt/format.h>

#include "library/input/FileKind.h"

namespace library {

const std::string& ImportAdapter::ConvertFilePath(std::string& result, const std::string& input,
                                                  bool /*unquoted*/) {
  const InputFiles::Input& file = files_.Open(input);
  result = file.path;
  if (!file.problem.empty()) {
    fileWayOut_ = file.wayOut;
    return result;
  }
  const std::string head = FileHead(result);
  if (const FileKind kind = FileKindOf(head); kind.what != nullptr) {
    result = fmt::format("{} ({}, and no text)", input, kind.what);
    fileWayOut_ = kind.wayOut;
  } else if (const std::size_t controls = ControlsBeyondText(head); controls > 0) {
    fileAdvice_ =
        fmt::format("{} hardly is a text: {} of its first {} bytes are control characters", input,
                    controls, head.size());
  }
  return result;
}

}  // namespace library
