// An ICU converter, used for what the tables of a code page do not hold.
#pragma once

#include <memory>
#include <string>

#include <unicode/ucnv.h>

#include "HostFramework/embedded/text/Utf8.h"

namespace embedded {

// One thread at a time.
class IcuConverter {
 public:
  IcuConverter() = default;
  // Opens the converter of that name; IsOpen() is false when there is none. Throws bad_alloc.
  explicit IcuConverter(const char* name);

  bool IsOpen() const { return converter_ != nullptr; }
  // ICU's own name of the code page; empty when not open.
  std::string Name() const;
  UConverterType Type() const { return ucnv_getType(converter_.get()); }
  UConverter* get() const { return converter_.get(); }

  // Decodes the first of `available` (at least 1) bytes, starting from the initial state.
  Character Decode(const char* text, std::size_t available);
  // Writes the character's code and returns its length, 0 when the page lacks it. `out` has room
  // for kLongestCode bytes.
  std::size_t Encode(char32_t code, char* out);

 private:
  struct Close {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
  };
  std::unique_ptr<UConverter, Close> converter_;
};

}  // namespace embedded
