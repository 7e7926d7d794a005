#include "tests/roundtrip/DrawnFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <string_view>
#include <vector>

#include <iconv.h>

namespace roundtrip {
namespace {

using namespace std::string_view_literals;

struct Encoding {
  const char* name;
  std::string_view mark;
  Script script;
};

// Any script is written in an encoding of all characters; others have theirs.
constexpr Encoding kUnicode[] = {
    {"UTF-8", ""sv, Script::kMixed},
    {"UTF-8", ""sv, Script::kMixed},
    {"UTF-8", ""sv, Script::kMixed},
    {"UTF-8", "\xEF\xBB\xBF"sv, Script::kMixed},
    {"UTF-16LE", "\xFF\xFE"sv, Script::kMixed},
    {"UTF-16BE", "\xFE\xFF"sv, Script::kMixed},
    {"UTF-32LE", "\xFF\xFE\0\0"sv, Script::kMixed},
    {"UTF-32BE", ""sv, Script::kMixed},
    {"UTF-16LE", ""sv, Script::kMixed},
    {"UTF-16BE", ""sv, Script::kMixed},
};
constexpr Encoding kPages[] = {
    {"CP1252", ""sv, Script::kWestern},       {"ISO-8859-1", ""sv, Script::kWestern},
    {"CP1250", ""sv, Script::kCentral},       {"ISO-8859-2", ""sv, Script::kCentral},
    {"CP1251", ""sv, Script::kCyrillic},      {"KOI8-R", ""sv, Script::kCyrillic},
    {"CP1253", ""sv, Script::kGreek},         {"SHIFT_JIS", ""sv, Script::kJapanese},
    {"ISO-2022-JP", ""sv, Script::kJapanese}, {"EUC-JP", ""sv, Script::kJapanese},
    {"GB18030", ""sv, Script::kChinese},      {"EUC-KR", ""sv, Script::kKorean},
};

// UTF-8 in another encoding, which has to have all its characters.
std::string Encoded(const std::string& text, const std::string& encoding) {
  if (encoding == "UTF-8") return text;
  const iconv_t converter = iconv_open(encoding.c_str(), "UTF-8");
  if (converter == reinterpret_cast<iconv_t>(-1)) throw std::runtime_error("no " + encoding);
  std::string bytes(4 * text.size() + 16, '\0');
  std::string source = text;
  char* from = source.data();
  char* to = bytes.data();
  std::size_t left = source.size();
  std::size_t room = bytes.size();
  const bool done = iconv(converter, &from, &left, &to, &room) != static_cast<std::size_t>(-1) &&
                    iconv(converter, nullptr, nullptr, &to, &room) != static_cast<std::size_t>(-1);
  iconv_close(converter);
  if (!done) throw std::runtime_error("not in " + encoding + ": " + text.substr(0, 40));
  bytes.resize(bytes.size() - room);
  return bytes;
}

// Characters of UTF-8.
std::size_t LengthOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
  }));
}

class Writer {
 public:
  explicit Writer(const DrawnFile& file) : dialect_(file.dialect), table_(file.table) {}

  std::string Text() {
    for (int line = 0; line < dialect_.titles; ++line) {
      text_ += line == 0 ? "Report of the survey" : "All stations of the north";
      text_ += dialect_.lineEnd;
    }
    if (dialect_.fixed) MeasureColumns();
    if (dialect_.header) {
      for (std::size_t i = 0; i < table_.columns.size(); ++i)
        Field(i, table_.columns[i].header, true);
      text_ += dialect_.lineEnd;
    }
    for (std::size_t row = 0; row < table_.rows; ++row) {
      for (std::size_t i = 0; i < table_.columns.size(); ++i) {
        const DrawnColumn& column = table_.columns[i];
        Field(i, column.cells[row].text, !IsNumber(column.kind));
      }
      if (row + 1 < table_.rows || dialect_.lastLineEnd) text_ += dialect_.lineEnd;
    }
    return text_;
  }

 private:
  void MeasureColumns() {
    for (const DrawnColumn& column : table_.columns) {
      std::size_t width = dialect_.header ? LengthOf(column.header) : 1;
      for (const DrawnCell& cell : column.cells) width = std::max(width, LengthOf(cell.text));
      widths_.push_back(width);
    }
  }
  void Field(std::size_t index, const std::string& value, bool isText) {
    if (!dialect_.fixed) {
      if (index > 0) text_ += dialect_.delimiter;
      Delimited(value, isText);
      return;
    }
    if (index > 0) text_ += "  ";
    const std::string padding(widths_[index] - LengthOf(value), ' ');
    // Numbers stand at the right, what names them does, too.
    text_ += IsNumber(table_.columns[index].kind) ? padding + value : value + padding;
  }
  void Delimited(const std::string& value, bool isText) {
    const std::string special = std::string(1, dialect_.delimiter) +
                                (dialect_.qualifier == 0 ? ' ' : dialect_.qualifier) + "\n";
    const bool needed = value.find_first_of(special) != std::string::npos;
    if (dialect_.qualifier == 0 || (!needed && !(dialect_.quotesAll && isText))) {
      text_ += value;
      return;
    }
    text_ += dialect_.qualifier;
    for (const char byte : value) {
      if (byte == dialect_.qualifier) text_ += dialect_.backslash ? '\\' : dialect_.qualifier;
      text_ += byte;
    }
    text_ += dialect_.qualifier;
  }

