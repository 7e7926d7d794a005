#include "library/sniff/Sniffer.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "library/input/FileKind.h"
#include "library/outputs/FormatName.h"
#include "library/report/ImportWatch.h"
#include "library/sniff/BlankMask.h"
#include "library/sniff/ColumnGaps.h"
#include "library/sniff/ColumnNames.h"
#include "library/sniff/CommentLines.h"
#include "library/sniff/DialectFinder.h"
#include "library/sniff/EncodingFinder.h"
#include "library/sniff/HeaderLabels.h"
#include "library/sniff/SampleTable.h"
#include "library/sniff/SampleText.h"
#include "library/sniff/SniffEvidence.h"
#include "library/sniff/TableShape.h"
#include "library/sniff/Utf8.h"
#include "library/types/ColumnEvidence.h"
#include "library/types/TypeChoice.h"

namespace library {
namespace {

// What is cut into cells: of the head, and of the end.
constexpr std::size_t kMostHeadRows = 1500;
constexpr std::size_t kMostHeadCells = 120000;
constexpr std::size_t kMostTailRows = 120;
// Of every other region so many records are cut, to see whether they are like the head's.
constexpr std::size_t kRowsARegion = 40;
// Records that are looked at for blanks behind delimiters.
constexpr std::size_t kRowsForBlanks = 200;

// Characters of ASCII that a person sees, and the blanks and line ends between them.
bool IsPlainText(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char byte) {
    return (byte >= ' ' && byte <= '~') || byte == '\t' || byte == '\r' || byte == '\n';
  });
}

class Sniffing {
 public:
  Sniffing(ByteSource& source, const SniffSettings& settings, SniffResult* result,
           std::string* problem)
      : source_(source), settings_(settings), result_(*result), problem_(*problem) {}

  bool Run();

 private:
  bool ReadText();
  bool FindDialectOfText();
  void CutTable();
  void AddRecords(const SampleRecords& records, std::size_t region, std::size_t begin,
                  std::size_t end, std::size_t mostCells);
  void CheckOtherRegions();
  bool HasLeadingBlanks() const;
  bool CutsWords() const;
  void PlaceData();
  void PlaceEnd();
  void ListOtherLines();
  void MakeColumns();
  CharacterRange RangeOf(std::size_t column, std::size_t columns) const;
  TypeSettings TypeSettingsOf() const;
  std::vector<ColumnEvidence> EvidenceOf(std::size_t width) const;

  std::size_t RowsOfData() const { return shape_.endData - shape_.firstData; }
  std::int64_t LineOf(const SampleRow& row) const {
    return static_cast<std::int64_t>(row.line) + 1;
  }

  ByteSource& source_;
  const SniffSettings& settings_;
  SniffResult& result_;
  std::string& problem_;

  SampleBytes bytes_;
  SampleText text_;
  CellKinds kinds_;
  EncodingAnswer encoding_;
  DialectAnswer dialect_;
  // Where the last one of fixed columns ends in most lines.
  std::int64_t lastPlace_ = 0;
  std::string_view comment_;
  SampleRecords records_;
  std::optional<ColumnGaps> gaps_;
  std::unique_ptr<SampleTable> table_;
  // The table's last row is the file's.
  bool reachesEnd_ = false;
  // The table's rows before this one follow one another.
  std::size_t headRows_ = 0;
  TableShape shape_;
  SniffFindings findings_;
};

