#include "map/VariableMap.h"

#include <algorithm>

#include "model/FormatCode.h"
#include "model/FormatTable.h"
#include "model/MessageText.h"
#include "reading/ImportSource.h"

namespace textwizard {
namespace {

constexpr std::size_t kNameColumn = 16;
constexpr std::size_t kFormatColumn = 10;
// The report shows no number wider than this.
constexpr std::uint32_t kWidestNumber = 40;

// The text with blanks up to `width` bytes.
std::string Padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

std::string FormatText(const TxtWzVar& variable) {
  const bool isString = variable.formatType == kFormatA;
  std::uint32_t width = isString ? variable.maxStringLength : variable.width;
  if (!isString && variable.formatType != kFormatAHex) width = std::min(width, kWidestNumber);
  std::string text(FormatNameOf(variable.formatType));
  text += std::to_string(width);
  if (!isString && variable.decimals != 0) text += "." + std::to_string(variable.decimals);
  return text;
}

std::string VariableLine(const TxtWzVar& variable) {
  const bool isString = variable.formatType == kFormatA;
  std::string line = "Variable: " + Padded(variable.name, kNameColumn) + "   Type: ";
  line += isString ? "String  " : "Number  ";
  line += "Format : " + Padded(FormatText(variable), kFormatColumn) + " ";
  if (isString && variable.stringTruncated) {
    line += "One or more values were truncated.";
  } else if (!isString && variable.missingStored) {
    line += "One or more values were set to system-missing.";
  }
  return line;
}

}  // namespace

std::string_view FormatName(std::uint32_t packedFormat) {
  return FormatNameOf((packedFormat >> 16) & 0xFF);
}

void EmitMapOutput(ErrorMonitor* monitor, const ImportSource& source) {
  if (!monitor) return;
  const auto& variables = source.variables();
  const auto imported = std::count_if(variables.begin(), variables.end(), [](const auto& variable) {
    return variable->formatType != kFormatSkip;
  });
  ReportLogMessage(monitor, "\n");
  ReportLogMessage(monitor, "Data written to the working file.");
  ReportLogMessage(monitor, std::to_string(imported) + " variables and " +
                                std::to_string(source.RowCount()) + " cases written.");
  for (const auto& variable : variables) {
    if (variable->formatType != kFormatSkip) ReportLogMessage(monitor, VariableLine(*variable));
  }
  ReportLogMessage(monitor, "\n");
}

}  // namespace textwizard
