// Clean files with one problem planted in each: it is told with its place, and no other is. The
// place is counted here, while the file is written.

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "tests/differential/NaiveText.h"
#include "tests/differential/NaiveWatch.h"
#include "tests/support/ImportRun.h"
#include "tests/support/PassRecorder.h"

namespace {

using Kind = ImportProblemKind;

constexpr const char* kPath = "planted.txt";
constexpr std::size_t kColumn = 20;

enum class Coding { kUtf8, kMarkedUtf8, kUtf16Little, kUtf16Big };

// Stands for a unit or byte that is no character, and for a NUL.
constexpr char32_t kBroken = 0x110000;
constexpr char32_t kNul = 0;

class Plant {
 public:
  explicit Plant(std::uint64_t seed) : random_(seed) {
    kind_ = static_cast<Kind>(Below(kImportProblemKinds));
    Choose();
    MakeCases();
    PlantProblem();
    WriteFile();
  }

  const std::string& command() const { return command_; }
  const std::string& bytes() const { return bytes_; }
  const naive::Problem& expected() const { return expected_; }

 private:
  using Fields = std::vector<std::u32string>;

  std::size_t Below(std::size_t bound) { return random_() % bound; }
  bool IsNumber(std::size_t variable) const { return variable % 2 == 0; }
  bool Wide() const { return coding_ == Coding::kUtf16Little || coding_ == Coding::kUtf16Big; }

  void Choose() {
    constexpr std::array kLineEnds = {U"\n", U"\r\n", U"\r"};
    lineEnd_ = kLineEnds[Below(kLineEnds.size())];
    coding_ = static_cast<Coding>(Below(4));
    // A zero unit ends the line: more than one problem.
    if (kind_ == Kind::kNul && Wide()) coding_ = Coding::kUtf8;
    variables_ = 2 + 2 * Below(3);
    arrangement_ = Below(3);
    switch (kind_) {
      case Kind::kFewFields:
      case Kind::kSurplus:
        arrangement_ = 0;
        break;
      case Kind::kOpenQuote:
      case Kind::kStrayQuote:
      case Kind::kCut:
        arrangement_ = Below(2);
        break;
      case Kind::kShortRecord:
        arrangement_ = 2;
        break;
      case Kind::kIncompleteCase:
        arrangement_ = 1 + Below(2);
        break;
      default:
        break;
    }
    records_ = arrangement_ == 2 ? 1 + Below(2) : 1;
    if (kind_ == Kind::kIncompleteCase && arrangement_ == 2) records_ = 2;
    // Before the short one is another column.
    if (kind_ == Kind::kShortRecord && variables_ < 4) records_ = 1;
    firstCase_ = 1 + Below(3);
    perLine_ = arrangement_ == 1 ? variables_ * (1 + Below(2)) : variables_ / records_;
  }

  std::u32string Value(std::size_t variable) {
    static const std::array<std::u32string, 4> kNumbers = {U"1", U"-2.5", U"1234567", U""};
    static const std::array<std::u32string, 5> kTexts = {U"abc", U"\u00e9\u4e2d", U"x y", U"z",
                                                         U"\U0001F600"};
    if (IsNumber(variable)) return kNumbers[Below(kNumbers.size() - (arrangement_ == 1))];
    std::u32string text = kTexts[Below(kTexts.size())];
    if (arrangement_ != 2 && Below(3) == 0) text = U"\"" + text + U"\"";
    return text;
  }

  void MakeCases() {
    cases_.resize(3 + Below(20));
    for (Fields& fields : cases_) {
      for (std::size_t i = 0; i < variables_; ++i) fields.push_back(Value(i));
    }
    case_ = kind_ == Kind::kIncompleteCase ? cases_.size() - 1 : Below(cases_.size());
    variable_ = Below(variables_);
  }

  // What the planted field says, and which kind of variable may have it.
  void SetField(bool number, const std::u32string& text) {
    if (IsNumber(variable_) != number) variable_ ^= 1U;
    cases_[case_][variable_] = text;
  }

