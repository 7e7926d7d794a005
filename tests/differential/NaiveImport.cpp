#include "tests/differential/NaiveImport.h"

#include <algorithm>
#include <tuple>

#include "HostFramework/ValueInput.h"
#include "tests/differential/NaiveFields.h"
#include "tests/differential/NaiveRecords.h"

namespace naive {
namespace {

using Kind = ImportProblemKind;

constexpr int kString = 1;

bool IsNumberFormat(int format) {
  constexpr int kNumbers[] = {3, 4, 5, 16, 17, 31, 32};
  return std::find(std::begin(kNumbers), std::end(kNumbers), format) != std::end(kNumbers);
}

std::string Trimmed(const std::string& text, const char* blanks) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

struct Found {
  // Where the record begins.
  std::int64_t record = 0;
  bool ofField = false;
  Problem problem;
};

class Reader {
 public:
  Reader(const std::string& bytes, const Settings& settings, const std::vector<Variable>& variables,
         const HostText& host)
      : bytes_(bytes),
        settings_(settings),
        variables_(variables),
        host_(host),
        cutter_(settings, host),
        records_(bytes, host) {
    std::int32_t column = 0;
    for (const Variable& variable : variables) {
      columns_.push_back(variable.format == 0 ? -1 : column++);
    }
    if (settings.lines == Lines::kFixed) {
      watched().textsBeyondColumn.resize(static_cast<std::size_t>(column));
    }
  }

  Import Run() {
    AddSpan(ImportSpan::kMark, records_.markBytes());
    SkipPreamble();
    bool dataEnded = false;
    const std::size_t most =
        std::min(settings_.caseLimit.value_or(SIZE_MAX), settings_.interrupt.value_or(SIZE_MAX));
    while (import_.cases.size() != most) {
      values_.clear();
      cells_ = Cells();
      span_ = CaseSpan();
      problems_.clear();
      const bool read = settings_.lines == Lines::kOneCase   ? ReadLineCase()
                        : settings_.lines == Lines::kCounted ? ReadCountedCase()
                                                             : ReadFixedCase();
      if (!read) {
        dataEnded = true;
        break;
      }
      EndCase();
    }
    if (dataEnded) AddSpan(ImportSpan::kSkipped, records_.position());
    AddSpan(ImportSpan::kUnread, static_cast<std::int64_t>(bytes_.size()));
    return std::move(import_);
  }

 private:
  Watched& watched() { return import_.watched; }
  std::int64_t caseNumber() const { return static_cast<std::int64_t>(import_.cases.size()) + 1; }

  void SkipPreamble() {
    std::int64_t count = settings_.lines == Lines::kCounted ? 0 : 1;
    bool found = true;
    for (; found && count != settings_.firstCase; ++count) found = records_.Next(true, record_);
    const bool inRecord = settings_.lines == Lines::kCounted && found && settings_.firstCase > 0;
    AddSpan(ImportSpan::kPreamble, inRecord ? record_.begin : records_.position());
    // An empty line is no record.
    recordIsNew_ = inRecord && !record_.text.empty();
  }

  // The stretch up to `end`.
  void AddSpan(ImportSpan::Kind kind, std::int64_t end) {
    AppendSpan(watched().spans, {kind, spansEnd_, end - spansEnd_, 0, 0, 0});
    spansEnd_ = end;
  }

  // The record has given a case something.
  void UseRecord() {
    if (!recordIsNew_) return;
    recordIsNew_ = false;
    AddSpan(ImportSpan::kSkipped, record_.begin);
    AppendSpan(watched().spans, {ImportSpan::kRecords, record_.begin, record_.end - record_.begin,
                                 1, record_.lineEndBytes, record_.droppedBytes});
    spansEnd_ = record_.end;
    ++watched().recordsInCases;
    if (record_.droppedBytes > 0) AddRecordProblem(Kind::kNul, record_.droppedBytes, record_.text);
  }

  bool NextRecord(bool keepEmpty) {
    recordIsNew_ = records_.Next(keepEmpty, record_);
    cursor_ = 0;
    return recordIsNew_;
  }

