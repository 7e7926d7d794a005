// The data that a compressed file holds.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace library {

enum class Compression : std::uint8_t { kNone, kGzip, kBzip2, kXz, kZstd, kZip };

// By the first bytes of a file.
Compression CompressionOf(std::string_view head);
// Bytes that CompressionOf wants to see, where the file has as many.
inline constexpr std::size_t kCompressionHeadBytes = 16;

// "gzip", "zip" ...; "" for none.
const char* CompressionName(Compression compression);

struct DecompressionListener {
  // Takes the next bytes of the data; false ends it, *problem then says why.
  std::function<bool(std::string_view bytes, std::string* problem)> write;
  // Told now and then how many bytes of the compressed file are read; false ends it.
  std::function<bool(std::int64_t bytes)> progress;
};

// Reads the compressed file that is open as `descriptor`, from its start. Its data has to be one
// file's: concatenated streams are, an archive of several files is not. What is wrong with the data
// is found, wherever its format has a checksum. False when it was not read to its end; *problem is
// then a sentence (UTF-8) that says why and what would help, such as "the gzip data is damaged:
// ...".
bool Decompress(int descriptor, Compression compression, const DecompressionListener& listener,
                std::string* problem);

}  // namespace library
