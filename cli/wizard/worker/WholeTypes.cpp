#include "cli/wizard/worker/WholeTypes.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/wizard/WizardServer.h"
#include "cli/wizard/worker/ImportPass.h"
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

class Nobody : public library::CaseReceiver {
 public:
  void Take(const OBS* /*obs*/) override {}
};

// How many values of each column are cut. Summing the values up knew no widths yet: where a text is
// longer than its format, the cases are read once.
std::vector<std::int64_t> CutValues(const library::BareImport& import, library::InputFiles& files,
                                    const std::vector<std::string>& nulls) {
  std::vector<std::int64_t> cut(import.columns.size());
  bool any = false;
  for (std::size_t i = 0; i < import.columns.size(); ++i) any = any || library::MayBeCut(import, i);
  if (!any) return cut;
  ImportPass pass(import, files, nulls, 0);
  Nobody nobody;
  pass.Read(nobody);
  std::int32_t variable = 0;
  for (std::size_t i = 0; i < import.columns.size(); ++i) {
    if (import.columns[i].skipped) continue;
    cut[i] = pass.problems().CountOf(ImportProblemKind::kCut, variable++);
  }
  return cut;
}

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
  const std::vector<std::int64_t> cut = CutValues(import, files, settings.nulls);
  return {{"bytes", allBytes},
          {"all_bytes", allBytes},
          {"cases", import.summary.records},
          {"columns", library::ColumnReport(import, true, cut)},
          {"command", std::string(library::Utf8Converter().ToUtf8(import.command))},
          {"options", library::RunOptionsFor(import, settings.nulls)}};
}

}  // namespace cli
