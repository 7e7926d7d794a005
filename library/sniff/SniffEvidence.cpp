#include "library/sniff/SniffEvidence.h"

#include <algorithm>

#include <fmt/format.h>

namespace library {
namespace {

// Bits a record by which a dialect that is even with the best one counts as half as good.
constexpr double kHalfMarginBits = 3.0;
// A certain dialect is ahead by so many bits in all, and so many a record.
constexpr double kCertainBits = 40.0;
constexpr double kCertainBitsARecord = 3.0;
constexpr double kLikelyBits = 12.0;
// Records of the modal width, as a share of all.
constexpr double kCertainShare = 0.95;
constexpr double kLikelyShare = 0.75;
constexpr std::size_t kFewestRecords = 3;
constexpr std::size_t kFewestFixedRecords = 20;

std::string Plural(std::int64_t count, const char* one, const char* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

double MarginOf(const DialectAnswer& dialect) {
  if (!dialect.runnerUp) return 1.0;
  const double ahead = dialect.runnerUpScore.bits - dialect.score.bits;
  const auto records = static_cast<double>(std::max<std::size_t>(1, dialect.score.records));
  return std::clamp(ahead / (ahead + kHalfMarginBits * records), 0.0, 1.0);
}

std::string WidthEvidence(const DialectScore& score) {
  return fmt::format("{} of {} have {}", score.modalRecords,
                     Plural(static_cast<std::int64_t>(score.records), "record", "records"),
                     Plural(static_cast<std::int64_t>(score.modalWidth), "field", "fields"));
}

void TellLineEnds(const SampleText& text, SniffResult* result) {
  std::string evidence;
  for (const auto& [kind, name] :
       {std::pair{LineEnd::kLf, "LF"}, std::pair{LineEnd::kCrLf, "CR LF"},
        std::pair{LineEnd::kCr, "CR"}}) {
    const std::int64_t count = text.lineEnds(kind);
    if (count == 0) continue;
    if (!evidence.empty()) evidence += ", ";
    evidence += fmt::format("{} {}", count, name);
  }
  result->lineEnd.evidence = evidence.empty() ? "there is no line end" : evidence;
}

void TellDialect(const SniffFindings& findings, SniffResult* result) {
  const DialectAnswer& dialect = *findings.dialect;
  const double margin = MarginOf(dialect);
  if (!result->arrangement.given) {
    result->delimiter.evidence = result->arrangement.evidence = WidthEvidence(dialect.score);
    result->delimiter.margin = result->arrangement.margin = margin;
    if (dialect.dialect.fixed()) result->arrangement.evidence = "columns of blanks in all lines";
    if (dialect.runnerUp) {
      result->delimiter.runnerUp = result->arrangement.runnerUp = fmt::format(
          "{}: {}", NameOfDelimiter(*dialect.runnerUp), WidthEvidence(dialect.runnerUpScore));
    }
  }
  const QuoteCounts& quotes = dialect.score.quotes;
  std::string evidence = quotes.qualified == 0 ? "no field begins with it"
                                               : Plural(quotes.qualified, "field", "fields");
  if (quotes.needed > 0) {
    evidence += fmt::format(", {} with a delimiter or line break within", quotes.needed);
  }
  if (findings.records->strays > 0) {
    evidence += fmt::format("; {} inside fields are data", findings.records->strays);
  }
  if (findings.records->unclosed > 0) {
    evidence += fmt::format("; {} never closed", findings.records->unclosed);
  }
  if (result->qualifier.value.empty()) evidence = "no quotes";
  result->qualifier.evidence = evidence;
  if (result->escape.value == Escape::kBackslash) {
    result->escape.evidence =
        Plural(findings.records->escapes, "character", "characters") + " behind backslashes";
  } else if (quotes.doubled > 0) {
    result->escape.evidence = Plural(quotes.doubled, "doubled qualifier", "doubled qualifiers");
  } else {
    result->escape.evidence = "no qualifier within a qualified field";
  }
}

Verdict DialectVerdict(const SniffFindings& findings, const SniffResult& result) {
  const DialectAnswer& dialect = *findings.dialect;
  if (result.arrangement.given) return Verdict::kCertain;
  const DialectScore& score = dialect.score;
  if (score.records == 0 || dialect.open || findings.cutsWords) return Verdict::kGuess;
  const double ahead = dialect.runnerUp ? dialect.runnerUpScore.bits - score.bits : kCertainBits;
  const auto records = static_cast<double>(score.records);
  const double share = static_cast<double>(score.modalRecords) / records;
  const bool clean = score.quotes.behind == 0 && score.unclosed == 0;
  const std::size_t fewest = dialect.dialect.fixed() ? kFewestFixedRecords : kFewestRecords;
  const bool elsewhere = findings.otherModal * 10 >= findings.otherRecords * 9;
  if (score.modalWidth > 1 && ahead >= kCertainBits && ahead >= kCertainBitsARecord * records &&
      share >= kCertainShare && clean && elsewhere && score.records >= fewest) {
    return Verdict::kCertain;
  }
  // Titles and notes may run across columns as values do; in a few lines, blanks are one below the
  // other by chance.
  const bool others = result.preambleLines > 0 || result.footerLines > 0;
  if (dialect.dialect.fixed() && (score.records < fewest || others)) return Verdict::kGuess;
  return ahead >= kLikelyBits && share >= kLikelyShare ? Verdict::kLikely : Verdict::kGuess;
}

}  // namespace

std::string NameOfDelimiter(const Dialect& dialect) {
  if (dialect.fixed()) return "fixed columns";
  if (dialect.multipleBlanks) return "blanks";
  const std::string& delimiter = dialect.delimiter;
  if (delimiter.empty()) return "one column";
  if (delimiter == ",") return "comma";
  if (delimiter == ";") return "semicolon";
  if (delimiter == "\t") return "tab";
  if (delimiter == " ") return "blank";
  if (delimiter == ":") return "colon";
  if (delimiter.size() == 1 && static_cast<unsigned char>(delimiter[0]) < 0x20) {
    return fmt::format("\\x{:02X}", static_cast<unsigned char>(delimiter[0]));
  }
  return delimiter;
}

std::string NameOfQualifier(const std::string& qualifier) {
  if (qualifier == "\"") return "double quote";
  if (qualifier == "'") return "apostrophe";
  return qualifier.empty() ? "none" : qualifier;
}

void TellEvidence(const SniffFindings& findings, SniffResult* result) {
  if (!findings.encoding->same.empty() && !result->encoding.given) {
    result->encoding.evidence += "; alike in";
    for (std::size_t i = 0; i < std::min<std::size_t>(3, findings.encoding->same.size()); ++i) {
      result->encoding.evidence += (i == 0 ? " " : ", ") + findings.encoding->same[i];
    }
  }
  TellLineEnds(*findings.text, result);
  TellDialect(findings, result);
  const TableShape& shape = *findings.shape;
  result->headerLines.evidence = shape.headerEvidence;
  result->firstDataLine.evidence = shape.firstEvidence;
  result->decimal.evidence = DecimalEvidence(findings.decimalWitness, findings.decimalAgainst);
}

std::string DecimalEvidence(const Witness& witness, std::int64_t against) {
  if (witness.line == 0) return "no number has a fraction";
  std::string evidence = fmt::format("{} in line {}", witness.text, witness.line);
  if (against > 0) evidence += fmt::format("; {} speak for the other", against);
  return evidence;
}

std::string WhyNoColumns(const SniffResult& result) {
  // As long as the longest mark.
  constexpr std::uint64_t kLongestMark = 4;
  if (result.fileSize == 0) return "it is empty";
  return result.byteOrderMark && result.fileSize <= kLongestMark
             ? "it holds nothing but a byte-order mark"
             : "it holds nothing but blank lines";
}

void JudgeConfidence(const SniffFindings& findings, SniffResult* result) {
  const DialectAnswer& dialect = *findings.dialect;
  const TableShape& shape = *findings.shape;
  const Verdict verdicts[] = {findings.encoding->verdict, DialectVerdict(findings, *result),
                              result->headerLines.given ? Verdict::kCertain : shape.headerVerdict,
                              result->firstDataLine.given ? Verdict::kCertain : shape.firstVerdict};
  result->verdict = *std::min_element(std::begin(verdicts), std::end(verdicts));
  result->margin = std::min(result->encoding.margin, result->delimiter.margin);
  const bool otherDialect = dialect.runnerUp.has_value() && !result->arrangement.given;
  const bool otherEncoding = !result->encoding.runnerUp.empty() && !result->encoding.given;
  if (otherDialect || otherEncoding) {
    SniffResult::RunnerUp other{result->encoding.value, result->arrangement.value,
                                result->delimiter.value, result->qualifier.value,
                                result->firstDataLine.value};
    if (otherDialect && (!otherEncoding || result->delimiter.margin <= result->encoding.margin)) {
      other.arrangement = dialect.runnerUp->fixed() ? Arrangement::kFixed : Arrangement::kDelimited;
      other.delimiter = dialect.runnerUp->delimiter;
      other.qualifier = dialect.runnerUp->qualifier;
    } else {
      other.encoding = result->encoding.runnerUp;
    }
    result->runnerUp = other;
  }
  if (result->verdict != Verdict::kGuess) return;
  if (verdicts[1] == Verdict::kGuess) {
    result->advice = "How lines are cut is a guess: give --delimiter and --qualifier, or --fixed.";
  } else if (verdicts[2] == Verdict::kGuess || verdicts[3] == Verdict::kGuess) {
    result->advice = "Where the data begins is a guess: give --first-line and --header yes|no.";
  } else {
    result->advice = "The encoding is a guess: give --encoding.";
  }
}

}  // namespace library
