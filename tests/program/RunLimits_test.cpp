// `textwizard run` at the limits: very many variables, very long lines, nothing but line ends, and
// less memory than it asks for.

#include <sstream>

#include <gmock/gmock.h>

#include "tests/program/Program.h"
#include "tests/support/Effort.h"

namespace program {
namespace {

using testing::StartsWith;

class RunLimits : public ProgramTest {
 protected:
  static std::string Command(const std::string& variables, const std::string& more = "") {
    return "GET DATA /TYPE=TXT /FILE='data.txt' /DELIMITERS=',' /QUALIFIER='\"' " + more +
           " /VARIABLES=" + variables + ".\n";
  }
  // The figures of a quiet run, which must succeed.
  nlohmann::json Stats(const std::string& command, std::vector<std::string> arguments = {}) const {
    arguments.push_back("--stats");
    const Ended ended = Quiet(command, std::move(arguments));
    EXPECT_EQ(ended.status, 0) << ended.err;
    return nlohmann::json::parse(ended.out, nullptr, false);
  }
};

// Nothing limits the number of variables; a name may have 64 bytes.
TEST_F(RunLimits, AHundredThousandVariables) {
  const std::size_t count = 100000 / whole::kEffortDivisor;
  const auto name = [](std::size_t i) {
    std::string digits = std::to_string(i);
    return std::string(64 - digits.size(), i % 2 == 0 ? 'v' : 'W') + digits;
  };
  std::string declared;
  std::string found;
  std::string line;
  for (std::size_t i = 0; i < count; ++i) {
    declared += " " + name(i) + (i % 3 == 2 ? " A4" : " F6.0");
    found += " " + name(i) + " AUTO";
    line += std::to_string(i) + (i % 3 == 2 ? "x," : ",");
  }
  folder_.Write("data.txt", line + "\n" + line + "\n7,8\n");
  for (const std::string* variables : {&declared, &found}) {
    const nlohmann::json stats =
        Stats(Command(*variables), {"--dictionary", "dictionary.json", "--cases", "cases.csv"});
    EXPECT_EQ(stats["variables"], count);
    EXPECT_EQ(stats["cases"], 3);
    const nlohmann::json dictionary = Json("dictionary.json");
    ASSERT_EQ(dictionary["variables"].size(), count);
    std::istringstream cases(folder_.Text("cases.csv"));
    std::string header;
    std::string row;
    std::string second;
    std::string third;
    std::getline(cases, header);
    std::getline(cases, row);
    std::getline(cases, second);
    std::getline(cases, third);
    std::string names;
    std::string values;
    for (std::size_t i = 0; i < count; ++i) {
      const auto& variable = dictionary["variables"][i];
      ASSERT_EQ(variable["name"], name(i));
      ASSERT_EQ(variable["type"], i % 3 == 2 ? "string" : "numeric") << i;
      names += "," + name(i);
      std::string value = std::to_string(i);
      if (i % 3 == 2) value = variables == &declared ? (value + "x").substr(0, 4) : value + "x";
      values += "," + value;
    }
    EXPECT_EQ(header, names.substr(1));
    EXPECT_EQ(row, values.substr(1));
    EXPECT_EQ(second, row);
    EXPECT_EQ(third, "7,8" + std::string(count - 2, ','));
  }
  // The first name once more, in the other letter case, behind all of them.
  const Ended twice = Quiet(Command(declared + " " + std::string(63, 'V') + "0 F4.0"));
  EXPECT_EQ(twice.status, 1);
  EXPECT_THAT(twice.err, StartsWith("error: [2272]"));
}

// The whole file is one record, and no line end ever comes.
class OneLine : public RunLimits {
 protected:
  static constexpr std::size_t kLength = std::size_t{200'000'000} / whole::kEffortDivisor;

