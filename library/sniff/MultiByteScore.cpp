#include "library/sniff/MultiByteScore.h"

#include <algorithm>
#include <iterator>

#include <unicode/ucnv.h>

namespace library {
namespace {

enum class Family { kShiftJis, kEucJp, kChinese, kBig5, kKorean };

struct Encoding {
  Family family;
  // The converter of the widest variant.
  const char* converter;
  // How rare files in it are, as a logarithm.
  double rarity;
};

constexpr Encoding kEncodings[] = {
    {Family::kShiftJis, "ms932", 1.0},  {Family::kEucJp, "EUC-JP", 4.0},
    {Family::kChinese, "GB18030", 0.0}, {Family::kBig5, "windows-950", 1.0},
    {Family::kKorean, "ms949", 1.0},
};

// Logarithms of what a character is worth.
constexpr double kInvalid = -30.0;
constexpr double kHiragana = -4.5;
constexpr double kKatakana = -5.5;
constexpr double kHalfKatakana = -7.0;
constexpr double kForeignKana = -13.0;
constexpr double kCommonCharacter = -4.5;
constexpr double kFirstLevel = -7.5;
constexpr double kSecondLevel = -11.0;
constexpr double kExtension = -14.0;
constexpr double kHangul = -6.5;
constexpr double kHanja = -10.5;
constexpr double kPunctuation = -5.0;
constexpr double kFullWidth = -6.0;
constexpr double kSign = -9.0;
constexpr double kPrivate = -18.0;

// The characters that are met most, in sorted order.
constexpr std::u32string_view kCommonHan =
    U"一上下不与中为之也了人他以们会來来個個們出到前動区却可同后和国國在地大天太好子學学對对小就工"
    U"年延得心我日时時是時會有本來樣民水法然生用的看着知社种種"
    U"経而能自行要見見說説说這这進還那部都金長關随難面頁";
constexpr std::u32string_view kCommonHangul =
    U"가고과그기나는다대도되들로를리만며면부사서수스시아어에와요으은을의이인일자장적전정주지하한해";

bool IsCommon(std::u32string_view set, char32_t ch) {
  return set.find(ch) != std::u32string_view::npos;
}

// Whether a Chinese character's lead byte is one of the rows of frequent ones.
bool IsFirstLevel(Family family, unsigned char lead) {
  switch (family) {
    case Family::kShiftJis:
      return lead >= 0x88 && lead <= 0x98;
    case Family::kEucJp:
      return lead >= 0xB0 && lead <= 0xCF;
    case Family::kChinese:
      return lead >= 0xB0 && lead <= 0xD7;
    case Family::kBig5:
      return lead >= 0xA4 && lead <= 0xC6;
    case Family::kKorean:
      break;
  }
  return false;
}

// Whether the bytes of a character belong to the encoding's oldest variant; *middle becomes false
// where they do not belong to the middle one either.
bool IsNarrow(Family family, std::string_view bytes, bool* middle) {
  if (bytes.size() == 1) return true;
  const auto lead = static_cast<unsigned char>(bytes[0]);
  const auto trail = static_cast<unsigned char>(bytes[1]);
  switch (family) {
    case Family::kShiftJis:
      return (lead >= 0x81 && lead <= 0x84) || (lead >= 0x88 && lead <= 0x9F) ||
             (lead >= 0xE0 && lead <= 0xEA);
    case Family::kEucJp:
      return true;
    case Family::kChinese:
      if (bytes.size() > 2) *middle = false;
      return bytes.size() == 2 && lead >= 0xA1 && lead <= 0xF7 && trail >= 0xA1;
    case Family::kBig5:
      return (lead >= 0xA1 && lead <= 0xC6) || (lead >= 0xC9 && lead < 0xF9) ||
             (lead == 0xF9 && trail <= 0xD5);
    case Family::kKorean:
      return lead >= 0xA1 && trail >= 0xA1;
  }
  return true;
}

double Worth(Family family, char32_t ch, std::string_view bytes, bool narrow) {
  const bool japanese = family == Family::kShiftJis || family == Family::kEucJp;
  if (ch >= 0x3041 && ch <= 0x309F) return japanese ? kHiragana : kForeignKana;
  if (ch >= 0x30A0 && ch <= 0x30FF) return japanese ? kKatakana : kForeignKana;
  if (ch >= 0xFF61 && ch <= 0xFF9F) return kHalfKatakana;
  if (ch >= 0xAC00 && ch <= 0xD7A3) {
    return IsCommon(kCommonHangul, ch) ? kCommonCharacter : narrow ? kHangul : kSecondLevel;
  }
  if ((ch >= 0x4E00 && ch <= 0x9FFF) || (ch >= 0x3400 && ch <= 0x4DBF) || ch >= 0x20000) {
    if (family == Family::kKorean) return kHanja;
    if (!narrow) return kExtension;
    if (IsCommon(kCommonHan, ch)) return kCommonCharacter;
    return IsFirstLevel(family, static_cast<unsigned char>(bytes[0])) ? kFirstLevel : kSecondLevel;
  }
  if (ch >= 0x3000 && ch <= 0x303F) return kPunctuation;
  if (ch >= 0xFF00 && ch <= 0xFF60) return kFullWidth;
  if ((ch >= 0xE000 && ch <= 0xF8FF) || ch < 0xA0) return kPrivate;
  return kSign;
}

std::string NameOf(Family family, bool narrow, bool middle) {
  switch (family) {
    case Family::kShiftJis:
      return narrow ? "Shift_JIS" : "ms932";
    case Family::kEucJp:
      return "EUC-JP";
    case Family::kChinese:
      return narrow ? "GB2312" : middle ? "GBK" : "GB18030";
    case Family::kBig5:
      return narrow ? "Big5" : "ms950";
    case Family::kKorean:
      break;
  }
  return narrow ? "EUC-KR" : "ms949";
}

MultiByteScore Score(const Encoding& encoding, std::string_view text) {
  MultiByteScore score;
  UErrorCode status = U_ZERO_ERROR;
  UConverter* const converter = ucnv_open(encoding.converter, &status);
  if (U_FAILURE(status)) {
    score.likelihood = -1e300;
    return score;
  }
  const char* at = text.data();
  const char* const end = at + text.size();
  bool narrow = true;
  bool middle = true;
  score.likelihood = -encoding.rarity;
  while (at != end) {
    if (static_cast<unsigned char>(*at) < 0x80) {
      ++at;
      continue;
    }
    const char* const begin = at;
    UErrorCode error = U_ZERO_ERROR;
    const UChar32 ch = ucnv_getNextUChar(converter, &at, end, &error);
    if (U_FAILURE(error) || ch == 0xFFFD || ch == 0x1A) {
      ++score.invalid;
      score.likelihood += kInvalid;
      ucnv_reset(converter);
      at = begin + 1;
      continue;
    }
    ++score.characters;
    const std::string_view bytes(begin, static_cast<std::size_t>(at - begin));
    const bool isNarrow = IsNarrow(encoding.family, bytes, &middle);
    narrow = narrow && isNarrow;
    score.likelihood += Worth(encoding.family, static_cast<char32_t>(ch), bytes, isNarrow);
  }
  ucnv_close(converter);
  score.name = NameOf(encoding.family, narrow, middle);
  return score;
}

}  // namespace

std::vector<MultiByteScore> ScoreMultiByte(std::string_view text) {
  std::vector<MultiByteScore> scores;
  for (const Encoding& encoding : kEncodings) scores.push_back(Score(encoding, text));
  std::stable_sort(
      scores.begin(), scores.end(),
      [](const MultiByteScore& a, const MultiByteScore& b) { return a.likelihood > b.likelihood; });
  return scores;
}

}  // namespace library
