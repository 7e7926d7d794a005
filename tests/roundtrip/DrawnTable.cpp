#include "tests/roundtrip/DrawnTable.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <set>
#include <string_view>

namespace roundtrip {
namespace {

using Words = std::vector<std::string_view>;

const Words& WordsOf(Script script) {
  static const std::array<Words, kScripts> kWords = {{
      {"river", "mountain", "bridge", "old market", "harbour", "garden", "north gate", "yellow",
       "station", "castle", "winter road", "mill", "quiet lake", "forest", "church", "library"},
      {"Straße", "Müller", "Größe", "über den Fluß", "français", "été", "où", "garçon", "niño",
       "mañana", "coração", "não", "København", "Malmö", "öffentlich", "château fort"},
      {"Łódź", "żółty", "Gdańsk", "śnieg", "příliš", "žluťoučký", "kůň", "město", "őszi", "tűz",
       "gyűrű", "Kraków", "źródło", "dąb", "wieś nad rzeką", "střední"},
      {"город", "река и мост", "старая крепость", "улица", "площадь", "зима", "большой", "школа",
       "деревня", "северный", "остров", "рынок", "весна", "дорога", "библиотека", "дерево"},
      {"πόλη", "ποτάμι", "γέφυρα", "θάλασσα", "νησί", "βουνό", "λιμάνι", "δρόμος", "χειμώνας",
       "σχολείο", "παλιά αγορά", "κόκκινο", "δέντρο", "άνοιξη", "κήπος", "χωριό"},
      {"東京", "日本の首都です", "大阪のたべもの", "京都のお寺", "駅の近く", "山と川", "ひらがな",
       "カタカナ", "図書館", "学校の先生", "新しい道", "雪が降る", "海の魚", "古い橋", "市場",
       "春"},
      {"北京的城市", "中国的首都", "上海", "图书馆", "学校的老师", "这是一个大城市", "天气很热",
       "南方的山", "河流和桥", "公司很多", "火车站", "市场里的人", "春天来了", "新的路", "老人",
       "他们说"},
      {"서울의 거리", "대한민국", "부산 바다", "도서관", "학교 선생님", "오래된 다리", "시장",
       "기차역", "새로운 길", "겨울입니다", "강과 산", "봄이 왔습니다", "도시", "사람들", "나무",
       "하늘"},
      {"Zürich", "Москва", "東京", "Αθήνα", "Łódź", "서울", "emoji \xF0\x9F\x8C\xB3", "עברית",
       "عربي", "na\xC3\xAFve", "ไทย", "हिन्दी", "plain", "Ĳssel", "Tiếng Việt", "ქართული"},
  }};
  return kWords[static_cast<std::size_t>(script)];
}

const Words& Nulls() {
  static const Words kNulls = {"", "NA", "N/A", "NULL", "null", "NaN", "nan", ".", "-"};
  return kNulls;
}

std::string Digits(std::mt19937_64& random, std::size_t count) {
  std::string digits;
  for (std::size_t i = 0; i < count; ++i) digits += static_cast<char>('0' + Below(random, 10));
  return digits;
}

// A whole number of so many digits, without a leading zero.
std::string Whole(std::mt19937_64& random, std::size_t digits) {
  std::string text = Digits(random, digits);
  if (text.front() == '0') text.front() = '3';
  return text;
}

std::string TwoDigits(std::size_t number) {
  std::string text = std::to_string(number);
  return text.size() < 2 ? "0" + text : text;
}

struct Day {
  std::size_t year, month, day;
};

// Days from 14 October 1582 on, the first day of the calendar that counts them.
double DaysOf(const Day& date) {
  const auto leap = [](std::size_t year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  };
  static constexpr std::array<std::size_t, 12> kDays = {31, 28, 31, 30, 31, 30,
                                                        31, 31, 30, 31, 30, 31};
  // From the last day of 1582 on, which is the 78th behind the first one.
  std::size_t days = 78;
  for (std::size_t year = 1583; year < date.year; ++year) days += leap(year) ? 366 : 365;
  for (std::size_t month = 1; month < date.month; ++month) {
    days += kDays[month - 1] + (month == 2 && leap(date.year) ? 1 : 0);
  }
  return static_cast<double>(days + date.day);
}

// How the values of a column look.
class ColumnDrawing {
 public:
  ColumnDrawing(std::mt19937_64& random, const TableWishes& wishes, ColumnKind kind)
      : random_(random),
        wishes_(wishes),
        kind_(kind),
        null_(Nulls()[Chance(2) ? 0 : Draw(Nulls().size())]),
        missing_(Chance(2) ? 0 : 1 + Draw(4)),
        signs_(Chance(4)),
        digits_(1 + Draw(9)),
        fraction_(1 + Draw(6)),
        separator_(wishes.dayFirst ? "/.-"[Draw(3)] : '.'),
        paddedParts_(Chance(2)),
        seconds_(Chance(2)),
        timeSeparator_(" T"[Draw(2)]) {}

