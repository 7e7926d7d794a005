#include "library/files/DataSetPlan.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/text/HostText.h"
#include "library/files/FileAligner.h"
#include "library/files/FileLook.h"
#include "library/files/TypeDrift.h"
#include "library/import/RemarkText.h"
#include "library/outputs/Utf8Converter.h"
#include "library/sniff/ColumnNames.h"

namespace library {
namespace {

using Kind = DataSetFile::Kind;

// Files that are named in one error.
constexpr std::size_t kNamedFiles = 3;

const char* DecimalName(DecimalCharacter decimal) {
  return decimal == DecimalCharacter::kComma ? "comma" : "point";
}

class Planning {
 public:
  Planning(InputFiles& files, const DataSetSettings& settings, DataSetPlan* plan,
           std::string* problem)
      : files_(files), settings_(settings), plan_(*plan), problem_(*problem) {}

  bool Run(const std::vector<std::string>& names);

 private:
  // What a column is in the files with one decimal character.
  using Evidence = std::vector<ColumnEvidence>;

  bool Look(const std::vector<std::string>& names);
  bool AllFit();
  void OrderColumns();
  bool NameAll();
  bool ReadAll();
  bool ReadFile(std::size_t index);
  bool KeepsState(const DataSetFile& file);
  bool HasHostOfAll(const DataSetFile& file, std::string* problem);
  void Merge(std::size_t index);
  void MergeDecimals();
  void ChooseAll();
  std::string Restored(std::size_t file, const std::string& text) const;
  void RestoreRemarks();
  bool WriteCommands();
  bool WriteCommand(DataSetFile* file);
  void LeaveOut(std::size_t index, std::string why);

  InputFiles& files_;
  const DataSetSettings& settings_;
  DataSetPlan& plan_;
  std::string& problem_;

