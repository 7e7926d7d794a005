#include "cli/wizard/worker/WholeTypes.h"

#include <chrono>
#include <string>

#include "cli/wizard/WizardServer.h"
#include "cli/wizard/worker/PageSettings.h"
#include "library/import/BareImport.h"
#include "library/import/ColumnReport.h"
#include "library/import/RunLine.h"
#include "library/outputs/Utf8Converter.h"

namespace cli {
namespace {

using nlohmann::json;
using Clock = std::chrono::steady_clock;

// Time between two looks that the page gets.
constexpr std::chrono::milliseconds kInterval{250};

}  // namespace

json WholeTypes(const json& body, const std::function<void(const json&)>& progress) {
  library::BareImportSettings settings = PageSettings(body.at("given"));
  std::int64_t bytes = 0;
  std::int64_t allBytes = 0;
  Clock::time_point told = Clock::now();
  settings.progress = [&](std::int64_t read, std::int64_t size) {
    bytes = read;
    allBytes = size;
  };
  settings.grown = [&](const library::BareImport& soFar) {
    if (Clock::now() - told < kInterval) return;
    told = Clock::now();
    progress({{"bytes", bytes},
              {"all_bytes", allBytes},
              {"cases", soFar.summary.records},
              {"columns", library::ColumnReport(soFar, false)}});
  };
  library::InputFiles files;
  library::BareImport import;
  std::string problem;
  if (!library::UnderstandFile(body.at("path"), files, settings, &import, &problem)) {
    throw RequestRefused("The file cannot be read so: " + problem);
  }
  return {{"bytes", allBytes},
          {"all_bytes", allBytes},
          {"cases", import.summary.records},
          {"columns", library::ColumnReport(import, true)},
          {"command", std::string(library::Utf8Converter().ToUtf8(import.command))},
          {"options", library::RunOptionsFor(import, settings.nulls)}};
}

}  // namespace cli
