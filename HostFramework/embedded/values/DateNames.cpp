#include "HostFramework/embedded/values/DateNames.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <string_view>

#include <langinfo.h>
#include <unicode/uchar.h>

#include "HostFramework/embedded/text/Utf8.h"

namespace embedded {
namespace {

constexpr int kMonths = 12;
constexpr int kDays = 7;
constexpr int kAbbreviation = 3;

constexpr const char* kEnglishMonths[kMonths] = {"January",   "February", "March",    "April",
                                                 "May",       "June",     "July",     "August",
                                                 "September", "October",  "November", "December"};
constexpr const char* kEnglishDays[kDays] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                             "Thursday", "Friday", "Saturday"};

// A name as it is compared: characters without letter case.
struct Name {
  static constexpr int kLongest = 48;

  int number = 0;
  int length = 0;
  char32_t characters[kLongest] = {};
};

bool IsBlank(char32_t character) { return u_isUWhiteSpace(static_cast<UChar32>(character)); }

// The names of one kind, those with the same initial together and longer ones first.
template <int kCapacity>
class NameList {
 public:
  constexpr NameList() = default;

  void Clear() { size_ = 0; }

  // Blanks around the name do not belong to it. A name that is there already keeps its number; one
  // that is empty or longer than any language needs is left out.
  void Add(const char32_t* characters, int length, int number) {
    while (length > 0 && IsBlank(characters[0])) {
      ++characters;
      --length;
    }
    while (length > 0 && IsBlank(characters[length - 1])) --length;
    if (length == 0 || length > Name::kLongest || size_ == kCapacity) return;
    Name name;
    name.number = number;
    name.length = length;
    std::transform(characters, characters + length, name.characters, FoldCase);
    for (int i = 0; i < size_; ++i) {
      if (names_[i].length == length &&
          std::equal(characters, characters + length, names_[i].characters,
                     [](char32_t left, char32_t right) { return FoldCase(left) == right; })) {
        return;
      }
    }
    names_[size_++] = name;
  }

  // To be called after the last Add.
  void Arrange() {
    std::sort(names_, names_ + size_, [](const Name& left, const Name& right) {
      const int leftGroup = GroupOf(left.characters[0]);
      const int rightGroup = GroupOf(right.characters[0]);
      return leftGroup != rightGroup ? leftGroup < rightGroup : left.length > right.length;
    });
    int next = 0;
    for (int group = 0; group < kGroups; ++group) {
      starts_[group] = next;
      while (next < size_ && GroupOf(names_[next].characters[0]) == group) ++next;
    }
    starts_[kGroups] = next;
    std::fill(std::begin(abbreviations_), std::end(abbreviations_), Abbreviation{});
    for (int i = 0; i < size_; ++i) AddAbbreviation(names_[i]);
  }

  int Accept(TextCursor& cursor) const {
    const std::string_view rest = cursor.Rest();
    if (rest.size() >= kAbbreviation && (rest.size() == kAbbreviation || EndsWord(rest[3]))) {
      const std::uint32_t letters = Pack(rest[0], rest[1], rest[2]);
      const Abbreviation& found = abbreviations_[SlotOf(letters)];
      if (found.letters == letters) {
        cursor.Skip(kAbbreviation);
        return found.number;
      }
    }
    TextCursor start = cursor;
    const char32_t initial = start.FoldedCharacter();
    const int group = GroupOf(initial);
    for (int i = starts_[group]; i < starts_[group + 1]; ++i) {
      const Name& name = names_[i];
      if (name.characters[0] != initial) continue;
      TextCursor at = start;
      int matched = 1;
      while (matched < name.length && at.FoldedCharacter() == name.characters[matched]) ++matched;
      if (matched == name.length) {
        cursor = at;
        return name.number;
      }
    }
    return 0;
  }

 private:
  // One group for each letter of ASCII, one for all other initials.
  static constexpr int kGroups = 27;
  static int GroupOf(char32_t initial) {
    return initial >= 'a' && initial <= 'z' ? static_cast<int>(initial - 'a') : kGroups - 1;
  }

  // Three letters of ASCII, by which nearly all dates name their month: they are found without a
  // search when no letter follows.
  struct Abbreviation {
    std::uint32_t letters = 0;
    int number = 0;
  };
  static constexpr int kSlots = 64;

  // In lower case: setting the bit makes a letter out of its capital and of nothing else.
  static std::uint32_t Pack(char first, char second, char third) {
    const auto byte = [](char c) { return std::uint32_t{static_cast<unsigned char>(c)}; };
    return byte(first) | byte(second) << 8 | byte(third) << 16 | 0x202020;
  }
  // The factor gives each English month a slot of its own.
  static std::uint32_t SlotOf(std::uint32_t letters) { return letters * 0x83868A29 >> 26; }
  // An ASCII character that is no letter.
  static bool EndsWord(char c) { return (c & 0x80) == 0 && !IsLetter(static_cast<char32_t>(c)); }
  static bool IsLetter(char32_t c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; }

