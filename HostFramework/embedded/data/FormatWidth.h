// The smallest widths of the display formats.
#pragma once

namespace embedded {

// The smallest width at which a value of format code `type` with `decimals` decimals can be shown;
// 1 for a code without a rule. Any thread.
int MinimumFormatWidth(int type, int decimals);

}  // namespace embedded
