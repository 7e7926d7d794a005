#include "reading/CaseWatch.h"

#include <algorithm>
#include <tuple>

namespace textwizard {
namespace {

using Kind = ImportProblemKind;

// Whether a value of the format is a number as it is written.
constexpr bool IsNumberFormat(std::uint32_t format) {
  switch (format) {
    case kFormatComma:
    case kFormatDollar:
    case kFormatF:
    case kFormatN:
    case kFormatE:
    case kFormatPct:
    case kFormatDot:
      return true;
    default:
      return false;
  }
}

// Strings are padded with spaces; nothing else is blank in them.
bool IsBlankText(std::string_view text) {
  return text.find_first_not_of(' ') == std::string_view::npos;
}

std::size_t LengthWithoutPadding(std::string_view text) { return text.find_last_not_of(' ') + 1; }

}  // namespace

CaseWatch::CaseWatch(const ImportObserver& observer, const ImportSource& source,
                     FieldSplitter& fields)
    : fields_(fields),
      nulls_(observer.NullTexts()),
      leadingSpaces_(source.settings().leadingSpaces),
      keepsSpaces_(!leadingSpaces_ && !source.settings().multipleSpaces),
      countsValues_(source.settings().arrangement == kDelimitedCount),
      notesCases_(observer.WantsProblemCases()),
      origin_(source.settings().encoding) {
  const ImportSettings& settings = source.settings();
  const bool isFixed = settings.arrangement == kFixedColumns;
  firstPlace_.begin = -1;
  keepsFirst_ = settings.arrangement == kDelimitedCount || settings.recordsPerCase > 1;
  std::int32_t column = 0;
  for (const auto& variable : source.variables()) {
    const bool skipped = variable->formatType == kFormatSkip;
    anySkipped_ = anySkipped_ || skipped;
    columns_.push_back(skipped ? -1 : column++);
  }
  if (!isFixed) return;
  const auto behind = [&](std::size_t position) {
    const TxtWzVar& variable = *source.variables()[position];
    const std::int32_t at = columns_[position];
    const QANT_Variable* const target =
        at < 0 ? nullptr : source.GetVariable(static_cast<std::size_t>(at));
    const bool isString = variable.formatType == kFormatA && target;
    return std::size_t{variable.startColumn} +
           (isString ? static_cast<std::size_t>(target->GetType()) : variable.width);
  };
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    edges_.push_back({behind(i), true});
    for (std::size_t j = 0; j < columns_.size(); ++j) {
      const TxtWzVar& other = *source.variables()[j];
      if (other.recordNumber == source.variables()[i]->recordNumber &&
          other.startColumn <= edges_[i].behind && edges_[i].behind < behind(j)) {
        edges_[i].free = false;
      }
    }
  }
}

void CaseWatch::StartBatch(WatchedBatch& batch, bool notesEnds) {
  batch_ = &batch;
  notesEnds_ = notesEnds;
  case_ = 0;
  cells_ = {};
  findings_.clear();
  noted_.clear();
  undecodable_ = false;
  odd_ = false;
  begun_ = false;
  records_ = 0;
  // Lines are counted anew in a batch that may be delivered in part.
  if (notesEnds) firstPlace_.begin = -1;
}

// Fields.

void CaseWatch::KeepFinding(std::uint32_t variable, Kind kind, std::string_view field) {
  // Member by member: a copy of what was just put together would have to wait for its parts.
  Finding& finding = findings_.emplace_back();
  finding.variable = variable;
  finding.kind = kind;
  finding.field = field;
  odd_ = true;
}

void CaseWatch::TakeBlankUnread(std::uint32_t variable, std::string_view field) {
  if (WithoutBlanks(field).empty()) return TakeNothing(field);
  ++cells_.unreadable;
  TakeFinding(variable, Kind::kUnreadable, field);
}

void CaseWatch::TakeLong(std::uint32_t variable, std::string_view field, std::uint32_t format,
                         double value) {
  if (IsNumberFormat(format) && IsRounded(field, value)) {
    TakeFinding(variable, Kind::kRounded, field);
  }
}

void CaseWatch::TakeLong(std::uint32_t variable, std::string_view field, std::size_t width) {
  std::string_view text = field.substr(0, LengthWithoutPadding(field));
  if (leadingSpaces_) text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  if (text.size() > width) TakeFinding(variable, Kind::kCut, field);
}

