#include "HostFramework/embedded/data/CaseBuffer.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

namespace embedded {
namespace {

std::atomic<std::size_t> bufferLimit{0};

}  // namespace

void SetCaseBufferLimit(std::size_t bytes) { bufferLimit = bytes; }

CaseBuffer::CaseBuffer(const QANT_DataSource& source) : source_(source) {
  const std::size_t bytes = source.GetObsAreaSize();
  const std::size_t limit = bufferLimit;
  if (limit != 0 && bytes > limit) return;
  // A source without variables still has a buffer, so that null means the lack of memory only.
  cells_.reset(new (std::nothrow) OBS[std::max<std::size_t>(bytes / sizeof(OBS), 1)]);
  if (cells_) ClearCase(source, cells_.get());
}

double CaseBuffer::Number(std::size_t column) const {
  double value;
  std::memcpy(&value, cells_.get() + source_.GetVariable(column)->ObsIndex(), sizeof value);
  return value;
}

std::string_view CaseBuffer::Text(std::size_t column) const {
  const QANT_Variable& variable = *source_.GetVariable(column);
  return {reinterpret_cast<const char*>(cells_.get() + variable.ObsIndex()),
          static_cast<std::size_t>(variable.GetType())};
}

}  // namespace embedded