  DrawnCell Cell() {
    DrawnCell cell;
    if (kind_ == ColumnKind::kEmpty) {
      cell.missing = true;
      return cell;
    }
    if (Draw(10) < missing_) {
      // Texts have no null but nothing.
      cell.missing = true;
      cell.text = IsNumber(kind_) ? null_ : "";
      return cell;
    }
    Fill(cell);
    return cell;
  }
  DrawnCell Filled() {
    DrawnCell cell;
    Fill(cell);
    return cell;
  }

 private:
  std::size_t Draw(std::size_t bound) { return Below(random_, bound); }
  bool Chance(std::size_t of) { return Draw(of) == 0; }
  char decimal() const { return wishes_.decimalComma ? ',' : '.'; }

  void Fill(DrawnCell& cell) {
    switch (kind_) {
      case ColumnKind::kWhole:
        return Number(cell, Sign() + Whole(random_, 1 + Draw(digits_)));
      case ColumnKind::kDecimal:
        return Number(cell, Sign() + Whole(random_, 1 + Draw(6)) + Fraction(fraction_));
      case ColumnKind::kExponent:
        return Number(cell, Sign() + Whole(random_, 1) + Fraction(fraction_) + "E" +
                                (Chance(2) ? "-" : "+") + TwoDigits(1 + Draw(30)));
      case ColumnKind::kGrouped:
        return Number(cell, Grouped());
      case ColumnKind::kPercent:
        Number(cell, Sign() + Whole(random_, 1 + Draw(2)) + Fraction(fraction_));
        cell.text += "%";
        return;
      case ColumnKind::kDollar:
        Number(cell, Whole(random_, 1 + Draw(4)) + ".5");
        // Amounts in dollars have a decimal point everywhere.
        cell.text = "$" + cell.text;
        return;
      case ColumnKind::kTime:
        return Time(cell);
      case ColumnKind::kWords:
        cell.text = Text();
        return;
      case ColumnKind::kCodes:
        cell.text = std::string(1, static_cast<char>('A' + Draw(26))) + Digits(random_, 3) + "x";
        return;
      case ColumnKind::kLeadingZeros:
        cell.text = "0" + Digits(random_, 4);
        return;
      case ColumnKind::kLongNumbers:
        cell.text = Whole(random_, 18) + "1";
        return;
      default:
        return Date(cell);
    }
  }

