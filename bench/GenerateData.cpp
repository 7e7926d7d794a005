// Writes the data files that the whole-system benchmarks read, with one command file that declares
// every format and one that leaves every type to be found, and the types in words for other
// readers.
//
//   generate_data KIND MEGABYTES SEED FOLDER      KIND: mixed, numeric, strings, wide or short
//
// Makes FOLDER/KIND.csv, FOLDER/KIND.sps, FOLDER/KIND-auto.sps and FOLDER/KIND.types, which has one
// line a column: integer, real, date, datetime or text. Lines end with LF; with -crlf or -cr behind
// the kind they end with CR LF or CR. The same arguments give the same bytes, and the three line
// ends the same rows: the megabytes are those of the file with LF.

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using Random = std::mt19937_64;

std::uint64_t Below(Random& random, std::uint64_t bound) { return random() % bound; }

void Digits(std::string& out, std::uint64_t value, std::size_t atLeast = 1) {
  std::array<char, 24> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  const auto length = static_cast<std::size_t>(end - text.data());
  out.append(atLeast > length ? atLeast - length : 0, '0').append(text.data(), length);
}

void Decimal(std::string& out, Random& random, std::uint64_t wholes, int decimals) {
  static constexpr std::array<std::uint64_t, 7> kScale = {1, 10, 100, 1000, 10000, 100000, 1000000};
  if (Below(random, 8) == 0) out += '-';
  Digits(out, Below(random, wholes));
  out += '.';
  Digits(out, Below(random, kScale[static_cast<std::size_t>(decimals)]),
         static_cast<std::size_t>(decimals));
}

void Word(std::string& out, Random& random, std::size_t from, std::size_t to) {
  const std::size_t length = from + Below(random, to - from + 1);
  std::uint64_t bits = random();
  for (std::size_t i = 0; i < length; ++i) {
    if (i % 12 == 0) bits = random();
    out += static_cast<char>('a' + bits % 26);
    bits /= 26;
  }
}

void UsDate(std::string& out, Random& random) {
  Digits(out, 1 + Below(random, 12), 2);
  out += '/';
  Digits(out, 1 + Below(random, 28), 2);
  out += '/';
  Digits(out, 1950 + Below(random, 75));
}

void DateTime(std::string& out, Random& random) {
  static constexpr std::array<const char*, 12> kMonths = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                          "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
  Digits(out, 1 + Below(random, 28), 2);
  out.append("-").append(kMonths[Below(random, 12)]).append("-");
  Digits(out, 1950 + Below(random, 75));
  out += ' ';
  Digits(out, Below(random, 24), 2);
  out += ':';
  Digits(out, Below(random, 60), 2);
  out += ':';
  Digits(out, Below(random, 60), 2);
}

// A remark in quotes, sometimes with a comma or a doubled quote in it.
void Note(std::string& out, Random& random) {
  out += '"';
  Word(out, random, 3, 10);
  out += Below(random, 3) == 0 ? ", " : " ";
  Word(out, random, 3, 10);
  if (Below(random, 10) == 0) out += " \"\"so\"\"";
  out += '"';
}

void City(std::string& out, Random& random) {
  static constexpr std::array<const char*, 10> kCities = {
      "Amsterdam", "Bern",  "Cork",   "Dresden", "Edinburgh",
      "Florence",  "Ghent", "Zürich", "Łódź",    "Oslo"};
  out += kCities[Below(random, kCities.size())];
}

struct Column {
  std::string format;
  const char* type;
  std::function<void(std::string&, Random&)> write;
};

Column Whole(std::uint64_t bound) {
  return {"F10.0", "integer",
          [bound](std::string& out, Random& random) { Digits(out, Below(random, bound)); }};
}

Column Fraction(std::uint64_t wholes, int decimals) {
  return {std::string("F12.").append(std::to_string(decimals)), "real",
          [=](std::string& out, Random& random) { Decimal(out, random, wholes, decimals); }};
}

Column Text(std::size_t from, std::size_t to) {
  return {std::string("A").append(std::to_string(to)), "text",
          [=](std::string& out, Random& random) { Word(out, random, from, to); }};
}