  void PlantProblem() {
    switch (kind_) {
      case Kind::kUnreadable:
        SetField(true, U"12x");
        break;
      case Kind::kRounded:
        SetField(true, U"9007199254740993");
        break;
      case Kind::kCut:
        SetField(false, U"longer text");
        expected_.amount = 11;
        break;
      case Kind::kUndecodable:
        SetField(false, std::u32string{U'a', kBroken, U'b'});
        expected_.amount = 1;
        break;
      case Kind::kNul:
        SetField(false, std::u32string{U'a', kNul, U'b'});
        expected_.amount = 1;
        break;
      case Kind::kStrayQuote:
        SetField(false, U"a\"b\"c");
        break;
      case Kind::kOpenQuote:
        // Nothing may follow it in the record.
        variable_ = variables_ - 1;
        if (arrangement_ == 1) perLine_ = variables_;
        SetField(false, U"\"ab");
        break;
      case Kind::kFewFields:
        lost_ = 1 + Below(variables_ - 1);
        expected_.amount = static_cast<std::int64_t>(lost_);
        cases_[case_][0] = U"1";
        break;
      case Kind::kIncompleteCase:
        lost_ = arrangement_ == 2 ? variables_ / 2 : 1 + Below(variables_ - 1);
        expected_.amount = static_cast<std::int64_t>(lost_);
        break;
      case Kind::kShortRecord:
        // The last column of a record.
        variable_ = variables_ / records_ * (1 + Below(records_)) - 1;
        break;
      case Kind::kSurplus:
        break;
    }
  }

