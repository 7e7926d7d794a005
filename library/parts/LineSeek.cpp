#include "library/parts/LineSeek.h"

#include <cstddef>
#include <string_view>

#include "reading/ByteScan.h"

namespace library {

bool SeekToLine(std::int64_t from, std::int64_t to, QANT_FileStream& stream,
                textwizard::RecordReader& reader) {
  const bool is16Bit = reader.isUtf16();
  const std::size_t unit = is16Bit ? 2 : 1;
  const std::string_view nul("\0\0", unit);
  // A mark of 16-bit characters is one of their units.
  if (is16Bit) from += from % 2;
  // What ends the line that the unit before lies in. When it is that unit, a line begins at `from`.
  std::int64_t at = from - static_cast<std::int64_t>(unit);
  for (;;) {
    if (at >= to || stream.Seek(at, QANT_FileStream::kFromStart) != 0) return false;
    const std::string_view block = stream.Buffered();
    if (block.empty()) return false;
    const std::size_t length =
        is16Bit ? textwizard::FindLineEnd16(block) : textwizard::FindLineEnd8(block);
    const std::string_view end = block.substr(length, unit);
    if (end.size() == unit && end != nul) {
      at += static_cast<std::int64_t>(length);
      break;
    }
    // A unit that lies in two blocks is looked at again, from its first byte on.
    if (length == 0 && end.size() < unit) {
      unsigned char bytes[2] = {};
      if (!stream.ReadByte(&bytes[0]) || !stream.ReadByte(&bytes[1])) return false;
      const char text[2] = {static_cast<char>(bytes[0]), static_cast<char>(bytes[1])};
      const bool ends = textwizard::FindLineEnd16({text, 2}) == 0;
      if (ends && (bytes[0] != 0 || bytes[1] != 0)) break;
      at += 2;
      continue;
    }
    at += static_cast<std::int64_t>(length + (end.size() == unit ? unit : 0));
  }
  // The reader knows which two units are one line end.
  if (at >= to || !reader.SeekTo(at)) return false;
  reader.Read(true);
  // Lines are counted from there on.
  return reader.position() < to && !reader.failed() && reader.SeekTo(reader.position());
}

}  // namespace library
