#include "library/sniff/RecordCutter.h"

#include <algorithm>

#include "detection/BlankTrim.h"
#include "library/sniff/BlankMask.h"
#include "library/sniff/SampleRecords.h"
#include "library/sniff/Utf8.h"

namespace library {
namespace {

textwizard::ImportSettings SettingsOf(const Dialect& dialect) {
  textwizard::ImportSettings settings;
  settings.delimiters = dialect.delimiter;
  settings.qualifierSet = !dialect.qualifier.empty();
  settings.qualifier = dialect.qualifier;
  settings.keepsStrayQualifiers = true;
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
      restorer_(StandIns()) {
  if (dialect.escape == Escape::kBackslash) {
    rewriter_.emplace(QuoteRulesOf(dialect), StandIns());
  }
}

// The record as the splitter has to see it.
std::string_view RecordCutter::Prepare(std::string_view record) {
  if (dialect_.multipleBlanks) record = textwizard::TrimRight(record);
  if (!rewriter_ || record.find('\\') == std::string_view::npos) return record;
  rewritten_.assign(record);
  QuotePosition position = rewriter_->Begin();
  rewriter_->Rewrite(rewritten_.data(), rewritten_.size(), {}, position);
  return rewritten_;
}

// A field that outlives the splitter's buffer, with what was rewritten put back.
std::string_view RecordCutter::Keep(std::string_view field) {
  if (keptCount_ == kept_.size()) kept_.emplace_back();
  std::string& kept = kept_[keptCount_++];
  kept.assign(field);
  if (rewriter_) kept.resize(restorer_.RestoreInPlace(kept.data(), kept.size()));
  return kept;
}

// Counts what the qualifiers of a field did, whose bytes in the record are `raw`; whether the field
// is qualified.
bool RecordCutter::CountQuotes(std::string_view raw, std::string_view field) {
  const unsigned met = splitter_.TakeQuotes();
  const bool qualified = textwizard::TrimLeft(raw).starts_with(dialect_.qualifier);
  const bool stray = (met & textwizard::FieldSplitter::kStrayQuote) != 0;
  if (!qualified) {
    quotes_.stray += stray ? 1 : 0;
    return false;
  }
  ++quotes_.qualified;
  quotes_.behind += stray ? 1 : 0;
  const bool needed =
      field.find_first_of("\n\r") != std::string_view::npos ||
      (!dialect_.delimiter.empty() && field.find(dialect_.delimiter) != std::string_view::npos);
  quotes_.needed += needed ? 1 : 0;
  if (stray) return true;
  const auto within = std::count(field.begin(), field.end(), dialect_.qualifier.front());
  quotes_.doubled += within;
  return true;
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
  const bool rewritten = text.data() == rewritten_.data();
  const bool quotes = !dialect_.qualifier.empty() &&
                      text.find(dialect_.qualifier.front()) != std::string_view::npos;
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
    const bool qualified =
        quotes && CountQuotes(text.substr(begin, splitter_.offset() - begin), field);
    const bool isView = field.data() >= text.data() && field.data() <= text.data() + text.size();
    if (rewritten || !isView) field = Keep(field);
    fields->push_back({field, qualified});
  }
  // A delimiter at the record's end begins one more field, which the splitter does not give.
  if (!dialect_.delimiter.empty() && !dialect_.multipleBlanks && pieces > 0 &&
      splitter_.EndsInDelimiter() && pieces % stride_ == 0) {
    fields->push_back({});
  }
  splitter_.TakeQuotes();
  return unfit;
}

}  // namespace library