std::vector<Column> Columns(const std::string& kind) {
  std::vector<Column> columns;
  if (kind == "mixed") {
    columns = {Whole(100000000),      Fraction(100000, 2), {"ADATE10", "date", UsDate},
               {"A12", "text", City}, Whole(100),          {"DATETIME20", "datetime", DateTime},
               {"A40", "text", Note}, Fraction(10, 4),     Text(4, 8),
               Whole(100000)};
  } else if (kind == "numeric") {
    for (int i = 0; i < 20; ++i) {
      columns.push_back(i % 4 == 0   ? Whole(1000)
                        : i % 4 == 1 ? Whole(10000000)
                        : i % 4 == 2 ? Fraction(10000, 2)
                                     : Fraction(10, 6));
    }
  } else if (kind == "strings") {
    for (int i = 0; i < 9; ++i) {
      columns.push_back(Text(2 + static_cast<std::size_t>(i), 8 + 2 * static_cast<std::size_t>(i)));
    }
    columns.push_back({"A12", "text", City});
  } else if (kind == "wide") {
    for (int i = 0; i < 2000; ++i) {
      columns.push_back(i % 5 == 4 ? Text(3, 8) : i % 2 == 0 ? Whole(10000) : Fraction(100, 3));
    }
  } else if (kind == "short") {
    columns = {Whole(100000000)};
  }
  return columns;
}

bool WriteCommand(const std::string& path, const std::string& data,
                  const std::vector<Column>& columns, bool automatic) {
  FILE* file = std::fopen(path.c_str(), "w");
  if (!file) return false;
  std::fprintf(file,
               "GET DATA\n  /TYPE=TXT\n  /FILE='%s'\n  /ENCODING='UTF8'\n  /DELCASE=LINE\n"
               "  /DELIMITERS=\",\"\n  /QUALIFIER='\"'\n  /ARRANGEMENT=DELIMITED\n"
               "  /FIRSTCASE=2\n  /VARIABLES=",
               data.c_str());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    std::fprintf(file, "\n    v%zu %s", i + 1, automatic ? "AUTO" : columns[i].format.c_str());
  }
  std::fputs(".\n", file);
  return std::fclose(file) == 0;
}

bool WriteTypes(const std::string& path, const std::vector<Column>& columns) {
  FILE* file = std::fopen(path.c_str(), "w");
  if (!file) return false;
  for (const Column& column : columns) std::fprintf(file, "%s\n", column.type);
  return std::fclose(file) == 0;
}

// KIND and the line end that its name asks for.
std::pair<std::string, std::string> KindAndLineEnd(const std::string& name) {
  for (const auto& [ending, lineEnd] : {std::pair{"-crlf", "\r\n"}, std::pair{"-cr", "\r"}}) {
    if (name.ends_with(ending)) {
      return {name.substr(0, name.size() - std::strlen(ending)), lineEnd};
    }
  }
  return {name, "\n"};
}

bool WriteData(const std::string& path, std::uint64_t bytes, Random& random,
               const std::vector<Column>& columns, const std::string& lineEnd) {
  FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return false;
  std::string block;
  std::uint64_t lines = 0;
  // As if every line ended with one byte.
  const auto size = [&] { return block.size() - lines * (lineEnd.size() - 1); };
  for (std::size_t i = 0; i < columns.size(); ++i) {
    block.append(i ? "," : "").append("v").append(std::to_string(i + 1));
  }
  block += lineEnd;
  ++lines;
  std::uint64_t written = 0;
  bool good = true;
  while (good && written + size() < bytes) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i) block += ',';
      columns[i].write(block, random);
    }
    block += lineEnd;
    ++lines;
    if (block.size() > (1U << 20)) {
      good = std::fwrite(block.data(), 1, block.size(), file) == block.size();
      written += size();
      lines = 0;
      block.clear();
    }
  }
  good = std::fwrite(block.data(), 1, block.size(), file) == block.size() && good;
  return std::fclose(file) == 0 && good;
}

}  // namespace

int main(int argc, char** argv) {
  const auto [kind, lineEnd] = KindAndLineEnd(argc > 1 ? argv[1] : "");
  const std::vector<Column> columns = Columns(kind);
  if (argc != 5 || columns.empty()) {
    std::fputs(
        "usage: generate_data mixed|numeric|strings|wide|short[-crlf|-cr] MEGABYTES SEED FOLDER\n",
        stderr);
    return 2;
  }
  const std::string base = std::string(argv[4]) + "/" + argv[1];
  Random random(std::strtoull(argv[3], nullptr, 10));
  const std::uint64_t bytes = std::strtoull(argv[2], nullptr, 10) * 1000000;
  if (!WriteCommand(base + ".sps", base + ".csv", columns, false) ||
      !WriteCommand(base + "-auto.sps", base + ".csv", columns, true) ||
      !WriteTypes(base + ".types", columns) ||
      !WriteData(base + ".csv", bytes, random, columns, lineEnd)) {
    std::perror(base.c_str());
    return 1;
  }
  return 0;
}
