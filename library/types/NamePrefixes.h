// The beginnings that names of days and months have: texts that begin otherwise are neither.
#pragma once

#include <bitset>
#include <cstddef>
#include <string_view>

namespace library {

// Of English and of the process's locale at the first use. Any thread.
class NamePrefixes {
 public:
  static const NamePrefixes& Instance();

  // Whether a name can begin so. Never false of one.
  bool MayBegin(std::string_view text) const {
    if (text.size() < kLetters) return false;
    std::size_t index = 0;
    for (std::size_t i = 0; i < kLetters; ++i) {
      const unsigned letter = (static_cast<unsigned char>(text[i]) | 0x20U) - 'a';
      if (letter >= kAlphabet) return mayBeOther_;
      index = index * kAlphabet + letter;
    }
    return prefixes_.test(index);
  }

 private:
  static constexpr std::size_t kLetters = 3;
  static constexpr std::size_t kAlphabet = 26;

  NamePrefixes();
  void Add(std::string_view name);

  std::bitset<kAlphabet * kAlphabet * kAlphabet> prefixes_;
  // Some names begin with something else than three letters of ASCII.
  bool mayBeOther_ = false;
};

}  // namespace library
