// How a bare file was understood, as a person reads it.
#pragma once

#include <cstddef>
#include <string>

#include "cli/terminal/Style.h"
#include "library/sniff/SniffResult.h"

namespace cli {

// The settings, a line each: the value, whether it was found or given, what speaks for it, and what
// else it could be where that is close; then how sure the whole is, and what to give where it is a
// guess. No line is wider than `width`, longer evidence goes on in the next one; every line ends
// with a line feed. `file`: UTF-8 of any kind.
std::string SniffSettingsText(const std::string& file, const library::SniffResult& result,
                              std::size_t width, const Style& style = Style());

// The columns, a line each: name, format, place with fixed columns, and the header's text where it
// is not the name. Of many columns the first and the last ones, and how many are between.
std::string SniffColumnsText(const library::SniffResult& result, std::size_t width,
                             const Style& style = Style());

}  // namespace cli
