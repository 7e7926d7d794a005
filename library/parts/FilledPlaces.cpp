#include "library/parts/FilledPlaces.h"

#include <algorithm>

namespace library {
namespace {

constexpr std::size_t kBits = 8;

}  // namespace

void FilledPlaces::Add(std::string_view record) {
  const std::size_t size = std::min(record.size(), kMost);
  if (filled_.size() < size) filled_.resize(size);
  unsigned char* const filled = filled_.data();
  const char* const bytes = record.data();
  for (std::size_t i = 0; i < size; ++i) filled[i] |= static_cast<unsigned char>(bytes[i] != ' ');
}

std::string FilledPlaces::Take() {
  std::string mask((filled_.size() + kBits - 1) / kBits, '\0');
  for (std::size_t place = 0; place < filled_.size(); ++place) {
    const unsigned bit = unsigned{filled_[place]} << place % kBits;
    mask[place / kBits] = static_cast<char>(static_cast<unsigned char>(mask[place / kBits]) | bit);
  }
  mask.erase(mask.find_last_not_of('\0') + 1);
  filled_.clear();
  return mask;
}

void FilledPlaces::Append(std::string_view other, std::string* mask) {
  if (mask->size() < other.size()) mask->resize(other.size());
  for (std::size_t i = 0; i < other.size(); ++i) {
    const unsigned both = static_cast<unsigned char>((*mask)[i]) |
                          static_cast<unsigned>(static_cast<unsigned char>(other[i]));
    (*mask)[i] = static_cast<char>(both);
  }
}

bool FilledPlaces::Holds(std::string_view mask, std::size_t place) {
  if (place >= kMost) return true;
  if (place / kBits >= mask.size()) return false;
  return (static_cast<unsigned char>(mask[place / kBits]) >> place % kBits & 1U) != 0;
}

}  // namespace library