void CaseWatch::TakeBlank(std::uint32_t variable, std::string_view field, std::size_t width) {
  if (!IsBlankText(field)) {
    if (field.size() > width) TakeLong(variable, field, width);
    return;
  }
  TakeNothing(field);
}

// Problems.

// Of a record that was converted.
bool CaseWatch::HasSubstitutes(const WatchedRecord& record) const {
  if (record.place.halfUnit) return true;
  // 16-bit units of which nothing was kept were ASCII.
  return !record.raw.empty() && record.text.find(origin_.substitute()) != std::string_view::npos;
}

TextOrigin& CaseWatch::Origin() {
  if (!originStarted_) {
    origin_.Start(record_.raw, record_.text, record_.mark, record_.place.halfUnit);
    originStarted_ = true;
  }
  return origin_;
}

std::int64_t CaseWatch::OffsetOf(std::size_t at) {
  if (at == 0) return record_.place.begin;
  const std::size_t raw = Origin().RawOffset(at);
  // NULs right before the text belong to it.
  const NulRun* const behind =
      std::lower_bound(record_.nulsBegin, record_.nulsEnd, raw,
                       [](const NulRun& run, std::size_t offset) { return run.at < offset; });
  const std::int64_t nuls = behind == record_.nulsBegin ? 0 : behind[-1].dropped;
  return record_.place.begin + static_cast<std::int64_t>(raw) + nuls;
}

void CaseWatch::Add(ImportProblemKind kind, std::int32_t column, bool ofField, std::int64_t byte,
                    std::int64_t amount, std::string_view text) {
  const std::uint32_t code = ProblemCode(kind, column);
  const bool detailed = batch_->problems.WantsDetail(code);
  NotedProblems::Detail detail{};
  if (detailed) {
    detail = {record_.place.line, byte, amount, batch_->problems.Keep(text)};
  }
  noted_.push_back({recordNumber_, ofField, byte, code, detailed, detail});
}

void CaseWatch::AddOfRecord(ImportProblemKind kind, std::int64_t amount, std::string_view text,
                            std::int32_t column) {
  Add(kind, column, false, record_.place.begin, amount, text);
}

void CaseWatch::AddQuotes(unsigned quotes, std::int32_t column, std::string_view field,
                          std::int64_t byte) {
  if ((quotes & FieldSplitter::kOpenQuote) != 0) {
    Add(Kind::kOpenQuote, column, true, byte, 0, field);
  }
  if ((quotes & FieldSplitter::kStrayQuote) != 0) {
    Add(Kind::kStrayQuote, column, true, byte, 0, field);
  }
}

std::int64_t CaseWatch::AmountOf(ImportProblemKind kind, std::string_view field) {
  return kind == Kind::kCut ? static_cast<std::int64_t>(LengthWithoutPadding(field)) : 0;
}

// The field was cut last. `finding`: what its conversion came to, or null.
void CaseWatch::AddFieldProblems(const Finding* finding, std::int32_t column,
                                 std::string_view field, std::size_t begin, std::size_t end) {
  const std::int64_t byte = OffsetOf(begin);
  if (finding) {
    Add(finding->kind, column, true, byte, AmountOf(finding->kind, field), field);
  }
  if (substitutes_ || undecodable_) {
    const std::int64_t count = Origin().Substitutes(begin, std::min(end, record_.text.size()));
    if (count > 0) Add(Kind::kUndecodable, column, true, byte, count, field);
  }
  AddQuotes(fields_.TakeQuotes(), column, field, byte);
}

void CaseWatch::Flush() {
  const auto before = [](const Noted& a, const Noted& b) {
    return std::tie(a.record, a.ofField, a.byte, a.code) <
           std::tie(b.record, b.ofField, b.byte, b.code);
  };
  if (!std::is_sorted(noted_.begin(), noted_.end(), before)) {
    std::stable_sort(noted_.begin(), noted_.end(), before);
  }
  for (const Noted& noted : noted_) {
    if (noted.detailed) {
      batch_->problems.Add(case_, noted.code, noted.detail);
    } else {
      batch_->problems.Add(case_, noted.code);
    }
  }
  if (notesCases_ && !noted_.empty()) {
    bytes_.record = case_;
    batch_->cases.push_back(bytes_);
  }
  noted_.clear();
}

}  // namespace textwizard
