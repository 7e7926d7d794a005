#include "cli/wizard/worker/FileReading.h"

#include <algorithm>
#include <string>
#include <vector>

#include "cli/wizard/WizardServer.h"
#include "cli/wizard/worker/PageSettings.h"
#include "library/import/BareCut.h"
#include "library/input/InputFiles.h"
#include "library/sniff/SniffJson.h"
#include "library/sniff/Sniffer.h"

namespace cli {
namespace {

using library::SniffResult;
using nlohmann::json;

// What else a file without a mark may be, where it is neither UTF-8 nor of two bytes a character.
constexpr const char* kOftenMeant[] = {"windows-1252", "ISO-8859-15", "windows-1250",
                                       "windows-1251"};
constexpr std::size_t kMostEncodings = 4;

template <typename T>
json SettingJson(const library::Setting<T>& setting) {
  return {{"source", setting.given ? "given" : "found"},
          {"evidence", setting.given ? "" : setting.evidence},
          {"runner_up", setting.given ? "" : setting.runnerUp},
          {"margin", setting.margin}};
}

json SettingsJson(const SniffResult& result) {
  return {{"encoding", SettingJson(result.encoding)},
          {"line_end", SettingJson(result.lineEnd)},
          {"arrangement", SettingJson(result.arrangement)},
          {"delimiter", SettingJson(result.delimiter)},
          {"qualifier", SettingJson(result.qualifier)},
          {"first_line", SettingJson(result.firstDataLine)},
          {"header", SettingJson(result.headerLines)},
          {"decimal", SettingJson(result.decimal)}};
}

// The encodings that the file may be shown in, the one that was found or given first.
std::vector<std::string> EncodingsOf(const SniffResult& result, const SniffResult& found) {
  std::vector<std::string> names;
  const auto add = [&](const std::string& name) {
    const bool same = std::count(result.sameEncodings.begin(), result.sameEncodings.end(), name);
    if (!name.empty() && !same && std::count(names.begin(), names.end(), name) == 0) {
      names.push_back(name);
    }
  };
  add(result.encoding.value);
  add(found.encoding.value);
  add(found.encoding.runnerUp);
  if (found.runnerUp) add(found.runnerUp->encoding);
  if (names.front() == "UTF-8" && !result.encoding.given && result.encoding.margin >= 1) return {};
  for (const char* name : kOftenMeant) {
    if (names.size() < kMostEncodings) add(name);
  }
  return names;
}

json Alternatives(const SniffResult& result, const SniffResult& found) {
  json delimiters = json::array();
  const auto add = [&](const std::string& delimiter) {
    const bool other = delimiter != result.delimiter.value;
    if (other && std::find(delimiters.begin(), delimiters.end(), delimiter) == delimiters.end()) {
      delimiters.push_back(delimiter);
    }
  };
  if (result.runnerUp) add(result.runnerUp->delimiter);
  if (found.arrangement.value == library::Arrangement::kDelimited) add(found.delimiter.value);
  if (found.runnerUp) add(found.runnerUp->delimiter);
  return {{"delimiters", delimiters}, {"encodings", EncodingsOf(result, found)}};
}

}  // namespace

json FileReading(const json& body) {
  library::InputFiles files;
  const std::string path = body.at("path");
  const library::InputFiles::Input& input = files.Open(path);
  std::string problem = input.problem;
  if (!problem.empty() && !input.wayOut.empty()) problem += "; " + input.wayOut;
  const auto source = problem.empty() ? library::FileSource::Open(input.path, &problem) : nullptr;
  if (source == nullptr) throw RequestRefused("The file cannot be read: " + problem);
  const library::BareImportSettings settings = PageSettings(body.at("given"));
  SniffResult result;
  if (!library::Sniff(*source, settings.sniff, &result, &problem)) {
    throw RequestRefused("The file cannot be read so: " + problem);
  }
  // What would be found without the settings stays on offer.
  SniffResult found = result;
  if (!body.at("given").empty()) {
    library::SniffSettings none;
    if (!library::Sniff(*source, none, &found, &problem)) found = result;
  }
  library::BareCut cut;
  if (!library::CutOf(result, &cut, &problem)) {
    throw RequestRefused("The file cannot be read so: " + problem);
  }
  return {{"reading", library::SniffJson(path, result)},
          {"leading_blanks", settings.leadingBlanks.value_or(cut.cut.settings.leadingSpaces)},
          {"settings", SettingsJson(result)},
          {"advice", result.advice},
          {"bytes", result.fileSize},
          {"compressed", input.compressedBytes > 0},
          {"alternatives", Alternatives(result, found)}};
}

}  // namespace cli
