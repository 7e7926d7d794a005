// The wrapper in C++17, the oldest that it is for.
#include "library/capi/testing/OlderCpp.h"

#include "textwizard/textwizard.hpp"

static_assert(__cplusplus < 202002L, "compiled as C++17");

std::int64_t RowsInCpp17(const std::string& command) {
  textwizard::Result<textwizard::Import> import = textwizard::Import::OpenCommand(command);
  if (!import) return -1;
  textwizard::Stream cases = std::move(import->Cases().value());
  std::int64_t rows = 0;
  while (true) {
    const textwizard::Result<textwizard::Batch> batch = cases.Next();
    if (!batch || !*batch) return rows;
    rows += batch->length();
  }
}
