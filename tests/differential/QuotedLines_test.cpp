// Line breaks and escapes inside qualified fields, from the bytes of a file to the cells of a case:
// what is rewritten in front of the component and put back behind it, compared with the naive
// reader. That reader knows nothing of either, so it gets a text in which every character that
// belongs into a value is one that cuts nothing; whether a place is inside a qualified field, it is
// asked itself.
//
// TEXTWIZARD_DIFFERENTIAL_CASES and TEXTWIZARD_DIFFERENTIAL_SEED as in DifferentialImport_test.

#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/CaseBuffer.h"
#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "library/rewriting/RewritingDevice.h"
#include "model/FormatCode.h"
#include "reading/QANT_TextWizardIterator.h"
#include "source/QANT_TextWizardSrc.h"
#include "tests/differential/NaiveImport.h"

namespace {

using library::RewritingOptions;

constexpr const char* kPath = "quoted.txt";
constexpr std::size_t kVariables = 12;
constexpr std::size_t kWidth = 120;
// Stand for "the byte with the number that is added, as data" in the naive reader's text. Their
// UTF-8 form has three bytes, of which none cuts.
constexpr char32_t kData = 0xE000;

std::uint64_t Setting(const char* name, std::uint64_t otherwise) {
  const char* value = std::getenv(name);
  return value ? std::strtoull(value, nullptr, 10) : otherwise;
}

struct QuotedFile {
  std::string bytes;
  naive::Settings settings;
  textwizard::ImportSettings plan;
  RewritingOptions options;
};

QuotedFile MakeFile(std::uint64_t seed) {
  std::mt19937_64 random(seed);
  const auto draw = [&](std::size_t below) { return static_cast<std::size_t>(random() % below); };
  QuotedFile file;
  const char qualifier = draw(4) == 0 ? '\'' : '"';
  static const std::string kDelimiters[] = {",", ";", "\t", " ", ", ", "|", ",;"};
  const std::string delimiters = kDelimiters[draw(std::size(kDelimiters))];
  file.settings.qualifier = static_cast<unsigned char>(qualifier);
  file.settings.delimiters.assign(delimiters.begin(), delimiters.end());
  file.settings.leadingSpaces = draw(3) == 0;
  file.settings.multipleSpaces = draw(3) == 0;
  file.settings.firstCase = 1 + static_cast<std::int64_t>(draw(3));
  file.options.joinQuotedLines = draw(4) != 0;
  // Where runs of blanks become one, an escaped blank is one of the run.
  const bool squeezes = file.settings.multipleSpaces && delimiters.find(' ') != std::string::npos;
  file.options.backslashEscapes = draw(3) == 0 && !squeezes;
  file.plan.delimiters = delimiters;
  file.plan.qualifierSet = true;
  file.plan.qualifier = qualifier;
  file.plan.leadingSpaces = file.settings.leadingSpaces;
  file.plan.multipleSpaces = file.settings.multipleSpaces;
  file.plan.firstCase = file.settings.firstCase;
  // An escaped NUL is dropped, but the escape has parted what stood around it.
  const std::string nul = file.options.backslashEscapes ? "" : std::string(1, '\0');
  const std::string pieces[] = {delimiters.substr(0, 1),
                                delimiters.substr(delimiters.size() - 1),
                                std::string(1, qualifier),
                                std::string(2, qualifier),
                                "\n",
                                "\r\n",
                                "\r",
                                "\\",
                                " ",
                                nul,
                                "a",
                                "bc",
                                "\xC3\xA9"};
  for (std::size_t count = draw(50); count > 0; --count)
    file.bytes += pieces[draw(std::size(pieces))];
  return file;
}

std::string Utf8(char32_t code) {
  std::string text;
  naive::HostText().Append(text, code);
  return text;
}

std::string AsData(char byte) { return Utf8(kData + static_cast<unsigned char>(byte)); }

std::vector<naive::Variable> Variables() {
  return std::vector<naive::Variable>(kVariables, naive::Variable{.format = 1, .width = kWidth});
}

// The last field of the one record `record` that has text.
std::size_t LastField(const std::string& record, const naive::Settings& settings) {
  const naive::Import import = naive::Read(
      record, settings, std::vector<naive::Variable>(80, {.format = 1, .width = kWidth}));
  std::size_t last = 0;
  if (import.cases.empty()) return last;
  for (std::size_t field = 0; field < import.cases[0].size(); ++field) {
    if (!import.cases[0][field].text.empty()) last = field + 1;
  }
  return last;
}

// Whether a character behind `record` would be inside a qualified field: a delimiter cuts nothing
// there.
bool IsInside(const std::string& record, naive::Settings settings) {
  settings.firstCase = 1;
  // They decide what becomes of blanks between fields, not where one is qualified.
  settings.leadingSpaces = settings.multipleSpaces = false;
  const std::string delimiter = Utf8(settings.delimiters[0]);
  // Of what follows a closing qualifier the first character is dropped.
  return LastField(record + "xx", settings) == LastField(record + delimiter + "xx", settings);
}

// The file as the naive reader is to see it: what belongs into values cuts nothing.
std::string Plain(const QuotedFile& file) {
  std::string plain, record;
  std::int64_t linesLeft = file.settings.firstCase - 1;
  const auto endRecord = [&](const std::string& lineEnd) {
    plain += record + lineEnd;
    record.clear();
    if (linesLeft > 0) --linesLeft;
  };
  const std::string& bytes = file.bytes;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    // A pair is one line end, unless the carriage return alone is escaped text.
    const auto lineEnd = [&](std::size_t place) -> std::string {
      if (place >= bytes.size() || (bytes[place] != '\n' && bytes[place] != '\r')) return {};
      return bytes.compare(place, 2, "\r\n") == 0 ? "\r\n" : bytes.substr(place, 1);
    };
    if (const std::string end = lineEnd(at); !end.empty()) {
      const bool joins =
          linesLeft == 0 && file.options.joinQuotedLines && IsInside(record, file.settings);
      if (joins) {
        for (const char byte : end) record += AsData(byte);
      } else {
        endRecord(end);
      }
      at += end.size() - 1;
    } else if (bytes[at] == '\\' && linesLeft == 0 && file.options.backslashEscapes &&
               at + 1 < bytes.size() && IsInside(record, file.settings)) {
      ++at;
      const std::string escaped = lineEnd(at).empty() ? bytes.substr(at, 1) : lineEnd(at);
      for (const char byte : escaped) {
        // The first byte of a longer character escapes nothing that could cut.
        if (static_cast<unsigned char>(byte) >= 0x80) {
          record += byte;
        } else if (byte != '\0') {
          record += AsData(byte);
        }
      }
      at += escaped.size() - 1;
    } else {
      record += bytes[at];
    }
  }
  return plain + record;
}

