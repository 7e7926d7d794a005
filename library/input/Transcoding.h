// Files in encodings that no command can name, as UTF-8.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "library/input/CopyMap.h"

namespace library {

// Whether ICU knows the name.
bool IsEncodingName(const std::string& name);

// Whether the encoding (a name that ICU knows) is one that the component cannot read, so that its
// files have to be converted first: such as UTF-32, and those in which bytes mean something else
// behind an escape (ISO-2022-JP).
bool NeedsTranscoding(const std::string& encoding);

struct TranscodingListener {
  // Takes the next bytes of the text; false ends it, *problem then says why.
  std::function<bool(std::string_view bytes, std::string* problem)> write;
  // Told now and then how many bytes of the file are read; false ends it.
  std::function<bool(std::int64_t bytes)> progress;
};

// Reads the file that is open as `descriptor` from its start as text of the encoding (a name that
// ICU knows) and gives it as UTF-8. Bytes that are no character become a byte that is none in UTF-8
// either, so that whoever reads the text finds them there; *undecodable is how often. False when it
// was not read to its end; *problem is then a sentence (UTF-8) that says why, empty where the
// listener ended it. `map`, unless null, gets the way back from the text to the file.
bool Transcode(int descriptor, const std::string& encoding, const TranscodingListener& listener,
               std::int64_t* undecodable, std::string* problem, CopyMap* map = nullptr);

}  // namespace library
