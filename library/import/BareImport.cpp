#include "library/import/BareImport.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>

#include "HostFramework/FileStream.h"
#include "HostFramework/Names.h"
#include "HostFramework/Text.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "library/import/CommandText.h"
#include "library/import/FileSummary.h"
#include "library/import/FixedPage.h"
#include "library/import/GivenFormat.h"
#include "library/import/ShownFile.h"
#include "library/outputs/Utf8Converter.h"
#include "library/sniff/Sniffer.h"

namespace library {
namespace {

// A field that goes on over so many lines is rather one whose closing quote is missing.
constexpr std::int64_t kLongestField = 1000;

std::string Upper(std::string name) { return QANTMBstrupr_A(name.data()); }

class Understanding {
 public:
  Understanding(const std::string& name, InputFiles& files, const BareImportSettings& settings,
                BareImport* import, std::string* problem)
      : name_(name), files_(files), settings_(settings), import_(*import), problem_(*problem) {}

  bool Run();

 private:
  bool Look();
  bool NameColumns();
  bool ReadGivenTypes();
  bool ReadData();
  bool Summarize(const RewritingOptions& rewriting, QuotePosition* totals);
  bool SettleRewriting(const QuotePosition& totals);
  bool Clashes(const QuotePosition& totals) const;
  bool SetTypes();
  bool ChooseFormats();
  bool FitGivenType(std::size_t column);
  void RestoreTexts();
  bool WriteCommand();

  const std::string& name_;
  InputFiles& files_;
  const BareImportSettings& settings_;
  BareImport& import_;
  std::string& problem_;