bool Sniffing::ReadText() {
  if (!bytes_.Read(source_, &problem_)) return false;
  result_.fileSize = bytes_.sourceSize();
  result_.readWhole = bytes_.whole();
  const std::string_view head = bytes_.head();
  if (const FileKind kind = FileKindOf(head.substr(0, kFileHeadBytes)); kind.what != nullptr) {
    problem_ = fmt::format("it is {}, not a text file; {}", kind.what, kind.wayOut);
    return false;
  }
  encoding_ = FindEncoding(bytes_);
  const bool wide =
      encoding_.converter.starts_with("UTF-16") || encoding_.converter.starts_with("UTF-32");
  std::string text(head.substr(0, kFileHeadBytes));
  const std::size_t size = text.size();
  // Zero bytes are dropped when the file is read; where most are such, only plain text is one.
  const std::size_t left = size - static_cast<std::size_t>(std::erase(text, '\0'));
  if (2 * left < size && (left == 0 || !IsPlainText(text))) text = head.substr(0, kFileHeadBytes);
  if (const std::size_t controls = ControlsBeyondText(text); controls > 0 && !wide) {
    problem_ = fmt::format("it is no text file: {} of its first {} bytes are control characters",
                           controls, size);
    return false;
  }
  if (settings_.encoding) {
    encoding_.encoding = {*settings_.encoding, true, "", "", 1.0};
    encoding_.verdict = Verdict::kCertain;
    // A mark decides which byte comes first.
    if (encoding_.markLength == 0) encoding_.converter = *settings_.encoding;
  }
  if (!text_.Decode(bytes_, encoding_.converter, encoding_.markLength)) {
    problem_ = fmt::format("there is no encoding {}", encoding_.encoding.value);
    return false;
  }
  if (settings_.sampleLines) {
    text_.KeepLines(static_cast<std::size_t>(std::max<std::int64_t>(1, *settings_.sampleLines)));
  }
  return true;
}

bool Sniffing::FindDialectOfText() {
  const std::vector<std::string_view>& lines = text_.head();
  if (settings_.fixed) {
    dialect_.dialect.columns = *settings_.fixed;
  } else if (settings_.delimiter &&
             settings_.delimiter->find_first_of("\r\n") != std::string::npos) {
    problem_ = "a line end cannot be the delimiter";
    return false;
  } else {
    dialect_ = FindDialect(lines, settings_, kinds_);
    if (dialect_.dialect.fixed()) {
      // Whatever is behind the last column belongs to it.
      lastPlace_ = std::exchange(dialect_.dialect.columns.back().to, 0);
    }
  }
  comment_ = CommentSign(lines, LinesForDialect(lines));
  // Where quotes are data only, the double quote is still what would qualify: reading with it, and
  // keeping stray ones, cuts the same fields.
  Dialect& dialect = dialect_.dialect;
  if (!dialect.fixed() && dialect.qualifier.empty() && !settings_.qualifier && text_.Holds('"')) {
    dialect.qualifier = "\"";
  }
  return true;
}

// Adds records [begin, end) to the table, without remarks. A remark that is cut as wide as most
// records names their columns.
void Sniffing::AddRecords(const SampleRecords& records, std::size_t region, std::size_t begin,
                          std::size_t end, std::size_t mostCells) {
  for (std::size_t i = begin; i < end && table_->cells() < mostCells; ++i) {
    SampleRecord record = records.records[i];
    if (IsCommentLine(record.text, comment_)) {
      const std::size_t width = dialect_.score.modalWidth;
      record.text.remove_prefix(record.text.find(comment_) + comment_.size());
      RecordCutter cutter(dialect_.dialect);
      std::vector<RecordCutter::Field> fields;
      cutter.Cut(record.text, &fields);
      if (width < 2 || fields.size() != width) {
        if (region == 0) findings_.comments.push_back(static_cast<std::int64_t>(record.line) + 1);
        continue;
      }
    }
    if (gaps_ && gaps_->AreCrossedBy(record.text)) {
      table_->AddUncut(record, region);
    } else {
      table_->Add(record, region);
    }
  }
}

