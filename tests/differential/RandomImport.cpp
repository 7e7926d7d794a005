#include "tests/differential/RandomImport.h"

#include <algorithm>

namespace naive {
namespace {

class Maker {
 public:
  explicit Maker(std::uint64_t seed) : random_(seed) {}

  RandomImport Make(const std::string& path) {
    import_.command = "GET DATA /TYPE=TXT /FILE='" + path + "'";
    if (Chance(3)) import_.command += " /ENCODING='UTF8'";
    const std::size_t kind = Below(3);
    if (kind == 2) {
      Fixed();
    } else {
      Delimited(kind == 1);
    }
    import_.command += ".";
    File();
    return std::move(import_);
  }

 private:
  std::size_t Below(std::size_t bound) { return random_() % bound; }
  bool Chance(std::size_t oneIn) { return Below(oneIn) == 0; }
  template <typename T>
  const T& Any(const std::vector<T>& from) {
    return from[Below(from.size())];
  }

  // A format's name in the command, with its code and width.
  Variable AnyVariable(std::string* word) {
    Variable variable;
    const auto set = [&](const char* name, int format, std::size_t width) {
      variable.format = format;
      variable.width = width;
      *word = std::string(name) + std::to_string(width);
    };
    switch (Below(12)) {
      case 0:
      case 1:
      case 2:
        set("A", 1, 1 + Below(12));
        break;
      case 3:
        set("COMMA", 3, 8);
        break;
      case 4:
        set("DOT", 32, 8);
        break;
      case 5:
        set("DATE", 20, 11);
        break;
      case 6:
        set("ADATE", 23, 10);
        break;
      case 7:
        set("SDATE", 39, 10);
        break;
      case 8:
        set("TIME", 21, 8);
        break;
      case 9:
        set("X", 0, 4);
        *word = "4X";
        break;
      default:
        set("F", 5, 8);
    }
    return variable;
  }

  void FirstCase() {
    if (!Chance(3)) return;
    import_.settings.firstCase = 1 + static_cast<std::int64_t>(Below(3));
    import_.command += " /FIRSTCASE=" + std::to_string(import_.settings.firstCase);
  }

  void CaseLimit() {
    if (!Chance(5)) return;
    import_.settings.caseLimit = 1 + Below(4);
    import_.command += " /IMPORTCASE=FIRST " + std::to_string(*import_.settings.caseLimit);
  }

  void Delimited(bool counted) {
    static const std::vector<std::pair<char32_t, std::string>> kDelimiters = {
        {U',', ","}, {U';', ";"}, {U' ', " "}, {U'\t', "\t"}, {U'|', "|"}, {U'\u2192', "\u2192"}};
    Settings& settings = import_.settings;
    const std::size_t variables = 1 + Below(5);
    if (counted) {
      settings.lines = Lines::kCounted;
      import_.command += " /DELCASE=VARIABLES " + std::to_string(variables);
    }
    std::string text;
    for (const auto& [character, bytes] : kDelimiters) {
      if (!Chance(character == U',' ? 2 : 4)) continue;
      settings.delimiters += character;
      text += bytes;
      pieces_.insert(pieces_.end(), 4, bytes);
    }
    import_.command += " /DELIMITERS=\"" + text + "\"";
    if (Chance(2)) {
      const bool apostrophe = Chance(2);
      settings.qualifier = apostrophe ? U'\'' : U'"';
      import_.command += apostrophe ? " /QUALIFIER=\"'\"" : " /QUALIFIER='\"'";
    }
    import_.command += " /ARRANGEMENT=DELIMITED";
    if (Chance(2)) {
      settings.leadingSpaces = true;
      import_.command += " /LEADINGSPACES IGNORE=YES";
    }
    if (Chance(2)) {
      settings.multipleSpaces = true;
      import_.command += " /MULTIPLESPACES IGNORE=YES";
    }
    FirstCase();
    CaseLimit();
    import_.command += " /VARIABLES=";
    for (std::size_t i = 0; i < variables; ++i) {
      std::string word;
      import_.variables.push_back(AnyVariable(&word));
      import_.command += " v" + std::to_string(i) + " " + word;
    }
  }