  bool NextField(Field& field) {
    std::vector<std::size_t> undecodable;
    const bool found = cutter_.Next(record_, cursor_, field, &undecodable);
    for (const std::size_t at : undecodable) import_.undecodable.emplace_back(caseNumber(), at);
    if (found) UseRecord();
    return found;
  }

  void BeginSpan(std::int64_t begin) {
    if (span_.line != 0) return;
    span_.line = record_.line;
    span_.begin = begin;
    firstRecord_ = record_;
  }

  void AddRecordProblem(Kind kind, std::int64_t amount, const std::string& text,
                        std::int32_t variable = -1) {
    Problem problem{kind, variable, caseNumber(), record_.line, record_.begin, amount, text};
    problems_.push_back({record_.begin, false, problem});
  }

  void AddFieldProblem(Kind kind, std::int32_t variable, const Field& field,
                       std::int64_t amount = 0) {
    const std::int64_t byte = record_.PlaceOf(field.begin);
    Problem problem{kind, variable, caseNumber(), record_.line, byte, amount, field.text};
    problems_.push_back({record_.begin, true, problem});
  }

  void AddQuotes(std::int32_t variable, const Field& field) {
    if (field.openQuote) AddFieldProblem(Kind::kOpenQuote, variable, field);
    if (field.strayQuote) AddFieldProblem(Kind::kStrayQuote, variable, field);
  }

  void EndCase() {
    span_.caseNumber = caseNumber();
    // By record, its own problems before those of its fields.
    std::stable_sort(problems_.begin(), problems_.end(), [](const Found& a, const Found& b) {
      return std::tie(a.record, a.ofField, a.problem.byte, a.problem.variable, a.problem.kind) <
             std::tie(b.record, b.ofField, b.problem.byte, b.problem.variable, b.problem.kind);
    });
    for (const Found& found : problems_) watched().problems.push_back(found.problem);
    if (!problems_.empty()) watched().cases.push_back(span_);
    watched().cells.push_back(cells_);
    import_.cases.push_back(values_);
  }

  static std::string Dated(const Variable& variable, const std::string& f) {
    const int format = variable.format;
    const auto s = [&](std::size_t at, std::size_t n) { return f.substr(at, n); };
    if (format == 20 || format == 23 || format == 38 || format == 39) {
      if (f.find_first_of("/.,-\\") != std::string::npos) return f;
      if (f.size() == 6) return s(0, 2) + "/" + s(2, 2) + "/" + s(4, 2);
      if (f.size() == 8 && format == 39) return s(0, 4) + "/" + s(4, 2) + "/" + s(6, 2);
      if (f.size() == 8) return s(0, 2) + "/" + s(2, 2) + "/" + s(4, 4);
      if (f.size() == 7 && format == 20) return s(0, 2) + "-" + s(2, 3) + "-" + s(5, 2);
      if (f.size() == 9 && format == 20) return s(0, 2) + "-" + s(2, 3) + "-" + s(5, 4);
      return "";
    }
    if (format == 21) {
      if (f.find_first_of(":.") != std::string::npos) return f;
      if (f.size() == 4) return s(0, 2) + ":" + s(2, 2);
      if (f.size() == 6) return s(0, 2) + ":" + s(2, 2) + ":" + s(4, 2);
      if (f.size() == 8) return s(0, 2) + ":" + s(2, 2) + ":" + s(4, 2) + "." + s(6, 2);
      return "";
    }
    return f;
  }

  static std::size_t FieldWidth(const Variable& variable) {
    return variable.fieldWidth != 0 ? variable.fieldWidth : variable.width;
  }

  Cell StringCell(const Variable& variable, std::string field) const {
    Cell cell;
    cell.isString = true;
    if (field.size() > FieldWidth(variable) && settings_.leadingSpaces) {
      field = LeadingBlanksRemoved(field);
    }
    // What fits, in whole characters; an unfinished one at the end is none.
    if (field.size() > variable.width) field.resize(field.size() - host_.UnfinishedTail(field));
    std::size_t kept = 0;
    while (kept < field.size()) {
      char32_t c = 0;
      std::size_t length = host_.Decode(field, kept, &c);
      if (length == 0) length = 1;
      if (kept + length > variable.width) break;
      kept += length;
    }
    cell.text = field.substr(0, kept);
    while (!cell.text.empty() && cell.text.back() == ' ') cell.text.pop_back();
    return cell;
  }