std::vector<std::vector<std::string>> Expected(const QuotedFile& file) {
  std::vector<std::vector<std::string>> cases;
  for (const naive::Case& read : naive::Read(Plain(file), file.settings, Variables()).cases) {
    std::vector<std::string> values;
    for (const naive::Cell& cell : read) {
      std::string value = cell.text;
      for (unsigned byte = 1; byte < 0x80; ++byte) {
        const std::string data = AsData(static_cast<char>(byte));
        for (std::size_t at; (at = value.find(data)) != std::string::npos;) {
          value.replace(at, data.size(), 1, static_cast<char>(byte));
        }
      }
      while (!value.empty() && value.back() == ' ') value.pop_back();
      values.push_back(value);
    }
    cases.push_back(values);
  }
  return cases;
}

// The cases of the file by the component, behind the rewriting, with what it replaced put back.
std::vector<std::vector<std::string>> Imported(const QuotedFile& file, std::size_t blockSize,
                                               bool oneThread) {
  const embedded::ScopedBlockSize blocks(blockSize);
  library::QuoteRules rules;
  std::string problem;
  EXPECT_TRUE(library::MakeQuoteRules(file.plan, textwizard::ByteOrderMark::kNone, file.options,
                                      &rules, &problem))
      << problem;
  const library::StandIns standIns;
  const auto index =
      std::make_shared<library::QuoteIndex>(library::QuoteRewriter(rules, standIns), 16);
  embedded::SetStreamDeviceOpener([&](const char*) {
    return std::make_unique<library::RewritingDevice>(
        std::make_unique<embedded::MemoryDevice>(file.bytes), index);
  });
  textwizard::QANT_TextWizardSrc source(kPath, 2, 0, nullptr);
  std::vector<std::unique_ptr<textwizard::TxtWzVar>> variables;
  for (std::size_t i = 0; i < kVariables; ++i) {
    auto variable = std::make_unique<textwizard::TxtWzVar>();
    variable->SetVarName(("v" + std::to_string(i)).c_str());
    variable->formatType = textwizard::kFormatA;
    variable->width = variable->maxStringLength = kWidth;
    variables.push_back(std::move(variable));
    QANT_DataSource::MakeVariable(&source, static_cast<int>(kWidth), nullptr);
  }
  source.SetSettings(file.plan);
  source.SetVariables(std::move(variables));
  const embedded::CaseBuffer buffer(source);
  const library::CaseRestorer restorer(standIns, source);
  std::vector<std::vector<std::string>> cases;
  {
    const std::unique_ptr<QANT_InputCaseIterator> iterator(
        oneThread ? new textwizard::QANT_TextWizardIterator(source, buffer.obs())
                  : source.MakeIterator(buffer.obs()));
    while (iterator->Next()) {
      restorer.Restore(buffer.obs(), 1);
      std::vector<std::string> values;
      for (std::size_t i = 0; i < kVariables; ++i) {
        std::string value(buffer.Text(i));
        while (!value.empty() && value.back() == ' ') value.pop_back();
        values.push_back(value);
      }
      cases.push_back(values);
    }
  }
  embedded::SetStreamDeviceOpener(nullptr);
  return cases;
}

TEST(QuotedLines, WhatIsQuotedIsTheSameToTheRewritingAndToTheSplitter) {
  ASSERT_TRUE(embedded::SetCodePage(nullptr));
  const std::uint64_t first = Setting("TEXTWIZARD_DIFFERENTIAL_SEED", 1);
  const std::uint64_t count = Setting("TEXTWIZARD_DIFFERENTIAL_CASES", 20000) / 4;
  constexpr std::size_t kBlocks[] = {1, 2, 3, 7, 64, 0};
  for (std::uint64_t seed = first; seed < first + count; ++seed) {
    const QuotedFile file = MakeFile(seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + " " + testing::PrintToString(file.bytes) +
                 (file.options.joinQuotedLines ? " joined" : "") +
                 (file.options.backslashEscapes ? " escapes" : "") + " delimiters " +
                 testing::PrintToString(file.plan.delimiters) + " first " +
                 std::to_string(file.plan.firstCase));
    ASSERT_EQ(Imported(file, kBlocks[seed % std::size(kBlocks)], seed % 8 != 0), Expected(file));
  }
}

}  // namespace
