// Cases as JSON Lines: one object a case, the names as keys in the order of the variables.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "library/outputs/CaseWriter.h"

namespace library {

// Numbers are JSON numbers, dates and times strings, missing values null.
class JsonLinesWriter : public CaseWriter {
 public:
  explicit JsonLinesWriter(std::vector<CaseColumn> columns);
  void WriteHeader(TextBlock&) const override {}
  void WriteCase(const OBS* obs, Utf8Converter& hostText, TextBlock& out) const override;

 private:
  const std::vector<CaseColumn> columns_;
  // Of groups of columns, with their keys.
  std::vector<std::size_t> rooms_;
  // What stands before the value of a column: its name, and what separates it from the one before.
  // A short one is copied with all bytes of `start`, whatever its length.
  struct Key {
    static constexpr std::size_t kShort = 16;
    std::string text;
    std::array<char, kShort> start{};
  };
  std::vector<Key> keys_;
};

}  // namespace library
