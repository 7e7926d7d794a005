// Whether a text is in one of the encodings of Chinese, Japanese and Korean.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace library {

struct MultiByteScore {
  // A name that ICU and Python know: of the smallest of the encoding's variants that has all
  // characters that occur.
  std::string name;
  // The logarithm of how likely the text is in it, on the scale of CodePageScore.
  double likelihood = 0.0;
  // Sequences that are no character.
  std::size_t invalid = 0;
  std::size_t characters = 0;
};

// All encodings, the likeliest first. `text`: lines that hold bytes above 7F.
std::vector<MultiByteScore> ScoreMultiByte(std::string_view text);

}  // namespace library
