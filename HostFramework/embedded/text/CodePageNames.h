// The names by which people call code pages.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace embedded {

// The names under which ICU may know the page that is called `name`, the likeliest first: the name
// itself, what another standard means by it, the Windows and the DOS page of the same number, and
// what a name that ICU lacks stands for. Throws std::bad_alloc. Any thread.
std::vector<std::string> CodePageCandidates(const char* name);

// Up to `most` names of pages that host text can be in and that `name` may be a slip for, all
// equally near; none when nothing is near. Takes some ten milliseconds. Throws std::bad_alloc. Any
// thread.
std::vector<std::string> NearCodePages(std::string_view name, std::size_t most);

}  // namespace embedded
