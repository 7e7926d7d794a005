#include "library/import/BareImport.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include <fmt/format.h>

#include "HostFramework/FileStream.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "library/command/CommandText.h"
#include "library/import/ConvertedSniff.h"
#include "library/import/FixedBorders.h"
#include "library/import/FixedPage.h"
#include "library/input/ColumnPadder.h"
#include "library/input/Transcoding.h"
#include "library/outputs/Utf8Converter.h"
#include "library/parts/FileSummary.h"
#include "library/rewriting/ShownFile.h"
#include "library/sniff/SniffEvidence.h"
#include "library/sniff/Sniffer.h"

namespace library {
namespace {

// A field that goes on over so many lines is rather one whose closing quote is missing.
constexpr std::int64_t kLongestField = 1000;

class Understanding {
 public:
  Understanding(const std::string& name, InputFiles& files, const BareImportSettings& settings,
                BareImport* import, std::string* problem)
      : name_(name), files_(files), settings_(settings), import_(*import), problem_(*problem) {}

  bool Run();

 private:
  bool Look();
  SniffSettings HowToSniff() const;
  bool SniffPath(const SniffSettings& sniff);
  bool Transcode(const SniffSettings* sniff);
  bool CutIt();
  bool PlaceColumns();
  bool PadColumns();
  bool MoveColumns();
  bool NameAll();
  bool ReadData();
  std::int64_t GuessedOffset() const;
  bool Summarize(const RewritingOptions& rewriting, QuotePosition* totals);
  bool SettleRewriting(const QuotePosition& totals);
  bool Clashes(const QuotePosition& totals) const;
  void SetTypes(bool fromAll);
  bool ChooseFormats();
  void RestoreTexts();

  const std::string& name_;
  InputFiles& files_;
  const BareImportSettings& settings_;
  BareImport& import_;
  std::string& problem_;