  // A name stays out when a longer one goes on from it with something that ends a word, or when
  // another has its slot; then it is found by the search.
  void AddAbbreviation(const Name& name) {
    const char32_t* c = name.characters;
    if (name.length != kAbbreviation || !std::all_of(c, c + kAbbreviation, IsLetter)) return;
    for (int i = 0; i < size_; ++i) {
      const char32_t* other = names_[i].characters;
      if (names_[i].length > kAbbreviation && std::equal(c, c + kAbbreviation, other) &&
          other[kAbbreviation] < 0x80 && !IsLetter(other[kAbbreviation])) {
        return;
      }
    }
    const std::uint32_t letters =
        Pack(static_cast<char>(c[0]), static_cast<char>(c[1]), static_cast<char>(c[2]));
    Abbreviation& slot = abbreviations_[SlotOf(letters)];
    if (slot.number == 0) slot = {letters, name.number};
  }

  int size_ = 0;
  Abbreviation abbreviations_[kSlots] = {};
  int starts_[kGroups + 1] = {};
  Name names_[kCapacity] = {};
};

// The names of one locale together with the English ones.
class DateNames {
 public:
  constexpr DateNames() = default;

  // The names of the locale in force.
  static const DateNames& Current();

  const auto& months() const { return months_; }
  const auto& days() const { return days_; }

 private:
  void Read();

  // Where the locale in force keeps the first name and the name of its encoding. The C library
  // never lets go of the data of a locale that was set and never changes it, so that these two
  // places tell all that the names come from; to compare the locales' names for every value costs
  // as much as to find a name. Null before the first use.
  const char* firstName_ = nullptr;
  const char* encoding_ = nullptr;
  // Full and abbreviated, in English and in the locale, where a month can have another form when it
  // stands alone.
  NameList<6 * kMonths> months_;
  NameList<4 * kDays> days_;
};

// Decodes the character at the beginning of a text of the locale.
Character DecodeOfLocale(std::string_view text, bool isUtf8, std::mbstate_t& state) {
  if (isUtf8) return DecodeUtf8(text.data(), text.size());
  wchar_t wide = 0;
  const std::size_t bytes = std::mbrtowc(&wide, text.data(), text.size(), &state);
  if (bytes == 0 || bytes > text.size()) return {Character::kInvalid, 1};
  return {static_cast<char32_t>(wide), static_cast<int>(bytes)};
}

// Decodes a text of the locale. Returns the number of characters, or 0 when not all of it is text
// or it is longer than a name.
int Decode(std::string_view text, char32_t (&characters)[Name::kLongest]) {
  const bool isUtf8 = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
  std::mbstate_t state = {};
  int length = 0;
  while (!text.empty()) {
    const Character character = DecodeOfLocale(text, isUtf8, state);
    if (!character.IsCharacter() || length == Name::kLongest) return 0;
    characters[length++] = character.code;
    text.remove_prefix(static_cast<std::size_t>(character.length));
  }
  return length;
}

template <typename List>
void AddLocaleName(List& list, nl_item item, int number) {
  char32_t characters[Name::kLongest];
  list.Add(characters, Decode(nl_langinfo(item), characters), number);
}

template <typename List>
void AddEnglishNames(List& list, const char* name, int number) {
  char32_t characters[Name::kLongest];
  const int length = static_cast<int>(std::strlen(name));
  std::copy(name, name + length, characters);
  list.Add(characters, length, number);
  list.Add(characters, kAbbreviation, number);
}

void DateNames::Read() {
  months_.Clear();
  days_.Clear();
  // The locale's names come first, so that its meaning of a name is the one that is kept.
  for (int i = 0; i < kMonths; ++i) {
    AddLocaleName(months_, MON_1 + i, i + 1);
    AddLocaleName(months_, ABMON_1 + i, i + 1);
    AddLocaleName(months_, ALTMON_1 + i, i + 1);
    AddLocaleName(months_, _NL_ABALTMON_1 + i, i + 1);
  }
  for (int i = 0; i < kMonths; ++i) AddEnglishNames(months_, kEnglishMonths[i], i + 1);
  for (int i = 0; i < kDays; ++i) {
    AddLocaleName(days_, DAY_1 + i, i + 1);
    AddLocaleName(days_, ABDAY_1 + i, i + 1);
  }
  for (int i = 0; i < kDays; ++i) AddEnglishNames(days_, kEnglishDays[i], i + 1);
  months_.Arrange();
  days_.Arrange();
}

const DateNames& DateNames::Current() {
  static constinit thread_local DateNames names;
  const char* const firstName = nl_langinfo(MON_1);
  const char* const encoding = nl_langinfo(CODESET);
  if (names.firstName_ != firstName || names.encoding_ != encoding) {
    names.Read();
    names.firstName_ = firstName;
    names.encoding_ = encoding;
  }
  return names;
}

}  // namespace

int AcceptMonthName(TextCursor& cursor) { return DateNames::Current().months().Accept(cursor); }

int AcceptDayName(TextCursor& cursor) { return DateNames::Current().days().Accept(cursor); }

}  // namespace embedded
