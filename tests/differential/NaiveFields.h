// A record's text into fields, character by character.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tests/differential/NaiveImport.h"
#include "tests/differential/NaiveRecords.h"

namespace naive {

struct Field {
  std::string text;
  // Where it begins in the record's text, and where the next one does.
  std::size_t begin = 0;
  std::size_t end = 0;
  // A delimiter ended it, not the record.
  bool delimited = false;
  // A qualifier stands inside though the field is none that begins with one, or text stands behind
  // the closing one.
  bool strayQuote = false;
  // The record ended inside the qualifiers of a field that begins with one.
  bool openQuote = false;
  // Characters of it, delimiter included, that stand for bytes that are none.
  std::int64_t undecodable = 0;
};

class FieldCutter {
 public:
  // All outlive this.
  FieldCutter(const Settings& settings, const HostText& host) : settings_(settings), host_(host) {}

  // The next field of the record at `cursor`, which moves behind it; false when the record was used
  // up before. Positions of bytes that are no character are appended to `undecodable`, unless null.
  bool Next(const Record& record, std::size_t& cursor, Field& field,
            std::vector<std::size_t>* undecodable) const;
  // What is left is delimiters and blanks only.
  bool IsEmptyRest(const Record& record, std::size_t cursor) const;

 private:
  bool IsDelimiter(char32_t c) const {
    return settings_.delimiters.find(c) != std::u32string::npos;
  }
  bool IsQualifier(char32_t c) const { return c != 0 && c == settings_.qualifier; }
  // The character at `at`, and its length; a byte that is none counts as one.
  std::size_t CharacterAt(const std::string& text, std::size_t at, char32_t* c,
                          bool* isCharacter) const;

  const Settings& settings_;
  const HostText& host_;
};

std::string LeadingBlanksRemoved(const std::string& text);

}  // namespace naive
