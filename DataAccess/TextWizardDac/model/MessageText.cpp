#include "model/MessageText.h"

#include <cstdio>

#include "model/FormatCode.h"
#include "model/TxtWzVar.h"

namespace textwizard {
namespace {

// A catalogue text that is a format, filled with its arguments. The catalogue has been checked by
// the host: a text never asks for other arguments than its number's.
template <typename... Arguments>
std::string Filled(const char* format, Arguments... arguments) {
  const int length = std::snprintf(nullptr, 0, format, arguments...);
  if (length <= 0) return format;
  std::string text(static_cast<std::size_t>(length), '\0');
  std::snprintf(text.data(), text.size() + 1, format, arguments...);
  return text;
}

// The limit that the text of `id` has a placeholder for; 0 for a text without one.
int LimitOf(std::uint32_t id) {
  switch (id) {
    case kNameUsed:
    case kNameCut:
      return static_cast<int>(kMaxNameCharacters);
    case kNumberWidthCut:
      return static_cast<int>(kMaxNumberWidth);
    case kStringWidthCut:
      return static_cast<int>(kMaxStringWidth);
    default:
      return 0;
  }
}

}  // namespace

std::string MessageText(std::uint32_t id, const char* token) {
  const QantServerErrorText entry(kMessageCatalogue, id);
  if (PlaceholdersOf(id) == "s") return Filled(entry.GetText(), token ? token : "");
  const int limit = LimitOf(id);
  std::string text = limit > 0 ? Filled(entry.GetText(), limit) : entry.GetText();
  if (token) text.append(" ").append(token);
  return text;
}

ErrorText UndecodableWarning(std::int64_t caseNumber, std::size_t position) {
  const QantServerErrorText entry(kMessageCatalogue, kUndecodable);
  return {Filled(entry.GetText(), static_cast<int>(caseNumber), static_cast<int>(position)),
          kMessageWarning, 0};
}

ErrorText ReadFailedError(const std::string& fileName) {
  return {MessageText(kReadFailed, fileName.c_str()), kMessageError, 0};
}

void ReportLogMessage(ErrorMonitor* monitor, const std::string& text) {
  if (monitor) monitor->Report({text, kMessageLog, 0});
}

}  // namespace textwizard