  // `start`, then x up to the length, then `end`.
  void WriteLine(const std::string& start, const std::string& end) const {
    std::string text = start;
    text.resize(kLength - end.size(), 'x');
    folder_.Write("data.txt", text + end);
  }
  static std::size_t Peak(const nlohmann::json& stats) { return stats["peak_rss_bytes"]; }
  // For the record, and for everything else.
  static constexpr std::size_t kMost = 4 * kLength + (std::size_t{100} << 20);
};

TEST_F(OneLine, IsOneCaseWhateverReadsIt) {
  WriteLine("17,", ",23");
  for (const char* const variables : {"n F4.0 s A6 m F4.0", "n AUTO s A6 m AUTO"}) {
    for (const char* const more : {"/ENCODING=LOCALE", "/DELCASE=VARIABLES 3"}) {
      SCOPED_TRACE(std::string(variables) + more);
      const nlohmann::json stats = Stats(Command(variables, more), {"--cases", "cases.csv"});
      EXPECT_EQ(stats["cases"], 1);
      EXPECT_EQ(folder_.Text("cases.csv"), "n,s,m\n17,xxxxxx,23\n");
      if (whole::kEffortDivisor == 1) {
        EXPECT_LE(Peak(stats), kMost);
      }
    }
  }
}

// The width of a string has a limit that its value does not know.
TEST_F(OneLine, IsAStringOfTheGreatestWidth) {
  WriteLine("", "");
  const nlohmann::json stats =
      Stats(Command("s AUTO"), {"--dictionary", "dictionary.json", "--cases", "cases.csv"});
  EXPECT_EQ(stats["cases"], 1);
  EXPECT_EQ(Json("dictionary.json")["variables"][0]["format"], "A32767");
  EXPECT_EQ(folder_.Text("cases.csv"), "s\n" + std::string(32767, 'x') + "\n");
}

// A qualifier that is never closed takes the rest of its record, and no more than that.
TEST_F(OneLine, WithAQualifierThatIsNeverClosed) {
  WriteLine("17,\"", ",23");
  for (const char* const more : {"", "/DELCASE=VARIABLES 3"}) {
    const nlohmann::json stats =
        Stats(Command("n F4.0 s A6 m F4.0", more), {"--cases", "cases.csv"});
    EXPECT_EQ(stats["cases"], 1);
    EXPECT_EQ(folder_.Text("cases.csv"), "n,s,m\n17,xxxxxx,\n");
    if (whole::kEffortDivisor == 1) {
      EXPECT_LE(Peak(stats), kMost);
    }
  }
}

TEST_F(RunLimits, AQualifierNeverClosedInManyLines) {
  constexpr std::size_t kLines = 500000;
  std::string text;
  for (std::size_t i = 0; i < kLines; ++i) text += std::to_string(i) + ",\"never,closed\n";
  folder_.Write("data.txt", text);
  const nlohmann::json lines = Stats(Command("n F8.0 s A14 m F4.0"), {"--cases", "cases.csv"});
  EXPECT_EQ(lines["cases"], kLines);
  std::istringstream cases(folder_.Text("cases.csv"));
  std::string line;
  std::getline(cases, line);
  for (std::size_t i = 0; i < kLines; ++i) {
    std::getline(cases, line);
    ASSERT_EQ(line, std::to_string(i) + ",\"never,closed\",");
  }
  // Two values a line, so that three values take one line and a half.
  const nlohmann::json counted = Stats(Command("n F8.0 s A14 m F8.0", "/DELCASE=VARIABLES 3"));
  EXPECT_EQ(counted["cases"], (kLines * 2 + 2) / 3);
}

// Empty lines are no cases where delimiters cut the fields; in fixed columns every line counts.
TEST_F(RunLimits, NothingButLineEnds) {
  constexpr std::size_t kLines = 1'000'000 / whole::kEffortDivisor;
  for (const std::string end : {"\n", "\r", "\r\n"}) {
    std::string text;
    for (std::size_t i = 0; i < kLines; ++i) text += end;
    folder_.Write("data.txt", text);
    for (const char* const variables : {"n F8.0 s A4", "n AUTO s AUTO"}) {
      for (const char* const more : {"", "/DELCASE=VARIABLES 2"}) {
        EXPECT_EQ(Stats(Command(variables, more))["cases"], 0);
      }
    }
    const std::string fixed = "GET DATA /TYPE=TXT /FILE='data.txt' /ARRANGEMENT=FIXED ";
    EXPECT_EQ(Stats(fixed + "/VARIABLES=n 0-3 F4.0 s 4-7 A4.\n")["cases"], kLines);
    EXPECT_EQ(Stats(fixed + "/FIXCASE=2 /VARIABLES=/1 n 0-3 AUTO /2 s 0-3 AUTO.\n")["cases"],
              (kLines + 1) / 2);
  }
}

// Whatever memory there is: the import is right, or it fails with one error.
TEST_F(RunLimits, LittleMemory) {
  if (whole::kEffortDivisor > 1) GTEST_SKIP() << "a sanitizer reserves more than any limit";
  std::string text;
  for (int i = 0; i < 100000; ++i) text += std::to_string(i) + ",a text,03/24/2021\n";
  folder_.Write("data.txt", text + std::string(20'000'000, 'x') + "\n");
  int succeeded = 0;
  int failed = 0;
  for (const char* const variables : {"n F8.0 s A8 d ADATE10", "n AUTO s AUTO d AUTO"}) {
    const std::string command = Command(variables);
    addressSpace_ = 0;
    ASSERT_EQ(Quiet(command, {"--cases", "expected.csv", "--workers", "2"}).status, 0);
    const std::string expected = folder_.Text("expected.csv");
    for (rlim_t megabytes = 50; megabytes <= 500; megabytes += 50) {
      SCOPED_TRACE(std::to_string(megabytes) + " MB, " + variables);
      addressSpace_ = megabytes << 20;
      const Ended ended = Quiet(command, {"--cases", "cases.csv", "--workers", "2"});
      if (ended.status == 0) {
        ++succeeded;
        EXPECT_EQ(folder_.Text("cases.csv"), expected);
        std::filesystem::remove(folder_ / "cases.csv");
      } else {
        ++failed;
        // Nothing runs yet where there is no memory for the libraries.
        EXPECT_TRUE(ended.status == 1 || ended.status == 2 || ended.status == 127)
            << ended.status << ended.err;
        if (ended.status == 1) {
          EXPECT_THAT(ended.err, StartsWith("error: "));
        }
        EXPECT_FALSE(folder_.Holds("cases.csv"));
      }
    }
  }
  EXPECT_GT(succeeded, 0);
  EXPECT_GT(failed, 0);
}

TEST_F(RunLimits, ACaseThatMemoryCannotHold) {
  if (whole::kEffortDivisor > 1) GTEST_SKIP() << "a sanitizer reserves more than any limit";
  std::string variables;
  for (int i = 0; i < 30000; ++i) variables += " s" + std::to_string(i) + " A32767";
  folder_.Write("data.txt", "a,b\n");
  addressSpace_ = rlim_t{700} << 20;
  const Ended ended = Quiet(Command(variables), {"--cases", "cases.csv"});
  EXPECT_EQ(ended.status, 1);
  // 4,096 cells of 8 bytes each.
  EXPECT_EQ(ended.err, "error: no memory for a case of 983040000 bytes\n");
  EXPECT_FALSE(folder_.Holds("cases.csv"));
}

}  // namespace
}  // namespace program
