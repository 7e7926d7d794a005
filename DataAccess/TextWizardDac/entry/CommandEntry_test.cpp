#include "entry/CommandEntry.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "HostFramework/DataSource.h"
#include "HostFramework/embedded/text/HostText.h"
#include "model/MessageText.h"
#include "model/testing/TestAdapter.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard {
namespace {

struct Token {
  std::string text;
  int kind = 1;
};

Token Literal(const std::string& text) { return {text, kDACTokenLiteral}; }

// Tokens from a list, positioned on the first.
class TestTokens : public DACTokenSource {
 public:
  explicit TestTokens(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}
  bool NextToken() override {
    if (next_ < tokens_.size()) ++next_;
    return next_ < tokens_.size();
  }
  int TokenKind() const override { return next_ < tokens_.size() ? tokens_[next_].kind : 0; }
  void TokenText(const char** text, int* length) const override {
    const bool any = next_ < tokens_.size();
    *text = any ? tokens_[next_].text.data() : nullptr;
    *length = any ? static_cast<int>(tokens_[next_].text.size()) : 0;
  }

 private:
  std::vector<Token> tokens_;
  std::size_t next_ = 0;
};

std::string Built(std::vector<Token> tokens) {
  TestTokens source(std::move(tokens));
  return BuildCommandText(source);
}

std::string Framed(const std::string& body) { return "GET DATA /TYPE = TXT  /" + body + "\n."; }

TEST(CommandText, TokensAreJoinedByBlanksButForSlashes) {
  EXPECT_EQ(Built({{"ARRANGEMENT"}, {"="}, {"FIXED"}, {"/"}, {"FIXCASE"}, {"="}, {"2"}}),
            Framed("ARRANGEMENT = FIXED /FIXCASE = 2"));
}

TEST(CommandText, WithoutTokens) { EXPECT_EQ(Built({}), Framed("")); }

TEST(CommandText, KeywordEqualsAndValueOfAQuotedSubcommandAreGlued) {
  EXPECT_EQ(Built({{"FILE"}, {"="}, Literal("a b.txt"), {"/"}, {"MAP"}}),
            Framed("FILE=\"a b.txt\" /MAP"));
  EXPECT_EQ(Built({{"file"}, {"="}, {"data.txt"}, {"/"}, {"MAP"}}), Framed("file=data.txt /MAP"));
  EXPECT_EQ(Built({{"Qualifier"}, {"="}, Literal(""), {"/"}, {"x"}}), Framed("Qualifier=\"\" /x"));
}

TEST(CommandText, AQuotedValueKeepsWhateverItHolds) {
  EXPECT_EQ(Built({{"DELIMITERS"}, {"="}, Literal(",\""), {"/"}, {"x"}}),
            Framed("DELIMITERS=',\"' /x"));
  EXPECT_EQ(Built({{"DELIMITERS"}, {"="}, Literal(",'"), {"/"}, {"x"}}),
            Framed("DELIMITERS=\",'\" /x"));
  EXPECT_EQ(Built({{"DELIMITERS"}, {"="}, {","}, {"/"}, {"x"}}), Framed("DELIMITERS=, /x"));
}

TEST(CommandText, OtherLiteralsAreCopiedWithoutQuotes) {
  EXPECT_EQ(Built({{"ENCODING"}, {"="}, Literal("UTF8")}), Framed("ENCODING = UTF8"));
}

TEST(CommandText, ATokenThatBeginsWithAMinusIsGluedToTheOneBefore) {
  EXPECT_EQ(Built({{"FIRSTCASE"}, {"="}, {"-3"}}), Framed("FIRSTCASE =-3"));
  EXPECT_EQ(Built({{"v"}, {"0"}, {"-9"}, {"F8"}}), Framed("v 0-9 F8"));
}

TEST(CommandText, TellsWhereEachTokenBegins) {
  TestTokens source({{"FILE"}, {"="}, Literal("a b"), {"/"}, {"FIRSTCASE"}, {"="}, {"-3"}});
  std::vector<std::size_t> starts{7};
  const std::string text = BuildCommandText(source, &starts);
  std::vector<std::string> found;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const std::size_t end = i + 1 < starts.size() ? starts[i + 1] : text.size();
    found.push_back(text.substr(starts[i], end - starts[i]));
  }
  EXPECT_EQ(found,
            (std::vector<std::string>{"FILE", "=", "\"a b\" ", "/", "FIRSTCASE ", "=", "-3\n."}));
}