  // `taken`: the text that the value is made of; of a string in fixed columns more than its field.
  void TakeField(std::size_t index, const Field& field, const std::string& taken) {
    const Variable& variable = variables_[index];
    const std::int32_t column = columns_[index];
    if (field.undecodable > 0) {
      AddFieldProblem(Kind::kUndecodable, column, field, field.undecodable);
    }
    AddQuotes(column, field);
    if (variable.format == 0) return;
    if (variable.format == kString) {
      const std::string text = Trimmed(field.text, " ");
      ++(text.empty() ? cells_.empty : cells_.read);
      const std::string kept = field.text.substr(0, field.text.find_last_not_of(' ') + 1);
      const bool isCut = settings_.lines != Lines::kFixed && kept.size() > variable.width;
      if (isCut) AddFieldProblem(Kind::kCut, column, field, static_cast<std::int64_t>(kept.size()));
      values_.push_back(StringCell(variable, taken));
      return;
    }
    values_.emplace_back();
    const std::string text = Trimmed(field.text, " \t");
    const auto& nulls = settings_.nullTexts;
    if (text.empty()) {
      ++cells_.empty;
      return;
    }
    if (std::find(nulls.begin(), nulls.end(), text) != nulls.end()) {
      ++cells_.null;
      return;
    }
    const std::string dated = Dated(variable, field.text);
    double value = 0.0;
    if (IocvConvertInput(dated.data(), dated.size(), variable.format, 0, &value) != 0) {
      ++cells_.unreadable;
      AddFieldProblem(Kind::kUnreadable, column, field);
      return;
    }
    ++cells_.read;
    values_.back().number = value;
    if (IsNumberFormat(variable.format) && IsRounded(field.text, value)) {
      AddFieldProblem(Kind::kRounded, column, field);
    }
  }

  void TakeNothing(std::size_t index) {
    const Variable& variable = variables_[index];
    if (variable.format == 0) return;
    values_.emplace_back();
    values_.back().isString = variable.format == kString;
  }

  bool ReadLineCase() {
    if (!NextRecord(false)) return false;
    BeginSpan(record_.begin);
    span_.end = record_.end;
    std::int64_t absent = 0;
    // Behind a delimiter at the record's end is one more field, an empty one.
    bool emptyFollows = false;
    Field field;
    for (std::size_t i = 0; i < variables_.size(); ++i) {
      if (NextField(field)) {
        TakeField(i, field, field.text);
        emptyFollows = field.delimited;
        continue;
      }
      TakeNothing(i);
      if (variables_[i].format != 0) {
        ++(emptyFollows ? cells_.empty : cells_.absent);
        if (!emptyFollows) ++absent;
      }
      emptyFollows = false;
    }
    UseRecord();
    if (absent > 0) AddRecordProblem(Kind::kFewFields, absent, record_.text);
    if (!cutter_.IsEmptyRest(record_, cursor_)) {
      AddRecordProblem(Kind::kSurplus, 0, record_.text.substr(cursor_));
      while (cutter_.Next(record_, cursor_, field, nullptr)) AddQuotes(-1, field);
    }
    return true;
  }

  bool ReadCountedCase() {
    bool linesLeft = true;
    for (std::size_t i = 0; i < variables_.size(); ++i) {
      Field field;
      bool found = NextField(field);
      while (!found && linesLeft) {
        linesLeft = NextRecord(false);
        if (linesLeft) found = NextField(field);
      }
      if (!found && i == 0) return false;
      if (found) {
        BeginSpan(record_.PlaceOf(field.begin));
        span_.end = cursor_ < record_.text.size() ? record_.PlaceOf(cursor_) : record_.end;
        TakeField(i, field, field.text);
      } else {
        TakeNothing(i);
        if (variables_[i].format != 0) ++cells_.absent;
      }
      if (!found && i + 1 == variables_.size()) AddIncomplete();
    }
    return true;
  }

