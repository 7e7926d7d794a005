// Conversion of field text to values by display format, and the process's decimal character.
#pragma once

#include <cstddef>

// Reads `text` (`length` bytes of host text, not terminated) as a value of the display-format code
// `format`; `flags` is 0. Returns 0 and sets *value, or leaves it alone and returns 1 (empty or
// blank), 2 (not a value of the format) or 3 (a format that no value can be read with). Numbers are
// read with the process's decimal character; dates are seconds since 1582-10-14 00:00:00, times
// and durations seconds. Any thread; allocates nothing, takes no lock.
int IocvConvertInput(const char* text, std::size_t length, int format, int flags, double* value);

// The process-wide decimal character of value input: '.' or ','. Any thread (atomic).
int iocvgetdecchar_();
void iocvsetdecchardot_();
void iocvsetdeccharcomma_();
