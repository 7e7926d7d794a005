// Where a writer's bytes go.
#pragma once

#include <string_view>
#include <vector>

namespace library {

class ByteSink {
 public:
  virtual ~ByteSink() = default;
  // Takes the bytes behind those before. A failure is the sink's to remember and to tell.
  virtual void Append(std::string_view bytes) = 0;
  // The same of many pieces.
  virtual void AppendPieces(const std::vector<std::string_view>& pieces) {
    for (const std::string_view piece : pieces) Append(piece);
  }
};

}  // namespace library
