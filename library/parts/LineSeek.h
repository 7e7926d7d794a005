// Where lines begin, for those who read from the midst of a file on.
#pragma once

#include <cstdint>

#include "HostFramework/FileStream.h"
#include "reading/RecordReader.h"

namespace library {

// Puts `reader` where the first line begins at byte `from` or behind it; the line that `from` lies
// in counts where it begins there. False when that is not before `to`, or when the file cannot be
// read. Reads from one to the other at most, by `stream`, which is one of the same file. The reader
// knows the file's mark, and `from` is behind it.
bool SeekToLine(std::int64_t from, std::int64_t to, QANT_FileStream& stream,
                textwizard::RecordReader& reader);

}  // namespace library
