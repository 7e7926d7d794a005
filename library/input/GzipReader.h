// gzip data, read with zlib itself: libarchive's reader does not look at the checksums.
#pragma once

#include <string>

#include "library/input/Decompression.h"

namespace library {

// As Decompress, of gzip data: one member behind the other, zeros behind the last one allowed.
bool ReadGzip(int descriptor, const DecompressionListener& listener, std::string* problem);

}  // namespace library
