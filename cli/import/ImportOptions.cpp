#include "cli/import/ImportOptions.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include <fmt/format.h>

namespace cli {
namespace {

// The texts between commas, empty ones too.
std::vector<std::string> Listed(const std::string& list) {
  std::vector<std::string> texts;
  for (std::size_t begin = 0; begin <= list.size();) {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    texts.push_back(list.substr(begin, end - begin));
    begin = end + 1;
  }
  return texts;
}

bool ReadNumber(std::string_view text, int base, std::int64_t* number) {
  const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), *number, base);
  return failed == std::errc() && end == text.data() + text.size();
}

// Characters of a UTF-8 text.
std::ptrdiff_t CharactersOf(const std::string& text) {
  return std::count_if(text.begin(), text.end(),
                       [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; });
}

}  // namespace

bool ReadDelimiter(const std::string& text, std::string* delimiter, std::string* error) {
  delimiter->clear();
  if (text == "none") return true;
  if (text == "tab" || text == "blank") {
    *delimiter = text == "tab" ? "\t" : " ";
    return true;
  }
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\\' || at + 1 == text.size()) {
      *delimiter += text[at];
      continue;
    }
    std::int64_t code = 0;
    const char kind = text[++at];
    if (kind == 't') {
      *delimiter += '\t';
    } else if (kind == '\\') {
      *delimiter += '\\';
    } else if (kind == 'x' && at + 2 < text.size() &&
               ReadNumber(std::string_view(text).substr(at + 1, 2), 16, &code) && code > 0 &&
               code < 0x80) {
      *delimiter += static_cast<char>(code);
      at += 2;
    } else {
      *error = fmt::format("\\{} is none of \\t, \\\\ and \\x01 to \\x7F", kind);
      return false;
    }
  }
  if (delimiter->find_first_of("\r\n") != std::string::npos) {
    *error = "a line end cannot be a delimiter";
    return false;
  }
  return true;
}

bool ReadQualifier(const std::string& text, std::string* qualifier, std::string* error) {
  *qualifier = text == "none" ? "" : text;
  if (CharactersOf(*qualifier) <= 1) return true;
  *error = text + " is more than one character; none means that there is none";
  return false;
}

bool ReadTypes(const std::string& text, std::vector<std::pair<std::string, std::string>>* types,
               std::string* error) {
  for (const std::string& part : Listed(text)) {
    const std::size_t equals = part.rfind('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == part.size()) {
      *error = fmt::format("{} is not NAME=FORMAT", part);
      return false;
    }
    types->emplace_back(part.substr(0, equals), part.substr(equals + 1));
  }
  return true;
}

bool ReadNames(const std::string& text, std::vector<std::string>* names, std::string* error) {
  *names = Listed(text);
  if (std::find(names->begin(), names->end(), "") == names->end()) return true;
  *error = "a name is empty";
  return false;
}

}  // namespace cli
