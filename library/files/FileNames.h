// The files that a person names: one by one, or by patterns.
#pragma once

#include <string>
#include <vector>

namespace library {

// Whether a name that is no file's is a pattern: it holds * ? or [.
bool IsPattern(const std::string& name);

// The files that `given` names (host text), in the order given; those of a pattern in the order of
// their names' bytes, folders left out. A name is a pattern only where no file is called so. Each
// file is there once, at its first place. False when a pattern matches no file, or a folder cannot
// be read; *problem is then a sentence (UTF-8).
bool ExpandFileNames(const std::vector<std::string>& given, std::vector<std::string>* names,
                     std::string* problem);

}  // namespace library
