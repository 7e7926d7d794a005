#include "tests/differential/ChosenEncoding.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "HostFramework/embedded/text/HostText.h"

namespace naive {
namespace {

constexpr const char* kHostPages[] = {nullptr,      nullptr,     nullptr,  "ISO-8859-1",
                                      "ISO-8859-9", "Shift_JIS", "EUC-JP", "GB18030"};
constexpr const char* kLocalePages[] = {"ISO-8859-1", "windows-1252", "Shift_JIS", "EUC-JP",
                                        "GB18030",    "Big5",         "KOI8-R",    "UTF-8"};

}  // namespace

ChosenEncoding::ChosenEncoding(unsigned choice)
    : choice_(choice),
      host_(kHostPages[choice % 8]),
      named_(static_cast<Named>(choice / 8 % 4)),
      locale_(kLocalePages[choice / 32 % 8]) {}

bool ChosenEncoding::SetPages() const {
  return embedded::SetCodePage(host_) && embedded::SetLocaleCodePage(locale_);
}

Records ChosenEncoding::records() const {
  return named_ == kLocale ? Records::kLocale
         : named_ == kUtf8 ? Records::kUtf8
                           : Records::kHostText;
}

std::size_t ChosenEncoding::growth() const {
  if (named_ == kUtf16) return host_ ? 2 : 3;
  return named_ == kLocale && !host_ ? 3 : 1;
}

const CodePageText& ChosenEncoding::text() const {
  static std::map<unsigned, std::unique_ptr<CodePageText>> made;
  std::unique_ptr<CodePageText>& text = made[choice_];
  if (!text) text = std::make_unique<CodePageText>(host_, records(), locale_);
  return *text;
}

void ChosenEncoding::Adapt(RandomImport& import) const {
  constexpr std::string_view kUtf8Word = " /ENCODING='UTF8'";
  constexpr const char* kNames[] = {"", " /ENCODING=LOCALE", " /ENCODING='UTF-16'",
                                    " /ENCODING=UTF8"};
  std::string& command = import.command;
  if (const std::size_t at = command.find(kUtf8Word); at != std::string::npos) {
    command.erase(at, kUtf8Word.size());
  }
  command.insert(command.find(" /", command.find("/FILE")), kNames[named_]);
  command = text().FromUtf8(command);
  for (char32_t& delimiter : import.settings.delimiters) {
    // A page that lacks it has a question mark for it.
    std::string bytes;
    text().Append(bytes, delimiter);
    if (bytes == "?") delimiter = U'?';
  }
  for (Variable& variable : import.variables) {
    if (variable.format == 1) variable.fieldWidth = variable.width * growth();
  }
}

}  // namespace naive
