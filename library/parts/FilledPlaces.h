// Where the records of fixed-width lines hold text: the other places are blank in all of them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace library {

// A mask of the places (bytes of the record, from 0) that hold text in some record. One thread.
class FilledPlaces {
 public:
  // Places behind these are not looked at, and count as filled.
  static constexpr std::size_t kMost = 32768;

  void Add(std::string_view record);
  // The mask, a bit a place, the first one lowest, without zero bytes at its end; it is empty then.
  std::string Take();

  // Masks of two sets of records become that of both: in any order and grouping the same.
  static void Append(std::string_view other, std::string* mask);
  static bool Holds(std::string_view mask, std::size_t place);

 private:
  // A byte a place.
  std::vector<unsigned char> filled_;
};

}  // namespace library
