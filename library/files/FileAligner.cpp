#include "library/files/FileAligner.h"

#include <algorithm>
#include <map>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "library/files/ColumnMatch.h"
#include "library/files/FileLook.h"

namespace library {
namespace {

using Kind = DataSetFile::Kind;

// Columns that are named in a sentence.
constexpr std::size_t kNamedColumns = 5;

// "a, b, c and 4 more".
std::string Listed(const std::vector<std::string>& labels) {
  const std::size_t shown = std::min(labels.size(), kNamedColumns);
  std::string text = fmt::format(
      "{}", fmt::join(labels.begin(), labels.begin() + static_cast<std::ptrdiff_t>(shown), ", "));
  if (shown < labels.size()) text += fmt::format(" and {} more", labels.size() - shown);
  return text;
}

std::string Columns(std::size_t count) {
  return fmt::format("{} column{}", count, count == 1 ? "" : "s");
}

// What files of the same names have in common, whatever the order of their columns.
std::string KeysOf(const DataSetFile& file) {
  std::vector<std::string> keys;
  for (const std::string& label : LabelsOf(file)) keys.push_back(ColumnKey(label));
  std::sort(keys.begin(), keys.end());
  return fmt::format("{}", fmt::join(keys, "\n"));
}

// The dialect of another file, for one whose own was found amiss; what a person gave stands.
SniffSettings DialectOf(const SniffResult& sniff, const SniffSettings& given) {
  SniffSettings settings = given;
  if (!given.fixed && sniff.arrangement.value == Arrangement::kFixed) {
    settings.fixed.emplace();
    for (const SniffColumn& column : sniff.columns) settings.fixed->push_back(column.range);
  } else if (!given.fixed) {
    if (!given.delimiter) settings.delimiter = sniff.delimiter.value;
    if (!given.qualifier) settings.qualifier = sniff.qualifier.value;
  }
  if (!given.header) settings.header = sniff.headerLines.value > 0;
  return settings;
}

}  // namespace

void FileAligner::Tell(DriftKind kind, std::size_t file, const std::string& column,
                       std::string detail) {
  plan_.drift.push_back({kind, file, column, std::move(detail), {}, 0, 0});
}

// The first of the files whose structure most have: those with names go before those without.
void FileAligner::FindReference() {
  std::map<std::string, std::pair<std::size_t, std::size_t>> groups;  // files, the first
  bool named = false;
  for (std::size_t i = 0; i < plan_.files.size(); ++i) {
    const DataSetFile& file = plan_.files[i];
    if (!file.isRead()) continue;
    const bool byName = HasHeader(file) && settings_.by != FileAlignment::kPosition;
    if (byName && !named) {
      named = true;
      groups.clear();
    }
    if (byName != named) continue;
    const std::string key = named ? KeysOf(file) : std::to_string(file.import.sniff.columns.size());
    ++groups.try_emplace(key, 0, i).first->second.first;
  }
  std::size_t most = 0;
  for (const auto& [key, group] : groups) {
    const auto& [count, first] = group;
    if (count < most || (count == most && first > plan_.reference)) continue;
    most = count;
    plan_.reference = first;
  }
  // By place, names come from the first file that has them.
  for (std::size_t i = 0; !named && i < plan_.files.size(); ++i) {
    const DataSetFile& file = plan_.files[i];
    const bool same = file.import.sniff.columns.size() == referenceColumns();
    if (!file.isRead() || !HasHeader(file) || !same) continue;
    plan_.reference = i;
    break;
  }
  plan_.by = named || settings_.by == FileAlignment::kName ? FileAlignment::kName
                                                           : FileAlignment::kPosition;
}

// A first line of texts above texts may be names or not: it is where it has the reference's.
void FileAligner::FindHeader(DataSetFile* file) {
  if (HasHeader(*file) || !HasHeader(reference()) || settings_.file.sniff.header) return;
  DataSetFile named = *file;
  SniffSettings settings = DialectOf(reference().import.sniff, settings_.file.sniff);
  if (!LookAgain(files_, settings, &named)) return;
  const auto columns = MatchColumns(LabelsOf(named), LabelsOf(reference()));
  const bool isReference = std::all_of(columns.begin(), columns.end(),
                                       [](const auto& column) { return column.has_value(); });
  if (isReference && columns.size() == referenceColumns()) *file = std::move(named);
}

bool FileAligner::FitByName(const DataSetFile& file, Fit* fit, std::string* problem) const {
  const std::vector<std::string> labels = LabelsOf(file);
  const auto columns = MatchColumns(labels, labels_);
  std::size_t shared = 0;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i] && *columns[i] < referenceColumns()) ++shared;
    if (!columns[i]) fit->added.push_back(labels[i]);
    fit->columns.push_back(columns[i] ? *columns[i] : labels_.size() + fit->added.size() - 1);
  }
  if (2 * shared >= referenceColumns()) return true;
  *problem = fmt::format("it has {} of the {} of {}; its columns are {}", shared,
                         Columns(referenceColumns()), plan_.names[plan_.reference], Listed(labels));
  return false;
}

