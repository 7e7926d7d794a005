#include "tests/sweep/Corpus.h"
#include "TreePaths.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace whole {
namespace {

namespace fs = std::filesystem;

std::string TextOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

CorpusImport Example(const fs::path& folder, const fs::path& root) {
  CorpusImport import;
  import.name = folder.filename().string();
  std::replace(import.name.begin(), import.name.end(), '-', '_');
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == ".sps") import.command = TextOf(entry.path());
  }
  // The commands name their files from the root of the project.
  import.command.insert(import.command.find("examples/"), root.string() + "/");
  std::istringstream options(fs::exists(folder / "options") ? TextOf(folder / "options") : "");
  for (std::string option, value; options >> option >> value;) {
    if (option == "--locale-code-page") import.localePage = value;
    if (option == "--decimal") import.decimalComma = value == "comma";
  }
  return import;
}

// `text` in UTF-16 with its byte-order mark.
std::string Utf16(const std::u16string& text, bool bigEndian) {
  std::string bytes;
  for (const char16_t unit : u"\uFEFF" + text) {
    const auto low = static_cast<char>(unit & 0xFF);
    const auto high = static_cast<char>(unit >> 8);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

std::string Repeated(const std::string& text, std::size_t times) {
  std::string all;
  for (; times > 0; --times) all += text;
  return all;
}

// What a file holds, at hand or made on demand.
struct Bytes {
  Bytes(const char* text) : Bytes(std::string(text)) {}
  Bytes(const std::string& text) : make([text] { return text; }) {}
  Bytes(const std::function<std::string()>& made) : make(made) {}
  std::function<std::string()> make;
};

// Collects imports: each delimited file with its declared formats, and with every type found.
class Generator {
 public:
  void Delimited(const std::string& name, const Bytes& bytes, const std::string& subcommands,
                 const std::string& variables, bool detectionAgrees = true) {
    Add(name, bytes, DelimitedCommand(subcommands, variables));
    Add(name + "_found", bytes, DelimitedCommand(subcommands, Found(variables)), detectionAgrees);
  }
  void Fixed(const std::string& name, const Bytes& bytes, const std::string& subcommands,
             const std::string& variables) {
    Add(name, bytes,
        std::string("GET DATA /TYPE=TXT /FILE='") + kCorpusPath + "' /ARRANGEMENT=FIXED " +
            subcommands + " /VARIABLES=" + variables + ".");
  }
  CorpusImport& Add(const std::string& name, const Bytes& bytes, const std::string& command,
                    bool detectionAgrees = true) {
    CorpusImport import;
    import.name = name;
    import.command = command;
    import.bytes = bytes.make;
    import.detectionAgrees = detectionAgrees;
    imports.push_back(import);
    return imports.back();
  }

  std::vector<CorpusImport> imports;

 private:
  // The names, each with AUTO for its format.
  static std::string Found(const std::string& variables) {
    std::istringstream words(variables);
    std::string found;
    for (std::string name, format; words >> name >> format;) found += name + " AUTO ";
    return found;
  }
};

constexpr const char* kComma = "/DELIMITERS=',' /DELCASE=LINE";

void AddLineEndsAndMarks(Generator& add) {
  const std::string variables = "n F8.0 s A4";
  const std::string text = "1,aa\r\n2,bb\r3,cc\n\n\r\r\n4,dd\n\r5,ee";
  add.Delimited("mixed_line_ends", text, kComma, variables);
  add.Delimited("return_at_the_end", text + "\r", kComma, variables);
  add.Delimited("line_ends_only", "\n\r\n\r\r\n\n", kComma, variables);
  add.Delimited("empty", "", kComma, variables);
  add.Delimited("one_byte", "7", kComma, variables);
  add.Delimited("utf8_mark", "\xEF\xBB\xBF" + text, kComma, variables);
  add.Delimited("two_utf8_marks", "\xEF\xBB\xBF\xEF\xBB\xBF" + text, kComma, variables);
  add.Delimited("utf8_mark_only", "\xEF\xBB\xBF", kComma, variables);
  add.Delimited("little_endian_mark_only", "\xFF\xFE", kComma, variables);
  add.Delimited("big_endian_mark_only", "\xFE\xFF", kComma, variables);
  const std::pair<const char*, const char*> parts[] = {
      {"ef", "\xEF"}, {"efbb", "\xEF\xBB"}, {"fe", "\xFE"}, {"ff", "\xFF"}};
  for (const auto& [name, bytes] : parts) {
    add.Delimited(std::string("mark_cut_to_") + name, bytes, kComma, variables);
    add.Delimited(std::string("mark_cut_before_text_") + name, bytes + text, kComma, variables);
  }
  const std::string limited = kComma;
  add.Delimited("first_case_in_the_middle", text, limited + " /FIRSTCASE=4", variables);
  add.Delimited("first_case_behind_the_end", text, limited + " /FIRSTCASE=100", variables);
  // Detection on one thread looks at three cases, on workers at all: they look the same.
  add.Delimited("first_cases", text, limited + " /IMPORTCASE=FIRST 3", variables);
  add.Delimited("some_percent", text, limited + " /IMPORTCASE=PERCENT 40", variables);
}

void AddFieldsAndQualifiers(Generator& add) {
  const std::string qualified = std::string(kComma) + " /QUALIFIER='\"'";
  // The longest text is not the last: one thread keeps the latest length, workers the longest.
  add.Delimited("qualifiers",
                "1,\"a,b\",x\n2,\"say \"\"hi\"\"\",y\n3,\"unclosed, to the end\n4,\"q\"x,z\n"
                "5,mid\"quoted, text\"end,w\n6,,\"\"\n7,\" lead\",\"\n",
                qualified, "n F4.0 s A8 t A6", false);
  add.Delimited("quotes_of_the_other_kind", "'a,b',1\n\"c\",2\n'dddd',3\n",
                std::string(kComma) + " /QUALIFIER=\"'\"", "s A4 n F4.0");
  add.Delimited("ten_thousand_delimiters",
                "1" + std::string(10000, ',') + "x\n2,b,c\n" + std::string(10000, ',') + "\n",
                kComma, "n F8.0 s A1 t A1");
  add.Delimited("too_few_fields", "1\n2,bb\n\n3,cc,7\n,,\n", kComma, "n F8.0 s A2 m F8.2 t A3");
  add.Delimited("long_field", "1,a\n2," + Repeated("abcdefghij", 10000) + "\n3,c\n", kComma,
                "n F8.0 s A20");
  // Each line is longer than a twentieth of an ordinary batch text.
  std::string longRecords;
  for (int i = 0; i < 60; ++i) {
    longRecords +=
        std::to_string(i) + "," + std::string(7000, static_cast<char>('a' + i % 26)) + "\n";
  }
  add.Add("long_records", longRecords, DelimitedCommand(kComma, "n F8.0 s A7000"));
  add.Delimited("no_delimiter", "1 a\n2,b\n3;c\n", "/DELIMITERS='' /DELCASE=LINE", "s A3");
  const std::string blanks = "  1   2 3\n4 , 5,  6\n7,8,9 \n   \n10 11,,12\n";
  const std::string blank = "/DELIMITERS=' ,' /DELCASE=LINE";
  for (const char* leading : {"NO", "YES"}) {
    for (const char* multiple : {"NO", "YES"}) {
      // An empty field ends a variable's turn on workers, not on one thread.
      add.Delimited(
          std::string("blanks_leading_") + leading + "_multiple_" + multiple, blanks,
          blank + " /LEADINGSPACES IGNORE=" + leading + " /MULTIPLESPACES IGNORE=" + multiple,
          "n F8.0 s A4 t A4", false);
    }
  }
  add.Delimited("values", "1/2/2020,12:30,$1.5,7%\n12/31/99,1:05,$22,50 %\n1/1/2021,100:59,$-3,1\n",
                kComma, "d ADATE10 t TIME8.0 m DOLLAR8.2 p PCT5.0", false);
  const std::size_t commas = add.imports.size();
  add.Delimited("decimal_comma", "1,5;1.234,5;a\n2,25;7,0;b\n", "/DELIMITERS=';' /DELCASE=LINE",
                "n F8.2 m DOT10.2 s A1");
  for (std::size_t i = commas; i < add.imports.size(); ++i) add.imports[i].decimalComma = true;
}

void AddEncodings(Generator& add) {
  const std::string variables = "s A12 n F4.0";
  // The longest text is the last.
  add.Delimited("invalid_utf8",
                "ab\x80,1\n\xC3,2\n\xE4\xB8\xAD\xE4\xB8,3\nx\xF0\x9F\x98,4\nzzzzzz\xFF,5", kComma,
                variables);
  add.Delimited("nul_bytes", std::string("a\0b,1\n\0\0,2\n\0\n,3\0\n\0", 18), kComma, variables);
  const std::u16string wide =
      u"a,1\r\n\u00e9\u4e2d,2\r\n\r\n\U0001F600,3\n\"x,\ny\",4\rlong text at the end,5";
  const std::string qualified = std::string(kComma) + " /QUALIFIER='\"'";
  for (const bool bigEndian : {false, true}) {
    const std::string order = bigEndian ? "big_endian" : "little_endian";
    const std::string bytes = Utf16(wide, bigEndian);
    add.Delimited("utf16_" + order, bytes, qualified, variables);
    add.Delimited("utf16_ends_in_a_unit_" + order, bytes.substr(0, bytes.size() - 5), qualified,
                  variables);
    add.Delimited("utf16_lone_byte_" + order, Utf16(u"", bigEndian) + "A", qualified, variables);
    // A unit that is a line end in the other order, half a pair, and a unit that is zero.
    add.Delimited("utf16_odd_units_" + order,
                  Utf16(std::u16string(u"a,1\n") + char16_t{0x0A00} + u"b,2\n" + char16_t{0xD83D} +
                            u",3\nc" + char16_t{0} + u"d,4\n" + char16_t{0x0D00} + u"eeee,5\r",
                        bigEndian),
                  qualified, variables);
    add.Fixed("utf16_fixed_" + order, bytes, "/FIXCASE=2", "/1 s 0-3 A4 n 2-2 F1.0 /2 t 0-9 A10");
  }
  CorpusImport& japanese =
      add.Add("second_bytes_like_delimiters", "\x83\x7C|1\r\n\x95\x5C\x83\x7C|2\r\n\x83|3",
              DelimitedCommand("/ENCODING=LOCALE /DELIMITERS='|' /DELCASE=LINE", "s A9 n F4.0"));
  japanese.localePage = "Shift_JIS";
}

void AddOtherArrangements(Generator& add) {
  const std::string counted = "/DELIMITERS=' ,' /DELCASE=VARIABLES 3";
  add.Delimited("counted", "1 2\n3 4 5\n6", counted, "a F4.0 b F4.0 c F4.0");
  add.Delimited("counted_ends_in_a_case", "1,x,2.5\n7,y\n\n3.5,8\r\n", counted,
                "a F4.0 b A2 c F4.1");
  add.Delimited("counted_first_case", "title\n1 2 3 4\n5 6\n", counted + " /FIRSTCASE=2",
                "a F4.0 b F4.0 c F4.0");
  add.Delimited("counted_empty", "", counted, "a F4.0 b A2 c F4.0");
  const std::string columns = "/1 a 0-1 F2.0 b 2-4 A3 /2 c 0-3 F4.1";
  const std::string found = "/1 a 0-1 AUTO b 2-4 AUTO /2 c 0-3 AUTO";
  const std::string lines = "12abc\n 3.5\n\n4\n5\r\nxyz\r99\xC3\xA9\nlast";
  add.Fixed("fixed", lines, "/FIXCASE=2", columns);
  add.Fixed("fixed_found", lines, "/FIXCASE=2", found);
  add.Fixed("fixed_ends_in_a_case", lines + "\n77def", "/FIXCASE=2", columns);
  add.Fixed("fixed_more_lines_than_named", lines, "/FIXCASE=3 /FIRSTCASE=2", columns);
  add.Fixed("fixed_first_cases", lines, "/FIXCASE=1 /IMPORTCASE=FIRST 4", "/1 a 0-1 F2.0");
  add.Fixed("fixed_empty", "", "/FIXCASE=2", columns);
  add.Fixed("fixed_mark_only", "\xEF\xBB\xBF", "/FIXCASE=2", columns);
}

// Files of several batches. All values of a column found as text are equally long, so that the
// latest length is the longest, and all amounts have two decimals.
std::string Rows(int rows, const std::string& padding) {
  std::string text;
  char line[128];
  for (int i = 0; i < rows; ++i) {
    const bool odd = i % 997 == 5;
    std::snprintf(line, sizeof line, "%d,%02d/%02d/%d,%s,%s,", i, i % 12 + 1, i % 28 + 1,
                  1990 + i % 40, odd ? "a\xFFzzz" : "abcde",
                  odd ? "n/a" : (std::to_string(i % 9000) + ".25").c_str());
    text += line + padding + "\n";
  }
  return text;
}

void AddManyBatches(Generator& add) {
  const std::string variables = "i F8.0 d ADATE10 s A3 m F8.2";
  add.Delimited("some_batches", std::function([] { return Rows(20000, "rest"); }), kComma,
                variables);
  // More batches than there are slots in the largest ring.
  const std::size_t large = add.imports.size();
  add.Delimited("many_batches", std::function([] { return Rows(9000, std::string(950, '.')); }),
                kComma, variables);
  for (std::size_t i = large; i < add.imports.size(); ++i) add.imports[i].large = true;
}

}  // namespace

std::string DelimitedCommand(const std::string& subcommands, const std::string& variables) {
  return std::string("GET DATA /TYPE=TXT /FILE='") + kCorpusPath +
         "' /ARRANGEMENT=DELIMITED /MAP " + subcommands + " /VARIABLES=" + variables + ".";
}

std::vector<CorpusImport> ExampleImports() {
  const fs::path root = TEXTWIZARD_SOURCE_DIR;
  std::vector<CorpusImport> imports;
  for (const auto& entry : fs::directory_iterator(root / "examples")) {
    if (entry.is_directory()) imports.push_back(Example(entry.path(), root));
  }
  std::sort(imports.begin(), imports.end(),
            [](const CorpusImport& a, const CorpusImport& b) { return a.name < b.name; });
  return imports;
}

std::vector<CorpusImport> GeneratedImports() {
  Generator add;
  AddLineEndsAndMarks(add);
  AddFieldsAndQualifiers(add);
  AddEncodings(add);
  AddOtherArrangements(add);
  AddManyBatches(add);
  return add.imports;
}

}  // namespace whole