  std::string path_;
  BareCut cut_;
  GivenFormats given_;
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
  import_.transcoding = input.transcodedFrom;
  if (settings_.sniffed != nullptr) {
    import_.sniff = *settings_.sniffed;
    return !NeedsTranscoding(import_.sniff.encoding.value) || Transcode(nullptr);
  }
  const SniffSettings sniff = HowToSniff();
  // What is given needs not look like text before it is converted.
  if (sniff.encoding && NeedsTranscoding(*sniff.encoding)) import_.transcoding = *sniff.encoding;
  if (!import_.transcoding.empty()) return Transcode(&sniff);
  if (!SniffPath(sniff)) return false;
  return !NeedsTranscoding(import_.sniff.encoding.value) || Transcode(&sniff);
}

SniffSettings Understanding::HowToSniff() const {
  SniffSettings sniff = settings_.sniff;
  if (settings_.sampleLines > 0 && !settings_.firstLook) sniff.sampleLines = settings_.sampleLines;
  return sniff;
}

bool Understanding::SniffPath(const SniffSettings& sniff) {
  const std::unique_ptr<FileSource> source = FileSource::Open(path_, &problem_);
  return source != nullptr && Sniff(*source, sniff, &import_.sniff, &problem_);
}

// Looks at the file as UTF-8, which its encoding is converted to; the encoding stays the file's.
// `sniff` null: what is known of it stands.
bool Understanding::Transcode(const SniffSettings* sniff) {
  if (import_.transcoding.empty()) import_.transcoding = import_.sniff.encoding.value;
  const InputFiles::Input& input = files_.Transcode(name_, import_.transcoding);
  if (!input.problem.empty()) {
    // What the user has interrupted needs no words.
    if (!embedded::AttentionRequested()) problem_ = input.problem;
    return false;
  }
  path_ = input.path;
  return sniff == nullptr || SniffConverted(input, *sniff, &import_.sniff, &problem_);
}

// Says how to cut the file as the component sees it.
bool Understanding::CutIt() {
  if (import_.transcoding.empty()) return CutOf(import_.sniff, &cut_, &problem_);
  SniffResult utf8 = import_.sniff;
  utf8.encoding.value = "UTF-8";
  return CutOf(utf8, &cut_, &problem_);
}

// Fixed columns count characters.
bool Understanding::PlaceColumns() {
  if (cut_.cut.settings.arrangement != textwizard::kFixedColumns) return true;
  if (ChooseFixedPage(path_, import_.sniff, &cut_)) return true;
  if (cut_.cut.settings.encoding == textwizard::kEncodingUtf8) return PadColumns();
  if (settings_.sniffed != nullptr) {
    // What is known of the file stands, in its own bytes.
    import_.countsBytes = true;
    return true;
  }
  const SniffSettings sniff = HowToSniff();
  return Transcode(&sniff) && CutIt() && PlaceColumns();
}

// No code page has each character in one byte: the columns are put so far from one another that no
// character can be where another column begins.
bool Understanding::PadColumns() {
  constexpr std::int64_t kScale = ColumnPadder::kBytesPerCharacter;
  std::set<std::int64_t> places;
  for (const SniffColumn& column : import_.sniff.columns) {
    places.insert(column.range.from - 1);
    if (column.range.to > 0) places.insert(column.range.to);
  }
  places.erase(0);
  if (places.empty()) return true;
  auto begin = static_cast<std::int64_t>(import_.sniff.firstDataOffset);
  auto end = static_cast<std::int64_t>(import_.sniff.dataEndOffset);
  import_.paddedAt.assign(places.begin(), places.end());
  const InputFiles::Input& input = files_.PadColumns(name_, import_.paddedAt, {&begin, &end});
  if (!input.problem.empty()) {
    if (!embedded::AttentionRequested()) problem_ = input.problem;
    return false;
  }
  path_ = input.path;
  import_.sniff.firstDataOffset = static_cast<std::uint64_t>(begin);
  import_.sniff.dataEndOffset = static_cast<std::uint64_t>(end);
  cut_.cut.padded = true;
  for (ColumnCut::Field& field : cut_.cut.fields) {
    field.start *= kScale;
    field.width = static_cast<std::uint32_t>(
        std::min<std::int64_t>(kScale * field.width, textwizard::kMaxStringWidth));
  }
  return true;
}

bool Understanding::NameAll() {
  for (const SniffColumn& column : import_.sniff.columns) {
    import_.columns.push_back({column.name, column.label, {}, false, false});
  }
  return NameColumns(settings_.names, &import_.columns, &problem_) &&
         ReadGivenTypes(settings_.types, &import_.columns, &given_, &problem_);
}

// Where how the quotes stand is to be found by trying: behind the head of the file.
std::int64_t Understanding::GuessedOffset() const {
  std::error_code failed;
  const std::uintmax_t bytes = std::filesystem::file_size(path_, failed);
  if (!settings_.readsFrom || failed) return 0;
  const std::int64_t from = settings_.readsFrom(static_cast<std::int64_t>(bytes));
  const auto data = static_cast<std::int64_t>(import_.sniff.firstDataOffset);
  return from > data ? from + static_cast<std::int64_t>(cut_.shownMark.size()) : 0;
}

// Reads all values once, the file shown with such rewriting.
bool Understanding::Summarize(const RewritingOptions& rewriting, QuotePosition* totals) {
  textwizard::ImportSettings& cut = cut_.cut.settings;
  cut.keepsStrayQualifiers = rewriting.keepStrayQualifiers;
  std::unique_ptr<ShownFile> shown;
  if (rewriting.RewritesBytes() || !cut_.shownMark.empty()) {
    shown = ShownFile::Show(
        {path_, cut_.shownMark, rewriting, standIns_, std::nullopt, GuessedOffset()}, cut,
        &problem_);
    if (shown == nullptr) return false;
  }
  const SniffResult& sniff = import_.sniff;
  FileSummarySettings summary;
  summary.path = path_;
  summary.cut = cut_.cut;
  summary.nulls = settings_.nulls;
  summary.standIns = shown != nullptr ? shown->standIns() : nullptr;
  if (summary.standIns != nullptr) {
    summary.quotesAt = [&shown](std::int64_t offset, QuotePosition* position) {
      return shown->PositionAt(offset, position);
    };
  }
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
      SetTypes(false);
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
  if (import_.summary.quotes) {
    *totals = *import_.summary.quotes;
    import_.summary.quotes.reset();
  } else if (shown != nullptr && !settings_.firstLook && !shown->Totals(totals)) {
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

// Whether lines that the sample does not have put the borders of fixed columns elsewhere.
bool Understanding::MoveColumns() {
  const SniffResult& sniff = import_.sniff;
  const bool isFixed = cut_.cut.settings.arrangement == textwizard::kFixedColumns;
  const bool countsCharacters = !cut_.cut.padded && !import_.countsBytes;
  if (!isFixed || sniff.arrangement.given || sniff.readWhole || settings_.sampleLines > 0 ||
      settings_.firstLook || !countsCharacters ||
      !MoveBorders(import_.summary.filled, &import_.sniff.columns)) {
    return false;
  }
  SetFixedColumns(sniff, &cut_.cut);
  import_.sniff.arrangement.evidence += "; borders moved to what is blank in all lines";
  return true;
}

bool Understanding::ReadData() {
  QuotePosition totals;
  if (!Summarize(cut_.rewriting, &totals)) return false;
  if (MoveColumns() && !Summarize(cut_.rewriting, &totals)) return false;
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

// Chooses the columns' types by the summary, which is one of all values or not.
void Understanding::SetTypes(bool fromAll) {
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
      const CharacterRange& range = import_.sniff.columns[i].range;
      const bool isLast = i + 1 == cut_.cut.fields.size() && !import_.sniff.arrangement.given;
      if (cut_.cut.padded) {
        // The rest of it are blanks.
        if (fromAll) width = static_cast<std::uint32_t>(std::max<std::int64_t>(longest, 1));
      } else if (range.to == 0 || isLast) {
        const std::int64_t least = range.to == 0 ? 1 : range.to - range.from + 1;
        width = static_cast<std::uint32_t>(std::max(longest, least));
      }
      types.columnWidths.push_back(width);
    }
  }
  import_.types = ChooseColumnTypes(import_.summary.columns, types, given_, &import_.columns);
}

bool Understanding::ChooseFormats() {
  SetTypes(settings_.sampleLines == 0 && !settings_.firstLook);
  import_.cut = cut_.cut;
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
  // What all values say, no more what the sample said.
  import_.sniff.decimal.value = import_.types.decimal;
  if (!import_.sniff.decimal.given) {
    import_.sniff.decimal.evidence =
        DecimalEvidence(import_.types.decimalWitness, import_.types.decimalAgainst);
  }
}

bool Understanding::Run() {
  if (!Look() || !CutIt() || !PlaceColumns() || !NameAll()) return false;
  if (import_.columns.empty()) {
    problem_ = WhyNoColumns(import_.sniff);
    return false;
  }
  if (cut_.cut.settings.arrangement != textwizard::kFixedColumns) {
    bool& passedOver = cut_.cut.settings.leadingSpaces;
    passedOver = settings_.leadingBlanks.value_or(passedOver);
  }
  if (!SetHost(cut_.host, &problem_) || !ReadData() || !ChooseFormats()) return false;
  RestoreTexts();
  return MakeCommand(name_, settings_.sampleLines > 0, &import_, &problem_);
}

}  // namespace

bool MakeCommand(const std::string& name, bool sampled, BareImport* import, std::string* problem) {
  if (!CanNameFile(name)) {
    *problem = "a command cannot name a file with quotes of both kinds; rename it";
    return false;
  }
  CommandSettings command;
  command.file = name;
  command.import = import->cut.settings;
  if (import->sniff.footerLines > 0 && !sampled) {
    command.import.importMode = textwizard::kImportFirst;
    command.import.caseLimit = import->summary.records;
  }
  std::size_t column = 0;
  for (const ColumnCut::Field& field : import->cut.fields) {
    CommandVariable variable;
    variable.skipped = !field.imported;
    if (field.imported) {
      if (!HostTextOf(import->columns[column].name, &variable.name)) {
        // No character of the name is in the code page.
        variable.name = fmt::format("V{}", column + 1);
      }
      variable.format = import->columns[column].type.format;
      variable.from = field.start;
      variable.to = field.start + field.width - 1;
      variable.skipped = import->columns[column].skipped;
      ++column;
    }
    // Of fixed columns those are named that are wanted.
    if (variable.skipped && command.import.arrangement == textwizard::kFixedColumns) continue;
    command.variables.push_back(std::move(variable));
  }
  import->command = CommandText(command);
  return true;
}

bool UnderstandFile(const std::string& name, InputFiles& files, const BareImportSettings& settings,
                    BareImport* import, std::string* problem) {
  *import = BareImport();
  return Understanding(name, files, settings, import, problem).Run();
}

}  // namespace library
