// Month and day names: English, and those of the process locale, in any letter case.
#pragma once

#include "HostFramework/embedded/values/TextCursor.h"

namespace embedded {

// Consumes the longest name at `cursor` and returns its number, or consumes nothing and returns 0.
// Names are full or abbreviated. The locale's are those in force now (`setlocale`); where one
// locale's name is another thing in English, the locale's meaning holds.
//
// Any thread, but not during a call of `setlocale` on another. Each thread keeps the names it read
// last, so nothing is locked or allocated, and only a change of the locale makes it read them
// again. (In a locale that is not UTF-8 the C library may take memory once, when it first decodes a
// name.)
int AcceptMonthName(TextCursor& cursor);  // 1 January to 12
int AcceptDayName(TextCursor& cursor);    // 1 Sunday to 7

}  // namespace embedded
