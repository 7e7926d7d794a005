// Type detection: fields into counters and formats. The first four bytes choose the locale, the
// host's code page, the rules, how the fields are shared out to workers, and the threshold; the
// others are the fields, a NUL behind each. The classifier, with its automata and fast ways, is
// compared with strtod and the bare regular expressions, the counters with the naive reader's, and
// those of workers, merged in any order, with each other and with the sampling pass. The fields as
// the lines of a file give both engines' imports the variable of the naive count.

#include <algorithm>
#include <clocale>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "detection/DetectionCounters.h"
#include "detection/RegExMappings.h"
#include "detection/TypeSettling.h"
#include "detection/ValueClassifier.h"
#include "fuzz/FuzzTarget.h"
#include "tests/differential/NaiveDetection.h"
#include "tests/support/ImportRun.h"

namespace {

using textwizard::Arrangement;
using textwizard::DetectionCounters;
using textwizard::DetectionPass;
using textwizard::DetectionRules;
using textwizard::NumberForm;
using textwizard::TxtWzVar;
using textwizard::ValueClassifier;

constexpr const char* kLocales[] = {"C",           "C.UTF-8",     "de_DE.UTF-8", "fr_FR.UTF-8",
                                    "ja_JP.UTF-8", "mn_MN.UTF-8", "ru_RU.UTF-8", "tr_TR.UTF-8"};
constexpr const char* kPages[] = {nullptr,     nullptr,   "ISO-8859-1", "ISO-8859-9",
                                  "Shift-JIS", "GB18030", "EUC-JP",     "KOI8-R"};
constexpr std::size_t kBatches = 4;
constexpr double kPercentages[] = {95, 50, 50.5, 51, 66.6, 75, 100, 60};

// A table and what was made of it, all under one locale and code page.
struct Tables {
  textwizard::RegExMappings table;
  naive::Detection naive{table};
  ValueClassifier classifier{table, textwizard::kDelimitedLines};
  ValueClassifier trimming{table, textwizard::kFixedColumns};
};

Tables& TablesOf(std::size_t locale, std::size_t page) {
  static std::map<std::pair<std::size_t, std::size_t>, std::unique_ptr<Tables>> made;
  fuzz::Require(std::setlocale(LC_ALL, kLocales[locale]) != nullptr, "a locale is not installed");
  fuzz::Require(embedded::SetCodePage(kPages[page]), "an unknown code page");
  std::unique_ptr<Tables>& tables = made[{locale, page}];
  if (!tables) tables = std::make_unique<Tables>();
  return *tables;
}

std::string Described(const TxtWzVar& v) {
  std::ostringstream out;
  out << "format " << v.formatType << ", width " << v.width << '.' << v.decimals << ", longest "
      << v.maxStringLength << ", counts " << v.stringCount << ' ' << v.numericCount << ' '
      << v.dateCount << ' ' << v.percentCount << ' ' << v.dollarCount << ' ' << v.commaCount << ' '
      << v.dotCount << ", key " << v.dateKey << ", flags " << v.hasExponent << v.missingStored
      << v.stringTruncated;
  return out.str();
}

void RequireSame(const TxtWzVar& found, const TxtWzVar& expected, const std::string& where) {
  fuzz::Require(Described(found) == Described(expected),
                where + ": " + Described(found) + ", not " + Described(expected));
}

void CompareClassifier(Tables& tables, const std::string& field) {
  const auto require = [&](bool same, const std::string& what) {
    fuzz::Require(same, what + " of [" + field + "]");
  };
  ValueClassifier& classifier = tables.classifier;
  const bool numeric = naive::Detection::IsNumeric(field, 0);
  require(classifier.IsNumeric(field) == numeric, "IsNumeric");
  std::size_t point = 0;
  require(!classifier.IsPlainNumber(field, &point) || numeric, "a plain number that is none");
  for (const char swapped : {'.', ','}) {
    require(
        classifier.IsNumericSwapped(field, swapped) == naive::Detection::IsNumeric(field, swapped),
        "IsNumericSwapped");
  }
  const int key = tables.naive.IsDateTime(field, false);
  require(classifier.IsDateTime(field) == key, "IsDateTime");
  require(tables.trimming.IsDateTime(field) == tables.naive.IsDateTime(field, true),
          "IsDateTime behind blanks");
  for (const auto& [row, mapping] : tables.table.regExMappings()) {
    require(classifier.MatchesRow(field, row) == tables.naive.MatchesRow(row, field),
            "row " + std::to_string(row));
  }
  icu::RegexMatcher* const forms[] = {
      tables.table.percentMatcher.get(), tables.table.dollarMatcher.get(),
      tables.table.commaMatcher.get(), tables.table.dotMatcher.get()};
  bool anyForm = false;
  for (std::size_t i = 0; i < textwizard::kNumberForms; ++i) {
    const bool matches = naive::Detection::Matches(forms[i], field);
    anyForm = anyForm || matches;
    require(classifier.Is(static_cast<NumberForm>(i), field) == matches,
            "form " + std::to_string(i));
  }
  const unsigned possible = classifier.PossibleClasses(field);
  require(!numeric || (possible & ValueClassifier::kNumber), "an impossible number");
  require(key == 0 || (possible & ValueClassifier::kDate), "an impossible date");
  require(!anyForm || (possible & ValueClassifier::kNumberForm), "an impossible number form");
}

naive::CountingRules NaiveRules(const DetectionRules& rules) {
  naive::CountingRules naive;
  naive.worker = rules.pass == DetectionPass::kWorker;
  naive.oneCasePerLine = rules.arrangement == textwizard::kDelimitedLines;
  naive.fixed = rules.arrangement == textwizard::kFixedColumns;
  naive.leadingSpaces = rules.leadingSpaces;
  naive.multipleSpaces = rules.multipleSpaces;
  if (rules.swapDecimal) naive.swapped = rules.decimalCharacter;
  return naive;
}

// Counts by both, and settles by both.
void RequireSettledAlike(Tables& tables, TxtWzVar found, TxtWzVar expected, double percentage,
                         const std::string& what) {
  textwizard::SettleType(found, percentage, tables.table);
  textwizard::NormaliseFormat(found);
  tables.naive.Settle(expected, percentage);
  RequireSame(found, expected, what);
}

TxtWzVar CountOnOneThread(Tables& tables, const DetectionRules& rules,
                          const std::vector<std::string>& fields, double percentage) {
  DetectionCounters counters(tables.table, rules);
  const naive::CountingRules naiveRules = NaiveRules(rules);
  TxtWzVar found, expected;
  found.width = expected.width = 1;
  for (const std::string& field : fields) {
    counters.Count(field, found);
    tables.naive.Count(field, naiveRules, expected);
    RequireSame(found, expected, "one thread at [" + field + "]");
  }
  RequireSettledAlike(tables, found, expected, percentage, "settled");
  return found;
}

TxtWzVar CountOnWorkers(Tables& tables, const DetectionRules& rules,
                        const std::vector<std::string>& fields, unsigned seed, double percentage) {
  std::minstd_rand random(seed);
  DetectionCounters counters(tables.table, rules);
  const naive::CountingRules naiveRules = NaiveRules(rules);
  std::vector<TxtWzVar> batches(kBatches), naiveBatches(kBatches);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    // A batch holds neighbours, or anything.
    const std::size_t batch = seed % 2 ? random() % kBatches : i * kBatches / fields.size();
    counters.Count(fields[i], batches[batch]);
    tables.naive.Count(fields[i], naiveRules, naiveBatches[batch]);
    RequireSame(batches[batch], naiveBatches[batch], "worker at [" + fields[i] + "]");
  }
  std::vector<std::size_t> order(kBatches);
  for (std::size_t i = 0; i < kBatches; ++i) order[i] = i;
  TxtWzVar total, expected, backwards;
  total.width = expected.width = backwards.width = 1;
  for (const std::size_t i : order) naive::Detection::Merge(naiveBatches[i], expected);
  std::shuffle(order.begin(), order.end(), random);
  for (const std::size_t i : order) DetectionCounters::Merge(batches[i], total);
  RequireSame(total, expected, "merged");
  std::reverse(order.begin(), order.end());
  for (const std::size_t i : order) DetectionCounters::Merge(batches[i], backwards);
  RequireSame(backwards, expected, "merged backwards");
  RequireSettledAlike(tables, total, expected, percentage, "settled after merging");
  return total;
}

