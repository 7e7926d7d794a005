#include "HostFramework/embedded/command/CommandLanguage.h"

#include <algorithm>
#include <iterator>

#include "HostFramework/Text.h"

namespace embedded {
namespace {

// What the host reads itself before it hands a command over.
constexpr std::string_view kOpening[] = {"GET", "DATA", "/", "TYPE", "=", "TXT", "/"};
constexpr std::size_t kVerbWords = 2;
constexpr std::size_t kTypeValue = 5;
constexpr std::string_view kWayOut = "only GET DATA /TYPE=TXT / is a command here";
constexpr std::size_t kLongestQuotation = 40;
// The byte-order mark of UTF-8.
constexpr std::string_view kMark = "\xEF\xBB\xBF";

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}
bool IsLineEnd(char c) { return c == '\n' || c == '\r'; }
bool IsSign(char c) { return c == '/' || c == '=' || c == '(' || c == ')'; }
bool IsQuote(char c) { return c == '\'' || c == '"'; }
bool EndsWord(char c) { return IsBlank(c) || IsSign(c) || IsQuote(c); }
bool ContinuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

char UpperCase(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool Matches(const CommandToken& token, std::string_view upperCase) {
  return token.kind != kTokenLiteral &&
         std::equal(token.text.begin(), token.text.end(), upperCase.begin(), upperCase.end(),
                    [](char left, char right) { return UpperCase(left) == right; });
}

// A token as a message shows it: in quotation marks, and cut when it is long.
std::string Shown(const CommandToken& token) {
  std::size_t length = token.text.size();
  if (length > kLongestQuotation) {
    length = kLongestQuotation;
    while (length > 0 && ContinuesCharacter(token.text[length])) --length;
  }
  return '"' + token.text.substr(0, length) + (length < token.text.size() ? "...\"" : "\"");
}

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

// What is wrong with `token` where word `index` of the opening is expected.
std::string OpeningProblem(std::size_t index, const CommandToken& token) {
  if (index < kVerbWords) {
    const std::string verb = index > 0 ? "GET followed by " : "";
    return "unknown command: " + verb + Shown(token) + "; " + std::string(kWayOut);
  }
  if (index == kTypeValue) return "TYPE must be TXT, not " + Shown(token);
  return Shown(token) + " stands where " + Quoted(kOpening[index]) + " is expected; " +
         std::string(kWayOut);
}

}  // namespace

CommandReader::CommandReader(std::string_view text)
    : text_(text), markBytes_(text.starts_with(kMark) ? kMark.size() : 0), utf8_(qUTF8mode()) {
  text_.remove_prefix(markBytes_);
}

bool CommandReader::Next(ParsedCommand& command) {
  command.ok = false;
  command.error.clear();
  command.tokens.clear();
  // A full stop alone ends nothing.
  Item item;
  do {
    item = Read();
  } while (item == Item::kCommandEnd);
  if (item == Item::kTextEnd) return false;

  const Place start = place_;
  for (std::size_t index = 0;; ++index, item = Read()) {
    switch (item) {
      case Item::kToken:
        if (index >= std::size(kOpening)) {
          command.tokens.push_back(std::move(token_));
        } else if (!Matches(token_, kOpening[index])) {
          Fail(command, place_, OpeningProblem(index, token_));
          Recover();
          return true;
        }
        break;
      case Item::kOpenLiteral:
        Fail(command, place_, "the literal that begins here is never closed");
        Recover();
        return true;
      case Item::kOpenComment:
        Fail(command, place_, "the comment that begins here is never closed");
        return true;
      case Item::kCommandEnd:
      case Item::kTextEnd:
        if (index < std::size(kOpening)) {
          Fail(command, place_,
               "the command ends where " + Quoted(kOpening[index]) + " is expected; " +
                   std::string(kWayOut));
          return true;
        }
        command.ok = true;
        command.line = start.line;
        command.column = start.column;
        return true;
    }
  }
}

void CommandReader::Fail(ParsedCommand& command, Place place, const std::string& problem) {
  command.tokens.clear();
  command.line = place.line;
  command.column = place.column;
  command.error = "line " + std::to_string(place.line) + ", column " +
                  std::to_string(place.column) + ": " + problem;
}

void CommandReader::Recover() {
  for (;;) {
    switch (Read()) {
      case Item::kToken:
      case Item::kOpenLiteral:
        break;
      case Item::kCommandEnd:
      case Item::kTextEnd:
      case Item::kOpenComment:
        return;
    }
  }
}

CommandReader::Item CommandReader::Read() {
  if (!SkipBlanks()) {
    MoveTo(text_.size());
    return Item::kOpenComment;
  }
  place_ = here_;
  if (position_ == text_.size()) return Item::kTextEnd;
  const char first = text_[position_];
  if (first == '.' && LineEndsAt(position_ + 1)) {
    MoveTo(position_ + 1);
    return Item::kCommandEnd;
  }
  const std::size_t begin = position_;
  token_.line = place_.line;
  token_.column = place_.column;
  if (IsQuote(first)) {
    if (!ReadLiteral()) return Item::kOpenLiteral;
  } else if (IsSign(first)) {
    token_.kind = kTokenSign;
    token_.text.assign(1, first);
    MoveTo(position_ + 1);
  } else {
    ReadWord();
  }
  EndToken(begin);
  return Item::kToken;
}

void CommandReader::EndToken(std::size_t begin) {
  token_.begin = markBytes_ + begin;
  token_.end = markBytes_ + position_;
}

bool CommandReader::SkipBlanks() {
  for (;;) {
    std::size_t end = position_;
    while (end < text_.size() && IsBlank(text_[end])) ++end;
    MoveTo(end);
    if (text_.substr(end, 2) != "/*") return true;
    place_ = here_;
    const std::size_t close = text_.find("*/", end + 2);
    if (close == std::string_view::npos) return false;
    MoveTo(close + 2);
  }
}

// Nothing but blanks and comments follows to the end of the line.
bool CommandReader::LineEndsAt(std::size_t position) const {
  while (position < text_.size()) {
    if (IsLineEnd(text_[position])) return true;
    if (IsBlank(text_[position])) {
      ++position;
    } else if (text_.substr(position, 2) == "/*") {
      const std::size_t close = text_.find("*/", position + 2);
      if (close == std::string_view::npos) return true;
      const std::string_view comment = text_.substr(position, close - position);
      if (std::any_of(comment.begin(), comment.end(), IsLineEnd)) return true;
      position = close + 2;
    } else {
      return false;
    }
  }
  return true;
}

void CommandReader::ReadWord() {
  std::size_t end = position_;
  while (end < text_.size() && !EndsWord(text_[end])) ++end;
  if (text_[end - 1] == '.' && LineEndsAt(end)) --end;
  token_.kind = kTokenWord;
  token_.text.assign(text_, position_, end - position_);
  MoveTo(end);
}

// Reads a literal; when it is never closed, steps over its quote only and returns false.
bool CommandReader::ReadLiteral() {
  const char quote = text_[position_];
  token_.kind = kTokenLiteral;
  token_.text.clear();
  for (std::size_t from = position_ + 1;;) {
    const std::size_t close = text_.find(quote, from);
    if (close == std::string_view::npos) {
      MoveTo(position_ + 1);
      return false;
    }
    token_.text.append(text_, from, close - from);
    if (close + 1 == text_.size() || text_[close + 1] != quote) {
      MoveTo(close + 1);
      return true;
    }
    token_.text += quote;
    from = close + 2;
  }
}

void CommandReader::MoveTo(std::size_t position) {
  for (; position_ < position; ++position_) {
    const char c = text_[position_];
    const bool beforeLineFeed = position_ + 1 < text_.size() && text_[position_ + 1] == '\n';
    if (c == '\n' || (c == '\r' && !beforeLineFeed)) {
      ++here_.line;
      here_.column = 1;
    } else if (!utf8_ || !ContinuesCharacter(c)) {
      ++here_.column;
    }
  }
}

}  // namespace embedded
