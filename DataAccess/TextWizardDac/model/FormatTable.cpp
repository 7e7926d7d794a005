#include "model/FormatTable.h"

#include <array>
#include <limits>

#include "HostFramework/Text.h"

namespace textwizard {
namespace {

constexpr FormatRow Row(FormatCode code, std::uint32_t width, std::uint32_t decimals,
                        std::string_view typeWord, std::uint32_t columnsForFraction = 0) {
  return {DisplayFormatOf(code)->name, code, width, decimals, columnsForFraction, typeWord};
}

// In the order in which type words are searched. N and E have the defaults of a width of 1 and five
// decimals on purpose: N without a width is N1.5, and E without one is below its minimum, so that a
// command has to give E a width.
constexpr std::array<FormatRow, 25> kFormats{{
    Row(kFormatF, 8, 2, "f"),
    Row(kFormatE, 1, 5, "e"),
    Row(kFormatN, 1, 5, "n"),
    Row(kFormatA, 255, 0, "a"),
    Row(kFormatComma, 8, 2, "comma"),
    Row(kFormatDot, 8, 2, "dot"),
    Row(kFormatDollar, 8, 2, "dollar"),
    Row(kFormatPct, 8, 2, "pct"),
    {"X", kFormatSkip, 1, 0, 0, "skip"},
    Row(kFormatDate, 11, 0, "date"),
    Row(kFormatADate, 10, 0, "adate"),
    Row(kFormatEDate, 10, 0, "edate"),
    Row(kFormatJDate, 7, 0, "jdate"),
    Row(kFormatSDate, 10, 0, "sdate"),
    Row(kFormatQyr, 8, 0, "qyr"),
    Row(kFormatMoyr, 8, 0, "moyr"),
    Row(kFormatWkyr, 10, 0, "wkyr"),
    Row(kFormatDateTime, 23, 2, "datetime", 23),
    Row(kFormatTime, 11, 2, "time", 11),
    Row(kFormatDTime, 15, 2, "dtime", 15),
    Row(kFormatWkday, 9, 0, "wkday"),
    Row(kFormatMonth, 9, 0, "month"),
    Row(kFormatMTime, 5, 0, "", 7),
    Row(kFormatYmdhms, 16, 0, "", 21),
    {"AUTO", kFormatAuto, 1, 0, 0, "auto"},
}};

}  // namespace

std::uint32_t FormatRow::MinWidth(std::uint32_t decimals) const {
  const DisplayFormat* format = DisplayFormatOf(code);
  return format ? static_cast<std::uint32_t>(format->MinWidth(decimals)) : 1;
}

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
  const DisplayFormat* format = DisplayFormatOf(code);
  return format ? format->name : "badFormat";
}

}  // namespace textwizard
