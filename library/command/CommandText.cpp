#include "library/command/CommandText.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>

#include "HostFramework/Formats.h"
#include "HostFramework/Text.h"

namespace library {
namespace {

using namespace textwizard;

// A literal of the command language: a quote inside it is doubled, or the other kind is taken.
std::string Literal(const std::string& text) {
  const char quote = text.find('\'') == std::string::npos ? '\'' : '"';
  std::string literal(1, quote);
  for (const char byte : text) {
    if (byte == quote) literal += quote;
    literal += byte;
  }
  return literal + quote;
}

// The characters with those first that need an escape, which stands for itself only there.
std::string DelimiterText(std::string delimiters) {
  std::string text;
  if (const std::size_t tab = delimiters.find('\t'); tab != std::string::npos) {
    delimiters.erase(tab, 1);
    text = "\\t";
  }
  if (const std::size_t slash = delimiters.find('\\'); slash != std::string::npos) {
    delimiters.erase(slash, 1);
    text += "\\\\";
  }
  return text + delimiters;
}

const char* EncodingName(FileEncoding encoding) {
  switch (encoding) {
    case kEncodingLocale:
      return "LOCALE";
    case kEncodingUtf8:
      return "UTF8";
    case kEncodingUtf16BigEndian:
      return "UTF16BE";
    case kEncodingUtf16LittleEndian:
      return "UTF16LE";
    case kEncodingNone:
      break;
  }
  return nullptr;
}

void AppendDelimited(const ImportSettings& import, std::string* text) {
  *text += "  /DELCASE=LINE\n";
  *text += fmt::format("  /DELIMITERS={}\n", Literal(DelimiterText(import.delimiters)));
  if (import.qualifierSet) *text += fmt::format("  /QUALIFIER={}\n", Literal(import.qualifier));
  if (import.leadingSpaces) *text += "  /LEADINGSPACES IGNORE=YES\n";
  if (import.multipleSpaces) *text += "  /MULTIPLESPACES IGNORE=YES\n";
}

void AppendVariables(const CommandSettings& settings, std::string* text) {
  const bool fixed = settings.import.arrangement == kFixedColumns;
  std::set<std::string> taken;
  for (const CommandVariable& variable : settings.variables) {
    std::string upper = variable.name;
    taken.insert(QANTMBstrupr_A(upper.data()));
  }
  std::size_t skipped = 0;
  std::string line;
  for (const CommandVariable& variable : settings.variables) {
    if (variable.skipped) {
      std::string name = variable.name;
      while (name.empty() || (name != variable.name && taken.count(name) > 0)) {
        name = fmt::format("SKIPPED_{}", ++skipped);
      }
      line = name + " X1";
    } else if (fixed) {
      line = fmt::format("{} {}-{} {}", variable.name, variable.from, variable.to,
                         FormatText(variable.format));
    } else {
      line = variable.name + " " + FormatText(variable.format);
    }
    *text += "\n    " + line;
  }
}

}  // namespace

bool CanNameFile(const std::string& file) {
  return file.find('\'') == std::string::npos || file.find('"') == std::string::npos;
}

std::string FormatText(const ChosenFormat& format) {
  const DisplayFormat* const known = DisplayFormatOf(format.code);
  std::string text(known != nullptr ? known->name : "F");
  text += std::to_string(format.width);
  if (format.decimals > 0) text += fmt::format(".{}", format.decimals);
  return text;
}

std::string CommandText(const CommandSettings& settings) {
  const ImportSettings& import = settings.import;
  const bool fixed = import.arrangement == kFixedColumns;
  std::string text = "GET DATA\n  /TYPE=TXT\n";
  text += fmt::format("  /FILE={}\n", Literal(settings.file));
  if (const char* encoding = EncodingName(import.encoding)) {
    text += fmt::format("  /ENCODING='{}'\n", encoding);
  }
  text += fmt::format("  /ARRANGEMENT={}\n", fixed ? "FIXED" : "DELIMITED");
  text += fmt::format("  /FIRSTCASE={}\n", import.firstCase);
  text += import.importMode == kImportFirst
              ? fmt::format("  /IMPORTCASE=FIRST {}\n", import.caseLimit)
              : "  /IMPORTCASE=ALL\n";
  if (!fixed) AppendDelimited(import, &text);
  text += "  /VARIABLES=";
  AppendVariables(settings, &text);
  return text + ".\n";
}

void AvoidKeywords(std::vector<std::string>* names) {
  const auto upper = [](std::string name) { return std::string(QANTMBstrupr_A(name.data())); };
  std::set<std::string> taken;
  for (const std::string& name : *names) taken.insert(upper(name));
  for (std::string& name : *names) {
    const std::string word = upper(name);
    if (word != "DELIMITERS" && word != "QUALIFIER") continue;
    for (int copy = 1;; ++copy) {
      std::string other = fmt::format("{}_{}", name, copy);
      if (!taken.insert(upper(other)).second) continue;
      name = std::move(other);
      break;
    }
  }
}

}  // namespace library
