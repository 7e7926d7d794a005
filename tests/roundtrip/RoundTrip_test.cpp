// Files of drawn tables, imported without a command: every name, type and cell comes back, or the
// import says what it is not sure of; and the command that it prints gives the same digest.
//
// TEXTWIZARD_ROUND_TRIPS sets how many files are tried, TEXTWIZARD_ROUND_TRIP_SEED which one is the
// first, TEXTWIZARD_ROUND_TRIP_FOLDER where those files are kept that were not exact.

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "HostFramework/Formats.h"
#include "HostFramework/embedded/text/HostText.h"
#include "library/command/CommandText.h"
#include "library/import/BareImport.h"
#include "library/import/CommandImport.h"
#include "library/import/RunLine.h"
#include "library/input/ColumnPadder.h"
#include "library/outputs/CaseBatch.h"
#include "library/outputs/CaseWriter.h"
#include "library/report/Digest.h"
#include "library/testing/TestFolder.h"
#include "tests/roundtrip/DrawnFile.h"

namespace {

using roundtrip::ColumnKind;
using roundtrip::DrawnCell;
using roundtrip::DrawnColumn;
using roundtrip::DrawnFile;

std::uint64_t Setting(const char* name, std::uint64_t otherwise) {
  const char* value = std::getenv(name);
  return value ? std::strtoull(value, nullptr, 10) : otherwise;
}

class ErrorTexts : public library::ImportMessages {
 public:
  void Post(std::string_view hostText, int kind) override {
    if (kind == kMessageError) errors += std::string(hostText) + "\n";
  }
  std::string errors;
};

struct ReadCell {
  std::optional<std::string> text;
  double number = 0;
};

// Keeps all cases, and their digest.
class Cases : public library::CaseReceiver {
 public:
  void Begin(const QANT_DataSource& source) override {
    columns_ = library::ColumnsOf(source, library::ValueStyle::kRaw);
    digester_.emplace(source);
  }
  void Take(const OBS* obs) override {
    std::vector<ReadCell> cells;
    for (const library::CaseColumn& column : columns_) {
      ReadCell cell;
      if (column.kind == library::ValueKind::kString) {
        cell.text = std::string(hostText_.ToUtf8(library::StringAt(obs, column)));
      } else {
        cell.number = library::NumberAt(obs, column);
      }
      cells.push_back(std::move(cell));
    }
    rows.push_back(std::move(cells));
    digest += digester_->Of(obs, static_cast<std::int64_t>(rows.size()));
  }

  std::vector<std::vector<ReadCell>> rows;
  library::Digest digest;

 private:
  std::vector<library::CaseColumn> columns_;
  std::optional<library::CaseDigester> digester_;
  library::Utf8Converter hostText_;
};

// What a run is told by the options of its line.
struct RunSettings {
  library::ImportOptions import;
  std::string codePage;
  std::string localeCodePage;
  bool decimalComma = false;
};

bool ReadOptions(const std::vector<std::string>& words, RunSettings* run) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "--join-quoted-lines") {
      run->import.rewriting.joinQuotedLines = true;
    } else if (word == "--backslash-escapes") {
      run->import.rewriting.backslashEscapes = true;
    } else if (word == "--keep-stray-qualifiers") {
      run->import.rewriting.keepStrayQualifiers = true;
    } else if (i + 1 == words.size()) {
      return false;
    } else if (word == "--decimal") {
      run->decimalComma = words[++i] == "comma";
    } else if (word == "--code-page") {
      run->codePage = words[++i];
    } else if (word == "--locale-code-page") {
      run->localeCodePage = words[++i];
    } else if (word == "--transcode") {
      run->import.transcoding = words[++i];
    } else if (word == "--pad-columns") {
      std::string problem;
      const auto places = library::ParsePlaces(words[++i], &problem);
      if (!places) return false;
      run->import.paddedAt = *places;
    } else if (word == "--byte-order-mark") {
      run->import.shownMark = words[++i] == "utf-16le" ? "\xFF\xFE" : "\xFE\xFF";
    } else {
      return false;
    }
  }
  return true;
}

// What the import itself has found out.
RunSettings SettingsOf(const library::BareImport& import) {
  RunSettings run;
  run.import.rewriting = import.rewriting;
  run.import.standIns = import.standIns;
  run.import.shownMark = import.shownMark;
  run.import.transcoding = import.transcoding;
  run.import.paddedAt = import.paddedAt;
  run.codePage = import.host.codePage;
  run.localeCodePage = import.host.localeCodePage;
  run.decimalComma = import.host.decimal == library::DecimalCharacter::kComma;
  return run;
}

