#include "command/MessageText.h"

#include <cstdio>

namespace textwizard {

std::string MessageText(int id, const char* token) {
  std::string text = QantServerErrorText(kMessageCatalogue, id).GetText();
  if (token) text.append(" ").append(token);
  return text;
}

ErrorText UndecodableWarning(std::int64_t caseNumber, std::size_t position) {
  const QantServerErrorText format(kMessageCatalogue, kUndecodable);
  char text[1024];
  std::snprintf(text, sizeof text, format.GetText(), static_cast<int>(caseNumber),
                static_cast<int>(position));
  return {text, kMessageWarning, 0};
}

ErrorText ReadFailedError(const std::string& fileName) {
  return {MessageText(kReadFailed, fileName.c_str()), kMessageError, 0};
}

}  // namespace textwizard
