#include "HostFramework/embedded/data/FormatWidth.h"

namespace embedded {
namespace {

struct WidthRule {
  int type;
  int whole;       // the minimum without decimals
  int fractional;  // what is added to the number of decimals when there are any
};

// Formats that take no decimals have one minimum, given as a rule that decimals do not move.
constexpr int kNoDecimals = -1;

constexpr WidthRule kRules[] = {
    {3, 1, 1},             // COMMA
    {4, 2, 2},             // DOLLAR
    {5, 1, 1},             // F
    {17, 8, 7},            // E
    {20, 9, kNoDecimals},  // DATE
    {21, 5, 9},            // TIME
    {22, 17, 21},          // DATETIME
    {23, 8, kNoDecimals},  // ADATE
    {24, 5, kNoDecimals},  // JDATE
    {25, 9, 13},           // DTIME
    {26, 2, kNoDecimals},  // WKDAY
    {27, 3, kNoDecimals},  // MONTH
    {28, 6, kNoDecimals},  // MOYR
    {29, 6, kNoDecimals},  // QYR
    {30, 8, kNoDecimals},  // WKYR
    {31, 2, 2},            // PCT
    {32, 1, 1},            // DOT
    {38, 8, kNoDecimals},  // EDATE
    {39, 8, kNoDecimals},  // SDATE
    {85, 3, 4},            // MTIME
    {86, 12, 15},          // YMDHMS
};

}  // namespace

int MinimumFormatWidth(int type, int decimals) {
  for (const WidthRule& rule : kRules) {
    if (rule.type != type) continue;
    return decimals > 0 && rule.fractional != kNoDecimals ? decimals + rule.fractional : rule.whole;
  }
  return 1;
}

}  // namespace embedded