  void Fixed() {
    Settings& settings = import_.settings;
    settings.lines = Lines::kFixed;
    settings.recordsPerCase = 1 + Below(3);
    import_.command += " /ARRANGEMENT=FIXED /FIXCASE=" + std::to_string(settings.recordsPerCase);
    FirstCase();
    CaseLimit();
    import_.command += " /VARIABLES=";
    const std::size_t variables = 1 + Below(5);
    std::size_t record = 1;
    for (std::size_t i = 0; i < variables; ++i) {
      // Now and then on a record that no case has.
      record = std::min<std::size_t>(record + (Chance(3) ? 1 : 0), 4);
      std::string word;
      Variable variable = AnyVariable(&word);
      variable.record = record;
      variable.start = Below(10);
      const std::size_t columns = 1 + Below(12);
      import_.command += " /" + std::to_string(record) + " v" + std::to_string(i) + " " +
                         std::to_string(variable.start) + "-" +
                         std::to_string(variable.start + columns - 1) + " " + word;
      // A range wider than the format is cut to it.
      variable.width = std::min(variable.width, columns);
      import_.variables.push_back(variable);
    }
  }

  void File() {
    static const std::vector<std::string> kValues = {
        "1",      "-2.5",      "1,234.5",  "1.234,5",      "x",
        "abc",    "31JAN2020", "01/02/20", "1/2/2020",     "20240131",
        "010220", "12:30",     "1230",     "123045",       "\"",
        "'",      " ",         "  ",       "\u00e9\u4e2d", "\U0001F600",
        "\n",     "\r\n",      "\r",       "\n",           "\n\n",
        "7"};
    static const std::vector<std::string> kLongOrEnclosed = {
        "9007199254740993", "0.30000000000000003", "\"\"", "\"a\"\"b\""};
    pieces_.insert(pieces_.end(), kValues.begin(), kValues.end());
    pieces_.insert(pieces_.end(), kLongOrEnclosed.begin(), kLongOrEnclosed.end());
    std::string text;
    for (std::size_t pieces = Below(40); pieces > 0; --pieces) text += Any(pieces_);
    const std::size_t form = Below(8);
    if (form <= 1) {
      import_.bytes = Units(text, form == 0);
      return;
    }
    if (form == 2) import_.bytes = "\xEF\xBB\xBF";
    if (form == 3) import_.bytes = Any<std::string>({"\xEF\xBB", "\xFE", "\xFF", "\xEF"});
    import_.bytes += text;
    if (form >= 5) {
      // Bytes that are no character, and NULs.
      for (std::size_t i = Below(4); i > 0; --i) {
        static const std::string kBad("\x80\xC3\xE4\xB8\xF0\xFF\0\xED", 8);
        import_.bytes.insert(Below(import_.bytes.size() + 1), 1, kBad[Below(kBad.size())]);
      }
    }
  }

  // The text in UTF-16 with its mark, now and then with odd units in it or a byte too few.
  std::string Units(const std::string& text, bool bigEndian) {
    std::u16string units = u"\uFEFF";
    for (std::size_t at = 0; at < text.size();) {
      const auto byte = [&](std::size_t i) -> char32_t {
        return static_cast<unsigned char>(text[at + i]);
      };
      char32_t c = byte(0);
      if (c < 0x80) {
        at += 1;
      } else if (c < 0xE0) {
        c = (c & 0x1F) << 6 | (byte(1) & 0x3F);
        at += 2;
      } else if (c < 0xF0) {
        c = (c & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
        at += 3;
      } else {
        c = (c & 0x07) << 18 | (byte(1) & 0x3F) << 12 | (byte(2) & 0x3F) << 6 | (byte(3) & 0x3F);
        at += 4;
      }
      if (c >= 0x10000) {
        units += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
        units += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
      } else {
        units += static_cast<char16_t>(c);
      }
    }
    if (Chance(4)) {
      static const std::u16string kOdd = {0xD800, 0xDC01, 0x0A00, 0x0D00, 0x0000, 0xFFFE};
      units.insert(1 + Below(units.size()), 1, kOdd[Below(kOdd.size())]);
    }
    std::string bytes;
    for (const char16_t unit : units) {
      const auto low = static_cast<char>(unit & 0xFF);
      const auto high = static_cast<char>(unit >> 8);
      bytes += bigEndian ? high : low;
      bytes += bigEndian ? low : high;
    }
    if (Chance(5)) bytes.pop_back();
    return bytes;
  }

  std::mt19937_64 random_;
  RandomImport import_;
  std::vector<std::string> pieces_;
};

}  // namespace

RandomImport MakeRandomImport(std::uint64_t seed, const std::string& path) {
  return Maker(seed).Make(path);
}

}  // namespace naive
