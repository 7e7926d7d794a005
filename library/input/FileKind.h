// Data files that are no text, by their first bytes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace library {

// Bytes that the functions below want to see, where the file has as many.
inline constexpr std::size_t kFileHeadBytes = 4096;

struct FileKind {
  // What the file is, as in "FILE is ...": "compressed with gzip". Null for what may be text.
  const char* what = nullptr;
  // What would help: a sentence without a full stop.
  const char* wayOut = nullptr;
  // An archive that is the document of a program.
  bool isDocument = false;
};

// The kind of a file that begins with `head`. Text is no kind, and neither are bytes of which
// nobody knows what they are.
FileKind FileKindOf(std::string_view head);

// How many of the bytes of `head` are control characters that no text has, where they are too many
// for a text in any encoding; else 0.
std::size_t ControlsBeyondText(std::string_view head);

// The first kFileHeadBytes of a regular file (host text); empty when it cannot be read.
std::string FileHead(const std::string& path);

// Why `path` (host text) cannot be opened as a data file, such as "it is a folder" or what the
// system says, with what would help; empty when it can be opened, and for "-".
std::string WhyNotOpened(const std::string& path);

}  // namespace library