// Runs the command. What is wrong, or empty.
std::string RunCommand(const std::string& text, RunSettings settings, Cases* cases) {
  library::HostNeeds host;
  host.codePage = settings.codePage;
  host.localeCodePage = settings.localeCodePage;
  if (settings.decimalComma) host.decimal = library::DecimalCharacter::kComma;
  std::string problem;
  if (!library::SetHost(host, &problem)) return problem;
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  if (!reader.Next(command) || !command.ok) return "the command cannot be read: " + command.error;
  library::WatchSettings watching;
  watching.keepStrayQualifiers = settings.import.rewriting.keepStrayQualifiers;
  watching.nullTexts = library::DefaultNullTexts();
  library::ImportWatch watch(watching);
  library::InputFiles files;
  settings.import.watch = &watch;
  settings.import.files = &files;
  settings.import.workers = 1;
  ErrorTexts messages;
  library::CommandImport run(settings.import, messages);
  if (run.Open(command.tokens) != library::ImportEnd::kDone)
    return "not opened: " + messages.errors;
  watch.Prepare(run.source(), {}, {});
  if (run.Read(*cases) != library::ImportEnd::kDone) return "not read: " + messages.errors;
  return messages.errors + watch.TakeAccount().ledger.Imbalance();
}

// How a column of the kind may be kept without loss.
bool IsTypeOf(ColumnKind kind, std::uint32_t format) {
  const DisplayFormat* const known = DisplayFormatOf(format);
  const std::string name(known != nullptr ? known->name : "?");
  const auto in = [&](std::initializer_list<const char*> names) {
    for (const char* one : names) {
      if (name == one) return true;
    }
    return false;
  };
  switch (kind) {
    case ColumnKind::kWhole:
    case ColumnKind::kDecimal:
    case ColumnKind::kExponent:
    case ColumnKind::kGrouped:
      return in({"F", "E", "COMMA", "DOT"});
    case ColumnKind::kPercent:
      return in({"PCT"});
    case ColumnKind::kDollar:
      return in({"DOLLAR"});
    case ColumnKind::kIsoDate:
      return in({"SDATE"});
    case ColumnKind::kMonthDayYear:
      return in({"ADATE"});
    case ColumnKind::kDayMonthYear:
    case ColumnKind::kNamedDate:
      return in({"EDATE", "DATE"});
    case ColumnKind::kIsoDateTime:
      return in({"YMDHMS"});
    case ColumnKind::kTime:
      return in({"TIME"});
    case ColumnKind::kEmpty:
      return true;
    default:
      return in({"A"});
  }
}

// What of a column did not come back, or empty.
std::string ColumnDifference(const DrawnFile& file, std::size_t index,
                             const library::BareColumn& column, const Cases& cases) {
  const DrawnColumn& drawn = file.table.columns[index];
  if (column.label != (file.dialect.header ? drawn.header : "")) {
    return fmt::format("header {} is {}", drawn.header, column.label);
  }
  bool any = false;
  for (const DrawnCell& cell : drawn.cells) any = any || !cell.missing;
  if (any && !IsTypeOf(drawn.kind, column.type.format.code)) {
    return fmt::format("{} is {}", drawn.header, library::FormatText(column.type.format));
  }
  for (std::size_t row = 0; row < file.table.rows; ++row) {
    const DrawnCell& cell = drawn.cells[row];
    const ReadCell& read = cases.rows[row][index];
    const bool same = read.text      ? *read.text == cell.text
                      : cell.missing ? library::IsMissing(read.number)
                                     : read.number == cell.number;
    if (!same) {
      return fmt::format("{} of row {}: {} is {}", drawn.header, row + 1, cell.text,
                         read.text ? *read.text : fmt::format("{}", read.number));
    }
  }
  return {};
}

struct Outcome {
  std::string difference;
  // The import says itself that it is not sure of what came out different.
  bool said = false;
};

bool IsClose(double margin, const std::string& runnerUp) {
  return !runnerUp.empty() && margin < 0.5;
}

