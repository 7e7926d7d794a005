// Data files of all arrangements, encodings and line ends, with all kinds of problems.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace library {

struct PartFile {
  std::string name;
  std::string bytes;
  // What stands behind the file's name.
  std::string command;
  // Is read as one part, whatever is asked.
  bool uncut = false;
};

inline void PrintTo(const PartFile& file, std::ostream* out) { *out << file.name; }

// 16-bit units of ASCII text, NULs among it, behind their mark.
inline std::string Utf16(std::string_view text, bool bigEndian) {
  std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char byte : text) {
    if (bigEndian) bytes += '\0';
    bytes += byte;
    if (!bigEndian) bytes += '\0';
  }
  return bytes;
}

inline std::string Replaced(std::string text, std::string_view what, std::string_view by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
    text.replace(at, what.size(), by);
  }
  return text;
}

inline std::vector<PartFile> PartFiles() {
  using namespace std::string_literals;
  const std::string variables = " /VARIABLES=id F8.0 town A6 day DATE11 amount F8.2";
  const std::string delimited = " /DELIMITERS=',' /QUALIFIER='\"'" + variables;
  const std::string table =
      "id,town,day,amount\n"
      "1,Graz,01-JAN-2020,1.5\n"
      "\n"
      "2,\"a, b\",02-JAN-2020,x\n"
      "3,Klagenfurt,NA,\n"
      "4,short\n"
      "\n\n"
      "5,\"open,03-JAN-2020,1\n"
      "6,st\"ray,03-JAN-2020,1234567890123456789\n"
      "7,more,04-JAN-2020,2,surplus,x\n"
      "8,,,\n"s
      "9,n\0ul,05-JAN-2020,3\n"
      "\0\n"
      "10,last,06-JAN-2020,4"s;
  const std::string utf8Table =
      Replaced(table, "Graz", "Gr\xC3\xA4z") + "\n11,b\xC3,,\xFF\n12,e\xE2\x82,x,y";
  const std::string longLine =
      "1,a,01-JAN-2020,1\n2," + std::string(400, 'x') + ",02-JAN-2020,2\n3,c,03-JAN-2020,3\n";
  std::string many;
  for (int i = 1; i <= 40; ++i) {
    many += std::to_string(i) + "," + std::string(static_cast<std::size_t>(i % 5), 'v') + ",0" +
            std::to_string(1 + i % 9) + "-FEB-2021," + (i % 7 == 0 ? "bad" : std::to_string(i)) +
            (i % 3 == 0 ? "\r\n" : "\n");
  }
  const std::string first2 = " /FIRSTCASE=2";
  const std::string fixed = " /VARIABLES=/1 id 0-2 F3.0 name 3-6 A4 /2 x 0-3 F4.1";
  const std::string fixedLines =
      "  1anna\n 1.5\n  2bea \n2\n\n\n  3\n 3.x\n  4longer text\n12.5 and more\n"
      "  5e\xC3\xA9n\n4.4\n  6lost\n 6\n  7half\n"s;
  const std::string values =
      " /ARRANGEMENT=DELIMITED /DELCASE=VARIABLES 3 /DELIMITERS=',' /QUALIFIER='\"'"
      " /VARIABLES=a F4.0 b A3 c F5.1";
  const std::string valueLines =
      "1,one,1.1\n2,two\n2.2,3,three,3.3\n\n4,fo\"ur\n4.x\n5,five,5.5,6,six,6.6\n7\nseven\n"
      "7.7\n8,eig\0ht,8.8\n9,,9.9,\n10,ten,10.1\n11,\"x,y\",1\n12,last"s;
  return {
      {"Lines", table, first2 + delimited},
      {"LinesCrLf", Replaced(table, "\n", "\r\n"), first2 + delimited},
      {"LinesCr", Replaced(table, "\n", "\r"), first2 + delimited},
      {"LinesMixed", many, delimited},
      {"LinesUtf8", utf8Table, " /ENCODING='UTF8'" + first2 + delimited},
      {"LinesUtf8Mark", "\xEF\xBB\xBF" + utf8Table, " /ENCODING='UTF8'" + first2 + delimited},
      {"LinesUtf8MarkNoHeader", "\xEF\xBB\xBF" + many, " /ENCODING='UTF8'" + delimited},
      {"LinesMarksWithin",
       "1,a\n\xEF\xBB\xBF"
       "2,b\n3,c\n\xEF\xBB\xBF"
       "4,d\n5,e\n\xFF\xFE,f\n7,g\n",
       " /DELIMITERS=',' /VARIABLES=id F8.0 t A4"},
      {"LinesUtf16", Utf16(Replaced(table, "\n", "\r\n"), false), first2 + delimited},
      {"LinesUtf16Big", Utf16(table, true), first2 + delimited},
      {"LinesUtf16Half", Utf16(table, false) + "x", delimited},
      {"LinesUtf16Ends", Utf16(many, false) + "\xFF\xFF" + Utf16("41,x,,1\n", false).substr(2),
       delimited},
      {"LinesLong", longLine, delimited},
      {"LinesFirstCaseFar", many, " /FIRSTCASE=17" + delimited},
      {"LinesFirst", many, " /IMPORTCASE=FIRST 23" + delimited},
      {"LinesFirstAll", many, first2 + " /IMPORTCASE=FIRST 39" + delimited},
      {"LinesFirstMore", table, " /IMPORTCASE=FIRST 400" + delimited},
      {"Fixed", fixedLines, " /FIXCASE=2 /ARRANGEMENT=FIXED" + fixed},
      {"FixedUtf8", fixedLines, " /ENCODING='UTF8' /FIXCASE=2 /ARRANGEMENT=FIXED" + fixed},
      {"FixedCrLf", "head\r\n" + Replaced(fixedLines, "\n", "\r\n"),
       " /FIXCASE=2 /ARRANGEMENT=FIXED" + first2 + fixed},
      {"FixedUtf16", Utf16(Replaced(fixedLines, "\xC3\xA9", "ee"), true),
       " /FIXCASE=2 /ARRANGEMENT=FIXED" + fixed},
      {"FixedOne", fixedLines, " /ARRANGEMENT=FIXED /VARIABLES=/1 id 0-2 F3.0 name 3-6 A4"},
      {"FixedFirst", fixedLines, " /FIXCASE=2 /ARRANGEMENT=FIXED /IMPORTCASE=FIRST 3" + fixed},
      {"Values", valueLines, values},
      {"ValuesCrLf", "head,of,it\r\n" + Replaced(valueLines, "\n", "\r\n"), first2 + values},
      {"ValuesUtf16", Utf16("a,b\n" + valueLines, true), first2 + values},
      {"ValuesFirst", valueLines, " /IMPORTCASE=FIRST 3" + values},
      {"ValuesFirstWithin", valueLines, " /IMPORTCASE=FIRST 5" + values, true},
  };
}

}  // namespace library
