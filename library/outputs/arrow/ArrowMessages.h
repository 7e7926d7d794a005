// The messages of which Arrow files and streams are made: their schema, and batches of columns.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "library/columns/ArrowExport.h"
#include "library/columns/ColumnPieces.h"
#include "library/outputs/arrow/ArrowIpc_generated.h"

namespace library {

enum class ArrowCompression { kNone, kLz4 };

// Every message and every buffer begins at a multiple of this.
inline constexpr std::size_t kArrowAlignment = 64;

// A message as it stands in a file: what describes it, with its length in front and padded, and
// what it describes.
struct ArrowMessage {
  std::string description;
  // The body's pieces one behind the other: memory of the batch, or of one of the two below.
  std::vector<std::string_view> body;
  std::int64_t bodyBytes = 0;
  std::deque<Buffer> joined;
  std::deque<std::string> compressed;
};

// The schema in a message of its own; it has no body.
std::string ArrowSchemaMessage(const std::vector<ColumnField>& fields,
                               const ArrowMetadata& metadata);
// The schema as a part of what `builder` makes.
flatbuffers::Offset<arrowipc::Schema> BuildArrowSchema(flatbuffers::FlatBufferBuilder& builder,
                                                       const std::vector<ColumnField>& fields,
                                                       const ArrowMetadata& metadata);
// The batch outlives the message. Any thread. Throws std::bad_alloc.
ArrowMessage ArrowBatchMessage(const std::vector<ColumnField>& fields, const ColumnPieces& batch,
                               ArrowCompression compression);

}  // namespace library