  std::string Sign() { return signs_ && Chance(2) ? "-" : ""; }
  std::string Fraction(std::size_t digits) {
    // The last digit is none that could be left out.
    return decimal() + Digits(random_, digits - 1) + std::to_string(1 + Draw(9));
  }
  std::string Grouped() {
    const char group = wishes_.decimalComma ? '.' : ',';
    std::string text = Whole(random_, 1 + Draw(3));
    for (std::size_t groups = 1 + Draw(2); groups > 0; --groups) text += group + Digits(random_, 3);
    return Sign() + text + Fraction(2);
  }
  // The text's value is that of its digits, of which a point ends the whole ones.
  void Number(DrawnCell& cell, const std::string& text) {
    cell.text = text;
    std::string plain;
    const char point = kind_ == ColumnKind::kDollar ? '.' : decimal();
    for (const char byte : text) {
      if (byte == point) {
        plain += '.';
      } else if (byte != ',' && byte != '.') {
        plain += byte;
      }
    }
    cell.number = std::strtod(plain.c_str(), nullptr);
  }
  std::string Part(std::size_t number) {
    return paddedParts_ ? TwoDigits(number) : std::to_string(number);
  }
  void Date(DrawnCell& cell) {
    static constexpr std::array<const char*, 12> kMonths = {
        "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const Day date{1900 + Draw(150), 1 + Draw(12), 1 + Draw(28)};
    const std::string year = std::to_string(date.year);
    cell.number = DaysOf(date) * 86400;
    switch (kind_) {
      case ColumnKind::kMonthDayYear:
        cell.text = Part(date.month) + '/' + Part(date.day) + '/' + year;
        return;
      case ColumnKind::kDayMonthYear:
        cell.text = Part(date.day) + separator_ + Part(date.month) + separator_ + year;
        return;
      case ColumnKind::kNamedDate:
        cell.text = Part(date.day) + '-' + kMonths[date.month - 1] + '-' + year;
        return;
      case ColumnKind::kBlankDates:
        cell.text = Part(date.day) + ' ' + kMonths[date.month - 1] + ' ' + year;
        return;
      default:
        cell.text = year + "-" + TwoDigits(date.month) + "-" + TwoDigits(date.day);
    }
    if (kind_ != ColumnKind::kIsoDateTime) return;
    DrawnCell time;
    Time(time);
    cell.text += timeSeparator_ + time.text;
    cell.number += time.number;
  }
  void Time(DrawnCell& cell) {
    const std::size_t hour = Draw(24);
    const std::size_t minute = Draw(60);
    const std::size_t second = seconds_ ? Draw(60) : 0;
    cell.text = TwoDigits(hour) + ":" + TwoDigits(minute);
    if (seconds_) cell.text += ":" + TwoDigits(second);
    cell.number = static_cast<double>(hour * 3600 + minute * 60 + second);
  }
  std::string Text() {
    const Words& words = WordsOf(wishes_.script);
    std::string text(words[Draw(words.size())]);
    for (std::size_t more = Draw(3); more > 0; --more) {
      text += Between();
      text += words[Draw(words.size())];
    }
    return text;
  }
  std::string Between() {
    if (Chance(6) && wishes_.delimiter != 0) return std::string(1, wishes_.delimiter);
    if (Chance(8) && wishes_.qualifier != 0) {
      return " " + std::string(1, wishes_.qualifier);
    }
    if (Chance(8) && wishes_.lineBreaks) return "\n";
    return " ";
  }

  std::mt19937_64& random_;
  const TableWishes& wishes_;
  const ColumnKind kind_;
  const std::string null_;
  const std::size_t missing_;
  const bool signs_;
  const std::size_t digits_;
  const std::size_t fraction_;
  const char separator_;
  const bool paddedParts_;
  const bool seconds_;
  const char timeSeparator_;
};

// A record of nothing but missing values is a separating line to whoever sees it: there is none.
void FillRows(std::mt19937_64& random, const TableWishes& wishes, DrawnTable& table) {
  for (std::size_t row = 0; row < table.rows; ++row) {
    const bool filled =
        std::any_of(table.columns.begin(), table.columns.end(),
                    [&](const DrawnColumn& column) { return !column.cells[row].missing; });
    if (filled) continue;
    for (DrawnColumn& column : table.columns) {
      if (column.kind == ColumnKind::kEmpty) continue;
      ColumnDrawing drawing(random, wishes, ColumnKind::kWords);
      column.kind = ColumnKind::kWords;
      for (DrawnCell& cell : column.cells) cell = drawing.Filled();
      return;
    }
  }
}

constexpr std::array<std::string_view, 16> kHeaders = {
    "id",     "name",     "amount",     "Price",     "visited", "start time", "Town",  "unit price",
    "status", "Comment ", "latitude_x", "Year 2020", "total$",  "Ref-No",     "group", "kind"};

}  // namespace

std::size_t Below(std::mt19937_64& random, std::size_t bound) {
  return static_cast<std::size_t>(random() % bound);
}

DrawnTable DrawTable(std::mt19937_64& random, const TableWishes& wishes) {
  DrawnTable table;
  table.script = wishes.script;
  table.decimalComma = wishes.decimalComma;
  table.rows = 3 + Below(random, Below(random, 4) == 0 ? 150 : 30);
  const std::size_t columns = 2 + Below(random, 9);
  std::set<std::string> headers;
  for (std::size_t index = 0; index < columns; ++index) {
    DrawnColumn column;
    column.kind = static_cast<ColumnKind>(Below(random, kColumnKinds));
    if (Below(random, 4) == 0) column.kind = ColumnKind::kWords;
    // A table of nothing says nothing.
    if (column.kind == ColumnKind::kEmpty && Below(random, 3) != 0)
      column.kind = ColumnKind::kWhole;
    do {
      column.header = kHeaders[Below(random, kHeaders.size())];
      if (column.header.back() == ' ') column.header.pop_back();
      const Words& words = WordsOf(wishes.script);
      if (Below(random, 4) == 0) column.header = words[Below(random, words.size())];
    } while (!headers.insert(column.header).second);
    if (column.kind == ColumnKind::kMonthDayYear && wishes.dayFirst) {
      column.kind = ColumnKind::kDayMonthYear;
    }
    ColumnDrawing drawing(random, wishes, column.kind);
    for (std::size_t row = 0; row < table.rows; ++row) column.cells.push_back(drawing.Cell());
    table.columns.push_back(std::move(column));
  }
  FillRows(random, wishes, table);
  return table;
}

}  // namespace roundtrip
