#include "library/types/NamePrefixes.h"

#include <algorithm>
#include <array>

#include <langinfo.h>

#include "HostFramework/embedded/values/DateNames.h"
#include "HostFramework/embedded/values/TextCursor.h"

namespace library {
namespace {

bool IsLetter(char byte) { return (byte | 0x20) >= 'a' && (byte | 0x20) <= 'z'; }

// Whether the three letters are a name by themselves, as those of English are in their beginnings.
bool IsName(std::string_view letters) {
  embedded::TextCursor month(letters);
  if (embedded::AcceptMonthName(month) != 0 && month.AtEnd()) return true;
  embedded::TextCursor day(letters);
  return embedded::AcceptDayName(day) != 0 && day.AtEnd();
}

}  // namespace

const NamePrefixes& NamePrefixes::Instance() {
  static const NamePrefixes prefixes;
  return prefixes;
}

NamePrefixes::NamePrefixes() {
  std::array<char, kLetters> letters;
  for (letters[0] = 'a'; letters[0] <= 'z'; ++letters[0]) {
    for (letters[1] = 'a'; letters[1] <= 'z'; ++letters[1]) {
      for (letters[2] = 'a'; letters[2] <= 'z'; ++letters[2]) {
        const std::string_view text(letters.data(), letters.size());
        if (IsName(text)) Add(text);
      }
    }
  }
  for (const nl_item first : {MON_1, ABMON_1}) {
    for (int month = 0; month < 12; ++month) Add(nl_langinfo(first + month));
  }
  for (const nl_item first : {DAY_1, ABDAY_1}) {
    for (int day = 0; day < 7; ++day) Add(nl_langinfo(first + day));
  }
}

void NamePrefixes::Add(std::string_view name) {
  // Blanks around a name do not belong to it.
  name.remove_prefix(std::min(name.find_first_not_of(' '), name.size()));
  if (name.size() < kLetters || !std::all_of(name.begin(), name.begin() + kLetters, IsLetter)) {
    mayBeOther_ = true;
    return;
  }
  std::size_t index = 0;
  for (std::size_t i = 0; i < kLetters; ++i) {
    index = index * kAlphabet + (static_cast<unsigned char>(name[i]) | 0x20U) - 'a';
  }
  prefixes_.set(index);
}

}  // namespace library
