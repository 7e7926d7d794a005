#include "library/files/ColumnMatch.h"

#include <deque>
#include <unordered_map>

#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace library {
namespace {

// Places of texts, the first ones first.
class Places {
 public:
  void Add(const std::string& text, std::size_t place) { places_[text].push_back(place); }
  // The first place of the text that nobody has taken; takes it.
  std::optional<std::size_t> Take(const std::string& text, std::vector<bool>* taken) {
    const auto found = places_.find(text);
    if (found == places_.end()) return std::nullopt;
    std::deque<std::size_t>& left = found->second;
    while (!left.empty() && (*taken)[left.front()]) left.pop_front();
    if (left.empty()) return std::nullopt;
    (*taken)[left.front()] = true;
    return left.front();
  }

 private:
  std::unordered_map<std::string, std::deque<std::size_t>> places_;
};

}  // namespace

std::string ColumnKey(const std::string& label) {
  const icu::UnicodeString folded = icu::UnicodeString::fromUTF8(label).foldCase();
  icu::UnicodeString key;
  for (int32_t at = 0; at < folded.length(); at = folded.moveIndex32(at, 1)) {
    const UChar32 character = folded.char32At(at);
    if (u_isUWhiteSpace(character) == 0) key.append(character);
  }
  std::string utf8;
  return key.toUTF8String(utf8);
}

std::vector<std::optional<std::size_t>> MatchColumns(const std::vector<std::string>& labels,
                                                     const std::vector<std::string>& known) {
  Places same;
  Places alike;
  for (std::size_t i = 0; i < known.size(); ++i) {
    same.Add(known[i], i);
    alike.Add(ColumnKey(known[i]), i);
  }
  std::vector<bool> taken(known.size(), false);
  std::vector<std::optional<std::size_t>> columns(labels.size());
  for (std::size_t i = 0; i < labels.size(); ++i) columns[i] = same.Take(labels[i], &taken);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (!columns[i]) columns[i] = alike.Take(ColumnKey(labels[i]), &taken);
  }
  return columns;
}

}  // namespace library