  GivenFormats given_;
  std::int64_t lines_ = 0;
  // By decimal character; the files' own, where their values speak for one.
  Evidence byDecimal_[2];
  std::vector<std::optional<DecimalCharacter>> decimals_;
  std::vector<std::uint32_t> widths_;
  TypeDrift typeDrift_;
};

bool Planning::Look(const std::vector<std::string>& names) {
  Utf8Converter utf8;
  SniffSettings sniff = settings_.file.sniff;
  if (settings_.file.sampleLines > 0) sniff.sampleLines = settings_.file.sampleLines;
  for (const std::string& name : names) {
    DataSetFile& file = plan_.files.emplace_back();
    file.name = name;
    plan_.names.emplace_back(name == "-" ? "standard input" : utf8.ToUtf8(name));
    if (!LookAtFile(files_, sniff, &file)) return false;
    LetGo(files_, name, names.size());
  }
  if (FileAligner(files_, settings_, &plan_).Run()) return true;
  const DataSetFile& first = plan_.files.front();
  problem_ = fmt::format("{}: {}{}", plan_.names.front(), first.problem,
                         plan_.files.size() == 1 ? "" : "; so it is with all files");
  return false;
}

// What does not fit is an error, unless it is to be left out.
bool Planning::AllFit() {
  if (settings_.skipMisfits) {
    const bool any = std::any_of(plan_.files.begin(), plan_.files.end(),
                                 [](const DataSetFile& file) { return file.isRead(); });
    if (!any) problem_ = "no file is left";
    return any;
  }
  std::size_t count = 0;
  for (std::size_t i = 0; i < plan_.files.size(); ++i) {
    if (plan_.files[i].kind != Kind::kLeftOut) continue;
    if (++count > kNamedFiles) continue;
    problem_ +=
        fmt::format("{}{}: {}", count > 1 ? "; " : "", plan_.names[i], plan_.files[i].problem);
  }
  if (count == 0) return true;
  if (count > kNamedFiles) problem_ += fmt::format("; and {} more files", count - kNamedFiles);
  problem_ += fmt::format("; {} leaves such files out", settings_.skipMisfitsName);
  return false;
}

template <typename Value>
void Reorder(const std::vector<std::size_t>& order, std::vector<Value>* values) {
  if (values->empty()) return;
  std::vector<Value> ordered;
  ordered.reserve(order.size());
  for (const std::size_t place : order) ordered.push_back(std::move((*values)[place]));
  *values = std::move(ordered);
}

// As the files that are read have them: those of the first one first. So it is to whoever has the
// commands only.
void Planning::OrderColumns() {
  std::vector<std::size_t> order;
  std::vector<std::optional<std::size_t>> places(plan_.columns.size());
  for (DataSetFile& file : plan_.files) {
    if (!file.isRead()) continue;
    for (std::size_t& column : file.columns) {
      if (!places[column]) {
        places[column] = order.size();
        order.push_back(column);
      }
      column = *places[column];
    }
  }
  Reorder(order, &plan_.columns);
  Reorder(order, &given_);
  widths_.resize(widths_.empty() ? 0 : places.size());
  Reorder(order, &widths_);
  for (Evidence& evidence : byDecimal_) Reorder(order, &evidence);
  typeDrift_.Reorder(order);
}

bool Planning::NameAll() {
  std::vector<std::string> labels;
  for (const BareColumn& column : plan_.columns) labels.push_back(column.label);
  const std::vector<std::string> names = NamesOf(labels);
  for (std::size_t i = 0; i < names.size(); ++i) plan_.columns[i].name = names[i];
  return NameColumns(settings_.file.names, &plan_.columns, &problem_) &&
         ReadGivenTypes(settings_.file.types, &plan_.columns, &given_, &problem_);
}

void Planning::LeaveOut(std::size_t index, std::string why) {
  DataSetFile& file = plan_.files[index];
  file.kind = Kind::kLeftOut;
  file.problem = std::move(why);
  std::erase_if(plan_.drift, [index](const Drift& drift) { return drift.file == index; });
  plan_.drift.push_back({DriftKind::kLeftOut, index, "", file.problem, {}, 0, 0});
}

bool Planning::KeepsState(const DataSetFile& file) {
  if (!file.state) return true;
  problem_ = ChangeOf(file.name, *file.state);
  return problem_.empty();
}

// Strings of all cases are in one code page.
bool Planning::HasHostOfAll(const DataSetFile& file, std::string* problem) {
  for (const DataSetFile& other : plan_.files) {
    if (&other == &file) return true;
    if (!other.isRead() || other.import.host.codePage == file.import.host.codePage) continue;
    *problem = fmt::format(
        "its columns are counted in characters of another encoding than those of {}; convert one "
        "of them: iconv -t UTF-8",
        other.name);
    return false;
  }
  return true;
}

bool Planning::ReadFile(std::size_t index) {
  DataSetFile& file = plan_.files[index];
  embedded::SetCodePage(nullptr);
  const SniffResult sniff = std::move(file.import.sniff);
  BareImportSettings settings = settings_.file;
  settings.sniffed = &sniff;
  settings.names.clear();
  settings.types.clear();
  settings.grown = nullptr;
  settings.progress = nullptr;
  if (settings_.summarize) {
    settings.summarize = [&](const FileSummarySettings& data, const RewritingOptions& rewriting,
                             std::int64_t shownMark, PartSummary* summary, std::string* why) {
      return settings_.summarize(index, data, rewriting, shownMark, summary, why);
    };
  }
  std::string why;
  const bool read = UnderstandFile(file.name, files_, settings, &file.import, &why);
  if (embedded::AttentionRequested() || !KeepsState(file)) return false;
  LetGo(files_, file.name, plan_.files.size());
  if (!read || !HasHostOfAll(file, &why)) {
    file.import = BareImport();
    LeaveOut(index, std::move(why));
    return true;
  }
  Merge(index);
  return true;
}

void Planning::Merge(std::size_t index) {
  DataSetFile& file = plan_.files[index];
  BareImport& import = file.import;
  file.linesBefore = lines_;
  const bool decided = import.types.decimalWitness.line > 0;
  if (decided) decimals_[index] = import.types.decimal;
  Evidence& evidence = byDecimal_[decided && import.types.decimal == DecimalCharacter::kComma];
  const bool fixed = import.cut.settings.arrangement == textwizard::kFixedColumns;
  for (std::size_t i = 0; i < file.columns.size(); ++i) {
    const std::size_t column = file.columns[i];
    typeDrift_.Add(index, column, import.summary.columns[i], import.columns[i].type.format);
    evidence[column].Append(import.summary.columns[i], lines_);
    if (!fixed) continue;
    widths_.resize(plan_.columns.size());
    widths_[column] = std::max(widths_[column], import.cut.fields[i].width);
  }
  lines_ += import.summary.lines;
  import.summary.columns = {};
}

// One decimal character for the data set; what files write with the other one is the same to them.
void Planning::MergeDecimals() {
  std::int64_t files[2] = {};
  for (const auto& decimal : decimals_) {
    if (decimal) ++files[*decimal == DecimalCharacter::kComma];
  }
  const bool given = settings_.file.sniff.decimal.has_value();
  const bool comma =
      given ? *settings_.file.sniff.decimal == DecimalCharacter::kComma : files[1] > files[0];
  plan_.types.decimal = comma ? DecimalCharacter::kComma : DecimalCharacter::kPoint;
  // What speaks for neither is with the points.
  const bool mixed = !given && files[0] > 0 && files[1] > 0;
  plan_.evidence = std::move(byDecimal_[0]);
  if (mixed && comma) {
    for (ColumnEvidence& column : plan_.evidence) column.SwapDecimals();
  }
  for (std::size_t i = 0; i < plan_.evidence.size(); ++i) {
    if (mixed && !comma) byDecimal_[1][i].SwapDecimals();
    plan_.evidence[i].Append(byDecimal_[1][i], 0);
  }
  for (std::size_t i = 0; i < plan_.files.size(); ++i) {
    DataSetFile& file = plan_.files[i];
    const bool other = mixed && decimals_[i] && *decimals_[i] != plan_.types.decimal;
    file.import.host.decimal = other ? *decimals_[i] : plan_.types.decimal;
    if (!file.isRead() || !other) continue;
    typeDrift_.SwapDecimals(i);
    const Witness& seen = file.import.types.decimalWitness;
    plan_.drift.push_back({DriftKind::kDecimal, i, "",
                           fmt::format("its decimal character is the {}: {} in line {}",
                                       DecimalName(*decimals_[i]), seen.text, seen.line),
                           seen.text, seen.line, seen.count});
  }
}

void Planning::ChooseAll() {
  MergeDecimals();
  TypeSettings types;
  types.leastShare = settings_.file.leastShare;
  types.decimal = plan_.types.decimal;
  types.decimalGiven = settings_.file.sniff.decimal.has_value() ||
                       std::any_of(decimals_.begin(), decimals_.end(),
                                   [](const auto& decimal) { return decimal.has_value(); });
  types.columnWidths = widths_;
  plan_.types = ChooseColumnTypes(plan_.evidence, types, given_, &plan_.columns);
  typeDrift_.Tell(
      plan_.columns, plan_.types.decimal,
      [this](std::size_t file, const std::string& text) { return Restored(file, text); },
      &plan_.drift);
  std::stable_sort(plan_.drift.begin(), plan_.drift.end(),
                   [](const Drift& left, const Drift& right) { return left.file < right.file; });
}

// A text of a file as that means it, in UTF-8.
std::string Planning::Restored(std::size_t file, const std::string& text) const {
  std::string room;
  std::string_view restored = text;
  const std::optional<StandIns>& standIns = plan_.files[file].import.standIns;
  if (standIns) restored = TextRestorer(*standIns).Restore(text, room);
  return std::string(Utf8Converter().ToUtf8(restored));
}

void Planning::RestoreRemarks() {
  for (BareColumn& column : plan_.columns) {
    for (ColumnRemark& remark : column.type.remarks) {
      std::int64_t line = 0;
      const std::size_t file = plan_.FileOfLine(remark.values.line, &line);
      remark.values.text = Restored(file, remark.values.text);
    }
  }
}

bool Planning::WriteCommand(DataSetFile* file) {
  BareImport& import = file->import;
  const bool swaps = import.host.decimal != plan_.types.decimal;
  for (std::size_t i = 0; i < file->columns.size(); ++i) {
    BareColumn& column = import.columns[i];
    column = plan_.columns[file->columns[i]];
    std::uint32_t& code = column.type.format.code;
    if (swaps && code == textwizard::kFormatComma) {
      code = textwizard::kFormatDot;
    } else if (swaps && code == textwizard::kFormatDot) {
      code = textwizard::kFormatComma;
    }
  }
  return SetHost(import.host, &problem_) &&
         MakeCommand(file->name, settings_.file.sampleLines > 0, &import, &problem_);
}

bool Planning::WriteCommands() {
  for (std::size_t i = 0; i < plan_.files.size(); ++i) {
    if (!plan_.files[i].isRead() || WriteCommand(&plan_.files[i])) continue;
    problem_ = fmt::format("{}: {}", plan_.names[i], problem_);
    return false;
  }
  return true;
}

bool Planning::ReadAll() {
  for (Evidence& evidence : byDecimal_) evidence.resize(plan_.columns.size());
  decimals_.resize(plan_.files.size());
  for (std::size_t i = 0; i < plan_.files.size(); ++i) {
    if (settings_.progress) settings_.progress(i, plan_.files.size());
    if (plan_.files[i].isRead() && !ReadFile(i)) return false;
  }
  return true;
}

bool Planning::Run(const std::vector<std::string>& names) {
  if (!Look(names) || !AllFit()) return false;
  OrderColumns();
  if (!NameAll() || !ReadAll() || !AllFit()) return false;
  OrderColumns();
  ChooseAll();
  RestoreRemarks();
  return WriteCommands();
}

}  // namespace

std::size_t DataSetPlan::FileOfLine(std::int64_t line, std::int64_t* lineInFile) const {
  std::size_t found = reference;
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (files[i].isRead() && files[i].linesBefore < line) found = i;
  }
  *lineInFile = line - files[found].linesBefore;
  return found;
}

