#include "library/command/CommandWords.h"

#include <algorithm>

#include "HostFramework/DACAdapter.h"
#include "entry/CommandEntry.h"

namespace library {
namespace {

// Tokens that somebody else keeps, as the component's entry reads them.
class LentTokens : public DACTokenSource {
 public:
  explicit LentTokens(const std::vector<embedded::CommandToken>& tokens) : tokens_(tokens) {}
  bool NextToken() override {
    if (current_ < tokens_.size()) ++current_;
    return current_ < tokens_.size();
  }
  int TokenKind() const override { return current_ < tokens_.size() ? tokens_[current_].kind : 0; }
  void TokenText(const char** text, int* length) const override {
    const bool any = current_ < tokens_.size();
    *text = any ? tokens_[current_].text.data() : nullptr;
    *length = any ? static_cast<int>(tokens_[current_].text.size()) : 0;
  }

 private:
  const std::vector<embedded::CommandToken>& tokens_;
  std::size_t current_ = 0;
};

}  // namespace

CommandWords::CommandWords(const std::vector<embedded::CommandToken>& tokens,
                           std::string_view source)
    : tokens_(tokens), source_(source) {
  LentTokens lent(tokens);
  text_ = textwizard::BuildCommandText(lent, &starts_);
  // A command without tokens has one start, of nothing.
  starts_.resize(tokens.size());
}

std::size_t CommandWords::FirstFrom(std::size_t offset) const {
  return static_cast<std::size_t>(std::lower_bound(starts_.begin(), starts_.end(), offset) -
                                  starts_.begin());
}

bool CommandWords::IsSlash(std::size_t token) const {
  return tokens_[token].kind == embedded::kTokenSign && tokens_[token].text == "/";
}

CommandPlace CommandWords::PlaceOf(std::size_t begin, std::size_t end) const {
  return PlaceOfTokens(FirstFrom(begin), FirstFrom(end));
}

CommandPlace CommandWords::PlaceOfSubcommand(std::size_t begin) const {
  std::size_t first = FirstFrom(begin);
  if (first < tokens_.size() && IsSlash(first)) ++first;
  std::size_t last = first;
  while (last < tokens_.size() && !IsSlash(last)) ++last;
  return PlaceOfTokens(first, last);
}

CommandPlace CommandWords::PlaceOfTokens(std::size_t first, std::size_t last) const {
  if (tokens_.empty()) return {};
  if (first >= last) {
    first = first > 0 ? first - 1 : 0;
    last = first + 1;
  }
  const embedded::CommandToken& from = tokens_[first];
  const std::size_t bytes = tokens_[last - 1].end - from.begin;
  return {from.line, from.column, std::string(source_.substr(from.begin, bytes))};
}

}  // namespace library
