// What a reading of a file takes for data that the command language has no words for.
#pragma once

namespace library {

struct RewritingOptions {
  // A line break inside a qualified field does not end the record; it stays in the value.
  bool joinQuotedLines = false;
  // A backslash inside a qualified field makes the next character an ordinary one.
  bool backslashEscapes = false;
  // A qualifier inside an unqualified field is an ordinary character of it.
  bool keepStrayQualifiers = false;

  // The component has to be shown other bytes than the file's. Stray qualifiers alone are its
  // observer's to ask for.
  bool RewritesBytes() const { return joinQuotedLines || backslashEscapes; }
  bool operator==(const RewritingOptions&) const = default;
};

}  // namespace library