void Sniffing::CutTable() {
  records_ = JoinRecords(text_.head(), text_.head().size(), dialect_.dialect);
  table_ = std::make_unique<SampleTable>(dialect_.dialect, kinds_);
  // Who gives columns knows what is in them.
  if (dialect_.dialect.fixed() && !settings_.fixed) {
    gaps_.emplace(text_.head(), dialect_.dialect.columns);
  }
  const std::size_t all = records_.records.size();
  const std::size_t head = std::min(all, kMostHeadRows);
  AddRecords(records_, 0, 0, head, kMostHeadCells);
  headRows_ = table_->rows().size();
  const bool cut = table_->cells() >= kMostHeadCells;
  reachesEnd_ = text_.headIsWhole() && head == all && !cut;
  if (text_.headIsWhole() && !reachesEnd_ && head < all) {
    AddRecords(records_, 0, std::max(head, all - std::min(all, kMostTailRows)), all,
               2 * kMostHeadCells);
    reachesEnd_ = table_->cells() < 2 * kMostHeadCells;
  } else if (text_.regions().size() > 1 && bytes_.reachesEnd()) {
    const std::size_t last = text_.regions().size() - 1;
    const auto& lines = text_.regions()[last].lines;
    const SampleRecords tail = JoinRecords(lines, lines.size(), dialect_.dialect);
    const std::size_t count = tail.records.size();
    AddRecords(tail, last, count - std::min(count, kMostTailRows), count, 2 * kMostHeadCells);
    reachesEnd_ = table_->cells() < 2 * kMostHeadCells;
  }
  CheckOtherRegions();
}

// Whether the records of the rest of the file are as wide as those of the head.
void Sniffing::CheckOtherRegions() {
  RecordCutter cutter(dialect_.dialect);
  std::vector<RecordCutter::Field> fields;
  for (std::size_t region = 1; region < text_.regions().size(); ++region) {
    const auto& lines = text_.regions()[region].lines;
    const SampleRecords records =
        JoinRecords(lines, std::min(lines.size(), kRowsARegion), dialect_.dialect);
    for (const SampleRecord& record : records.records) {
      cutter.Cut(record.text, &fields);
      ++findings_.otherRecords;
      findings_.otherModal += fields.size() == dialect_.score.modalWidth ? 1 : 0;
    }
  }
}

// Whether most fields that follow a delimiter and are not empty begin with a blank.
bool Sniffing::HasLeadingBlanks() const {
  const std::string& delimiter = dialect_.dialect.delimiter;
  if (dialect_.dialect.fixed() || delimiter.empty() || delimiter.find(' ') != std::string::npos) {
    return false;
  }
  std::size_t filled = 0;
  std::size_t blank = 0;
  for (std::size_t i = 0; i < std::min(records_.records.size(), kRowsForBlanks); ++i) {
    const std::string_view record = records_.records[i].text;
    // Qualified fields lose their blanks when they are cut: the record itself is looked at.
    for (std::size_t at = record.find(delimiter); at != std::string_view::npos;
         at = record.find(delimiter, at + 1)) {
      const std::size_t next = at + delimiter.size();
      if (next >= record.size() || record.compare(next, delimiter.size(), delimiter) == 0) continue;
      ++filled;
      blank += record[next] == ' ' ? 1 : 0;
    }
  }
  return filled > 0 && 10 * blank > 9 * filled;
}

// Whether a border between columns that were found goes through a word of the header, or of some
// lines of data, but not of all.
bool Sniffing::CutsWords() const {
  const std::vector<CharacterRange>& columns = dialect_.dialect.columns;
  if (settings_.fixed) return false;
  const std::size_t end = std::min(shape_.endData, headRows_);
  for (std::size_t i = 0; i + 1 < columns.size(); ++i) {
    std::size_t names = 0;
    std::size_t values = 0;
    for (std::size_t row = shape_.headerBegin; row < end; ++row) {
      const std::string_view line = text_.head()[table_->rows()[row].line];
      const std::string_view beside = CutCharacters(line, {columns[i].to, columns[i].to + 1});
      const bool cuts = CountUtf8(beside) == 2 && beside.find(' ') == std::string_view::npos;
      (row < shape_.headerEnd ? names : values) += cuts ? 1 : 0;
    }
    if (names > 0 || (values > 0 && values < end - std::min(end, shape_.firstData))) return true;
  }
  return false;
}

