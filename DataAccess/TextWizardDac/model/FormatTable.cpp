#include "model/FormatTable.h"

#include <array>
#include <limits>

#include "HostFramework/Text.h"

namespace textwizard {
namespace {

// In the order in which type words are searched. N and E have the defaults of a width of 1 and five
// decimals on purpose: N without a width is N1.5, and E without one is below its minimum, so that a
// command has to give E a width.
constexpr std::array<FormatRow, 25> kFormats{{
    {"F", kFormatF, 8, 2, 1, 1, 0, "f"},
    {"E", kFormatE, 1, 5, 8, 7, 0, "e"},
    {"N", kFormatN, 1, 5, 1, 0, 0, "n"},
    {"A", kFormatA, 255, 0, 1, 0, 0, "a"},
    {"COMMA", kFormatComma, 8, 2, 1, 1, 0, "comma"},
    {"DOT", kFormatDot, 8, 2, 1, 1, 0, "dot"},
    {"DOLLAR", kFormatDollar, 8, 2, 2, 2, 0, "dollar"},
    {"PCT", kFormatPct, 8, 2, 2, 2, 0, "pct"},
    {"X", kFormatSkip, 1, 0, 1, 0, 0, "skip"},
    {"DATE", kFormatDate, 11, 0, 9, 0, 0, "date"},
    {"ADATE", kFormatADate, 10, 0, 8, 0, 0, "adate"},
    {"EDATE", kFormatEDate, 10, 0, 8, 0, 0, "edate"},
    {"JDATE", kFormatJDate, 7, 0, 5, 0, 0, "jdate"},
    {"SDATE", kFormatSDate, 10, 0, 8, 0, 0, "sdate"},
    {"QYR", kFormatQyr, 8, 0, 6, 0, 0, "qyr"},
    {"MOYR", kFormatMoyr, 8, 0, 6, 0, 0, "moyr"},
    {"WKYR", kFormatWkyr, 10, 0, 8, 0, 0, "wkyr"},
    {"DATETIME", kFormatDateTime, 23, 2, 17, 21, 23, "datetime"},
    {"TIME", kFormatTime, 11, 2, 5, 9, 11, "time"},
    {"DTIME", kFormatDTime, 15, 2, 9, 13, 15, "dtime"},
    {"WKDAY", kFormatWkday, 9, 0, 2, 0, 0, "wkday"},
    {"MONTH", kFormatMonth, 9, 0, 3, 0, 0, "month"},
    {"MTIME", kFormatMTime, 5, 0, 3, 4, 7, ""},
    {"YMDHMS", kFormatYmdhms, 16, 0, 12, 15, 21, ""},
    {"AUTO", kFormatAuto, 1, 0, 1, 0, 0, "auto"},
}};

struct ReportName {
  std::uint32_t code;
  std::string_view name;
};

// Formats of the host that a command cannot name.
constexpr std::array<ReportName, 15> kReportNames{{
    {kFormatAHex, "AHEX"},
    {6, "IB"},
    {7, "PIBHEX"},
    {8, "P"},
    {9, "PIB"},
    {10, "PK"},
    {11, "RB"},
    {12, "RBHEX"},
    {15, "Z"},
    {33, "CCA"},
    {34, "CCB"},
    {35, "CCC"},
    {36, "CCD"},
    {37, "CCE"},
    {40, "G"},
}};

}  // namespace

std::uint32_t FormatRow::MaxWidth() const {
  switch (code) {
    case kFormatA:
      return kMaxStringWidth;
    case kFormatSkip:
      return std::numeric_limits<std::uint32_t>::max();
    default:
      return kMaxNumberWidth;
  }
}

const FormatRow* FindFormat(std::string_view name) {
  for (const FormatRow& row : kFormats) {
    if (row.name == name) return &row;
  }
  return nullptr;
}

const FormatRow* FindFormat(std::uint32_t code) {
  for (const FormatRow& row : kFormats) {
    if (row.code == code) return &row;
  }
  return nullptr;
}

const FormatRow* FindTypeWord(const char* word) {
  for (const FormatRow& row : kFormats) {
    if (!row.typeWord.empty() && QANTMBstricmp_A(word, row.typeWord.data()) == 0) return &row;
  }
  return nullptr;
}

std::string_view FormatNameOf(std::uint32_t code) {
  constexpr std::string_view kNone = "badFormat";
  if (code == kFormatSkip || code == kFormatAuto) return kNone;
  if (const FormatRow* row = FindFormat(code)) return row->name;
  for (const ReportName& entry : kReportNames) {
    if (entry.code == code) return entry.name;
  }
  return kNone;
}

}  // namespace textwizard
