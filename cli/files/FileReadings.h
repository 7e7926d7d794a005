// How the files of single commands are read, where a command file makes one data set of several.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "library/files/DataSetImport.h"

namespace cli {

// How a file is read that the command language has no words for.
struct FileReading {
  library::HostNeeds host;
  library::RewritingOptions rewriting;
  std::string shownMark;
  std::string transcoding;
  std::vector<std::int64_t> paddedAt;
  bool operator==(const FileReading& other) const;
};

// "3,5-7:decimal=comma,join-quoted-lines": for the commands of these numbers (from 1), what takes
// the place of the options of the line; "none" for nothing of it. Words: decimal=comma,
// locale-code-page=NAME, byte-order-mark=utf-16le (or utf-16be), transcode=NAME,
// pad-columns=13/18 (places with strokes between), join-quoted-lines, backslash-escapes,
// keep-stray-qualifiers. Sets these commands' readings in `readings`, one a
// command. False when the text is none, or there is no such command; *error is then what is wrong.
bool ApplyReading(const std::string& text, std::vector<FileReading>* readings, std::string* error);

// Such texts for all commands that are not read as `usual`.
std::vector<std::string> ReadingTexts(const std::vector<FileReading>& readings,
                                      const FileReading& usual);

}  // namespace cli