std::string DataSetPlan::PlaceOf(std::int64_t line) const {
  std::int64_t lineInFile = 0;
  const std::size_t file = FileOfLine(line, &lineInFile);
  return fmt::format("line {} of {}", lineInFile, names[file]);
}

bool PlanDataSet(const std::vector<std::string>& names, InputFiles& files,
                 const DataSetSettings& settings, DataSetPlan* plan, std::string* problem) {
  *plan = {};
  problem->clear();
  return Planning(files, settings, plan, problem).Run(names);
}

std::string CommandsText(const DataSetPlan& plan) {
  std::string commands;
  for (const DataSetFile& file : plan.files) {
    if (!file.isRead()) continue;
    if (!commands.empty()) commands += "\n";
    commands += file.import.command;
  }
  return commands;
}

std::vector<std::string> RemarksOf(const DataSetPlan& plan) {
  return RemarksOf(plan.columns, plan.evidence,
                   [&plan](std::int64_t line) { return plan.PlaceOf(line); });
}

std::string ChangeOf(const std::string& name, const FileState& before) {
  FileState now;
  if (!GetFileState(name, &now)) {
    return fmt::format("{}: the file is gone since it was looked at", name);
  }
  if (now == before) return {};
  return fmt::format("{}: the file changed since it was looked at; import again when it is still",
                     name);
}

}  // namespace library