// What of the build of the file is called open.
bool SaysBuildIsOpen(const library::SniffResult& sniff) {
  return sniff.verdict == library::Verdict::kGuess ||
         IsClose(sniff.encoding.margin, sniff.encoding.runnerUp) ||
         IsClose(sniff.delimiter.margin, sniff.delimiter.runnerUp) ||
         IsClose(sniff.headerLines.margin, sniff.headerLines.runnerUp);
}

Outcome DifferenceOf(const DrawnFile& file, const library::BareImport& import, const Cases& cases) {
  Outcome outcome;
  outcome.said = SaysBuildIsOpen(import.sniff) || import.countsBytes;
  const std::size_t columns = file.table.columns.size();
  if (import.columns.size() != columns) {
    outcome.difference = fmt::format("{} columns", import.columns.size());
  } else if (cases.rows.size() != file.table.rows) {
    outcome.difference = fmt::format("{} rows", cases.rows.size());
  }
  if (!outcome.difference.empty()) return outcome;
  bool allSaid = true;
  for (std::size_t index = 0; index < columns; ++index) {
    const library::BareColumn& column = import.columns[index];
    const std::string difference = ColumnDifference(file, index, column, cases);
    if (difference.empty()) continue;
    if (outcome.difference.empty() || allSaid) outcome.difference = difference;
    allSaid = allSaid && !column.type.remarks.empty();
  }
  outcome.said = outcome.said || allSaid;
  return outcome;
}

// The printed command, with nothing known but the options of its line, gives the same cases.
void ExpectTheSameAgain(const library::BareImport& import, const library::Digest& digest) {
  RunSettings settings;
  const std::vector<std::string> words =
      library::RunOptionsFor(import, library::DefaultNullTexts());
  ASSERT_TRUE(ReadOptions(words, &settings)) << "an option of the run line is not known";
  Cases again;
  EXPECT_EQ(RunCommand(import.command, settings, &again), "");
  EXPECT_EQ(again.digest.Hex(), digest.Hex()) << import.command;
}

class RoundTrip : public testing::Test {
 protected:
  ~RoundTrip() override {
    std::string problem;
    library::SetHost({}, &problem);
  }

  // Imports a drawn file, and runs what it prints.
  Outcome Try(const DrawnFile& file) {
    embedded::SetCodePage(nullptr);
    const std::string path = folder_.Write("data.txt", file.bytes);
    library::InputFiles files;
    library::BareImportSettings settings;
    settings.nulls = library::DefaultNullTexts();
    settings.threads = 1;
    library::BareImport import;
    std::string problem;
    if (!library::UnderstandFile(path, files, settings, &import, &problem)) {
      return {"not understood: " + problem, false};
    }
    Cases cases;
    if (std::string wrong = RunCommand(import.command, SettingsOf(import), &cases);
        !wrong.empty()) {
      return {wrong + import.command, false};
    }
    ExpectTheSameAgain(import, cases.digest);
    return DifferenceOf(file, import, cases);
  }

  library::TestFolder folder_;
};

TEST_F(RoundTrip, AnImportGivesBackTheTableOrSaysWhatIsOpen) {
  const std::uint64_t first = Setting("TEXTWIZARD_ROUND_TRIP_SEED", 1);
  const std::uint64_t count = Setting("TEXTWIZARD_ROUND_TRIPS", 600);
  const char* const folder = std::getenv("TEXTWIZARD_ROUND_TRIP_FOLDER");
  std::uint64_t exact = 0;
  std::uint64_t said = 0;
  for (std::uint64_t number = first; number < first + count; ++number) {
    const DrawnFile file = roundtrip::DrawFile(number);
    const Outcome outcome = Try(file);
    if (outcome.difference.empty()) {
      ++exact;
      continue;
    }
    said += outcome.said ? 1 : 0;
    EXPECT_TRUE(outcome.said) << "file " << number << " (" << roundtrip::Describe(file)
                              << "): " << outcome.difference;
    if (folder == nullptr) continue;
    std::ofstream(fmt::format("{}/{}.txt", folder, number), std::ios::binary) << file.bytes;
    std::cout << "file " << number << " (" << roundtrip::Describe(file)
              << (outcome.said ? "), said to be open: " : "), silently: ") << outcome.difference
              << "\n";
  }
  RecordProperty("exact", static_cast<int>(exact));
  std::cout << fmt::format("{} files: {} exact, {} said to be open\n", count, exact, said);
  // Hardly any file leaves something open.
  EXPECT_GE(exact * 100, count * 94);
}

}  // namespace