bool MakesLines(const std::vector<std::string>& fields) {
  if (fields.empty()) return false;
  for (const std::string_view mark : {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"}) {
    if (fields[0].starts_with(mark)) return false;
  }
  return std::all_of(fields.begin(), fields.end(), [](const std::string& field) {
    return field.find_first_of("\n\r\x01") == std::string::npos;
  });
}

// Imports the fields, one a line, as a variable whose type is to be found.
void CompareImports(Tables& tables, const std::vector<std::string>& fields, double percentage) {
  constexpr const char* kPath = "fuzz.txt";
  std::string bytes;
  for (const std::string& field : fields) bytes += field + "\n";
  const embedded::ScopedMemoryFiles files(kPath, bytes);
  std::ostringstream command;
  command << "GET DATA /TYPE=TXT /FILE='" << kPath
          << "' /DELIMITERS='\x01' /DATATYPEMIN PERCENTAGE=" << percentage << " /VARIABLES=v AUTO.";
  for (const bool oneThread : {true, false}) {
    const whole::ScopedOneThreadDetection detection(oneThread);
    const embedded::ScopedBlockSize block(oneThread ? 1 : 0);
    const whole::Import import(command.str(), 2);
    fuzz::Require(import.made(), "the command fails: " + command.str());
    naive::CountingRules rules;
    rules.worker = !oneThread;
    const bool readsComma = *std::localeconv()->decimal_point == ',';
    if (!oneThread && readsComma) rules.swapped = '.';
    TxtWzVar counted, expected;
    if (oneThread) counted.width = counted.maxStringLength = 1;
    for (const std::string& field : fields) tables.naive.Count(field, rules, counted);
    expected.width = expected.maxStringLength = 1;
    naive::Detection::Merge(counted, expected);
    tables.naive.Settle(expected, percentage);
    // Settled, a variable's flags speak of the values that are stored.
    expected.missingStored = expected.stringTruncated = false;
    RequireSame(*import.source().variables().at(0), expected,
                oneThread ? "import on one thread" : "import on workers");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kHead = 4;
  if (size < kHead) return 0;
  Tables& tables = TablesOf(data[0] % 8U, data[0] / 8U % 8U);
  std::vector<std::string> fields;
  std::istringstream text(std::string(reinterpret_cast<const char*>(data) + kHead, size - kHead));
  for (std::string field; std::getline(text, field, '\0');) {
    if (field.empty()) continue;
    CompareClassifier(tables, field);
    fields.push_back(field);
  }
  const double percentage = kPercentages[data[3] % 8U];
  DetectionRules rules;
  rules.leadingSpaces = (data[1] & 1U) != 0;
  rules.multipleSpaces = (data[1] & 2U) != 0;
  constexpr Arrangement kArrangements[] = {textwizard::kDelimitedLines, textwizard::kDelimitedLines,
                                           textwizard::kDelimitedCount, textwizard::kFixedColumns};
  rules.arrangement = kArrangements[data[1] / 4U % 4U];
  const TxtWzVar sampled = CountOnOneThread(tables, rules, fields, percentage);
  if (rules.arrangement != textwizard::kDelimitedLines) return 0;
  rules.pass = DetectionPass::kWorker;
  rules.swapDecimal = (data[1] & 16U) != 0;
  rules.decimalCharacter = data[1] & 32U ? ',' : '.';
  if ((data[1] & 64U) != 0 && percentage > 50 && MakesLines(fields)) {
    CompareImports(tables, fields, percentage);
  }
  const TxtWzVar merged = CountOnWorkers(tables, rules, fields, data[2], percentage);
  // A short text can be a date only where a layout was adopted.
  const auto isShort = [](const std::string& field) { return field.size() < 3; };
  if (rules.swapDecimal || std::any_of(fields.begin(), fields.end(), isShort)) return 0;
  fuzz::Require(
      merged.numericCount == sampled.numericCount && merged.dateCount == sampled.dateCount &&
          merged.stringCount == sampled.stringCount && merged.dollarCount == sampled.dollarCount &&
          merged.percentCount == sampled.percentCount && merged.commaCount == sampled.commaCount &&
          merged.dotCount == sampled.dotCount && merged.hasExponent == sampled.hasExponent,
      "workers: " + Described(merged) + ", one thread: " + Described(sampled));
  return 0;
}
