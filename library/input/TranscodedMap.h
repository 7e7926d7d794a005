// The way back from a text that was converted to UTF-8 to the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <unicode/ucnv.h>

#include "library/input/CopyMap.h"

namespace library {

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

// Of an encoding by its name, to read from; null for one that ICU does not know. What is no
// character becomes kNoCharacter; *undecodable, which may be null and else outlives it, counts
// that.
Converter OpenConverter(const std::string& name, std::int64_t* undecodable = nullptr);
// Half of a pair, which no text has.
constexpr UChar kNoCharacter = 0xDC00;
// The byte for it in the text, which UTF-8 does not have: whoever reads the text finds it there.
constexpr char kNoCharacterByte = '\xFF';

// Notes, while a file is converted, what its map needs. One thread.
class TranscodedMap {
 public:
  // `map` outlives it; `head`: the file's first bytes.
  TranscodedMap(const std::string& encoding, std::string_view head, CopyMap* map);

  // The next bytes of the file are about to be converted by `converter`.
  void Begin(const UConverter* converter);
  // They became `textBytes` bytes, the last of which is `last`.
  void Converted(std::string_view bytes, std::int64_t textBytes, char last);
  void End() { map_.End(file_, copy_); }

 private:
  bool StandsAtCharacter(const UConverter* converter) const;

  const std::string encoding_;
  CopyMap& map_;
  std::int64_t unitBytes_ = 1;
  LineEndBytes lineEnds_;
  std::int64_t markBytes_ = 0;
  // Of file and text, so far; where the last stretch of the map began.
  std::int64_t file_ = 0;
  std::int64_t copy_ = 0;
  std::int64_t begun_ = 0;
  // What was converted last ended a line; and nothing stood behind the line end.
  bool endsLine_ = false;
  bool atLineStart_ = true;
};

}  // namespace library