  std::string path_;
  BareCut cut_;
  std::vector<std::optional<GivenFormat>> given_;
  StandIns standIns_;
};

bool Understanding::Look() {
  const InputFiles::Input& input = files_.Open(name_);
  if (!input.problem.empty()) {
    problem_ = input.problem;
    if (!input.wayOut.empty()) problem_ += "; " + input.wayOut;
    return false;
  }
  path_ = input.path;
  const std::unique_ptr<FileSource> source = FileSource::Open(path_, &problem_);
  if (source == nullptr) return false;
  SniffSettings sniff = settings_.sniff;
  if (settings_.sampleLines > 0 && !settings_.firstLook) sniff.sampleLines = settings_.sampleLines;
  return Sniff(*source, sniff, &import_.sniff, &problem_);
}

bool Understanding::NameColumns() {
  for (const SniffColumn& column : import_.sniff.columns) {
    import_.columns.push_back({column.name, column.label, {}, false, false});
  }
  if (!settings_.names.empty() && settings_.names.size() != import_.columns.size()) {
    problem_ = fmt::format("{} name{} for {} column{}", settings_.names.size(),
                           settings_.names.size() == 1 ? " is given" : "s are given",
                           import_.columns.size(), import_.columns.size() == 1 ? "" : "s");
    return false;
  }
  std::vector<std::string> names;
  std::set<std::string> taken;
  for (std::size_t i = 0; i < import_.columns.size(); ++i) {
    const bool given = !settings_.names.empty();
    std::string name = given ? settings_.names[i] : import_.columns[i].name;
    if (given && ValidateQANTName(name.c_str()) != 0) {
      problem_ = fmt::format("{} cannot be the name of a variable", name);
      return false;
    }
    if (given && !taken.insert(Upper(name)).second) {
      problem_ = fmt::format("the name {} is given twice", name);
      return false;
    }
    names.push_back(std::move(name));
  }
  AvoidKeywords(&names);
  for (std::size_t i = 0; i < names.size(); ++i) import_.columns[i].name = std::move(names[i]);
  return true;
}

bool Understanding::ReadGivenTypes() {
  given_.resize(import_.columns.size());
  for (const auto& [name, text] : settings_.types) {
    const auto found = std::find_if(
        import_.columns.begin(), import_.columns.end(),
        [wanted = Upper(name)](const BareColumn& column) { return Upper(column.name) == wanted; });
    if (found == import_.columns.end()) {
      problem_ = fmt::format("there is no column {}", name);
      return false;
    }
    found->skipped = text == "X" || text == "x";
    if (found->skipped) continue;
    GivenFormat format;
    if (!ReadGivenFormat(text, &format, &problem_)) return false;
    given_[static_cast<std::size_t>(found - import_.columns.begin())] = format;
    found->typeGiven = true;
  }
  return true;
}

// Reads all values once, the file shown with such rewriting.
bool Understanding::Summarize(const RewritingOptions& rewriting, QuotePosition* totals) {
  textwizard::ImportSettings& cut = cut_.cut.settings;
  cut.keepsStrayQualifiers = rewriting.keepStrayQualifiers;
  std::unique_ptr<ShownFile> shown;
  if (rewriting.RewritesBytes() || !cut_.shownMark.empty()) {
    shown = ShownFile::Show({path_, cut_.shownMark, rewriting, standIns_}, cut, &problem_);
    if (shown == nullptr) return false;
  }
  const SniffResult& sniff = import_.sniff;
  FileSummarySettings summary;
  summary.path = path_;
  summary.cut = cut_.cut;
  summary.nulls = settings_.nulls;
  summary.standIns = shown != nullptr ? shown->standIns() : nullptr;
  const auto mark = static_cast<std::int64_t>(cut_.shownMark.size());
  summary.begin = static_cast<std::int64_t>(sniff.firstDataOffset) + mark;
  summary.end = static_cast<std::int64_t>(sniff.dataEndOffset) + mark;
  summary.linesBefore = sniff.firstDataLine.value - 1;
  summary.lastLine = settings_.sampleLines;
  summary.threads = settings_.threads;
  if (settings_.progress) {
    summary.progress = [&](std::int64_t bytes) {
      settings_.progress(bytes, summary.end - summary.begin);
    };
  }
  if (settings_.grown) {
    summary.grown = [&](const PartSummary& soFar) {
      import_.summary = soFar;
      if (!SetTypes()) return;
      RestoreTexts();
      settings_.grown(import_);
    };
  }
  if (embedded::AttentionRequested()) return false;
  if (settings_.partBytes > 0) summary.partBytes = settings_.partBytes;
  PartSummary whole;
  const bool read = settings_.summarize
                        ? settings_.summarize(summary, rewriting, mark, &whole, &problem_)
                        : SummarizeFile(summary, &whole, &problem_);
  if (!read) return false;
  import_.summary = std::move(whole);
  *totals = {};
  if (shown != nullptr && !settings_.firstLook && !shown->Totals(totals)) {
    problem_ = "reading the file failed";
    return false;
  }
  return true;
}

// A character of the file is one of the stand-ins: there are more of them than were put there.
bool Understanding::Clashes(const QuotePosition& totals) const {
  const auto& controls = import_.summary.controls;
  const auto more = [&](char standIn, std::int64_t put) {
    return controls[static_cast<unsigned char>(standIn)] > put;
  };
  return more(standIns_.lineFeed, totals.feeds) || more(standIns_.carriageReturn, totals.returns) ||
         more(standIns_.nothing, totals.removed);
}

// What of the rewriting the file needs, once it was read with it.
bool Understanding::SettleRewriting(const QuotePosition& totals) {
  RewritingOptions& rewriting = cut_.rewriting;
  if (rewriting.RewritesBytes() && !settings_.firstLook) {
    if (!rewriting.backslashEscapes && totals.joinedLines == 0) rewriting.joinQuotedLines = false;
    if (totals.strays == 0) rewriting.keepStrayQualifiers = false;
  }
  import_.rewriting = rewriting;
  import_.shownMark = cut_.shownMark;
  if (rewriting.RewritesBytes()) import_.standIns = standIns_;
  return true;
}

bool Understanding::ReadData() {
  QuotePosition totals;
  if (!Summarize(cut_.rewriting, &totals)) return false;
  const bool runsAway = totals.state != QuotePosition::kPreamble && totals.longestJoin > 0 &&
                        (totals.longestJoin > kLongestField || totals.IsOpen());
  if (cut_.quotesAreUncertain && cut_.rewriting.joinQuotedLines && runsAway) {
    // One stray quote would take the rest of the file for one value.
    cut_.rewriting.joinQuotedLines = false;
    if (!Summarize(cut_.rewriting, &totals)) return false;
  }
  if (cut_.rewriting.RewritesBytes() && !settings_.firstLook && Clashes(totals)) {
    ControlSet held;
    for (std::size_t i = 0; i < held.size(); ++i) held[i] = import_.summary.controls[i] > 0;
    const std::optional<StandIns> others = ChooseStandIns(held);
    if (!others) {
      problem_ =
          "the file holds so many control characters that none is left to stand for the "
          "line breaks in its values";
      return false;
    }
    standIns_ = *others;
    if (!Summarize(cut_.rewriting, &totals)) return false;
  }
  return SettleRewriting(totals);
}

bool Understanding::FitGivenType(std::size_t column) {
  const GivenFormat& given = *given_[column];
  const std::uint32_t columnWidth =
      import_.types.columns[column].format.code == 0 ? 0 : cut_.cut.fields[column].width;
  const bool fixed = cut_.cut.settings.arrangement == textwizard::kFixedColumns;
  ChosenType& type = import_.types.columns[column];
  type = {};
  type.format = given.format;
  if (!given.hasWidth) {
    type.format =
        FitFormat(given.format.code, import_.summary.columns[column], import_.types.decimal);
    if (fixed) type.format.width = std::max(type.format.width, std::min(columnWidth, given.most));
  }
  const std::optional<Reading> reading = ReadingOf(type.format.code, import_.types.decimal);
  if (!reading) return true;
  const Witness unread = import_.summary.columns[column].Unread(*reading);
  if (unread.count > 0) type.remarks.push_back({ColumnRemark::kUnreadable, unread, std::nullopt});
  return true;
}

// Chooses the columns' types by the summary.
bool Understanding::SetTypes() {
  const bool fixed = cut_.cut.settings.arrangement == textwizard::kFixedColumns;
  TypeSettings types;
  types.leastShare = settings_.leastShare;
  types.decimal = import_.sniff.decimal.value;
  types.decimalGiven = import_.sniff.decimal.given;
  if (fixed) {
    for (std::size_t i = 0; i < cut_.cut.fields.size(); ++i) {
      // What goes up to the end of the line is as wide as its longest text.
      std::uint32_t& width = cut_.cut.fields[i].width;
      const std::int64_t longest = import_.summary.columns[i].longest().count;
      if (import_.sniff.columns[i].range.to == 0) {
        width = static_cast<std::uint32_t>(std::max<std::int64_t>(longest, 1));
      }
      types.columnWidths.push_back(width);
    }
  }
  import_.types = ChooseTypes(import_.summary.columns, types);
  for (std::size_t i = 0; i < given_.size(); ++i) {
    if (given_[i] && !FitGivenType(i)) return false;
  }
  for (std::size_t i = 0; i < import_.columns.size(); ++i) {
    import_.columns[i].type = import_.types.columns[i];
  }
  return true;
}

bool Understanding::ChooseFormats() {
  if (!SetTypes()) return false;
  import_.host = cut_.host;
  import_.host.decimal = import_.types.decimal;
  return SetHost(import_.host, &problem_);
}

// The texts of witnesses as the file means them, in UTF-8.
void Understanding::RestoreTexts() {
  const TextRestorer restorer(standIns_);
  Utf8Converter hostText;
  std::string room;
  const auto restore = [&](Witness& witness) {
    const std::string_view text =
        import_.standIns ? restorer.Restore(witness.text, room) : std::string_view(witness.text);
    witness.text = std::string(hostText.ToUtf8(text));
  };
  for (BareColumn& column : import_.columns) {
    for (ColumnRemark& remark : column.type.remarks) restore(remark.values);
  }
  restore(import_.types.decimalWitness);
  restore(import_.summary.surplus);
  restore(import_.summary.unexpected);
  restore(import_.summary.undecodable);
}

bool Understanding::WriteCommand() {
  if (!CanNameFile(name_)) {
    problem_ = "a command cannot name a file with quotes of both kinds; rename it";
    return false;
  }
  CommandSettings command;
  command.file = name_;
  command.import = cut_.cut.settings;
  if (import_.sniff.footerLines > 0 && settings_.sampleLines == 0) {
    command.import.importMode = textwizard::kImportFirst;
    command.import.caseLimit = import_.summary.records;
  }
  std::size_t column = 0;
  for (const ColumnCut::Field& field : cut_.cut.fields) {
    CommandVariable variable;
    variable.skipped = !field.imported;
    if (field.imported) {
      if (!HostTextOf(import_.columns[column].name, &variable.name)) {
        // No character of the name is in the code page.
        variable.name = fmt::format("V{}", column + 1);
      }
      variable.format = import_.columns[column].type.format;
      variable.from = field.start;
      variable.to = field.start + field.width - 1;
      variable.skipped = import_.columns[column].skipped;
      ++column;
    }
    // Of fixed columns those are named that are wanted.
    if (variable.skipped && command.import.arrangement == textwizard::kFixedColumns) continue;
    command.variables.push_back(std::move(variable));
  }
  import_.command = CommandText(command);
  return true;
}

bool Understanding::Run() {
  if (!Look() || !CutOf(import_.sniff, &cut_, &problem_) || !NameColumns() || !ReadGivenTypes()) {
    return false;
  }
  if (import_.columns.empty()) {
    problem_ = import_.sniff.fileSize == 0 ? "it is empty" : "it holds nothing but blank lines";
    return false;
  }
  if (cut_.cut.settings.arrangement == textwizard::kFixedColumns) {
    import_.countsBytes = !ChooseFixedPage(path_, import_.sniff, &cut_);
  }
  if (!SetHost(cut_.host, &problem_) || !ReadData() || !ChooseFormats()) return false;
  RestoreTexts();
  return WriteCommand();
}

}  // namespace

bool UnderstandFile(const std::string& name, InputFiles& files, const BareImportSettings& settings,
                    BareImport* import, std::string* problem) {
  *import = BareImport();
  return Understanding(name, files, settings, import, problem).Run();
}

}  // namespace library
