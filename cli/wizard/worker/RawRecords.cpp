#include "cli/wizard/worker/RawRecords.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>

#include <fmt/format.h>
#include <unicode/ucnv.h>

#include "HostFramework/FileMessages.h"
#include "HostFramework/embedded/text/HostText.h"
#include "cli/wizard/WizardServer.h"
#include "library/import/WizardRecords.h"
#include "library/input/InputFiles.h"
#include "library/outputs/Utf8Converter.h"

namespace cli {
namespace {

using nlohmann::json;

constexpr std::int64_t kMostRecords = 1000;
// Characters of a line that a page can show.
constexpr std::size_t kMostText = 4000;
// Lines are found by reading those in front of them.
constexpr std::chrono::seconds kPatience{20};

bool IsEncoding(const std::string& name, const char* other) {
  return ucnv_compareNames(name.c_str(), other) == 0;
}

// The handler's name of an encoding; the host works in the code page that others are.
std::string HandlerEncoding(const std::string& encoding) {
  for (const char* known : {"UTF-8", "UTF-16", "UTF-16LE", "UTF-16BE"}) {
    if (IsEncoding(encoding, known)) return known;
  }
  if (IsEncoding(encoding, "US-ASCII")) return "UTF-8";
  if (!embedded::SetCodePage(encoding.c_str())) {
    throw RequestRefused(fmt::format("Lines in {} cannot be shown.", encoding));
  }
  return "Locale";
}

// The text in at most that many bytes, cut between characters.
bool Shorten(std::string& text) {
  if (text.size() <= kMostText) return false;
  std::size_t end = kMostText;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  text.resize(end);
  return true;
}

}  // namespace

json RawRecords(const json& body) {
  library::InputFiles files;
  const library::InputFiles::Input& input = files.Open(body.at("path"));
  if (!input.problem.empty()) throw RequestRefused("The file cannot be read: " + input.problem);
  const std::int64_t first = std::max<std::int64_t>(1, body.at("first"));
  const std::int64_t count = std::clamp<std::int64_t>(body.at("count"), 0, kMostRecords);
  const std::string encoding = HandlerEncoding(body.at("encoding"));
  DACErrorResponse error;
  const auto wizard = library::WizardRecords::Open(input.path, encoding, &error);
  if (wizard == nullptr) {
    throw RequestRefused("The file cannot be opened.", static_cast<std::int32_t>(error.GetCode()));
  }
  json records = json::array();
  library::Utf8Converter hostText;
  library::WizardRecord record;
  const auto until = std::chrono::steady_clock::now() + kPatience;
  for (std::int64_t line = 1; line < first + count && wizard->Next(&record); ++line) {
    if (line < first) {
      if (line % 4096 == 0 && std::chrono::steady_clock::now() > until) {
        throw RequestRefused(fmt::format("Line {} is too far into the file to be shown.", first));
      }
      continue;
    }
    std::string text(hostText.ToUtf8(record.text));
    // So the handler shows an empty line.
    if (text == "\n") text.clear();
    const bool cut = Shorten(text) || record.isCut;
    records.push_back({{"line", line}, {"text", text}, {"cut", cut}});
  }
  return {{"records", records}};
}

}  // namespace cli
