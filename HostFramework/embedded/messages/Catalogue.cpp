#include "HostFramework/embedded/messages/Catalogue.h"

#include <charconv>
#include <utility>

#include "HostFramework/Messages.h"

namespace embedded {
namespace {

// Callers print into buffers of a fixed size.
constexpr std::size_t kLongestText = 500;

// True when a printf format asks for exactly the arguments `wanted`. Flags, widths and lengths are
// refused along with everything else that is not a bare conversion.
bool AsksFor(std::string_view format, std::string_view wanted) {
  std::string found;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') continue;
    ++i;
    if (i == format.size()) return false;
    if (format[i] == '%') continue;
    found += format[i] == 'i' ? 'd' : format[i];
  }
  return found == wanted;
}

// Why `text` cannot be the text of message `id`; empty when it can.
std::string Objection(long id, std::string_view text) {
  const std::string bracketed = "[" + std::to_string(id) + "] ";
  if (text.substr(0, bracketed.size()) != bracketed) {
    return "the text must begin with \"" + bracketed + "\"";
  }
  if (text.size() > kLongestText) {
    return "the text is longer than " + std::to_string(kLongestText) + " bytes";
  }
  if (text.find('\0') != std::string_view::npos) return "the text holds a NUL byte";
  const std::string_view wanted = PlaceholdersOf(id);
  if (!wanted.empty() && !AsksFor(text, wanted)) {
    std::string list;
    for (const char kind : wanted) list.append(list.empty() ? "%" : " and %") += kind;
    return "the placeholders of this text must be exactly " + list;
  }
  return {};
}

std::string_view TakeLine(std::string_view* text) {
  const std::size_t end = text->find('\n');
  std::string_view line = text->substr(0, end);
  text->remove_prefix(end == std::string_view::npos ? text->size() : end + 1);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

}  // namespace

Catalogue Catalogue::Parse(std::string_view text, std::string* problems) {
  Catalogue catalogue;
  problems->clear();
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  for (int lineNumber = 1; !text.empty(); ++lineNumber) {
    const std::string_view line = TakeLine(&text);
    if (line.empty()) continue;
    long id = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), id);
    const auto digits = static_cast<std::size_t>(end - line.data());
    std::string objection;
    if (error != std::errc() || id <= 0 || digits == line.size() || line[digits] != ' ') {
      objection = "the line must be a number, one blank and a text";
    } else {
      const std::string_view message = line.substr(digits + 1);
      objection = Objection(id, message);
      if (objection.empty() && !catalogue.texts_.emplace(id, message).second) {
        objection = "there is a text of number " + std::to_string(id) + " already";
      }
    }
    if (objection.empty()) continue;
    if (!problems->empty()) *problems += '\n';
    *problems += "line " + std::to_string(lineNumber);
    if (error == std::errc()) *problems += ", message " + std::to_string(id);
    *problems += ": " + objection;
  }
  return catalogue;
}

const std::string* Catalogue::Find(long id) const {
  const auto found = texts_.find(id);
  return found == texts_.end() ? nullptr : &found->second;
}

}  // namespace embedded
