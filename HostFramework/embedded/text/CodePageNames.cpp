#include "HostFramework/embedded/text/CodePageNames.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <unicode/ucnv.h>

#include "HostFramework/embedded/text/CodePage.h"
#include "HostFramework/embedded/text/EditDistance.h"

namespace embedded {
namespace {

struct OtherName {
  std::string_view key;
  const char* page;
};

// Names in use that ICU lacks, or has for a page of another coding.
constexpr OtherName kOtherNames[] = {
    {"uhc", "windows-949"},     {"latin", "ISO-8859-1"}, {"latin7", "ISO-8859-13"},
    {"thai", "TIS-620"},        {"koi", "KOI8-R"},       {"chinese", "GBK"},
    {"csiso58gb231280", "GBK"}, {"isoir58", "GBK"},      {"gb231280", "GBK"},
};

// What people write before the number of a page.
constexpr std::string_view kNumberPrefixes[] = {"",   "cp",  "xcp", "win", "windows",
                                                "ms", "ibm", "dos", "oem"};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The name as names are compared: letters without case and digits, nothing else.
std::string KeyOf(std::string_view name) {
  std::string key;
  for (const char c : name) {
    const char lower = static_cast<char>(c | 0x20);
    if (IsDigit(c)) key += c;
    if (lower >= 'a' && lower <= 'z') key += lower;
  }
  return key;
}

// The number of a name that is nothing but a number and what is written before one; else empty.
std::string_view NumberOf(std::string_view key) {
  std::size_t letters = 0;
  while (letters < key.size() && !IsDigit(key[letters])) ++letters;
  const std::string_view number = key.substr(letters);
  const bool isNumber = !number.empty() && std::all_of(number.begin(), number.end(), IsDigit);
  const auto* const prefix =
      std::find(std::begin(kNumberPrefixes), std::end(kNumberPrefixes), key.substr(0, letters));
  return isNumber && prefix != std::end(kNumberPrefixes) ? number : std::string_view();
}

struct Near {
  std::size_t distance;
  std::string name;
};

// Keeps the nearest of the names that ICU has for a page, if it is near enough.
void AddNearest(const char* page, std::string_view key, std::vector<Near>& found) {
  // Two slips, but not in more than a third of the letters. A name broken off is one slip.
  const std::size_t most = std::min<std::size_t>(2, key.size() / 3);
  constexpr std::size_t kShortestBeginning = 3;
  Near nearest{most + 1, {}};
  UErrorCode error = U_ZERO_ERROR;
  const std::uint16_t count = ucnv_countAliases(page, &error);
  for (std::uint16_t i = 0; i < count && U_SUCCESS(error); ++i) {
    const std::string_view alias = ucnv_getAlias(page, i, &error);
    const std::string other = KeyOf(alias);
    const bool begins = key.size() >= kShortestBeginning && other.starts_with(key);
    const std::size_t distance =
        begins ? std::min<std::size_t>(1, other.size() - key.size()) : EditDistance(key, other);
    if (distance < nearest.distance) nearest = {distance, std::string(alias)};
  }
  if (nearest.distance <= most) found.push_back(std::move(nearest));
}

}  // namespace

std::vector<std::string> CodePageCandidates(const char* name) {
  std::vector<std::string> candidates;
  if (name == nullptr || *name == '\0') return candidates;
  candidates.emplace_back(name);
  UErrorCode error = U_ZERO_ERROR;
  for (std::uint16_t i = 0; i < ucnv_countStandards(); ++i) {
    error = U_ZERO_ERROR;
    const char* standard = ucnv_getStandard(i, &error);
    const char* page = ucnv_getCanonicalName(name, standard, &error);
    if (U_SUCCESS(error) && page != nullptr) candidates.emplace_back(page);
  }
  const std::string key = KeyOf(name);
  if (const std::string_view number = NumberOf(key); !number.empty()) {
    for (const char* prefix : {"windows-", "cp"})
      candidates.push_back(prefix + std::string(number));
  }
  for (const OtherName& other : kOtherNames) {
    if (other.key == key) candidates.emplace_back(other.page);
  }
  return candidates;
}

std::vector<std::string> NearCodePages(std::string_view name, std::size_t most) {
  const std::string key = KeyOf(name);
  std::vector<Near> found;
  if (!key.empty()) {
    for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
      AddNearest(ucnv_getAvailableName(i), key, found);
    }
  }
  std::stable_sort(found.begin(), found.end(), [](const Near& left, const Near& right) {
    return left.distance < right.distance;
  });
  std::vector<std::string> names;
  std::size_t distance = 0;
  for (const Near& near : found) {
    if (names.size() == most || (!names.empty() && near.distance > distance)) break;
    const bool isNew = std::find(names.begin(), names.end(), near.name) == names.end();
    if (!isNew || CodePage::Find(near.name.c_str()) == nullptr) continue;
    names.push_back(near.name);
    distance = near.distance;
  }
  return names;
}

}  // namespace embedded
