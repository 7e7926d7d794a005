#include "library/report/EvidenceJson.h"

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace library {
namespace {

using Class = ImportValueClass;

class EvidenceJsonTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};

  ImportWitness& Of(Class valueClass) {
    return evidence_.classes[static_cast<std::size_t>(valueClass)];
  }
  nlohmann::json Json(const ReportVariable& variable) const {
    return EvidenceJson(evidence_, variable);
  }

  ImportEvidence evidence_;
  const ReportVariable date_ = {"visited", "ADATE10", 23, 0};
  const ReportVariable number_ = {"fee", "F8.2", 5, 0};
  const ReportVariable text_ = {"town", "A12", 1, 12};
};

TEST_F(EvidenceJsonTest, CountsEveryClass) {
  Of(Class::kString) = {2, 17, "unknown"};
  Of(Class::kNumber) = {1, 30, "5"};
  Of(Class::kDate) = {97, 2, "12/31/2019"};
  evidence_.blanks = 3;
  evidence_.empties = 4;
  const nlohmann::json json = Json(date_);
  EXPECT_EQ(json["values"], 100);
  EXPECT_EQ(json["strings"], 2);
  EXPECT_EQ(json["numbers"], 1);
  EXPECT_EQ(json["dates"], 97);
  for (const char* none : {"dollar", "percent", "comma", "dot"}) EXPECT_EQ(json[none], 0) << none;
  EXPECT_EQ(json["blanks"], 3);
  EXPECT_EQ(json["empties"], 4);
  EXPECT_EQ(json["winner"], "date");
  EXPECT_EQ(json["share"], 0.97);
  EXPECT_EQ(
      json["rival"],
      (nlohmann::json{
          {"class", "string"}, {"count", 2}, {"first_value", "unknown"}, {"first_line", 17}}));
}

TEST_F(EvidenceJsonTest, WithoutValuesThereIsNoRivalAndNoVerdict) {
  const nlohmann::json json = Json(text_);
  EXPECT_EQ(json["values"], 0);
  EXPECT_EQ(json["winner"], "string");
  EXPECT_EQ(json["share"], 0.0);
  EXPECT_TRUE(json["rival"].is_null());
  EXPECT_TRUE(json["day_month"].is_null());
  EXPECT_TRUE(json["decimal"].is_null());
  EXPECT_TRUE(json["longest"].is_null());
  EXPECT_EQ(json["date_layouts"], nlohmann::json::array());
  EXPECT_EQ(json["leading_zeros"], (nlohmann::json{{"count", 0}}));
}

TEST_F(EvidenceJsonTest, TheStrongestRivalIsTheOneWithMostValues) {
  Of(Class::kNumber) = {10, 1, "1"};
  Of(Class::kString) = {2, 5, "a"};
  Of(Class::kPercent) = {3, 4, "5%"};
  EXPECT_EQ(Json(number_)["rival"]["class"], "percent");
  // A string that won has rivals too.
  EXPECT_EQ(Json(text_)["rival"]["class"], "number");
}

TEST_F(EvidenceJsonTest, EveryLayoutIsListed) {
  evidence_.layouts = {{"MM/dd/yyyy", "ADATE10", {90, 2, "12/31/2019"}},
                       {"dd.MM.yyyy", "EDATE10", {5, 40, "31.12.2019"}}};
  const nlohmann::json layouts = Json(date_)["date_layouts"];
  ASSERT_EQ(layouts.size(), 2U);
  EXPECT_EQ(layouts[1], (nlohmann::json{{"layout", "dd.MM.yyyy"},
                                        {"format", "EDATE10"},
                                        {"count", 5},
                                        {"first_line", 40},
                                        {"first_value", "31.12.2019"}}));
}

