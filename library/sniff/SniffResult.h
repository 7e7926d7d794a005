// How a bare file is built, how sure that is, and why.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "library/sniff/SniffSettings.h"

namespace library {

enum class Arrangement : std::uint8_t { kDelimited, kFixed };
enum class LineEnd : std::uint8_t { kLf, kCrLf, kCr, kMixed };
enum class Escape : std::uint8_t { kDouble, kBackslash, kNone };
// kCertain is said only of what is wrong in at most one answer of two hundred.
enum class Verdict : std::uint8_t { kGuess, kLikely, kCertain };

// One setting: its value, where it comes from, and what speaks for it. Texts are UTF-8.
template <typename T>
struct Setting {
  T value{};
  bool given = false;
  // In a few words: "byte-order mark", "58 of 58 records have 7 fields".
  std::string evidence;
  // The value that comes next, as a person reads it; empty when nothing else fits.
  std::string runnerUp;
  // How far ahead of the runner-up: 0 even, 1 nothing else fits.
  double margin = 1.0;
};

struct SniffColumn {
  // Valid and unique by the host's rules.
  std::string name;
  // The header's text as it stands (several header lines joined by a blank); empty without one.
  std::string label;
  // A format that reads the values of the sample, such as "F8.2", "ADATE10", "A20"; found again
  // from all values by an import.
  std::string format;
  // Characters of the line, with fixed columns only; else {0, 0}.
  CharacterRange range{0, 0};
};

// Lines that stand between or behind the records and are no data. From 1, physical.
struct OtherLine {
  enum class Kind : std::uint8_t { kBlank, kComment, kTitle, kHeader, kTotal, kNote };
  std::int64_t line = 0;
  Kind kind = Kind::kNote;
};

struct LineBreaksInQuotes {
  // In what was read; the whole file when SniffResult::readWhole.
  std::int64_t count = 0;
  // Physical line where the first of these fields begins; 0 when there is none.
  std::int64_t firstLine = 0;
};

struct SniffResult {
  // The bytes.
  std::uint64_t fileSize = 0;
  // Every byte was looked at; else head, spread blocks and tail.
  bool readWhole = true;
  // A name that ICU and Python know, such as "UTF-8", "windows-1252", "UTF-16LE".
  Setting<std::string> encoding;
  // Other encodings that decode all bytes read to the same text.
  std::vector<std::string> sameEncodings;
  bool byteOrderMark = false;
  // Of encodings whose characters have several bytes each: the first one counts most.
  bool bigEndian = false;
  Setting<LineEnd> lineEnd;

  // How a line is cut.
  Setting<Arrangement> arrangement;
  // UTF-8; several characters stand for one delimiter of several characters; "" where there is one
  // column or the columns are fixed.
  Setting<std::string> delimiter;
  // A run of the blank delimiter counts as one.
  bool multipleBlanks = false;
  Setting<std::string> qualifier;
  Setting<Escape> escape;
  LineBreaksInQuotes lineBreaksInQuotes;
  // A qualifier stands inside unqualified fields, where it is an ordinary character.
  bool strayQualifiers = false;
  // Blanks stand behind most delimiters and belong to no value: "1, Anna, Rome".
  bool leadingBlanks = false;

  // Where the data is. Lines are physical, from 1.
  // Lines above the header (above the data when there is none): titles, notes, blank lines.
  std::int64_t preambleLines = 0;
  // Lines that hold names, units and group titles of columns.
  Setting<std::int64_t> headerLines;
  Setting<std::int64_t> firstDataLine;
  // Offset in the file where that line begins.
  std::uint64_t firstDataOffset = 0;
  // Nothing when the lines could not be counted.
  std::optional<std::int64_t> lastDataLine;
  // Non-blank lines behind the data (totals, notes), and the offset where the last data line ends,
  // its line end included.
  std::int64_t footerLines = 0;
  std::uint64_t dataEndOffset = 0;
  // What stands between the records and behind them; at most kMostOtherLines are listed.
  std::vector<OtherLine> otherLines;
  static constexpr std::size_t kMostOtherLines = 1000;
  // What begins a comment line, UTF-8; empty when there are none.
  std::string comment;

  Setting<DecimalCharacter> decimal;
  std::vector<SniffColumn> columns;

  // How sure the whole is: the least sure of the settings that are not given.
  Verdict verdict = Verdict::kGuess;
  double margin = 0.0;
  // The settings that would be read next, where some differ.
  struct RunnerUp {
    std::string encoding;
    Arrangement arrangement = Arrangement::kDelimited;
    std::string delimiter;
    std::string qualifier;
    std::int64_t firstDataLine = 0;
  };
  std::optional<RunnerUp> runnerUp;
  // What a user may give where this is a guess: a sentence. Else empty.
  std::string advice;
};

}  // namespace library