TEST(CommandText, AVariableMayBeNamedFile) {
  EXPECT_EQ(Built({{"VARIABLES"}, {"="}, {"FILE"}, {"F8"}, {"x"}, {"F8"}}),
            Framed("VARIABLES = FILE F8 x F8"));
  EXPECT_EQ(Built({{"variables"}, {"="}, {"file"}, {"F8"}}), Framed("variables = file F8"));
}

TEST(CommandText, AVariableNamedLikeTheOtherTwoIsTakenForTheKeyword) {
  EXPECT_EQ(Built({{"VARIABLES"}, {"="}, {"DELIMITERS"}, {"F8"}, {"x"}, {"F8"}}),
            Framed("VARIABLES = DELIMITERSF8x F8"));
  EXPECT_EQ(Built({{"VARIABLES"}, {"="}, {"qualifier"}, {"F8"}, Literal("x"), {"F8"}}),
            Framed("VARIABLES = qualifierF8\"x\" F8"));
}

TEST(CommandText, TokensThatEndInsideAQuotedSubcommand) {
  EXPECT_EQ(Built({{"FILE"}}), Framed("FILE"));
  EXPECT_EQ(Built({{"FILE"}, {"="}}), Framed("FILE="));
}

TEST(CommandText, AnEmptyTokenTakesNoBlank) {
  EXPECT_EQ(Built({{"a"}, Literal(""), {"b"}}), Framed("a b"));
}

TEST(CommandText, ANulDoesNotHideWhatFollows) {
  EXPECT_EQ(Built({{std::string("a\0b", 3)}, {"c"}}), Framed("a\x1A"
                                                             "b c"));
}

std::vector<ErrorText> reported;
// Called with every message.
std::function<void()> onMessage;

void Collect(const char* text, int kind) {
  reported.push_back({text, static_cast<std::uint8_t>(kind), 0});
  if (onMessage) onMessage();
}

class TokenAdapter : public TestAdapter {
 public:
  explicit TokenAdapter(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}
  DACTokenSource* GetTokenSource() override { return &tokens_; }
  ErrorCallback GetErrorCallback() override { return &Collect; }
  const std::string& ConvertFilePath(std::string& result, const std::string& input, bool) override {
    if (onPath) onPath();
    return result = input;
  }
  int GetSourceParamA() override {
    calls += 'A';
    if (onParameter) onParameter();
    return 3;
  }
  int GetSourceParamB() override {
    calls += 'B';
    return 7;
  }

  std::string calls;
  std::function<void()> onPath;
  std::function<void()> onParameter;

 private:
  TestTokens tokens_;
};

class ProcessDACSyntaxTest : public testing::Test {
 protected:
  void SetUp() override {
    embedded::SetCodePage(nullptr);
    reported.clear();
    onMessage = nullptr;
    ServerDataManager::GetInstance()->Remove("");
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    path_ = testing::TempDir() + test->test_suite_name() + "_" + test->name() +
            std::to_string(getpid());
  }
  void TearDown() override {
    onMessage = nullptr;
    ServerDataManager::GetInstance()->Remove("");
    std::filesystem::remove_all(path_);
  }

  void Write(const std::string& content) { std::ofstream(path_, std::ios::binary) << content; }

  // The tokens of a good command on the test's file, with these before the variables.
  std::vector<Token> Command(const std::vector<Token>& more = {},
                             const std::vector<Token>& variables = {
                                 {"a"}, {"F8.2"}, {"b"}, {"A5"}}) const {
    std::vector<Token> tokens = {{"FILE"},       {"="}, Literal(path_), {"/"},
                                 {"DELIMITERS"}, {"="}, Literal(","),   {"/"}};
    for (const Token& token : more) tokens.push_back(token);
    tokens.push_back({"VARIABLES"});
    tokens.push_back({"="});
    for (const Token& token : variables) tokens.push_back(token);
    return tokens;
  }

  bool Run(std::vector<Token> tokens) {
    adapter_ = std::make_unique<TokenAdapter>(std::move(tokens));
    return ProcessDACSyntax(adapter_.get());
  }

  static QANT_TextWizardSrc* Active() {
    return dynamic_cast<QANT_TextWizardSrc*>(ServerDataManager::GetInstance()->Find(""));
  }

