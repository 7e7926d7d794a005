#include "model/MessageText.h"

#include <gtest/gtest.h>

#include "command/testing/CommandTesting.h"

namespace textwizard {
namespace {

TEST(MessageText, ATokenFollowsTheTextAfterOneBlank) {
  EXPECT_EQ(MessageText(2258, "SOMEHOW"), CatalogueText(2258) + " SOMEHOW");
}

TEST(MessageText, AnEmptyTokenLeavesTheBlank) {
  EXPECT_EQ(MessageText(2275, ""), CatalogueText(2275) + " ");
}

TEST(MessageText, NoTokenLeavesTheTextAsItIs) {
  EXPECT_EQ(MessageText(2263, nullptr), CatalogueText(2263));
}

TEST(MessageText, ATokenFillsThePlaceholderOfTheTenTexts) {
  for (const std::uint32_t id :
       {2284u, 2285u, 2287u, 2288u, 2289u, 2291u, 2293u, 2294u, 2296u, 2297u}) {
    EXPECT_EQ(MessageText(id, "12x"), FilledText(id, "%s", "12x")) << id;
  }
}

TEST(MessageText, APlaceholderIsNeverLookedForInTheToken) {
  EXPECT_EQ(MessageText(2297, "%s%n%d"), FilledText(2297, "%s", "%s%n%d"));
  EXPECT_EQ(MessageText(2272, "%s%n"), FilledText(2272, "%d", "64") + " %s%n");
  EXPECT_EQ(MessageText(2258, "%s%n"), CatalogueText(2258) + " %s%n");
}

TEST(MessageText, LimitsFillTheirPlaceholders) {
  EXPECT_EQ(MessageText(2271, "v"), FilledText(2271, "%d", "32767") + " v");
  EXPECT_EQ(MessageText(2272, "v"), FilledText(2272, "%d", "64") + " v");
  EXPECT_EQ(MessageText(2273, "v"), FilledText(2273, "%d", "64") + " v");
  EXPECT_EQ(MessageText(2274, "v"), FilledText(2274, "%d", "40") + " v");
}

TEST(MessageText, ALongTokenIsNotCut) {
  const std::string token(1000000, 'x');
  EXPECT_EQ(MessageText(2297, token.c_str()), FilledText(2297, "%s", token));
}

TEST(MessageText, UndecodableBytesAreToldByCaseAndPosition) {
  std::string text = FilledText(2279, "%d", "12");
  text.replace(text.find("%d"), 2, "34");
  const ErrorText warning = UndecodableWarning(12, 34);
  EXPECT_EQ(warning.text, text);
  EXPECT_EQ(warning.kind, kMessageWarning);
  EXPECT_EQ(warning.value, 0);
}

TEST(MessageText, AFailedReadIsAnErrorThatNamesTheFile) {
  const ErrorText error = ReadFailedError("my data.csv");
  EXPECT_EQ(error.text, CatalogueText(2269) + " my data.csv");
  EXPECT_EQ(error.kind, kMessageError);
}

TEST(PostErrorMsg, WarningsAreCollectedInOrder) {
  TxtWzParser parser;
  EXPECT_TRUE(parser.PostErrorMsg(2276, "", true));
  EXPECT_TRUE(parser.PostErrorMsg(2274, "v", true));
  ASSERT_EQ(parser.warnings().size(), 2u);
  EXPECT_EQ(parser.warnings()[0].text, CatalogueText(2276) + " ");
  EXPECT_EQ(parser.warnings()[1].text, FilledText(2274, "%d", "40") + " v");
  EXPECT_EQ(parser.warnings()[1].kind, 0);
  EXPECT_EQ(parser.warnings()[1].value, 0);
  EXPECT_EQ(parser.GetErrorMesID(), 2251u);
  EXPECT_EQ(parser.GetErrorMesToken(), nullptr);
}

TEST(PostErrorMsg, ALaterErrorReplacesTheOneBefore) {
  TxtWzParser parser;
  EXPECT_TRUE(parser.PostErrorMsg(2258, "X", false));
  EXPECT_TRUE(parser.PostErrorMsg(2263, nullptr, false));
  EXPECT_EQ(parser.GetErrorMesID(), 2263u);
  EXPECT_EQ(parser.GetErrorMesToken(), CatalogueText(2263));
  EXPECT_TRUE(parser.warnings().empty());
}

}  // namespace
}  // namespace textwizard