void Sniffing::PlaceData() {
  const auto& rows = table_->rows();
  const auto lineOf = [&](std::size_t row) {
    return row < headRows_ ? LineOf(rows[row]) : static_cast<std::int64_t>(text_.head().size()) + 1;
  };
  result_.firstDataLine.value = lineOf(shape_.firstData);
  result_.firstDataLine.given = settings_.firstLine.has_value();
  result_.headerLines.given = settings_.header.has_value();
  for (std::size_t i = shape_.headerBegin; i < shape_.headerEnd; ++i) {
    const SampleRow& row = rows[i];
    const SampleCell* const cells = table_->Cells(row);
    const bool filled =
        std::any_of(cells, cells + row.count, [](const SampleCell& cell) { return !cell.empty(); });
    if (filled) result_.headerLines.value += static_cast<std::int64_t>(row.lines);
  }
  const bool header = shape_.headerEnd > shape_.headerBegin;
  result_.preambleLines = (header ? lineOf(shape_.headerBegin) : result_.firstDataLine.value) - 1;
  result_.firstDataOffset =
      text_.OffsetOfLine(0, static_cast<std::size_t>(result_.firstDataLine.value - 1));
}

void Sniffing::PlaceEnd() {
  const auto& rows = table_->rows();
  result_.dataEndOffset = result_.fileSize;
  if (!reachesEnd_) return;
  for (std::size_t i = shape_.endData; i < rows.size(); ++i) {
    const SampleCell* const cells = table_->Cells(rows[i]);
    const bool filled = std::any_of(cells, cells + rows[i].count,
                                    [](const SampleCell& cell) { return !cell.empty(); });
    result_.footerLines += filled ? static_cast<std::int64_t>(rows[i].lines) : 0;
  }
  if (shape_.endData == 0 || RowsOfData() == 0) return;
  const SampleRow& last = rows[shape_.endData - 1];
  if (last.region == 0)
    result_.lastDataLine = LineOf(last) + static_cast<std::int64_t>(last.lines) - 1;
  if (shape_.endData < rows.size()) {
    result_.dataEndOffset = text_.OffsetOfLine(last.region, last.line + last.lines);
  }
}

void Sniffing::ListOtherLines() {
  auto& others = result_.otherLines;
  const auto& rows = table_->rows();
  const auto add = [&](std::int64_t line, OtherLine::Kind kind) {
    if (others.size() < SniffResult::kMostOtherLines) others.push_back({line, kind});
  };
  for (const std::int64_t line : findings_.comments) {
    if (line > result_.firstDataLine.value) add(line, OtherLine::Kind::kComment);
  }
  for (std::size_t i = shape_.firstData; i < std::min(rows.size(), headRows_); ++i) {
    const RowKind kind = KindOfRow(*table_, i, shape_);
    if (kind == RowKind::kData) continue;
    add(LineOf(rows[i]), kind == RowKind::kBlank   ? OtherLine::Kind::kBlank
                         : kind == RowKind::kTitle ? OtherLine::Kind::kTitle
                         : kind == RowKind::kTotal ? OtherLine::Kind::kTotal
                                                   : OtherLine::Kind::kNote);
  }
  std::sort(others.begin(), others.end(),
            [](const OtherLine& a, const OtherLine& b) { return a.line < b.line; });
}

void Sniffing::MakeColumns() {
  const Dialect& dialect = dialect_.dialect;
  const std::size_t width = WidthOf(*table_, shape_, dialect, reachesEnd_);
  const std::vector<std::string> labels = HeaderLabels(*table_, shape_, width);
  const std::vector<std::string> names = NamesOf(labels);
  const TypeChoice types = ChooseTypes(EvidenceOf(width), TypeSettingsOf());
  result_.decimal.value = types.decimal;
  result_.decimal.given = settings_.decimal.has_value();
  for (std::size_t j = 0; j < width; ++j) {
    const ChosenFormat& format = types.columns[j].format;
    SniffColumn column;
    column.name = names[j];
    column.label = labels[j];
    column.format = FormatName({static_cast<int>(format.code), static_cast<int>(format.width),
                                static_cast<int>(format.decimals)});
    if (dialect.fixed()) column.range = RangeOf(j, width);
    result_.columns.push_back(std::move(column));
  }
  findings_.decimalWitness = types.decimalWitness;
  findings_.decimalAgainst = types.decimalAgainst;
}