TEST_F(EvidenceJsonTest, AnOrderIsDecidedByTheFirstValueWithOneWay) {
  evidence_.dayFirst = {3, 48, "31/12/2019"};
  evidence_.eitherOrder = {9, 2, "01/02/2019"};
  EXPECT_EQ(Json(date_)["day_month"], (nlohmann::json{{"verdict", "decided"},
                                                      {"by_line", 48},
                                                      {"by_value", "31/12/2019"},
                                                      {"order", "day_first"},
                                                      {"day_first", 3},
                                                      {"month_first", 0},
                                                      {"either", 9}}));
}

TEST_F(EvidenceJsonTest, AnOrderIsAmbiguousWhereAllValuesHaveBothWays) {
  evidence_.eitherComma = {9, 2, "1,234"};
  EXPECT_EQ(Json(number_)["decimal"], (nlohmann::json{{"verdict", "ambiguous"},
                                                      {"by_line", 2},
                                                      {"by_value", "1,234"},
                                                      {"decimal", 0},
                                                      {"grouping", 0},
                                                      {"either", 9}}));
}

TEST_F(EvidenceJsonTest, AnOrderIsMixedByTheFirstValueThatContradicts) {
  evidence_.decimalComma = {1, 7, "1,5"};
  evidence_.groupingComma = {1, 3, "1,234,567"};
  EXPECT_EQ(Json(number_)["decimal"]["verdict"], "mixed");
  EXPECT_EQ(Json(number_)["decimal"]["by_line"], 7);
  evidence_.groupingComma.line = 9;
  EXPECT_EQ(Json(number_)["decimal"]["by_line"], 9);
}

TEST_F(EvidenceJsonTest, LeadingZerosAndTheLongestValueHaveTheirPlace) {
  evidence_.leadingZeros = {2, 5, "007"};
  evidence_.longest = {12, 8, "123456789012"};
  EXPECT_EQ(Json(number_)["leading_zeros"],
            (nlohmann::json{{"count", 2}, {"first_value", "007"}, {"first_line", 5}}));
  EXPECT_EQ(Json(number_)["longest"],
            (nlohmann::json{{"bytes", 12}, {"line", 8}, {"value", "123456789012"}}));
}

TEST_F(EvidenceJsonTest, APersonReadsTheSame) {
  Of(Class::kString) = {2, 17, "unknown"};
  Of(Class::kNumber) = {1, 30, "5"};
  Of(Class::kDate) = {97, 2, "12/31/2019"};
  evidence_.blanks = 3;
  evidence_.layouts = {{"MM/dd/yyyy", "ADATE10", {97, 2, "12/31/2019"}}};
  evidence_.monthFirst = {40, 2, "12/31/2019"};
  evidence_.eitherOrder = {57, 3, "01/02/2019"};
  evidence_.longest = {10, 2, "12/31/2019"};
  EXPECT_EQ(EvidenceText(evidence_, date_),
            "visited: ADATE10, 97 % dates or times of 100 values; 2 strings, the first \"unknown\" "
            "in line "
            "17\n"
            "  also 1 number, 3 blank\n"
            "  layout MM/dd/yyyy (ADATE10): 97 values, the first \"12/31/2019\" in line 2\n"
            "  day and month: month first, decided by \"12/31/2019\" in line 2; 57 values could be "
            "either\n"
            "  longest: 10 bytes in line 2, \"12/31/2019\"\n");
}

TEST_F(EvidenceJsonTest, APersonReadsOfValuesOfBothWaysOnlyWhereThereAreSome) {
  Of(Class::kDate) = {3, 2, "12/31/2019"};
  evidence_.monthFirst = {3, 2, "12/31/2019"};
  EXPECT_EQ(EvidenceText(evidence_, date_),
            "visited: ADATE10, 100 % dates or times of 3 values\n"
            "  day and month: month first, decided by \"12/31/2019\" in line 2\n");
}

TEST_F(EvidenceJsonTest, APersonReadsWhenThereIsNothing) {
  EXPECT_EQ(EvidenceText(evidence_, text_), "town: A12, no value in the file\n");
}

}  // namespace
}  // namespace library