  void Append(char32_t c) {
    const auto unit = [this](char16_t u) {
      const char low = static_cast<char>(u & 0xFF);
      const char high = static_cast<char>(u >> 8);
      bytes_ += coding_ == Coding::kUtf16Little ? low : high;
      bytes_ += coding_ == Coding::kUtf16Little ? high : low;
    };
    if (!Wide()) {
      if (c == kBroken) {
        bytes_ += '\xFF';
      } else {
        text_.Append(bytes_, c);
      }
    } else if (c == kBroken) {
      unit(0xDC00);
    } else if (c >= 0x10000) {
      unit(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
      unit(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
    } else {
      unit(static_cast<char16_t>(c));
    }
  }
  void Append(const std::u32string& text) {
    for (const char32_t c : text) Append(c);
  }

  std::int64_t Offset() const { return static_cast<std::int64_t>(bytes_.size()); }

  // Host text as problems show it.
  std::string Shown(const std::u32string& text) const {
    std::string shown;
    for (const char32_t c : text) {
      if (c == kBroken) {
        shown += Wide() ? "\xEF\xBF\xBD" : "\xFF";
      } else if (c != kNul) {
        text_.Append(shown, c);
      }
    }
    return shown;
  }

  bool IsOfField() const {
    switch (kind_) {
      case Kind::kUnreadable:
      case Kind::kRounded:
      case Kind::kCut:
      case Kind::kUndecodable:
      case Kind::kStrayQuote:
      case Kind::kOpenQuote:
        return true;
      default:
        return false;
    }
  }

  void EndLine() {
    Append(lineEnd_);
    ++line_;
  }

  void WriteFile() {
    if (coding_ == Coding::kMarkedUtf8) bytes_ = "\xEF\xBB\xBF";
    if (Wide()) Append(U'\uFEFF');
    for (std::size_t i = 1; i < firstCase_; ++i) {
      Append(U"name,other\"");
      EndLine();
    }
    expected_.kind = kind_;
    expected_.caseNumber = static_cast<std::int64_t>(case_) + 1;
    arrangement_ == 2 ? WriteColumns() : WriteDelimited();
    MakeCommand();
  }

  void WriteDelimited() {
    std::size_t inLine = 0;
    std::u32string record;
    bool here = false;
    // The case that the record begins in, which has the record's own problems.
    std::int64_t recordCase = 0;
    const auto end = [&] {
      if (here && !IsOfField()) SetExpected(record);
      if (here && kind_ == Kind::kNul) expected_.caseNumber = recordCase;
      EndLine();
      record.clear();
      recordBegin_ = Offset();
      inLine = 0;
      here = false;
    };
    recordBegin_ = Offset();
    for (std::size_t c = 0; c < cases_.size(); ++c) {
      const std::size_t fields = variables_ - (c == case_ ? lost_ : 0);
      for (std::size_t v = 0; v < fields; ++v) {
        if (inLine == 0) {
          recordCase = static_cast<std::int64_t>(c) + 1;
        } else {
          Append(U',');
          record += U',';
        }
        if (c == case_ && (arrangement_ == 0 || kind_ != Kind::kNul || v == variable_)) here = true;
        if (c == case_ && v == variable_ && IsOfField()) SetExpected(cases_[c][v]);
        if (c == case_ && v == 0 && kind_ == Kind::kIncompleteCase) {
          expected_.line = line_;
          expected_.byte = recordBegin_;
        }
        Append(cases_[c][v]);
        record += cases_[c][v];
        ++inLine;
        const bool last = c + 1 == cases_.size() && v + 1 == fields;
        if (arrangement_ == 1 && inLine == perLine_ && !last) end();
      }
      if (c == case_ && kind_ == Kind::kSurplus) {
        Append(U",more");
        record += U",more";
      }
      if (arrangement_ == 0 || c + 1 == cases_.size()) end();
    }
  }

  // At the record in hand, or at the field that begins here.
  void SetExpected(const std::u32string& text) {
    if (kind_ == Kind::kIncompleteCase) {
      if (expected_.text.empty()) expected_.text = Shown(text);
      return;
    }
    expected_.line = line_;
    expected_.byte = IsOfField() ? Offset() : recordBegin_;
    expected_.text = kind_ == Kind::kSurplus ? "more" : Shown(text);
    if (IsOfField()) {
      expected_.variable = static_cast<std::int32_t>(variable_);
      if (kind_ == Kind::kOpenQuote) expected_.text = "ab";
      // The character behind a closing qualifier is dropped with it.
      if (kind_ == Kind::kStrayQuote) expected_.text = "ab";
    }
  }

  void WriteColumns() {
    const std::size_t columns = variables_ / records_;
    for (std::size_t c = 0; c < cases_.size(); ++c) {
      const std::size_t lines = c == case_ && lost_ > 0 ? 1 : records_;
      for (std::size_t line = 0; line < lines; ++line) {
        recordBegin_ = Offset();
        std::u32string record;
        std::size_t bytes = 0;
        bool here = c == case_ && line == variable_ / columns;
        if (kind_ == Kind::kIncompleteCase) here = c == case_;
        for (std::size_t i = 0; i < columns; ++i) {
          const std::size_t v = line * columns + i;
          const std::u32string& field = cases_[c][v];
          const bool planted = c == case_ && v == variable_;
          if (planted && kind_ == Kind::kShortRecord) {
            expected_.variable = static_cast<std::int32_t>(v);
            // One column of the record before is not whole either.
            record.pop_back();
            bytes_.resize(bytes_.size() - (Wide() ? 2 : 1));
            break;
          }
          if (planted && IsOfField()) SetExpected(field);
          Append(field);
          // Columns are bytes of host text.
          std::u32string padded = field;
          for (bytes = Shown(field).size(); bytes < kColumn; ++bytes) {
            Append(U' ');
            padded += U' ';
          }
          record += padded;
          if (planted && IsOfField()) expected_.text = Shown(padded);
        }
        if (here && !IsOfField()) {
          const std::int32_t variable = expected_.variable;
          if (kind_ == Kind::kIncompleteCase) {
            expected_.line = line_;
            expected_.byte = recordBegin_;
          }
          SetExpected(record);
          expected_.variable = variable;
        }
        EndLine();
      }
    }
  }

  void MakeCommand() {
    command_ = std::string("GET DATA /TYPE=TXT /FILE='") + kPath + "'";
    if (!Wide()) command_ += " /ENCODING='UTF8'";
    command_ += " /FIRSTCASE=" + std::to_string(firstCase_);
    if (arrangement_ == 2) {
      command_ += " /ARRANGEMENT=FIXED /FIXCASE=" + std::to_string(records_);
    } else {
      if (arrangement_ == 1) command_ += " /DELCASE=VARIABLES " + std::to_string(variables_);
      command_ += " /DELIMITERS=\",\" /QUALIFIER='\"' /ARRANGEMENT=DELIMITED";
    }
    command_ += " /VARIABLES=";
    const std::size_t columns = variables_ / records_;
    for (std::size_t v = 0; v < variables_; ++v) {
      if (arrangement_ == 2) {
        const std::size_t start = v % columns * kColumn;
        command_ += " /" + std::to_string(v / columns + 1) + " v" + std::to_string(v) + " " +
                    std::to_string(start) + "-" + std::to_string(start + kColumn - 1) +
                    (IsNumber(v) ? " F20" : " A20");
      } else {
        command_ += " v" + std::to_string(v) + (IsNumber(v) ? " F20" : " A10");
      }
    }
    command_ += ".";
  }

  std::mt19937_64 random_;
  Kind kind_;
  std::u32string lineEnd_;
  Coding coding_ = Coding::kUtf8;
  // 0: a line for each case, 1: values across lines, 2: fixed columns.
  std::size_t arrangement_ = 0;
  std::size_t variables_ = 0;
  // Lines of a case, in fixed columns.
  std::size_t records_ = 1;
  // Values of a line.
  std::size_t perLine_ = 0;
  std::size_t firstCase_ = 1;
  std::vector<Fields> cases_;
  std::size_t case_ = 0;
  std::size_t variable_ = 0;
  // Fields that the case lacks at its end.
  std::size_t lost_ = 0;

  naive::HostText text_;
  std::string command_;
  std::string bytes_;
  std::int64_t line_ = 1;
  std::int64_t recordBegin_ = 0;
  naive::Problem expected_;
};

TEST(PlantedProblems, EachIsToldWithItsPlaceAndNoOther) {
  ASSERT_TRUE(embedded::SetCodePage(nullptr));
  std::array<int, kImportProblemKinds> planted{};
  for (std::uint64_t seed = 1; seed <= 1000; ++seed) {
    const Plant plant(seed);
    ++planted[static_cast<std::size_t>(plant.expected().kind)];
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + plant.command() + "\n" +
                 testing::PrintToString(plant.bytes()));
    const embedded::ScopedMemoryFiles files(kPath, plant.bytes());
    const embedded::ScopedBlockSize blocks(seed % 3 == 0 ? 5 : 0);
    whole::PassRecorder observer;
    const whole::Import command(plant.command(), 2, &observer);
    ASSERT_TRUE(command.made()) << testing::PrintToString(command.messages());
    for (const whole::Reading reading : {whole::Reading::kOneThread, whole::Reading::kChosen}) {
      const whole::Pass pass = command.Read(reading);
      ASSERT_EQ(observer.Contradiction(static_cast<std::int64_t>(pass.cases),
                                       static_cast<std::int64_t>(command.source().GetNVariables()),
                                       static_cast<std::int64_t>(plant.bytes().size())),
                "");
      ASSERT_EQ(observer.told.problems, std::vector<naive::Problem>{plant.expected()});
      ASSERT_EQ(observer.counts.size(), 1U);
      EXPECT_EQ(observer.told.cases.size(), 1U);
    }
  }
  for (const int count : planted) EXPECT_GT(count, 50);
}

}  // namespace
