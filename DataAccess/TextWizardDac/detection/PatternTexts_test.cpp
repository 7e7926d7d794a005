#include "detection/testing/PatternTexts.h"

#include <string_view>

namespace textwizard {

namespace {

// "9" stands for a digit, "a" for a letter, "s" for a separator, "m" for a short month name, "M"
// for a full one, "d" and "D" for day names; "~" repeats the character before it; the rest is
// itself.
constexpr std::string_view kLayouts[] = {
    "99smsa9999",
    "9sms99",
    "99m9999",
    "39-aaa-9999",
    "19/39/9999",
    "9/9/99",
    "39.19.9999",
    "9.9.99",
    "99/19/39",
    "9999/9/9",
    "9q99",
    "9 Q 9999",
    "m 99",
    "m 9999",
    "99wk99",
    "5 WK 9999",
    "D",
    "M",
    "d",
    "m",
    "9~:99",
    "-9~:59:59",
    "9:99:99.9~",
    "+99:99:99s99",
    "999 99:59",
    "-9 29:59:59",
    "99 19:59:59.9~",
    "39-m-9999 29:59",
    "9-m-9999 19:59:59",
    "19-m-9999 29:59:59.9~",
    "9999-19-39 29:59",
    "999909291959",
    "99s19s39s29s59s59",
    "99990929 29:59:59:9~",
    "9999/09/09T29:59",
    "9~:59",
    "9~ 59",
    "9~59.9~",
    "9:59,9~",
    "-9~.9~%",
    "9~%",
    "9~.99  %",
    "$9,999.99",
    "$-99,999",
    "$9~.9~ ",
    "-9,999,999.9~",
    "999,999",
    "9.999.999,99",
    "9~,9~\t",
    "9~.9~",
    "-.9%",
    "$9~",
    "9,99,999",
    "a~a~",
    "a~ 9~",
    "9~",
};

constexpr std::string_view kShortMonths[] = {"jan", "FEB", "Mar", "apr", "may", "jun", "jul",
                                             "aug", "sep", "oct", "nov", "dec", "Okt", "dez"};
constexpr std::string_view kMonths[] = {"January", "february", "MARCH",    "april",
                                        "may",     "august",   "december", "juni"};
constexpr std::string_view kShortDays[] = {"sun", "Mon", "TUE", "wed", "thu", "fri", "sat", "mo"};
constexpr std::string_view kDays[] = {"sunday",   "Monday", "TUESDAY",  "wednesday",
                                      "thursday", "friday", "saturday", "montag"};
constexpr std::string_view kSeparators[] = {"-", "/", ".", ",", " ", ":", "", "\t", "|", "T", "+"};
// Where the library and a table of bytes could differ: every ASCII control, space and digit
// neighbour, and characters beyond ASCII that are digits, spaces, line ends, letters or nothing.
constexpr std::string_view kOddities[] = {
    "\t",
    "\n",
    "\v",
    "\f",
    "\r",
    "\x1c",
    "\x1f",
    "\x7f",
    "\x01",
    "/",
    "0",
    "9",
    ":",
    "@",
    "A",
    "Z",
    "[",
    "`",
    "{",
    "|",
    "\\",
    "$",
    "%",
    "^",
    "\r\n",
    "\xc2\x85",
    "\xc2\xa0",
    "\xe2\x80\xa8",
    "\xe2\x80\xaf",
    "\xe3\x80\x80",
    "\xd9\xa3",
    "\xef\xbc\x95",
    "\xc3\xa9",
    "\xc3\xa4",
    "\xc4\xb0",
    "\xe2\x84\xaa",
    "\xf0\x9d\x9f\x97",
    "\xff",
    "\xc3",
    "\xed\xa0\x80",
    "\xcc\x81",
    "\xef\xbf\xbd",
};
constexpr std::string_view kAlphabet =
    "0000111122233344556789abcdefghijklmnopqrstuvwxyzAQqWKkTZ::://...,,,---++||$$%%   \t\n\r";

template <std::size_t N>
std::string_view Pick(std::mt19937& random, const std::string_view (&list)[N]) {
  return list[random() % N];
}

std::string Fill(std::string_view layout, std::mt19937& random) {
  std::string text;
  for (std::size_t i = 0; i < layout.size(); ++i) {
    std::size_t times = 1;
    if (i + 1 < layout.size() && layout[i + 1] == '~') times = 1 + random() % 6;
    for (; times > 0; --times) {
      switch (layout[i]) {
        case '9':
          text += static_cast<char>('0' + random() % 10);
          break;
        case '1':
        case '2':
        case '3':
        case '5':
          text += static_cast<char>('0' + random() % static_cast<unsigned>(layout[i] - '0' + 1));
          break;
        case 'a':
          text += static_cast<char>((random() % 2 ? 'a' : 'A') + random() % 26);
          break;
        case 's':
          text += Pick(random, kSeparators);
          break;
        case 'm':
          text += Pick(random, kShortMonths);
          break;
        case 'M':
          text += Pick(random, kMonths);
          break;
        case 'd':
          text += Pick(random, kShortDays);
          break;
        case 'D':
          text += Pick(random, kDays);
          break;
        default:
          text += layout[i];
      }
    }
    if (i + 1 < layout.size() && layout[i + 1] == '~') ++i;
  }
  return text;
}

void Change(std::string& text, std::mt19937& random) {
  const std::size_t at = random() % (text.size() + 1);
  switch (random() % 5) {
    case 0:
      text.insert(at, 1, kAlphabet[random() % kAlphabet.size()]);
      break;
    case 1:
      text.insert(at, Pick(random, kOddities));
      break;
    case 2:
      if (at < text.size()) text.erase(at, 1);
      break;
    case 3:
      if (at < text.size()) text[at] = kAlphabet[random() % kAlphabet.size()];
      break;
    default:
      if (at < text.size()) text.replace(at, 1, Pick(random, kOddities));
  }
}

}  // namespace

std::string RandomPatternText(std::mt19937& random) {
  std::string text;
  if (random() % 10 == 0) {
    for (auto left = random() % 12; left > 0; --left) {
      text += kAlphabet[random() % kAlphabet.size()];
    }
  } else {
    text = Fill(Pick(random, kLayouts), random);
  }
  if (random() % 2 == 0) {
    for (auto left = 1 + random() % 3; left > 0; --left) Change(text, random);
  }
  return text;
}

}  // namespace textwizard
