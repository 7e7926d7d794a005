// The cursor over a command's text, and the readers that move it. Text is host text and is walked
// character by character; white space is blank, tab, CR and LF. No reader goes past the end of the
// text, and each costs no more than the text it moves over. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace textwizard {

inline constexpr std::size_t kNoLimit = std::string_view::npos;

// True when `word` is `keyword`, in any letter case.
bool IsKeyword(const std::string& word, const char* keyword);
// The decimal integer, with or without a sign, at the start of `text`; 0 when there is none, the
// nearest limit of the type when it is too large.
std::int64_t LeadingInteger(std::string_view text);
// The number, with or without a sign, at the start of `text`; 0 when there is none. *whole, when
// given, tells whether it is a finite number and all of the text.
double LeadingNumber(std::string_view text, bool* whole = nullptr);
// The first characters of `text` that take no more than `bytes` bytes.
std::string_view WholeCharacters(const char* text, std::size_t bytes);
// Bytes of `text` before the first character that is in `set` (ASCII characters), or before its
// end.
std::size_t SpanUpTo(const char* text, const char* set);

class SyntaxScanner {
 public:
  // No text: every reader finds its end.
  SyntaxScanner() : SyntaxScanner("") {}
  // Keeps a copy of `text`.
  explicit SyntaxScanner(const char* text) : text_(text), cursor_(text_.c_str()) {}
  SyntaxScanner(const SyntaxScanner&) = delete;
  SyntaxScanner& operator=(const SyntaxScanner&) = delete;

  // What is still to be read, up to the terminator of the text.
  const char* cursor() const { return cursor_; }
  // Moves the cursor to a place between itself and the end.
  void MoveTo(const char* place) { cursor_ = place; }
  // True at the full stop that ends a command, and at the end of the text.
  bool AtEnd() const { return *cursor_ == '\0' || *cursor_ == '.'; }

  void SkipWhiteSpace() { SkipWhiteSpace(cursor_); }
  static void SkipWhiteSpace(const char*& p);

  // The next word: what stands after white space up to white space or the end. Steps over the one
  // character that ends it. The view is into the text.
  static std::string_view GetNextWord(const char*& p);
  // The same at the cursor; of a word longer than `limit` bytes only the characters that fit.
  std::string_view ParseWord(std::size_t limit = kNoLimit);
  // The rest of the line, without skipping white space; steps over the CR or LF that ends it. The
  // limit is as for ParseWord.
  std::string_view ParseDelims(std::size_t limit = kNoLimit);
  // The run of digits after white space as a number, 0 without one; steps over one character more.
  int ParseInt();
  // The next word as a number.
  double ParseNumber();

  // --- For a host that scans a text of its own; the parser takes its literals as the host quotes
  // them A value in quotes at `p`, with its quotes: up to the last quote of the kind that it opens
  // with in the whole text. Empty, and nothing is read, when `p` is not at a quote or no other
  // follows.
  static std::string_view GetDelimiters(const char*& p);
  // Takes the quotes off a value that opens with one; it ends at the next quote of the same kind.
  static void StripQuotes(std::string& value);
  // Replaces the text by its first word.
  static void StripSpaces(std::string& value);

 private:
  std::string text_;
  const char* cursor_;
};

}  // namespace textwizard
