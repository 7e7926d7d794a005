// Text from files as a terminal may show it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// `text` (UTF-8) with everything visible that a terminal would obey or hide: tab, line feed and
// carriage return as \t, \n and \r, other control characters as \xHH, invisible format characters
// (direction marks, zero-width characters, line separators) as \u{HEX}; bytes that are not UTF-8
// become U+FFFD. A text wider than `columns` is cut and ends with an ellipsis, so that it takes
// exactly that many columns or one less.
std::string VisibleText(std::string_view text, std::size_t columns = std::string_view::npos);

// Columns that a visible text (UTF-8) takes by the character database: 2 for wide East Asian
// characters and emoji, signs that a selector makes emoji included, 0 for combining marks and for
// what joins the character before it.
std::size_t DisplayWidth(std::string_view visible);

// A visible text in lines of at most `width` columns, broken at blanks, each with a line feed;
// those behind the first are indented. A longer word has a line of its own.
std::string WrappedText(std::string_view visible, std::size_t width);

// The same as lines without an indent or line feeds, where a longer word is broken, too; one empty
// line of an empty text. `width` is at least 2.
std::vector<std::string> WrappedLines(std::string_view visible, std::size_t width);

}  // namespace cli
