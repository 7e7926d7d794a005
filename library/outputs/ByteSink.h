// Where a writer's bytes go.
#pragma once

#include <string_view>

namespace library {

class ByteSink {
 public:
  virtual ~ByteSink() = default;
  // Takes the bytes behind those before. A failure is the sink's to remember and to tell.
  virtual void Append(std::string_view bytes) = 0;
};

}  // namespace library