  const DrawnDialect& dialect_;
  const DrawnTable& table_;
  std::vector<std::size_t> widths_;
  std::string text_;
};

void DrawDialect(std::mt19937_64& random, DrawnDialect* dialect, TableWishes* wishes) {
  const auto draw = [&](std::size_t bound) { return Below(random, bound); };
  const bool page = draw(3) == 0;
  const Encoding& encoding =
      page ? kPages[draw(std::size(kPages))] : kUnicode[draw(std::size(kUnicode))];
  dialect->encoding = encoding.name;
  dialect->mark = encoding.mark;
  wishes->script = page ? encoding.script : static_cast<Script>(draw(kScripts));
  if (draw(3) == 0) wishes->script = Script::kAscii;
  dialect->lineEnd = draw(2) == 0 ? "\n" : draw(4) == 0 ? "\r" : "\r\n";
  dialect->fixed = draw(12) == 0;
  dialect->delimiter = ",,,;;\t\t|:^~"[draw(11)];
  dialect->qualifier = "\"\"\"\"'\0"[draw(6)];
  dialect->backslash = dialect->qualifier != 0 && draw(6) == 0;
  dialect->quotesAll = draw(3) == 0;
  dialect->header = draw(4) != 0;
  dialect->lastLineEnd = draw(5) != 0;
  dialect->titles = draw(12) == 0 ? 1 + static_cast<int>(draw(2)) : 0;
  wishes->dayFirst = draw(2) == 0;
  wishes->decimalComma = dialect->delimiter != ',' && draw(3) == 0;
  if (dialect->fixed || dialect->qualifier == 0) return;
  wishes->delimiter = dialect->delimiter;
  wishes->qualifier = dialect->qualifier;
  wishes->lineBreaks = draw(4) == 0;
}

bool IsVisible(const DrawnColumn& column) {
  return std::any_of(column.cells.begin(), column.cells.end(),
                     [](const DrawnCell& cell) { return !cell.text.empty(); });
}

// A text that is a value of its column as well names nothing to who sees the file.
bool IsNamedLikeAValue(const DrawnColumn& column) {
  return std::any_of(column.cells.begin(), column.cells.end(),
                     [&](const DrawnCell& cell) { return cell.text == column.header; });
}

// Without quotes nothing may hold the delimiter; a fixed column of blanks is there by its name
// only.
bool CanBeWritten(const DrawnFile& file) {
  if (file.dialect.header &&
      std::all_of(file.table.columns.begin(), file.table.columns.end(), IsNamedLikeAValue)) {
    return false;
  }
  if (file.dialect.fixed) {
    return file.dialect.header ||
           std::all_of(file.table.columns.begin(), file.table.columns.end(), IsVisible);
  }
  if (file.dialect.qualifier != 0) return true;
  for (const DrawnColumn& column : file.table.columns) {
    if (column.header.find(file.dialect.delimiter) != std::string::npos) return false;
    for (const DrawnCell& cell : column.cells) {
      if (cell.text.find(file.dialect.delimiter) != std::string::npos) return false;
    }
  }
  return true;
}

}  // namespace

DrawnFile DrawFile(std::uint64_t number) {
  std::mt19937_64 random(number);
  DrawnFile file;
  TableWishes wishes;
  do {
    file = {};
    wishes = {};
    DrawDialect(random, &file.dialect, &wishes);
    file.table = DrawTable(random, wishes);
  } while (!CanBeWritten(file));
  file.bytes = file.dialect.mark + Encoded(Writer(file).Text(), file.dialect.encoding);
  return file;
}

std::string Describe(const DrawnFile& file) {
  const DrawnDialect& dialect = file.dialect;
  std::string text = dialect.encoding + (dialect.mark.empty() ? "" : " with mark");
  text += dialect.lineEnd == "\n" ? ", LF" : dialect.lineEnd == "\r" ? ", CR" : ", CR LF";
  if (dialect.fixed) {
    text += ", fixed";
  } else {
    text += std::string(", delimiter ") +
            (dialect.delimiter == '\t' ? "\\t" : std::string(1, dialect.delimiter));
    text += std::string(", qualifier ") +
            (dialect.qualifier == 0 ? "none" : std::string(1, dialect.qualifier));
    if (dialect.backslash) text += ", backslashes";
  }
  if (!dialect.header) text += ", no header";
  if (dialect.titles > 0) text += ", " + std::to_string(dialect.titles) + " titles";
  if (file.table.decimalComma) text += ", decimal comma";
  return text + ", " + std::to_string(file.table.columns.size()) + " columns, " +
         std::to_string(file.table.rows) + " rows";
}

}  // namespace roundtrip
