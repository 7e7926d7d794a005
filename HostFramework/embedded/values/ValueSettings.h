// Settings of value input that belong to the host and not to a command.
#pragma once

namespace embedded {

// The first of the hundred years that a two-digit year can mean. Reset to kDefaultTwoDigitYearStart
// a year below 69 is 20yy, any other 19yy.
inline constexpr int kDefaultTwoDigitYearStart = 1969;

// Moves the window. False, and no change, unless all hundred years have four digits and the
// calendar knows them (1583 to 9900). Any thread (atomic).
bool SetTwoDigitYearStart(int year);
int TwoDigitYearStart();

}  // namespace embedded