  void AddIncomplete() {
    const Record last = record_;
    record_ = firstRecord_;
    AddRecordProblem(Kind::kIncompleteCase, cells_.absent, record_.text);
    record_ = last;
  }

  bool ReadFixedCase() {
    std::vector<Case> byVariable(variables_.size());
    // Of this case; the next one tries again, as a unit FFFF only looks like the end.
    bool atEnd = false;
    // Cells of lines that the case should have had.
    std::int64_t lost = 0;
    for (std::size_t line = 1; line <= settings_.recordsPerCase; ++line) {
      const bool read = atEnd ? false : NextRecord(true);
      if (!read && line == 1) return false;
      if (!read) atEnd = true;
      if (read) {
        UseRecord();
        BeginSpan(record_.begin);
        span_.end = record_.end;
      }
      for (std::size_t i = 0; i < variables_.size(); ++i) {
        const Variable& variable = variables_[i];
        if (variable.record != line || variable.format == 0) continue;
        values_.clear();
        if (read && variable.start <= record_.text.size()) {
          TakeColumn(i);
        } else {
          TakeNothing(i);
          ++cells_.absent;
          if (read) AddRecordProblem(Kind::kShortRecord, 0, record_.text, columns_[i]);
          if (!read) ++lost;
        }
        byVariable[i] = values_;
      }
    }
    if (atEnd) {
      const std::int64_t absent = cells_.absent;
      cells_.absent = lost;
      AddIncomplete();
      cells_.absent = absent;
    }
    Case values;
    for (std::size_t i = 0; i < variables_.size(); ++i) {
      if (variables_[i].format == 0) continue;
      if (byVariable[i].empty()) {
        // On a line that no case has.
        values_.clear();
        TakeNothing(i);
        ++cells_.absent;
        byVariable[i] = values_;
      }
      values.push_back(byVariable[i].front());
    }
    values_ = values;
    return true;
  }

  void TakeColumn(std::size_t index) {
    const Variable& variable = variables_[index];
    Field field;
    field.begin = variable.start;
    field.text = record_.text.substr(variable.start, variable.width);
    for (std::size_t at = 0; at < record_.text.size();) {
      char32_t c = 0;
      const std::size_t length = host_.Decode(record_.text, at, &c);
      const bool inField = at >= variable.start && at - variable.start < variable.width;
      if (inField && (length == 0 || record_.substitutes[at])) ++field.undecodable;
      at += std::max<std::size_t>(length, 1);
    }
    TakeField(index, field, record_.text.substr(variable.start, FieldWidth(variable)));
    CountBeyond(index);
  }

  void CountBeyond(std::size_t index) {
    const Variable& variable = variables_[index];
    const std::size_t behind = variable.start + variable.width;
    if (record_.text.size() <= behind) return;
    if (record_.text[behind - 1] == ' ' || record_.text[behind] == ' ') return;
    for (const Variable& other : variables_) {
      if (other.record == variable.record && other.start <= behind &&
          behind < other.start + other.width) {
        return;
      }
    }
    ++watched().textsBeyondColumn[static_cast<std::size_t>(columns_[index])];
  }

  const std::string& bytes_;
  const Settings& settings_;
  const std::vector<Variable>& variables_;
  const HostText& host_;
  const FieldCutter cutter_;
  RecordCutter records_;
  // Among the imported variables; -1 for a skipped one.
  std::vector<std::int32_t> columns_;
  std::int64_t spansEnd_ = 0;
  Import import_;

  Record record_;
  std::size_t cursor_ = 0;
  // The record has not given any case anything yet.
  bool recordIsNew_ = false;

  // The case in hand.
  Case values_;
  Cells cells_;
  CaseSpan span_;
  Record firstRecord_;
  std::vector<Found> problems_;
};

}  // namespace

Import Read(const std::string& bytes, const Settings& settings,
            const std::vector<Variable>& variables, const HostText& host) {
  return Reader(bytes, settings, variables, host).Run();
}

}  // namespace naive
