#include "cli/wizard/worker/HeadCases.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/wizard/WizardServer.h"
#include "cli/wizard/worker/ImportPass.h"
#include "cli/wizard/worker/PageSettings.h"
#include "library/import/BareImport.h"
#include "library/import/ColumnReport.h"
#include "library/import/FieldPlaces.h"
#include "library/import/RunLine.h"
#include "library/outputs/CaseWriter.h"

namespace cli {
namespace {

using nlohmann::json;

constexpr std::int64_t kMostCases = 500;
// Lines that the types are found from at first.
constexpr std::int64_t kSampleLines = 2000;

// Takes the values of the first cases.
class Values : public library::CaseReceiver {
 public:
  Values(std::int64_t count, const std::optional<library::StandIns>& standIns) : left_(count) {
    if (standIns) restorer_.emplace(*standIns);
  }

  void Begin(const QANT_DataSource& source) override {
    columns_ = library::ColumnsOf(source, library::ValueStyle::kDisplay);
  }
  void Take(const OBS* obs) override {
    if (left_ <= 0) return;
    --left_;
    auto& values = cases.emplace_back();
    for (const library::CaseColumn& column : columns_) values.push_back(ValueOf(obs, column));
  }
  bool GoesOn(long long /*taken*/) override { return left_ > 0; }

  // A missing number has no value.
  std::vector<std::vector<std::optional<std::string>>> cases;

 private:
  std::optional<std::string> ValueOf(const OBS* obs, const library::CaseColumn& column) {
    if (column.bytes > 0) {
      std::string_view text = library::StringAt(obs, column);
      if (restorer_) text = restorer_->Restore(text, room_);
      return std::string(hostText_.ToUtf8(text));
    }
    const double value = library::NumberAt(obs, column);
    if (library::IsMissing(value)) return std::nullopt;
    char text[library::kValueTextRoom];
    return std::string(text, library::WriteValue(text, value, column.kind));
  }

  std::int64_t left_;
  std::vector<library::CaseColumn> columns_;
  std::optional<library::TextRestorer> restorer_;
  std::string room_;
  library::Utf8Converter hostText_;
};

json CasesJson(const library::BareImport& import, const Values& values,
               const std::vector<library::PlacedRecord>& records) {
  json cases = json::array();
  for (std::size_t i = 0; i < std::min(values.cases.size(), records.size()); ++i) {
    const library::PlacedRecord& record = records[i];
    json cells = json::array();
    std::size_t value = 0;
    for (std::size_t j = 0; j < import.columns.size(); ++j) {
      static const library::PlacedField kAbsent;
      const library::PlacedField& field = j < record.fields.size() ? record.fields[j] : kAbsent;
      json cell = {{"text", field.text}, {"from", field.from}, {"to", field.to}};
      if (import.columns[j].skipped) {
        cell["value"] = field.text;
        cell["missing"] = false;
      } else {
        const auto& found = values.cases[i][value++];
        cell["value"] = found ? json(*found) : json();
        cell["missing"] = !found.has_value();
      }
      cells.push_back(cell);
    }
    cases.push_back({{"line", record.line}, {"cells", cells}});
  }
  return cases;
}

}  // namespace

json HeadCases(const json& body) {
  const std::int64_t count = std::clamp<std::int64_t>(body.at("count"), 1, kMostCases);
  library::BareImportSettings settings = PageSettings(body.at("given"));
  settings.firstLook = true;
  settings.sampleLines = kSampleLines;
  library::InputFiles files;
  library::BareImport import;
  std::string problem;
  if (!library::UnderstandFile(body.at("path"), files, settings, &import, &problem)) {
    throw RequestRefused("The file cannot be read so: " + problem);
  }
  ImportPass pass(import, files, settings.nulls, 1);
  Values values(count, import.standIns);
  pass.Read(values);
  const std::vector<library::PlacedRecord> records =
      library::PlaceFields(pass.source(), import, count);
  return {{"cases", CasesJson(import, values, records)},
          {"columns", library::ColumnReport(import, false)},
          {"command", std::string(library::Utf8Converter().ToUtf8(import.command))},
          {"options", library::RunOptionsFor(import, settings.nulls)}};
}

}  // namespace cli
