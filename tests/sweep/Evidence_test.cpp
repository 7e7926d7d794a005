// What detection tells of the values it saw: counted beside the writing of the file, and the same
// in blocks of every size, with every number of workers, in batches that end anywhere.

#include <array>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "detection/testing/EvidenceText.h"
#include "tests/support/Effort.h"
#include "tests/support/ImportRun.h"
#include "tests/sweep/CorpusTest.h"

namespace whole {
namespace {

using Class = ImportValueClass;
// By variable.
using Evidence = std::map<std::size_t, std::string>;

class EvidenceKeeper : public ImportObserver {
 public:
  bool WantsEvidence() const override { return true; }
  void OnEvidence(std::size_t variable, const ImportEvidence& told) override {
    EXPECT_TRUE(evidence.emplace(variable, textwizard::Shown(told)).second) << variable;
  }
  Evidence evidence;
};

struct Told {
  Evidence evidence;
  Dictionary dictionary;
};

Told ToldOf(const std::string& command, int workers, std::size_t block, bool oneThread = false) {
  const embedded::ScopedBlockSize blocks(block);
  const ScopedOneThreadDetection detection(oneThread);
  EvidenceKeeper keeper;
  const Import import(command, workers, &keeper);
  EXPECT_TRUE(import.made()) << testing::PrintToString(import.messages());
  if (!import.made()) return {};
  return {keeper.evidence, import.dictionary()};
}

// What a value is, by the rules of detection.
struct Sample {
  const char* text;
  std::optional<Class> valueClass;
  // Its place among the layouts of the file; -1: no date.
  int layout = -1;
  ImportWitness ImportEvidence::*also = nullptr;
};

constexpr int kAmerican = 0;
constexpr int kEuropean = 1;
constexpr int kTime = 2;
constexpr std::array<std::array<const char*, 2>, 3> kLayouts = {
    {{"MM/dd/yyyy", "ADATE10"}, {"dd.MM.yyyy", "EDATE10"}, {"hh:mm", "TIME5"}}};

const std::array<Sample, 19> kSamples = {{
    {"", std::nullopt},
    {" ", Class::kNumber},
    {"7", Class::kNumber},
    {"-12.5", Class::kNumber},
    {"1e5", Class::kNumber},
    {"007", Class::kNumber, -1, &ImportEvidence::leadingZeros},
    {"1,5", Class::kNumber, -1, &ImportEvidence::decimalComma},
    {"1,234", Class::kNumber, -1, &ImportEvidence::eitherComma},
    {"1,234,567", Class::kNumber, -1, &ImportEvidence::groupingComma},
    {"1,234.5", Class::kComma, -1, &ImportEvidence::groupingComma},
    {"1.234,5", Class::kDot, -1, &ImportEvidence::decimalComma},
    {"$1,234.50", Class::kDollar, -1, &ImportEvidence::groupingComma},
    {"5%", Class::kPercent},
    {"12/31/1999", Class::kDate, kAmerican, &ImportEvidence::monthFirst},
    {"1/2/2000", Class::kDate, kAmerican, &ImportEvidence::eitherOrder},
    {"31.12.1999", Class::kDate, kEuropean, &ImportEvidence::dayFirst},
    {"12:30", Class::kDate, kTime},
    {"text", Class::kString},
    {"some longer text", Class::kString},
}};

void Count(ImportWitness& witness, const std::string& text, std::int64_t line) {
  if (++witness.count > 1) return;
  witness.line = line;
  witness.text = text;
}

// A file of values drawn from the samples, and what is to be told of it.
class DrawnFile {
 public:
  DrawnFile(std::uint64_t seed, std::size_t records) : random_(seed) {
    variables_ = 1 + random_() % 4;
    returns_ = random_() % 4 == 0;
    evidence_.resize(variables_);
    layouts_.resize(variables_);
    // Some columns have few kinds of value, as columns do.
    for (std::size_t v = 0; v < variables_; ++v) kinds_.push_back(1 + random_() % kSamples.size());
    for (; records > 0; --records) AddRecord();
  }

  std::string command() const {
    std::string names;
    for (std::size_t v = 0; v < variables_; ++v) names += "v" + std::to_string(v) + " AUTO ";
    return DelimitedCommand("/DELIMITERS=';'", names);
  }
  const std::string& bytes() const { return bytes_; }
  std::string Utf16() const {
    std::string wide = "\xFF\xFE";
    for (const char byte : bytes_) (wide += byte) += '\0';
    return wide;
  }
  Evidence expected() const {
    Evidence all;
    for (std::size_t v = 0; v < variables_; ++v) {
      ImportEvidence evidence = evidence_[v];
      for (std::size_t i = 0; i < kLayouts.size(); ++i) {
        if (layouts_[v][i].count == 0) continue;
        evidence.layouts.push_back({kLayouts[i][0], kLayouts[i][1], layouts_[v][i]});
      }
      all[v] = textwizard::Shown(evidence);
    }
    return all;
  }

 private:
  // Some records end early, after a delimiter or not; one without text is a blank line.
  void AddRecord() {
    const std::size_t fields = random_() % 8 == 0 ? random_() % (variables_ + 1) : variables_;
    std::vector<const Sample*> samples;
    std::string record;
    for (std::size_t v = 0; v < fields; ++v) {
      samples.push_back(&kSamples[(v * 5 + random_() % kinds_[v]) % kSamples.size()]);
      if (v > 0) record += ';';
      record += samples.back()->text;
    }
    if (!record.empty()) {
      for (std::size_t v = 0; v < fields; ++v) AddValue(v, *samples[v]);
    }
    bytes_ += record;
    bytes_ += returns_ ? "\r" : random_() % 4 == 0 ? "\r\n" : "\n";
    ++line_;
  }