  // The run failed with this one message and left nothing behind.
  void ExpectFailure(bool result, std::uint32_t id, const char* token) {
    EXPECT_FALSE(result);
    EXPECT_EQ(Active(), nullptr);
    ASSERT_EQ(reported.size(), 1u);
    EXPECT_EQ(reported[0].text, MessageText(id, token));
    EXPECT_EQ(reported[0].kind, kMessageError);
  }

  std::string path_;
  std::unique_ptr<TokenAdapter> adapter_;
};

TEST_F(ProcessDACSyntaxTest, RegistersTheSourceOfAGoodCommand) {
  Write("1,x\n2,y\n");
  EXPECT_TRUE(Run(Command()));
  EXPECT_TRUE(reported.empty());
  const QANT_TextWizardSrc* source = Active();
  ASSERT_TRUE(source);
  EXPECT_EQ(source->adapter(), adapter_.get());
  EXPECT_EQ(source->workerCount(), 3);
  EXPECT_EQ(source->hostParameter(), 7);
  EXPECT_EQ(adapter_->calls, "AB");
  ASSERT_EQ(source->GetNVariables(), 2u);
  EXPECT_EQ(source->GetVariable(0)->GetName(), "a");
  EXPECT_EQ(source->GetVariable(0)->GetType(), 0);
  EXPECT_EQ(source->GetVariable(1)->GetType(), 5);
  EXPECT_EQ(source->variables().size(), 2u);
  EXPECT_EQ(source->settings().delimiters, ",");
}

TEST_F(ProcessDACSyntaxTest, ASecondCommandReplacesTheActiveSource) {
  Write("1,x\n");
  EXPECT_TRUE(Run(Command()));
  const auto keep = std::move(adapter_);
  EXPECT_TRUE(Run(Command({}, {{"only"}, {"F8"}})));
  ASSERT_TRUE(Active());
  EXPECT_EQ(Active()->GetNVariables(), 1u);
}

TEST_F(ProcessDACSyntaxTest, ASyntaxErrorIsReportedOnce) {
  Write("1,x\n");
  ExpectFailure(Run(Command({{"FIRSTCASE"}, {"="}, {"0"}, {"/"}})), 2259, "0");
  EXPECT_EQ(adapter_->calls, "") << "no source was begun";
}

TEST_F(ProcessDACSyntaxTest, WarningsAreReportedInOrderWhenTheSourceIsThere) {
  Write("1,x\n");
  const std::string name(70, 'n');
  bool registered = true;
  onMessage = [&] { registered = registered && Active() != nullptr; };
  EXPECT_TRUE(Run(Command({{"QUALIFIER"}, {"="}, Literal("||"), {"/"}}, {{name}, {"F8"}})));
  ASSERT_EQ(reported.size(), 2u);
  EXPECT_EQ(reported[0].text, MessageText(2276, ""));
  EXPECT_EQ(reported[0].kind, kMessageWarning);
  EXPECT_EQ(reported[1].text, MessageText(2273, name.c_str()));
  EXPECT_EQ(reported[1].kind, kMessageWarning);
  EXPECT_TRUE(registered);
}

TEST_F(ProcessDACSyntaxTest, AWarningBeforeAnErrorIsDropped) {
  Write("1,x\n");
  ExpectFailure(Run(Command({{"QUALIFIER"}, {"="}, Literal("||"), {"/"}}, {{"v"}, {"Q8"}})), 2265,
                nullptr);
}

TEST_F(ProcessDACSyntaxTest, AWarningBeforeAFileThatCannotBeReadIsDropped) {
  ExpectFailure(Run(Command({{"QUALIFIER"}, {"="}, Literal("||"), {"/"}})), 2269, path_.c_str());
}

TEST_F(ProcessDACSyntaxTest, AFileThatIsNotThere) {
  ExpectFailure(Run(Command()), 2269, path_.c_str());
}

TEST_F(ProcessDACSyntaxTest, AFolderIsNoFile) {
  std::filesystem::create_directory(path_);
  ExpectFailure(Run(Command()), 2269, path_.c_str());
}

