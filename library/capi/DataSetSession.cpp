#include "library/capi/DataSetSession.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/text/HostText.h"
#include "library/capi/Failure.h"
#include "library/files/DataSetImport.h"
#include "library/import/BareParts.h"
#include "library/import/ColumnReport.h"
#include "library/outputs/DictionaryJson.h"
#include "library/outputs/Utf8Converter.h"
#include "library/sniff/SniffJson.h"

namespace library {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

class KeptText : public ByteSink {
 public:
  void Append(std::string_view bytes) override { text += bytes; }
  std::string text;
};

template <typename Json>
std::string Dumped(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

const char* NameOf(DataSetFile::Kind kind) {
  switch (kind) {
    case DataSetFile::Kind::kData:
      return "data";
    case DataSetFile::Kind::kHeaderOnly:
      return "header-only";
    case DataSetFile::Kind::kEmpty:
      return "empty";
    case DataSetFile::Kind::kLeftOut:
      break;
  }
  return "left-out";
}

}  // namespace

DataSetSession::DataSetSession(DataSetOptions set, BareImportSettings settings,
                               const SessionOptions& options)
    : set_(std::move(set)),
      options_(options),
      inputs_([this](std::int64_t bytes, std::int64_t all) {
        if (options_.progress && !options_.progress(0, bytes, all)) cancelled_ = true;
      }) {
  const std::unique_ptr<HostUse> host = HostUse::Alone();
  if (host == nullptr) {
    throw Failure{.status = TEXTWIZARD_BUSY,
                  .text = "another import is being opened or read; wait until it is read"};
  }
  CheckSummaries();
  const embedded::AttentionScope scope(cancelled_);
  Plan(std::move(settings));
  Open();
}

void DataSetSession::Fail(const std::string& problem) {
  if (problem.empty() && embedded::AttentionRequested()) {
    throw Failure{.status = TEXTWIZARD_CANCELLED, .text = "the import was cancelled"};
  }
  throw Failure{.status = TEXTWIZARD_FILE, .text = problem};
}

void DataSetSession::Post(std::string_view hostText, int kind) {
  const std::string text(Utf8Converter().ToUtf8(hostText));
  if (kind == kMessageError) errors_ += (errors_.empty() ? "" : "\n") + text;
  if (kind != kMessageProgress && options_.message) options_.message(kind, text);
}

void DataSetSession::CheckSummaries() const {
  for (const FilePartSummary& summary : set_.summaries) {
    if (!summary.isWhole()) {
      throw Failure{.status = TEXTWIZARD_USAGE,
                    .text = fmt::format("{}: bytes {} to {} of {} are summed up, not all of them",
                                        summary.file, summary.range.from, summary.range.to,
                                        summary.fileBytes)};
    }
    if (const std::string change = ChangeOf(summary.file, summary.state); !change.empty()) {
      throw Failure{.status = TEXTWIZARD_FILE, .text = change};
    }
  }
}

void DataSetSession::Plan(BareImportSettings settings) {
  DataSetSettings all;
  all.file = std::move(settings);
  all.file.nulls = options_.nullTexts;
  all.file.threads = options_.workers;
  all.by = set_.by;
  all.skipMisfits = set_.skipMisfits;
  all.skipMisfitsName = "skip_misfits";
  all.byPositionName = "by position";
  all.progress = [this](std::size_t /*done*/, std::size_t /*files*/) {
    if (options_.progress && !options_.progress(0, 0, -1)) cancelled_ = true;
  };
  summarized_.resize(set_.paths.size());
  std::unordered_map<std::string_view, const FilePartSummary*> summaries;
  for (const FilePartSummary& summary : set_.summaries) summaries[summary.file] = &summary;
  all.summarize = [this, &summaries](std::size_t file, const FileSummarySettings& data,
                                     const RewritingOptions& rewriting, std::int64_t /*shownMark*/,
                                     PartSummary* values, std::string* why) {
    const auto summary = summaries.find(set_.paths[file]);
    // Nobody may have read it as it is cut among the others.
    summarized_[file] =
        summary != summaries.end() && ValuesOfSummary(*summary->second, data, rewriting, values);
    return summarized_[file] || SummarizeFile(data, values, why);
  };
  std::string problem;
  if (!PlanDataSet(set_.paths, inputs_, all, &plan_, &problem)) Fail(problem);
}

void DataSetSession::Open() {
  DataSetImportOptions options;
  options.workers = WorkersWhileWriting(options_.workers);
  options.files = &inputs_;
  options.sourceColumn = set_.sourceColumn;
  ImportMessages& messages = *this;
  DataSetImport import(CommandsOf(plan_), options, messages);
  if (import.Open() != ImportEnd::kDone) Fail(errors_);
  Utf8Converter utf8;
  std::vector<DataSetVariable> variables = import.variables();
  for (DataSetVariable& variable : variables) {
    variable.name = std::string(utf8.ToUtf8(variable.name));
  }
  std::int64_t cases = 0;
  for (std::size_t i = 0; i < plan_.files.size(); ++i) {
    const DataSetFile& file = plan_.files[i];
    if (!file.isRead()) {
      recipes_.emplace_back();
      continue;
    }
    ImportRecipe recipe = RecipeOf(file, plan_.names[i], variables);
    recipe.dataSet->casesBefore = cases;
    cases += file.import.summary.records;
    recipes_.push_back(RecipeText(recipe));
  }
  commands_ = utf8.ToUtf8(CommandsText(plan_));
  reading_ = Dumped(
      SniffJson(plan_.files[plan_.reference].name, plan_.files[plan_.reference].import.sniff));
  TellFiles();
  TellDictionary(import.source());
}

ImportRecipe DataSetSession::RecipeOf(const DataSetFile& file, const std::string& name,
                                      const std::vector<DataSetVariable>& variables) {
  ImportRecipe recipe;
  recipe.command = Utf8Converter().ToUtf8(file.import.command);
  recipe.host = {.decimalComma = file.import.host.decimal == DecimalCharacter::kComma,
                 .codePage = file.import.host.codePage,
                 .localeCodePage = file.import.host.localeCodePage};
  recipe.rewriting = file.import.rewriting;
  recipe.rewriting.keepStrayQualifiers |= options_.rewriting.keepStrayQualifiers;
  recipe.shownMark = file.import.shownMark;
  recipe.transcoding = file.import.transcoding;
  recipe.paddedAt = file.import.paddedAt;
  recipe.standIns = file.import.standIns;
  recipe.nullTexts = options_.nullTexts;
  recipe.namesAsVariables = options_.namesAsVariables;
  for (const BareColumn& column : plan_.columns) {
    if (column.skipped) continue;
    recipe.labels.push_back(column.label);
    recipe.integers.push_back(options_.integersOfFile && column.type.wholeNumbers);
  }
  RecipeDataSet& set = recipe.dataSet.emplace();
  set.variables = variables;
  set.fileName = name;
  if (!set_.sourceColumn.empty()) {
    recipe.labels.push_back(set_.sourceColumn);
    recipe.integers.push_back(false);
    set.sourceText = file.name;
  }
  recipe.file = file.name;
  recipe.state = file.state;
  return recipe;
}

void DataSetSession::TellFiles() {
  Utf8Converter utf8;
  ordered_json files = ordered_json::array();
  for (std::size_t i = 0; i < plan_.files.size(); ++i) {
    const DataSetFile& file = plan_.files[i];
    ordered_json told = {{"file", plan_.names[i]}, {"kind", NameOf(file.kind)}};
    if (!file.problem.empty()) told["problem"] = file.problem;
    if (file.state) {
      told["file_bytes"] = file.state->bytes;
      told["modified"] = file.state->modified;
    }
    if (file.isRead()) {
      told["records"] = file.import.summary.records;
      told["summarized"] = static_cast<bool>(summarized_[i]);
      told["command"] = utf8.ToUtf8(file.import.command);
    }
    files.push_back(std::move(told));
  }
  files_ = Dumped(files);
}

// Lines of what all files hold together are counted through all of them: who reads of one wants
// file and line. Texts are as that file means them.
void DataSetSession::PlaceWitnesses(json* told) const {
  if (told->is_object() && told->contains("line") && (*told)["line"].is_number_integer()) {
    std::int64_t line = (*told)["line"];
    if (line > 0) {
      const std::size_t file = plan_.FileOfLine(line, &line);
      (*told)["line"] = line;
      (*told)["file"] = plan_.names[file];
      const std::optional<StandIns>& standIns = plan_.files[file].import.standIns;
      if (standIns && told->contains("text")) {
        std::string room;
        const std::string text = (*told)["text"];
        (*told)["text"] = std::string(TextRestorer(*standIns).Restore(text, room));
      }
    }
  }
  if (!told->is_structured()) return;
  for (json& inner : *told) PlaceWitnesses(&inner);
}

std::vector<std::string> DataSetSession::EvidenceTexts() const {
  BareImport all;
  all.columns = plan_.columns;
  all.types = plan_.types;
  all.summary.columns = plan_.evidence;
  json evidence = FoundEvidence(all);
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < plan_.columns.size(); ++i) {
    if (plan_.columns[i].skipped) continue;
    PlaceWitnesses(&evidence[i]);
    texts.push_back(Dumped(evidence[i]));
  }
  return texts;
}

void DataSetSession::TellDictionary(const QANT_DataSource& source) {
  const std::vector<std::string> evidence = EvidenceTexts();
  DictionaryReport report;
  report.evidence = [&](std::size_t index) {
    return index < evidence.size() ? evidence[index] : std::string();
  };
  if (!plan_.drift.empty()) report.drift = DriftJson(plan_.drift, plan_.names).dump();
  std::int64_t cases = 0;
  for (const DataSetFile& file : plan_.files) {
    if (file.isRead()) cases += file.import.summary.records;
  }
  KeptText text;
  const std::string name =
      set_.name.empty() ? fmt::format("{}", fmt::join(set_.paths, " ")) : set_.name;
  WriteDictionary(source, name, cases, text, &report);
  text.text.pop_back();
  dictionary_ = std::move(text.text);
}

}  // namespace library
