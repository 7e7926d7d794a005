// The plan's own cut of a record into fields of fixed columns.
#include "plan/TxtWzFixedLines.h"

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/HostText.h"
#include "model/FormatCode.h"

namespace textwizard {
namespace {

class FixedCut : public testing::Test {
 protected:
  bool Cut(const char* record) { return plan_.GetVarBuffer(out_, &variable_, record); }

  TxtWzFixedLines plan_;
  TxtWzVar variable_;
  char out_[64] = "left";
};

TEST_F(FixedCut, NumbersAreAsWideAsTheirWidthAndStringsAsTheirLength) {
  variable_.startColumn = 2;
  variable_.width = 3;
  variable_.maxStringLength = 5;
  variable_.formatType = kFormatF;
  EXPECT_TRUE(Cut("0123456789"));
  EXPECT_STREQ(out_, "234");
  variable_.formatType = kFormatA;
  EXPECT_TRUE(Cut("0123456789"));
  EXPECT_STREQ(out_, "23456");
}

TEST_F(FixedCut, TheRecordsEndCutsTheField) {
  variable_.startColumn = 2;
  variable_.width = 3;
  variable_.formatType = kFormatF;
  EXPECT_TRUE(Cut("0123"));
  EXPECT_STREQ(out_, "23");
  EXPECT_TRUE(Cut("01"));
  EXPECT_STREQ(out_, "");
}

TEST_F(FixedCut, ARecordShorterThanTheStartColumnEndsTheFields) {
  variable_.startColumn = 2;
  variable_.width = 3;
  EXPECT_FALSE(Cut("0"));
  EXPECT_STREQ(out_, "");
  EXPECT_FALSE(Cut(nullptr));
}

TEST_F(FixedCut, ACharacterIsNotCutInTheMiddle) {
  embedded::SetCodePage(nullptr);
  variable_.width = 2;
  variable_.formatType = kFormatF;
  EXPECT_TRUE(Cut("a\xC3\xA9z"));
  EXPECT_STREQ(out_, "a");
}

}  // namespace
}  // namespace textwizard
