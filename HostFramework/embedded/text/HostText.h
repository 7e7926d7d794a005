// The embedded host's text settings. They change only while nothing runs: no command, no iterator,
// no other thread in a text function. Reading them is free of locks.
//
// Until the first setting or the first text function, nothing is decided; then the default comes
// from nl_langinfo(CODESET), so a program that follows the user's locale calls
// setlocale(LC_ALL, "") before either. The default is UTF-8 mode when that codeset is UTF-8, else
// the codeset's code page; a codeset that cannot be one counts as US-ASCII.
#pragma once

#include <string>

namespace embedded {

// Null or a name of UTF-8 selects UTF-8 mode. Any other code page that ICU knows, by any of its
// names or by one in common use (cp949, uhc, win1252), becomes the active code page and the
// locale's. False, with nothing changed, for an unknown name and for a page that host text cannot
// be in: host text is stateless and a superset of ASCII. Of the control characters 1A, 1C and 7F,
// which ICU rotates in the pages of the DOS family, host text has the ASCII meaning. Costs some
// milliseconds the first time that a multibyte page is named. Throws std::bad_alloc.
bool SetCodePage(const char* name);

// What ENCODING=LOCALE means in UTF-8 mode; null is the locale's codeset. False, with nothing
// changed, as above.
bool SetLocaleCodePage(const char* name);

// Why a name was refused, with names that may have been meant: "unknown code page latni1; near
// ones: latin1". Host text. Takes some ten milliseconds; throws std::bad_alloc. Any thread.
std::string CodePageRefusal(const std::string& name);

}  // namespace embedded
