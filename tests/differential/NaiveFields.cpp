#include "tests/differential/NaiveFields.h"

namespace naive {

std::string LeadingBlanksRemoved(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? std::string() : text.substr(first);
}

std::size_t FieldCutter::CharacterAt(const std::string& text, std::size_t at, char32_t* c,
                                     bool* isCharacter) const {
  const std::size_t length = host_.Decode(text, at, c);
  *isCharacter = length > 0;
  if (*isCharacter) return length;
  *c = static_cast<unsigned char>(text[at]);
  return 1;
}

bool FieldCutter::Next(const Record& record, std::size_t& cursor, Field& result,
                       std::vector<std::size_t>* undecodable) const {
  result = Field();
  result.begin = cursor;
  const std::string& text = record.text;
  if (cursor >= text.size()) return false;
  std::string& field = result.text;
  const bool blankCuts = IsDelimiter(U' ');
  int state = 0;
  bool ended = false;
  // The field begins with a qualifier, blanks before it aside.
  bool qualified = false;
  // Bytes of each character of the field.
  std::vector<std::size_t> lengths;
  while (!ended && cursor < text.size()) {
    char32_t c = 0;
    bool isCharacter = false;
    const std::size_t length = CharacterAt(text, cursor, &c, &isCharacter);
    if (!isCharacter && undecodable) undecodable->push_back(cursor);
    if (!isCharacter || record.substitutes[cursor]) ++result.undecodable;
    const std::string bytes = text.substr(cursor, length);
    cursor += length;
    const std::size_t before = field.size();
    const bool blankSoFar = LeadingBlanksRemoved(field).empty();
    switch (state) {
      case 0:
        if (c == U' ' && blankCuts && (settings_.multipleSpaces || settings_.leadingSpaces)) {
          field += ' ';
        } else if (IsDelimiter(c)) {
          ended = true;
        } else if (IsQualifier(c)) {
          qualified = true;
          state = 2;
        } else {
          field += bytes;
          state = 1;
        }
        break;
      case 1:
        if (c == U' ' && blankCuts) {
          const char next = cursor < text.size() ? text[cursor] : '\0';
          const bool otherDelimiter =
              next != ' ' && next != '\0' && IsDelimiter(static_cast<unsigned char>(next));
          ended = !(otherDelimiter && settings_.multipleSpaces);
        } else if (IsDelimiter(c)) {
          ended = true;
        } else if (IsQualifier(c) && !qualified && !blankSoFar && settings_.keepsStrayQualifiers) {
          field += bytes;
        } else if (IsQualifier(c)) {
          if (!qualified && blankSoFar) {
            qualified = true;
          } else {
            result.strayQuote = true;
          }
          if (!field.empty() && field.front() == ' ') {
            field.resize(field.size() - lengths.back());
            lengths.pop_back();
          }
          state = 2;
        } else {
          // Behind a closing qualifier.
          if (qualified && c != U' ') result.strayQuote = true;
          field += bytes;
        }
        break;
      case 2:
        if (IsQualifier(c)) {
          state = 3;
        } else {
          field += bytes;
        }
        break;
      default:
        if (IsQualifier(c)) {
          field += bytes;
          state = 2;
        } else if (IsDelimiter(c)) {
          ended = true;
        } else {
          if (qualified && c != U' ') result.strayQuote = true;
          state = 1;
        }
    }
    if (field.size() > before) lengths.push_back(field.size() - before);
  }
  result.openQuote = !ended && state == 2 && qualified;
  result.delimited = ended;
  result.end = cursor;
  if (settings_.leadingSpaces) field = LeadingBlanksRemoved(field);
  if (settings_.multipleSpaces && blankCuts) {
    for (std::size_t at; (at = field.find("  ")) != std::string::npos;) field.erase(at, 1);
  }
  return true;
}

bool FieldCutter::IsEmptyRest(const Record& record, std::size_t cursor) const {
  while (cursor < record.text.size()) {
    char32_t c = 0;
    bool isCharacter = false;
    cursor += CharacterAt(record.text, cursor, &c, &isCharacter);
    if (c != U' ' && !IsDelimiter(c)) return false;
  }
  return true;
}

}  // namespace naive
