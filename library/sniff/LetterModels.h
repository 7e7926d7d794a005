// How often the letters of many languages occur: what tells apart the code pages that give the same
// bytes to different letters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace library {

enum class Script : std::uint8_t { kNone, kLatin, kCyrillic, kGreek, kHebrew, kArabic, kThai };

// The script of a letter; kNone for what is no letter of these scripts.
Script ScriptOf(char32_t ch);

// One language: the logarithms of its letters' shares. Of Latin languages only the letters beyond
// ASCII count.
struct LetterModel {
  const char* language;
  Script script;
  // By lower-case letter.
  std::unordered_map<char32_t, double> shares;
};

// All there are, made at the first call.
const std::vector<LetterModel>& LetterModels();

}  // namespace library