// The characters of a fixed column; the last one has what is behind the longest line of data that
// hardly any other reaches.
CharacterRange Sniffing::RangeOf(std::size_t column, std::size_t columns) const {
  CharacterRange range = dialect_.dialect.columns[column];
  if (column + 1 < columns || settings_.fixed) return range;
  range.to = lastPlace_;
  for (std::size_t i = shape_.firstData; i < std::min(shape_.endData, headRows_); ++i) {
    if (KindOfRow(*table_, i, shape_) != RowKind::kData) continue;
    const std::string_view line = text_.head()[table_->rows()[i].line];
    const std::string_view text = line.substr(0, line.find_last_not_of(' ') + 1);
    range.to = std::max(range.to, static_cast<std::int64_t>(CountUtf8(text)));
  }
  return range;
}

TypeSettings Sniffing::TypeSettingsOf() const {
  TypeSettings settings;
  settings.decimal = settings_.decimal.value_or(DecimalCharacter::kPoint);
  settings.decimalGiven = settings_.decimal.has_value();
  for (const CharacterRange& column : dialect_.dialect.columns) {
    const std::int64_t width = column.to == 0 ? 0 : column.to - column.from + 1;
    settings.columnWidths.push_back(static_cast<std::uint32_t>(width));
  }
  return settings;
}

// What the rows of data that were cut say about each column.
std::vector<ColumnEvidence> Sniffing::EvidenceOf(std::size_t width) const {
  std::vector<ColumnEvidence> columns(width);
  const textwizard::NullTexts nulls(DefaultNullTexts());
  for (std::size_t i = shape_.firstData; i < shape_.endData; ++i) {
    if (KindOfRow(*table_, i, shape_) != RowKind::kData) continue;
    const SampleRow& row = table_->rows()[i];
    for (std::size_t j = 0; j < width; ++j) {
      columns[j].Count(table_->Cell(row, j).text, LineOf(row), nulls);
    }
  }
  return columns;
}

bool Sniffing::Run() {
  if (!ReadText() || !FindDialectOfText()) return false;
  result_.encoding = encoding_.encoding;
  result_.sameEncodings = encoding_.same;
  result_.byteOrderMark = encoding_.markLength > 0;
  result_.bigEndian = encoding_.converter.ends_with("BE");
  result_.lineEnd.value = text_.lineEnd();
  CutTable();
  const Dialect& dialect = dialect_.dialect;
  result_.arrangement.value = dialect.fixed() ? Arrangement::kFixed : Arrangement::kDelimited;
  result_.arrangement.given = settings_.fixed.has_value() || settings_.delimiter.has_value();
  result_.delimiter.value = dialect.delimiter;
  // Columns that are given leave no delimiter to find.
  result_.delimiter.given = result_.arrangement.given;
  result_.multipleBlanks = dialect.multipleBlanks;
  result_.qualifier.value = dialect.qualifier;
  result_.qualifier.given = settings_.qualifier.has_value();
  result_.escape.value = dialect.escape;
  result_.lineBreaksInQuotes.count = records_.lineBreaks;
  if (records_.lineBreaks > 0) {
    result_.lineBreaksInQuotes.firstLine = static_cast<std::int64_t>(records_.firstLineBreak) + 1;
  }
  result_.leadingBlanks = HasLeadingBlanks();
  result_.strayQualifiers = records_.strays > 0;
  result_.comment = std::string(findings_.comments.empty() ? std::string_view() : comment_);
  shape_ = FindShape(*table_, reachesEnd_, settings_);
  findings_.cutsWords = CutsWords();
  PlaceData();
  PlaceEnd();
  ListOtherLines();
  MakeColumns();
  findings_.encoding = &encoding_;
  findings_.dialect = &dialect_;
  findings_.records = &records_;
  findings_.shape = &shape_;
  findings_.table = table_.get();
  findings_.text = &text_;
  TellEvidence(findings_, &result_);
  JudgeConfidence(findings_, &result_);
  return true;
}

}  // namespace

bool Sniff(ByteSource& source, const SniffSettings& settings, SniffResult* result,
           std::string* problem) {
  *result = {};
  return Sniffing(source, settings, result, problem).Run();
}

}  // namespace library
