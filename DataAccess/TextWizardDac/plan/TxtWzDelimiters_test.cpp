// The plan's own cut of a record into fields between delimiters.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HostFramework/embedded/text/HostText.h"
#include "plan/TxtWzDlmLines.h"

namespace textwizard {
namespace {

// All fields of `record`, and what the last call left behind.
std::vector<std::string> Cut(TxtWzDelimiters& plan, std::string record) {
  std::vector<std::string> fields;
  std::vector<char> out(record.size() + 1, '#');
  char* cursor = record.data();
  while (plan.GetNextVar(out.data(), &cursor)) fields.emplace_back(out.data());
  EXPECT_STREQ(out.data(), "");
  EXPECT_EQ(cursor, record.data() + record.size());
  return fields;
}

std::vector<std::string> CutWith(const char* delimiters, const std::string& record) {
  TxtWzDlmLines plan;
  plan.SetDelimiters(delimiters);
  return Cut(plan, record);
}

using Fields = std::vector<std::string>;

TEST(DelimitedCut, FieldsBetweenDelimiters) {
  EXPECT_EQ(CutWith(",", "a,bc,d"), (Fields{"a", "bc", "d"}));
  EXPECT_EQ(CutWith(",;", "a;b,c"), (Fields{"a", "b", "c"}));
  EXPECT_EQ(CutWith("", "a,b"), (Fields{"a,b"}));
}

TEST(DelimitedCut, EmptyFields) {
  EXPECT_EQ(CutWith(",", ",a,,b"), (Fields{"", "a", "", "b"}));
  EXPECT_EQ(CutWith(",", "a,"), (Fields{"a"})) << "nothing is left behind the last delimiter";
  EXPECT_EQ(CutWith(",", ""), Fields{});
}

TEST(DelimitedCut, BlanksThatAreNoDelimitersBelongToTheField) {
  EXPECT_EQ(CutWith(",", " a , b "), (Fields{" a ", " b "}));
}

TEST(DelimitedCut, ARunOfBlanksBehindADelimiterIsPassed) {
  EXPECT_EQ(CutWith(", ", "a,   b"), (Fields{"a", "b"}));
  EXPECT_EQ(CutWith(", ", "a, ,b"), (Fields{"a", "", "b"}));
}

TEST(DelimitedCut, ARunOfBlanksBehindABlankIsOneEmptyField) {
  EXPECT_EQ(CutWith(" ", "a b"), (Fields{"a", "b"}));
  EXPECT_EQ(CutWith(" ", "a  b"), (Fields{"a", "", "b"}));
  EXPECT_EQ(CutWith(" ", "a      b"), (Fields{"a", "", "b"}));
}

TEST(DelimitedCut, BlanksAtTheEndAreNoField) {
  EXPECT_EQ(CutWith(" ", "a   "), (Fields{"a"}));
  EXPECT_EQ(CutWith(", ", "a,   "), (Fields{"a"}));
}

TEST(DelimitedCut, CharactersOfSeveralBytes) {
  embedded::SetCodePage(nullptr);
  EXPECT_EQ(CutWith("\xC2\xA6",
                    "\xC2\xA7"
                    "a\xC2\xA6"
                    "b"),
            (Fields{"\xC2\xA7"
                    "a",
                    "b"}));
}

TEST(DelimitedCut, WithoutAText) {
  TxtWzDlmLines plan;
  plan.SetDelimiters(",");
  char out[] = "left";
  EXPECT_FALSE(plan.GetNextVar(out, nullptr));
  EXPECT_STREQ(out, "");
  char* none = nullptr;
  EXPECT_FALSE(plan.GetNextVar(out, &none));
}

TEST(DelimitedCut, TheFirstDelimitersStay) {
  TxtWzDlmLines plan;
  plan.SetDelimiters(",");
  plan.SetDelimiters(";");
  EXPECT_EQ(plan.settings.delimiters, ",");
  EXPECT_EQ(Cut(plan, "a;b,c"), (Fields{"a;b", "c"}));
  TxtWzDlmLines none;
  none.SetDelimiters("");
  none.SetDelimiters(";");
  EXPECT_EQ(none.settings.delimiters, "");
}

}  // namespace
}  // namespace textwizard
