#include "cli/terminal/Progress.h"

#include <gtest/gtest.h>

namespace cli {
namespace {

TEST(Progress, TellsCasesMegabytesRateAndTheTimeLeft) {
  EXPECT_EQ(ProgressText(1200, 4000000, 100000000, 2),
            "1200 cases, 4.0 of 100.0 MB, 2.0 MB/s, 0:48 left");
  EXPECT_EQ(ProgressText(1, 1000000, 601000000, 1),
            "1 case, 1.0 of 601.0 MB, 1.0 MB/s, 10:00 left");
}

TEST(Progress, TellsCasesAloneWhereTheBytesAreNotKnown) {
  EXPECT_EQ(ProgressText(7, -1, 1000, 3), "7 cases");
}

}  // namespace
}  // namespace cli
