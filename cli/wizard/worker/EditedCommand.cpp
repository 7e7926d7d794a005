#include "cli/wizard/worker/EditedCommand.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "HostFramework/embedded/command/CommandLanguage.h"
#include "cli/wizard/WizardServer.h"
#include "cli/wizard/worker/PageSettings.h"
#include "library/command/CommandFault.h"
#include "library/command/CommandReading.h"
#include "library/outputs/Utf8Converter.h"

namespace cli {
namespace {

using namespace textwizard;
using nlohmann::json;

constexpr char kImportable[] = " The page has no setting for that; Import takes it as it is.";

std::string Utf8Of(std::string_view text) {
  return std::string(library::Utf8Converter().ToUtf8(text));
}

// The component's own parser says what is wrong, the library where.
[[noreturn]] void Refuse(const embedded::ParsedCommand& command, const std::string& text,
                         std::string message) {
  const library::CommandFault fault =
      library::FindFault(command.tokens, text, {command.line, command.column, "GET DATA"}, "");
  message += fault.completion;
  if (!fault.wayOut.empty()) message += " " + fault.wayOut + ".";
  throw RequestRefused(Utf8Of(message), static_cast<std::int32_t>(fault.message), fault.place.line,
                       fault.place.column);
}

json EncodingOf(const ImportSettings& settings, const json& options) {
  switch (settings.encoding) {
    case kEncodingUtf16BigEndian:
      return "UTF-16BE";
    case kEncodingUtf16LittleEndian:
      return "UTF-16LE";
    case kEncodingLocale:
      for (std::size_t i = 0; i + 1 < options.size(); ++i) {
        if (options[i] == "--locale-code-page") return options[i + 1];
      }
      break;
    case kEncodingUtf8:
    case kEncodingNone:
      break;
  }
  return "UTF-8";
}

void TakeDelimiters(const ImportSettings& settings, json* given) {
  if (settings.delimiters.empty()) {
    (*given)["delimiter"] = "";
    return;
  }
  const auto characters = static_cast<std::size_t>(
      std::count_if(settings.delimiters.begin(), settings.delimiters.end(),
                    [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
  if (characters > 1) {
    throw RequestRefused(std::string("The command has several delimiters.") + kImportable);
  }
  (*given)["delimiter"] = settings.delimiters;
}

void TakeVariables(const library::CommandSettings& command, json* given) {
  json names = json::array();
  json types = json::object();
  std::vector<library::CharacterRange> ranges;
  for (const library::CommandVariable& variable : command.variables) {
    const std::string name = Utf8Of(variable.name);
    names.push_back(name);
    if (variable.skipped) {
      types[name] = "X";
    } else if (variable.format.code != kFormatAuto) {
      types[name] = library::FormatText(variable.format);
    }
    ranges.push_back(
        {static_cast<std::int64_t>(variable.from) + 1, static_cast<std::int64_t>(variable.to) + 1});
  }
  (*given)["names"] = names;
  (*given)["types"] = types;
  if (command.import.arrangement == kFixedColumns) (*given)["fixed"] = TextOf(ranges);
}

}  // namespace

json EditedCommand(const json& body) {
  const std::string text = body.at("command");
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  if (!reader.Next(command)) throw RequestRefused("There is no command.", 0, 1, 1);
  if (!command.ok) {
    throw RequestRefused(Utf8Of(command.error), 0, command.line, command.column);
  }
  library::CommandSettings read;
  std::string error;
  if (!library::ReadCommand(command.tokens, text, &read, &error)) Refuse(command, text, error);
  embedded::ParsedCommand more;
  if (reader.Next(more)) {
    throw RequestRefused("There is more than one command.", 0, more.line, more.column);
  }
  const ImportSettings& settings = read.import;
  if (settings.arrangement == kDelimitedCount) {
    throw RequestRefused(std::string("A case ends after a number of values.") + kImportable);
  }
  if (settings.importMode == kImportPercent) {
    throw RequestRefused(std::string("The command keeps a share of its cases.") + kImportable);
  }
  const json options = body.value("options", json::array());
  json given = {{"encoding", EncodingOf(settings, options)}, {"first_line", settings.firstCase}};
  if (settings.recordsPerCase > 1) {
    throw RequestRefused(std::string("A case has several lines.") + kImportable);
  }
  if (settings.arrangement != kFixedColumns) {
    TakeDelimiters(settings, &given);
    given["qualifier"] = settings.qualifierSet ? settings.qualifier : "";
    given["leading_blanks"] = settings.leadingSpaces;
    if (settings.delimiters == " ") given["multiple_blanks"] = settings.multipleSpaces;
  }
  for (std::size_t i = 0; i + 1 < options.size(); ++i) {
    if (options[i] == "--decimal") given["decimal"] = options[i + 1];
  }
  TakeVariables(read, &given);
  return {{"path", Utf8Of(read.file)}, {"given", given}, {"command", text}};
}

}  // namespace cli
