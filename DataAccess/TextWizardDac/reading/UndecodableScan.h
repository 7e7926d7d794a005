// Where UTF-8 text has bytes that are no character. Any thread; nothing is allocated.
#pragma once

#include <cstddef>
#include <string_view>

namespace textwizard {

// Bytes that follow each other, each of which is no character.
struct UndecodableRun {
  std::size_t position = 0;
  std::size_t count = 0;
};

// The first such run of `text` at `from`, where a character begins, or behind it; a count of 0 when
// there is none. A byte is a character or begins one when valid UTF-8 stands there (no overlong
// form, no surrogate, nothing above U+10FFFF); what follows a byte that does not is looked at anew,
// so that every byte of a broken character is one of the run.
UndecodableRun FindUndecodable(std::string_view text, std::size_t from);

}  // namespace textwizard