bool FileAligner::FitByPlace(const DataSetFile& file, Fit* fit, std::string* problem) const {
  const std::size_t count = file.import.sniff.columns.size();
  fit->byPlace = true;
  for (std::size_t i = 0; i < count; ++i) fit->columns.push_back(i);
  if (count == referenceColumns()) return true;
  *problem = fmt::format("it has {}, and {} has {}", Columns(count), plan_.names[plan_.reference],
                         referenceColumns());
  return false;
}

bool FileAligner::FitFile(const DataSetFile& file, Fit* fit, std::string* problem) const {
  *fit = {};
  if (plan_.by == FileAlignment::kPosition) return FitByPlace(file, fit, problem);
  if (HasHeader(file)) return FitByName(file, fit, problem);
  if (settings_.by != FileAlignment::kName) return FitByPlace(file, fit, problem);
  *problem = fmt::format("no names stand above its columns; {} takes them by place",
                         settings_.byPositionName);
  return false;
}

// A file may have been cut amiss: its lines, or where its data begins.
bool FileAligner::LooksLikeReference(DataSetFile* file, Fit* fit) const {
  const SniffResult& sniff = reference().import.sniff;
  SniffSettings settings = DialectOf(sniff, settings_.file.sniff);
  std::vector<SniffSettings> tries = {settings};
  if (!settings.firstLine && sniff.headerLines.value > 0) {
    // What was taken for a second line of names may be data.
    settings.firstLine = file->import.sniff.preambleLines + sniff.headerLines.value + 1;
    tries.push_back(settings);
  }
  for (const SniffSettings& one : tries) {
    DataSetFile again = *file;
    std::string problem;
    if (!LookAgain(files_, one, &again) || !FitFile(again, fit, &problem)) continue;
    *file = std::move(again);
    return true;
  }
  return false;
}

void FileAligner::TellRenamed(std::size_t index, const std::vector<std::string>& labels,
                              const std::vector<std::size_t>& columns) {
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const std::string& known = labels_[columns[i]];
    if (labels[i] == known || labels[i].empty() || known.empty()) continue;
    const bool alike = ColumnKey(labels[i]) == ColumnKey(known);
    Tell(DriftKind::kRenamed, index, known,
         alike ? fmt::format("the column \"{}\" is \"{}\" here", known, labels[i])
               : fmt::format("column {} is \"{}\" here, not \"{}\"", i + 1, labels[i], known));
  }
}

void FileAligner::TellDrift(std::size_t index, const Fit& fit) {
  const DataSetFile& file = plan_.files[index];
  const std::vector<std::string> labels = LabelsOf(file);
  if (file.kind == Kind::kHeaderOnly) Tell(DriftKind::kHeaderOnly, index, "", file.problem);
  if (index == plan_.reference) return;
  if (fit.byPlace && HasHeader(reference()) && !HasHeader(file)) {
    Tell(DriftKind::kNoHeader, index, "",
         fmt::format("no names stand above its columns: they are taken by place, as in {}",
                     plan_.names[plan_.reference]));
  }
  if (HasHeader(file)) TellRenamed(index, labels, fit.columns);
  if (fit.byPlace) return;
  std::vector<bool> has(labels_.size(), false);
  for (const std::size_t column : fit.columns) has[column] = true;
  for (std::size_t i = 0; i < has.size(); ++i) {
    if (i < referenceColumns() && !has[i]) {
      Tell(DriftKind::kMissing, index, labels_[i],
           fmt::format("the column \"{}\" is missing; so are its values", labels_[i]));
    }
    if (i >= referenceColumns() && has[i]) {
      Tell(DriftKind::kAdded, index, labels_[i],
           fmt::format("the column \"{}\" is in addition to those of {}", labels_[i],
                       plan_.names[plan_.reference]));
    }
  }
  std::vector<std::size_t> shared;
  for (const std::size_t column : fit.columns) {
    if (column < referenceColumns()) shared.push_back(column);
  }
  if (!std::is_sorted(shared.begin(), shared.end())) {
    Tell(DriftKind::kReordered, index, "",
         fmt::format("the columns are in another order: {}", Listed(labels)));
  }
}

void FileAligner::Align(std::size_t index) {
  DataSetFile& file = plan_.files[index];
  if (!file.isRead()) {
    Tell(file.kind == Kind::kEmpty ? DriftKind::kEmpty : DriftKind::kLeftOut, index, "",
         file.problem);
    return;
  }
  FindHeader(&file);
  Fit fit;
  std::string problem;
  if (!FitFile(file, &fit, &problem) && !LooksLikeReference(&file, &fit)) {
    file.kind = Kind::kLeftOut;
    file.problem = std::move(problem);
    Tell(DriftKind::kLeftOut, index, "", file.problem);
    return;
  }
  labels_.insert(labels_.end(), fit.added.begin(), fit.added.end());
  file.columns = fit.columns;
  TellDrift(index, fit);
}

bool FileAligner::Run() {
  const bool any = std::any_of(plan_.files.begin(), plan_.files.end(),
                               [](const DataSetFile& file) { return file.isRead(); });
  if (!any) return false;
  plan_.reference = 0;
  FindReference();
  labels_ = LabelsOf(reference());
  for (std::size_t i = 0; i < plan_.files.size(); ++i) Align(i);
  plan_.columns.clear();
  for (const std::string& label : labels_) plan_.columns.push_back({{}, label, {}, false, false});
  return true;
}

}  // namespace library
