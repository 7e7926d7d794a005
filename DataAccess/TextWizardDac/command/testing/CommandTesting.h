// What the tests of the command parser share: a command in, what came of it out.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "HostFramework/Messages.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "command/TxtWzParser.h"
#include "model/MessageText.h"
#include "model/testing/TestAdapter.h"

namespace textwizard {

// The tests' host text is UTF-8 whatever the locale, unless a test says otherwise.
class Utf8Host : public testing::Environment {
 public:
  void SetUp() override { ASSERT_TRUE(embedded::SetCodePage(nullptr)); }
};
inline testing::Environment* const kUtf8Host = testing::AddGlobalTestEnvironment(new Utf8Host);

using embedded::InCodePage;

// An adapter that notes how the path was converted and hands out a recognisable handle.
class PathAdapter : public TestAdapter {
 public:
  void* GetAdapterContext() override { return this; }
  const std::string& ConvertFilePath(std::string& result, const std::string& input,
                                     bool unquoted) override {
    result = (unquoted ? "plain:" : "quoted:") + input;
    return result;
  }
};

struct Outcome {
  std::unique_ptr<TxtWzExecFile> plan;
  std::string file;
  // 0 when there is no error.
  std::uint32_t errorId = 0;
  std::string error;
  ErrorTextList warnings;

  const TxtWzVar& Variable(std::size_t index) const { return *plan->slots().at(index); }
  const ImportSettings& Settings() const { return plan->settings; }
};

// Parses a whole command text.
inline Outcome ParseText(const std::string& text, DACAdapterBase* adapter = nullptr) {
  TxtWzParser parser(text.c_str(), adapter);
  Outcome outcome;
  outcome.plan = parser.ParseToExecutor();
  if (parser.GetFile()) outcome.file = parser.GetFile();
  if (parser.GetErrorMesToken()) {
    outcome.errorId = parser.GetErrorMesID();
    outcome.error = parser.GetErrorMesToken();
  }
  outcome.warnings = parser.warnings();
  EXPECT_EQ(outcome.plan == nullptr, outcome.errorId != 0) << "either a plan or an error: " << text;
  return outcome;
}

// Parses a command whose subcommands, from behind the slash that follows TYPE, are these.
inline Outcome Parse(const std::string& subcommands, DACAdapterBase* adapter = nullptr) {
  return ParseText("GET DATA /TYPE = TXT  /" + subcommands + "\n.", adapter);
}

inline constexpr const char* kTwoVariables = "/VARIABLES= a F8.2 b A5";

// Parses a delimited command with these subcommands more, before its variables.
inline Outcome ParseWith(const std::string& subcommands) {
  return Parse("FILE=\"data.txt\" /DELIMITERS=\",\" " + subcommands + " " + kTwoVariables);
}
// Parses a delimited command with these variables.
inline Outcome ParseDelimited(const std::string& variables) {
  return Parse("FILE=\"data.txt\" /DELIMITERS=\",\" /VARIABLES=" + variables);
}
// Parses a command of fixed columns with these variables.
inline Outcome ParseFixed(const std::string& variables) {
  return Parse("FILE=\"data.txt\" /ARRANGEMENT=FIXED /VARIABLES=" + variables);
}

inline std::string CatalogueText(std::uint32_t id) {
  return QantServerErrorText(kMessageCatalogue, id).GetText();
}

// The catalogue's text of `id` with `value` where its placeholder is.
inline std::string FilledText(std::uint32_t id, const std::string& placeholder,
                              const std::string& value) {
  std::string text = CatalogueText(id);
  const std::size_t place = text.find(placeholder);
  EXPECT_NE(place, std::string::npos) << id << " has no " << placeholder;
  if (place != std::string::npos) text.replace(place, placeholder.size(), value);
  return text;
}

// The command ended with error `id`; the text of the message is followed by `token` (null: none).
inline void ExpectError(const Outcome& outcome, std::uint32_t id, const char* token) {
  EXPECT_EQ(outcome.errorId, id);
  std::string text = CatalogueText(id);
  if (token) text.append(" ").append(token);
  EXPECT_EQ(outcome.error, text);
}

// The same for a message whose text has the token inside.
inline void ExpectFilledError(const Outcome& outcome, std::uint32_t id, const std::string& token) {
  EXPECT_EQ(outcome.errorId, id);
  EXPECT_EQ(outcome.error, FilledText(id, "%s", token));
}

inline void ExpectVariable(const Outcome& outcome, std::size_t index, const std::string& name,
                           std::uint32_t code, std::uint32_t width, std::int32_t decimals) {
  ASSERT_TRUE(outcome.plan) << outcome.error;
  ASSERT_LT(index, outcome.plan->slots().size());
  const TxtWzVar& variable = outcome.Variable(index);
  EXPECT_EQ(variable.name, name);
  EXPECT_EQ(variable.formatType, code) << name;
  EXPECT_EQ(variable.width, width) << name;
  EXPECT_EQ(variable.maxStringLength, width) << name;
  EXPECT_EQ(variable.decimals, decimals) << name;
}

}  // namespace textwizard