  void AddValue(std::size_t variable, const Sample& sample) {
    ImportEvidence& evidence = evidence_[variable];
    const std::string text = sample.text;
    if (!sample.valueClass) {
      ++evidence.empties;
      return;
    }
    ImportWitness& seen = evidence.classes[static_cast<std::size_t>(*sample.valueClass)];
    if (text == " ") {
      ++evidence.blanks;
      ++seen.count;
      return;
    }
    if (++seen.count, seen.line == 0) {
      seen.line = line_;
      seen.text = text;
    }
    if (sample.layout >= 0) {
      Count(layouts_[variable][static_cast<std::size_t>(sample.layout)], text, line_);
    }
    if (sample.also != nullptr) Count(evidence.*sample.also, text, line_);
    if (static_cast<std::int64_t>(text.size()) > evidence.longest.count) {
      evidence.longest = {static_cast<std::int64_t>(text.size()), line_, text};
    }
  }

  std::mt19937_64 random_;
  std::size_t variables_ = 0;
  std::vector<std::size_t> kinds_;
  std::vector<ImportEvidence> evidence_;
  std::vector<std::array<ImportWitness, kLayouts.size()>> layouts_;
  std::string bytes_;
  // Lines end in a lone return.
  bool returns_ = false;
  std::int64_t line_ = 1;
};

// Ways to read a file: workers, and block sizes of which 0 is the default.
struct EvidenceWay {
  int workers;
  std::size_t block;
};

class EvidenceOfFiles : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};

  static void ExpectInEveryWay(const DrawnFile& file, const std::string& bytes,
                               const std::vector<EvidenceWay>& ways) {
    const embedded::ScopedMemoryFiles files(kCorpusPath, bytes);
    for (const EvidenceWay& way : ways) {
      SCOPED_TRACE(std::to_string(way.workers) + " workers, blocks of " +
                   std::to_string(way.block));
      const Told told = ToldOf(file.command(), way.workers, way.block);
      EXPECT_EQ(told.evidence, file.expected());
      // Watching changes nothing.
      const embedded::ScopedBlockSize blocks(way.block);
      EXPECT_EQ(told.dictionary, Import(file.command(), way.workers).dictionary());
      if (HasFailure()) return;
    }
  }
};

TEST_F(EvidenceOfFiles, IsWhatTheFileHolds) {
  for (std::uint64_t seed = 1; seed <= Rounds(200); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const DrawnFile file(seed, seed % 40);
    ExpectInEveryWay(file, file.bytes(), {{2, 0}, {3, 1}, {8, 7}});
    if (HasFailure()) return;
    ExpectInEveryWay(file, file.Utf16(), {{2, 0}, {3, 1}, {8, 7}});
    if (HasFailure()) return;
  }
}

TEST_F(EvidenceOfFiles, DoesNotDependOnWhereBatchesEnd) {
  for (std::uint64_t seed = 1; seed <= Rounds(10); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    // Some batches of 125,000 bytes.
    const DrawnFile file(1000 + seed, 40000);
    ExpectInEveryWay(file, file.bytes(), {{2, 0}, {3, 65536}, {8, 4096}, {5, 125}});
    if (HasFailure()) return;
    ExpectInEveryWay(file, file.Utf16(), {{2, 0}, {8, 4096}});
    if (HasFailure()) return;
  }
}

TEST_F(EvidenceOfFiles, OnOneThreadIsThatOfWorkers) {
  for (std::uint64_t seed = 1; seed <= Rounds(200); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const DrawnFile file(2000 + seed, 1 + seed % 40);
    const embedded::ScopedMemoryFiles files(kCorpusPath, file.bytes());
    const Told told = ToldOf(file.command(), 2, seed % 3 * 7, true);
    EXPECT_EQ(told.evidence, file.expected());
    const ScopedOneThreadDetection detection(true);
    EXPECT_EQ(told.dictionary, Import(file.command()).dictionary());
    if (HasFailure()) return;
  }
}

// All files of the corpus: the same in every way, whatever it is.
using EvidenceOfCorpus = CorpusTest;

TEST_P(EvidenceOfCorpus, IsTheSameInEveryWay) {
  const CorpusImport& import = GetParam();
  const std::size_t smallest = import.large ? 4096 : 1;
  for (const bool oneThread : {false, true}) {
    const Told first = ToldOf(import.command, 2, 0, oneThread);
    for (const EvidenceWay& way : {EvidenceWay{2, smallest}, {3, 4097}, {8, 0}}) {
      const Told told = ToldOf(import.command, way.workers, way.block, oneThread);
      SCOPED_TRACE(std::to_string(way.workers) + " workers, blocks of " +
                   std::to_string(way.block));
      EXPECT_EQ(told.evidence, first.evidence);
      EXPECT_EQ(told.dictionary, first.dictionary);
    }
  }
}

std::string NameOf(const testing::TestParamInfo<CorpusImport>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Examples, EvidenceOfCorpus, testing::ValuesIn(ExampleImports()), NameOf);
INSTANTIATE_TEST_SUITE_P(Generated, EvidenceOfCorpus, testing::ValuesIn(GeneratedImports()),
                         NameOf);

}  // namespace
}  // namespace whole
