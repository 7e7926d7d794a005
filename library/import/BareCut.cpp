#include "library/import/BareCut.h"

#include <algorithm>

#include <fmt/format.h>
#include <unicode/ucnv.h>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/HostText.h"
#include "reading/FieldRules.h"

namespace library {
namespace {

using namespace textwizard;

// More than a string can hold: up to the end of the line.
constexpr std::uint32_t kToEndOfLine = kMaxStringWidth;

// ICU's names of encodings, compared as ICU does.
bool IsEncoding(const std::string& name, const char* other) {
  return ucnv_compareNames(name.c_str(), other) == 0;
}

bool SetEncoding(const SniffResult& sniff, BareCut* cut, std::string* problem) {
  const std::string& name = sniff.encoding.value;
  FileEncoding& encoding = cut->cut.settings.encoding;
  if (IsEncoding(name, "UTF-8") || IsEncoding(name, "US-ASCII") || IsEncoding(name, "ASCII")) {
    encoding = kEncodingUtf8;
    return true;
  }
  if (IsEncoding(name, "UTF-16LE") || IsEncoding(name, "UTF-16") || IsEncoding(name, "UTF-16BE")) {
    const bool little = !sniff.bigEndian && !IsEncoding(name, "UTF-16BE");
    encoding = little ? kEncodingUtf16LittleEndian : kEncodingUtf16BigEndian;
    if (!sniff.byteOrderMark) cut->shownMark = little ? "\xFF\xFE" : "\xFE\xFF";
    return true;
  }
  encoding = kEncodingLocale;
  cut->host.localeCodePage = name;
  if (embedded::SetLocaleCodePage(name.c_str())) return true;
  *problem = fmt::format(
      "the encoding {} cannot be read; convert the file first: iconv -f {} -t UTF-8", name, name);
  return false;
}

// The characters of a delimiter, each once; whether blanks only stand around them.
struct DelimiterCharacters {
  std::vector<std::string> cutting;
  bool blanks = false;
};

DelimiterCharacters CharactersOf(const std::string& delimiter) {
  DelimiterCharacters found;
  for (std::size_t at = 0; at < delimiter.size();) {
    std::size_t length = 1;
    while (at + length < delimiter.size() &&
           (static_cast<unsigned char>(delimiter[at + length]) & 0xC0) == 0x80) {
      ++length;
    }
    const std::string character = delimiter.substr(at, length);
    at += length;
    if (character == " ") {
      found.blanks = true;
    } else {
      found.cutting.push_back(character);
    }
  }
  if (found.cutting.empty() && found.blanks) {
    found.cutting = {" "};
    found.blanks = false;
  }
  return found;
}

// One delimiter of several characters is as many delimiters with empty fields between them; blanks
// around it are dropped from the values.
bool SetDelimiters(const SniffResult& sniff, BareCut* cut, std::string* problem) {
  ImportSettings& settings = cut->cut.settings;
  const DelimiterCharacters found = CharactersOf(sniff.delimiter.value);
  std::vector<std::string> characters = found.cutting;
  std::sort(characters.begin(), characters.end());
  characters.erase(std::unique(characters.begin(), characters.end()), characters.end());
  if (characters.size() > FieldRules::kMaxDelimiters) {
    *problem = fmt::format("the delimiter has more than {} different characters",
                           FieldRules::kMaxDelimiters);
    return false;
  }
  for (const std::string& character : characters) settings.delimiters += character;
  settings.leadingSpaces = found.blanks || sniff.multipleBlanks;
  settings.multipleSpaces = sniff.multipleBlanks;
  const std::size_t between = found.cutting.empty() ? 0 : found.cutting.size() - 1;
  for (std::size_t column = 0; column < sniff.columns.size(); ++column) {
    if (column > 0) cut->cut.fields.resize(cut->cut.fields.size() + between, {.imported = false});
    cut->cut.fields.push_back({});
  }
  return true;
}

bool SetQualifier(const SniffResult& sniff, BareCut* cut, std::string* problem) {
  ImportSettings& settings = cut->cut.settings;
  std::string qualifier = sniff.qualifier.value;
  // Of a file that was looked at in parts, quotes may come where nobody has looked.
  const bool mayCome = qualifier.empty() && !sniff.qualifier.given && !sniff.readWhole &&
                       settings.delimiters.find('"') == std::string::npos;
  if (mayCome) qualifier = "\"";
  if (qualifier.empty()) return true;
  if (settings.delimiters.find(qualifier) != std::string::npos) {
    *problem = "the qualifier is the delimiter, too";
    return false;
  }
  settings.qualifierSet = true;
  settings.qualifier = qualifier;
  cut->quotesAreUncertain = !sniff.readWhole;
  // Line breaks and escapes are replaced byte by byte.
  const bool ascii = static_cast<unsigned char>(qualifier.front()) < 0x80;
  cut->rewriting.keepStrayQualifiers = sniff.strayQualifiers || !sniff.readWhole;
  cut->rewriting.joinQuotedLines =
      ascii && (sniff.lineBreaksInQuotes.count > 0 || !sniff.readWhole);
  cut->rewriting.backslashEscapes = ascii && sniff.escape.value == Escape::kBackslash;
  return true;
}

}  // namespace

bool CutOf(const SniffResult& sniff, BareCut* cut, std::string* problem) {
  *cut = {};
  cut->host.decimal = sniff.decimal.value;
  cut->cut.settings.firstCase = sniff.firstDataLine.value;
  if (!SetEncoding(sniff, cut, problem)) return false;
  if (sniff.arrangement.value == Arrangement::kFixed) {
    SetFixedColumns(sniff, &cut->cut);
    return true;
  }
  return SetDelimiters(sniff, cut, problem) && SetQualifier(sniff, cut, problem);
}

void SetFixedColumns(const SniffResult& sniff, ColumnCut* cut) {
  cut->settings.arrangement = kFixedColumns;
  cut->fields.clear();
  for (const SniffColumn& column : sniff.columns) {
    ColumnCut::Field field;
    field.start = static_cast<std::uint32_t>(column.range.from - 1);
    field.width = column.range.to == 0
                      ? kToEndOfLine
                      : static_cast<std::uint32_t>(column.range.to - column.range.from + 1);
    cut->fields.push_back(field);
  }
  // Nobody has said where the last one ends: with the longest line.
  if (!sniff.arrangement.given && !cut->fields.empty()) {
    cut->fields.back().width = kToEndOfLine;
  }
}

bool SetHost(const HostNeeds& needs, std::string* problem) {
  if (!embedded::SetCodePage(needs.codePage.empty() ? nullptr : needs.codePage.c_str())) {
    *problem = "there is no code page " + needs.codePage;
    return false;
  }
  if (!needs.localeCodePage.empty() && !embedded::SetLocaleCodePage(needs.localeCodePage.c_str())) {
    *problem = "there is no code page " + needs.localeCodePage;
    return false;
  }
  if (needs.decimal == DecimalCharacter::kComma) {
    iocvsetdeccharcomma_();
  } else {
    iocvsetdecchardot_();
  }
  return true;
}

}  // namespace library
