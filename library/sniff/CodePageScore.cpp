#include "library/sniff/CodePageScore.h"

#include <algorithm>

#include <unicode/uchar.h>
#include <unicode/ucnv.h>

#include "library/sniff/LetterModels.h"

namespace library {
namespace {

constexpr char32_t kNoCharacter = 0xFFFFFFFF;

struct PageName {
  const char* name;
  // How rare files in it are, as a logarithm.
  double rarity;
};

// Where two give the same characters, the earlier one is named: the ISO pages, since bytes 80 to 9F
// speak for the windows pages where they occur.
constexpr PageName kPages[] = {
    {"ISO-8859-1", 0.0},       {"windows-1252", 0.0}, {"ISO-8859-15", 3.0},  {"ISO-8859-2", 1.0},
    {"windows-1250", 1.0},     {"windows-1251", 1.0}, {"KOI8-R", 2.0},       {"KOI8-U", 3.0},
    {"ISO-8859-5", 3.0},       {"IBM866", 3.0},       {"IBM855", 5.0},       {"maccyrillic", 5.0},
    {"ISO-8859-7", 1.5},       {"windows-1253", 1.5}, {"ISO-8859-8", 1.5},   {"windows-1255", 1.5},
    {"ISO-8859-6", 2.0},       {"windows-1256", 1.5}, {"ISO-8859-9", 1.5},   {"windows-1254", 1.5},
    {"ISO-8859-4", 5.0},       {"ISO-8859-13", 4.0},  {"windows-1257", 3.5}, {"ISO-8859-3", 5.0},
    {"ISO-8859-10", 6.0},      {"ISO-8859-14", 6.0},  {"TIS-620", 1.5},      {"windows-1258", 4.0},
    {"IBM850", 5.0},           {"IBM437", 6.0},       {"IBM852", 6.0},       {"macroman", 5.0},
    {"maccentraleurope", 6.0}, {"cp737", 6.0},        {"IBM862", 6.0},       {"IBM857", 6.0},
    {"IBM775", 6.0},
};

// Logarithms of what a character that is no letter of the language is worth.
constexpr double kOtherLetter = -9.0;
constexpr double kTypographic = -3.5;
constexpr double kCommonSign = -6.0;
constexpr double kOtherSign = -9.0;
constexpr double kControl = -14.0;
constexpr double kNothing = -18.0;
// A capital behind a small letter; letters of two scripts side by side; two letters beyond ASCII
// side by side in a Latin language; a sign within a word.
constexpr double kCapitalWithin = -4.0;
constexpr double kMixedScripts = -4.0;
constexpr double kTwoAccents = -1.5;
constexpr double kSignWithin = -2.0;
constexpr double kCapital = -1.0;
constexpr double kLetterAtDigit = -4.0;

double SignWorth(char32_t ch) {
  if (ch == kNoCharacter) return kNothing;
  if (ch < 0xA0) return kControl;
  switch (ch) {
    case 0xA0:
    case 0xAB:
    case 0xBB:
    case 0x2013:
    case 0x2014:
    case 0x2018:
    case 0x2019:
    case 0x201A:
    case 0x201C:
    case 0x201D:
    case 0x201E:
    case 0x2022:
    case 0x2026:
    case 0x20AC:
      return kTypographic;
    case 0xA1:
    case 0xA3:
    case 0xA7:
    case 0xA9:
    case 0xAA:
    case 0xAE:
    case 0xB0:
    case 0xB1:
    case 0xB2:
    case 0xB3:
    case 0xB4:
    case 0xB5:
    case 0xB7:
    case 0xBA:
    case 0xBD:
    case 0xBF:
    case 0x2116:
    case 0x2122:
      return kCommonSign;
    default:
      return kOtherSign;
  }
}

// What is known of a character without a language.
struct Letter {
  char32_t ch = 0;
  char32_t lower = 0;
  Script script = Script::kNone;
  bool capital = false;
};

Letter LetterOf(char32_t ch) {
  Letter letter;
  letter.ch = ch;
  if (ch == kNoCharacter) return letter;
  letter.script = ScriptOf(ch);
  letter.lower = static_cast<char32_t>(u_tolower(static_cast<UChar32>(ch)));
  letter.capital = letter.lower != ch;
  return letter;
}

bool IsDigit(char32_t ch) { return ch >= U'0' && ch <= U'9'; }

// What two neighbours say, whatever the language.
double PairWorth(const Letter& first, const Letter& second) {
  const bool firstHigh = first.ch >= 0x80;
  const bool secondHigh = second.ch >= 0x80;
  const bool firstIs = first.script != Script::kNone;
  const bool secondIs = second.script != Script::kNone;
  double worth = 0.0;
  if (firstIs && secondIs) {
    if (first.script != second.script) worth += kMixedScripts;
    if (!first.capital && second.capital) worth += kCapitalWithin;
    if (firstHigh && secondHigh && first.script == Script::kLatin) worth += kTwoAccents;
  } else if ((firstIs && secondHigh && !secondIs) || (secondIs && firstHigh && !firstIs)) {
    worth += kSignWithin / 2;
  } else if ((firstHigh && firstIs && IsDigit(second.ch)) ||
             (secondHigh && secondIs && IsDigit(first.ch))) {
    worth += kLetterAtDigit;
  }
  return worth;
}

struct Page {
  const char* name;
  double rarity;
  std::array<Letter, 256> letters;
};

bool ReadPage(const PageName& page, Page* out) {
  UErrorCode status = U_ZERO_ERROR;
  UConverter* const converter = ucnv_open(page.name, &status);
  if (U_FAILURE(status)) return false;
  out->name = page.name;
  out->rarity = page.rarity;
  for (unsigned byte = 0; byte < 256; ++byte) {
    char32_t ch = byte;
    if (byte >= 0x80) {
      const char text = static_cast<char>(byte);
      const char* source = &text;
      UErrorCode error = U_ZERO_ERROR;
      const UChar32 got = ucnv_getNextUChar(converter, &source, source + 1, &error);
      ch = U_FAILURE(error) || got == 0xFFFD || got == 0x1A ? kNoCharacter
                                                            : static_cast<char32_t>(got);
      ucnv_reset(converter);
    }
    out->letters[byte] = LetterOf(ch);
  }
  ucnv_close(converter);
  return true;
}

const std::vector<Page>& Pages() {
  static const std::vector<Page> kRead = [] {
    std::vector<Page> pages;
    for (const PageName& name : kPages) {
      Page page;
      if (ReadPage(name, &page)) pages.push_back(page);
    }
    return pages;
  }();
  return kRead;
}

}  // namespace

void BytePairs::Add(std::string_view text) {
  unsigned char last = ' ';
  for (const char one : text) {
    const auto byte = static_cast<unsigned char>(one);
    ++bytes_[byte];
    if (byte >= 0x80) ++highBytes_;
    if (byte >= 0x80 || last >= 0x80) ++counts_[last * 256U + byte];
    last = byte;
  }
}

std::vector<BytePairs::Pair> BytePairs::Pairs() const {
  std::vector<Pair> pairs;
  for (std::size_t i = 0; i < counts_.size(); ++i) {
    if (counts_[i] == 0) continue;
    pairs.push_back(
        {static_cast<unsigned char>(i >> 8), static_cast<unsigned char>(i & 255), counts_[i]});
  }
  return pairs;
}

std::vector<CodePageScore> ScoreCodePages(const BytePairs& pairs) {
  const std::vector<BytePairs::Pair> all = pairs.Pairs();
  std::array<double, 256> count{};
  for (const BytePairs::Pair& pair : all) {
    if (pair.second >= 0x80) count[pair.second] += pair.count;
  }
  std::vector<CodePageScore> scores;
  for (const Page& page : Pages()) {
    CodePageScore score;
    score.name = page.name;
    for (unsigned byte = 0x80; byte < 256; ++byte)
      score.characters[byte - 0x80] = page.letters[byte].ch;
    double worth = -page.rarity;
    for (const BytePairs::Pair& pair : all) {
      worth += pair.count * PairWorth(page.letters[pair.first], page.letters[pair.second]);
    }
    // Only languages of the script that most of the letters are of are worth asking.
    std::array<double, 8> scripts{};
    for (unsigned byte = 0x80; byte < 256; ++byte) {
      scripts[static_cast<std::size_t>(page.letters[byte].script)] += count[byte];
    }
    scripts[static_cast<std::size_t>(Script::kNone)] = 0;
    const auto script =
        static_cast<Script>(std::max_element(scripts.begin(), scripts.end()) - scripts.begin());
    double best = -1e300;
    for (const LetterModel& model : LetterModels()) {
      if (model.script != script && (script != Script::kNone || model.script != Script::kLatin)) {
        continue;
      }
      double sum = 0.0;
      for (unsigned byte = 0x80; byte < 256; ++byte) {
        if (count[byte] == 0) continue;
        const Letter& letter = page.letters[byte];
        double one = kOtherLetter;
        const auto found = model.shares.find(letter.lower);
        if (letter.ch == kNoCharacter) {
          one = kNothing;
        } else if (found != model.shares.end()) {
          one = found->second + (letter.capital ? kCapital : 0.0);
        } else if (letter.script == Script::kNone) {
          one = SignWorth(letter.ch);
        }
        sum += count[byte] * one;
      }
      if (sum > best) {
        best = sum;
        score.language = model.language;
      }
    }
    score.likelihood = worth + best;
    scores.push_back(score);
  }
  std::stable_sort(
      scores.begin(), scores.end(),
      [](const CodePageScore& a, const CodePageScore& b) { return a.likelihood > b.likelihood; });
  return scores;
}

}  // namespace library