TEST_F(ProcessDACSyntaxTest, ByteOrderMarksContradictLocaleOnly) {
  const std::string utf8 =
      "\xEF\xBB\xBF"
      "1,x\n";
  const std::string little(
      "\xFF\xFE"
      "1\0,\0x\0\n\0",
      10);
  const std::string big(
      "\xFE\xFF"
      "\0001\0,\0x\0\n",
      10);
  const struct {
    std::string content;
    const char* encoding;
    std::uint32_t warning;
  } cases[] = {{utf8, "LOCALE", 2281},       {utf8, "UTF8", 0},
               {utf8, nullptr, 0},           {little, "LOCALE", 2283},
               {little, "UTF16", 0},         {little, nullptr, 0},
               {big, "LOCALE", 2283},        {big, "UTF16BE", 0},
               {"1,x\n", "LOCALE", 0},       {"\xEF\xBB", "LOCALE", 0},
               {"\xFF\xFE", "LOCALE", 2283}, {"", "LOCALE", 0}};
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.encoding ? entry.encoding : "no encoding");
    Write(entry.content);
    reported.clear();
    const auto keep = std::move(adapter_);
    std::vector<Token> more;
    if (entry.encoding) more = {{"ENCODING"}, {"="}, Literal(entry.encoding), {"/"}};
    EXPECT_TRUE(Run(Command(more)));
    EXPECT_TRUE(Active());
    ASSERT_EQ(reported.size(), entry.warning ? 1u : 0u);
    if (entry.warning) {
      EXPECT_EQ(reported[0].text, MessageText(entry.warning, nullptr));
      EXPECT_EQ(reported[0].kind, kMessageWarning);
    }
    ServerDataManager::GetInstance()->Remove("");
  }
}

TEST_F(ProcessDACSyntaxTest, WhateverTheBuildingThrowsIsMessage2269) {
  Write("1,x\n");
  const std::function<void()> throwers[] = {[] { throw 2269; }, [] { throw 5; },
                                            [] { throw std::runtime_error("host"); },
                                            [] { throw "text"; }};
  for (const auto& thrower : throwers) {
    reported.clear();
    TokenAdapter adapter(Command());
    adapter.onParameter = thrower;
    ExpectFailure(ProcessDACSyntax(&adapter), 2269, path_.c_str());
  }
}

TEST_F(ProcessDACSyntaxTest, WhatTheHostThrowsElsewhereDoesNotEscape) {
  TokenAdapter adapter(Command());
  adapter.onPath = [] { throw std::bad_alloc(); };
  ExpectFailure(ProcessDACSyntax(&adapter), 2269, nullptr);
}

TEST_F(ProcessDACSyntaxTest, AWarningThatTheHostCannotTakeDoesNotUndoTheImport) {
  Write("1,x\n");
  onMessage = [] { throw std::bad_alloc(); };
  EXPECT_TRUE(Run(Command({{"QUALIFIER"}, {"="}, Literal("||"), {"/"}})));
  EXPECT_TRUE(Active());
  ASSERT_EQ(reported.size(), 1u);
  EXPECT_EQ(reported[0].kind, kMessageWarning) << "no error is told of an import that is there";
}

TEST_F(ProcessDACSyntaxTest, AVariableNamedFileIsImported) {
  Write("1,x\n");
  EXPECT_TRUE(Run(Command({}, {{"FILE"}, {"F8"}, {"b"}, {"A5"}})));
  ASSERT_TRUE(Active());
  EXPECT_EQ(Active()->GetVariable(0)->GetName(), "FILE");
}

TEST_F(ProcessDACSyntaxTest, FixedColumnsWithRecordMarks) {
  Write("ab\ncd\n");
  const std::vector<Token> tokens = {
      {"FILE"},    {"="},  Literal(path_), {"/"}, {"ARRANGEMENT"}, {"="},   {"FIXED"}, {"/"},
      {"FIXCASE"}, {"="},  {"2"},          {"/"}, {"VARIABLES"},   {"="},   {"/"},     {"a"},
      {"0-0"},     {"A1"}, {"/"},          {"2"}, {"b"},           {"1-1"}, {"A1"}};
  EXPECT_TRUE(Run(tokens));
  ASSERT_TRUE(Active());
  ASSERT_EQ(Active()->variables().size(), 2u);
  EXPECT_EQ(Active()->variables()[0]->recordNumber, 1u);
  EXPECT_EQ(Active()->variables()[1]->recordNumber, 2u);
}

TEST_F(ProcessDACSyntaxTest, ACommandOfTenMegabytesEndsInOneMessage) {
  std::vector<Token> variables;
  for (int i = 0; i < 1'000'000; ++i) {
    variables.push_back({"abcde"});
    variables.push_back({"F8"});
  }
  ExpectFailure(Run(Command({}, variables)), 2272, "abcde");
}

}  // namespace
}  // namespace textwizard
