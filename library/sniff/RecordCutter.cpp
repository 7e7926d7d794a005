#include "library/sniff/RecordCutter.h"

#include <algorithm>

#include "library/sniff/BlankMask.h"
#include "library/sniff/Utf8.h"

namespace library {
namespace {

// Stands for a stray qualifier, or for a character that a backslash escapes, while the splitter
// cuts; text has no such bytes.
constexpr char kStrayStand = '\x01';
constexpr char kEscapedStand = '\x02';

textwizard::ImportSettings SettingsOf(const Dialect& dialect) {
  textwizard::ImportSettings settings;
  settings.delimiters = dialect.delimiter;
  settings.qualifierSet = !dialect.qualifier.empty();
  settings.qualifier = dialect.qualifier;
  settings.multipleSpaces = settings.leadingSpaces = dialect.multipleBlanks;
  return settings;
}

}  // namespace

RecordCutter::RecordCutter(const Dialect& dialect)
    : dialect_(dialect),
      stride_(std::max<std::size_t>(1, CountUtf8(dialect.delimiter))),
      settings_(SettingsOf(dialect)),
      rules_(settings_),
      splitter_(rules_, textwizard::SplitUse::kReading, nullptr),
      scanner_(dialect) {}

// Replaces what the splitter would take for a qualifier and is none.
std::string_view RecordCutter::Prepare(std::string_view record) {
  if (dialect_.multipleBlanks) {
    record.remove_suffix(record.size() - (record.find_last_not_of(' ') + 1));
  }
  if (dialect_.qualifier.size() != 1 || record.find(dialect_.qualifier) == std::string_view::npos) {
    return record;
  }
  marks_.clear();
  scanner_.Reset();
  scanner_.Scan(record, &marks_);
  bool changed = false;
  for (const QuoteMark& mark : marks_) {
    if (mark.kind == QuoteMark::Kind::kBehind) continue;
    if (!changed) prepared_.assign(record);
    changed = true;
    if (mark.kind == QuoteMark::Kind::kStray) {
      prepared_[mark.position] = kStrayStand;
    } else if (record.substr(mark.position + 1, 1) == dialect_.qualifier) {
      prepared_[mark.position] = kEscapedStand;
      prepared_[mark.position + 1] = kStrayStand;
    }
  }
  return changed ? std::string_view(prepared_) : record;
}

// A field that outlives the splitter's buffer, with what was replaced in it put back.
std::string_view RecordCutter::Keep(std::string_view field) {
  if (keptCount_ == kept_.size()) kept_.emplace_back();
  std::string& kept = kept_[keptCount_++];
  kept.assign(field);
  if (!dialect_.qualifier.empty()) {
    std::erase(kept, kEscapedStand);
    std::replace(kept.begin(), kept.end(), kStrayStand, dialect_.qualifier[0]);
  }
  return kept;
}

std::size_t RecordCutter::Cut(std::string_view record, std::vector<Field>* fields) {
  fields->clear();
  keptCount_ = 0;
  if (dialect_.fixed()) {
    for (const CharacterRange& column : dialect_.columns) {
      fields->push_back({CutCharacters(record, column), false});
    }
    return 0;
  }
  const std::string_view text = Prepare(record);
  const bool prepared = text.data() == prepared_.data();
  splitter_.SetRecord(text);
  std::size_t unfit = 0;
  std::size_t pieces = 0;
  std::string_view field;
  std::size_t begin = 0;
  for (; splitter_.Next(field); ++pieces, begin = splitter_.offset()) {
    if (pieces % stride_ != 0) {
      unfit += field.empty() && splitter_.offset() == begin + 1 ? 0 : 1;
      continue;
    }
    const std::size_t first = std::min(text.find_first_not_of(' ', begin), text.size());
    const bool qualified = !dialect_.qualifier.empty() &&
                           text.substr(first, dialect_.qualifier.size()) == dialect_.qualifier;
    const bool isView = field.data() >= text.data() && field.data() <= text.data() + text.size();
    if (prepared || !isView) field = Keep(field);
    fields->push_back({field, qualified});
  }
  // A delimiter at the record's end begins one more field, which the splitter does not give.
  if (!dialect_.delimiter.empty() && !dialect_.multipleBlanks && !text.empty() &&
      text.ends_with(dialect_.delimiter) && pieces % stride_ == 0 &&
      !(fields->size() == 1 && fields->front().qualified)) {
    fields->push_back({});
  }
  return unfit;
}

}  // namespace library
