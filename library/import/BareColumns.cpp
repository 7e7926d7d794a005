#include "library/import/BareColumns.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>

#include "HostFramework/Names.h"
#include "HostFramework/Text.h"
#include "library/command/CommandText.h"

namespace library {
namespace {

std::string Upper(std::string name) { return QANTMBstrupr_A(name.data()); }

void FitGivenType(const GivenFormat& given, const ColumnEvidence& evidence, std::uint32_t width,
                  DecimalCharacter decimal, ChosenType* type) {
  *type = {};
  type->format = given.format;
  if (!given.hasWidth) {
    type->format = FitFormat(given.format.code, evidence, decimal);
    // Not narrower than a fixed column.
    type->format.width = std::max(type->format.width, std::min(width, given.most));
  }
  const std::optional<Reading> reading = ReadingOf(type->format.code, decimal);
  if (!reading) return;
  const Witness unread = evidence.Unread(*reading);
  if (unread.count > 0) type->remarks.push_back({ColumnRemark::kUnreadable, unread, std::nullopt});
}

}  // namespace

bool NameColumns(const std::vector<std::string>& given, std::vector<BareColumn>* columns,
                 std::string* problem) {
  if (!given.empty() && given.size() != columns->size()) {
    *problem = fmt::format("{} name{} for {} column{}", given.size(),
                           given.size() == 1 ? " is given" : "s are given", columns->size(),
                           columns->size() == 1 ? "" : "s");
    return false;
  }
  std::vector<std::string> names;
  std::set<std::string> taken;
  for (std::size_t i = 0; i < columns->size(); ++i) {
    std::string name = given.empty() ? (*columns)[i].name : given[i];
    if (!given.empty() && ValidateQANTName(name.c_str()) != 0) {
      *problem = fmt::format("{} cannot be the name of a variable", name);
      return false;
    }
    if (!given.empty() && !taken.insert(Upper(name)).second) {
      *problem = fmt::format("the name {} is given twice", name);
      return false;
    }
    names.push_back(std::move(name));
  }
  AvoidKeywords(&names);
  for (std::size_t i = 0; i < names.size(); ++i) (*columns)[i].name = std::move(names[i]);
  return true;
}

bool ReadGivenTypes(const std::vector<std::pair<std::string, std::string>>& types,
                    std::vector<BareColumn>* columns, GivenFormats* given, std::string* problem) {
  given->assign(columns->size(), std::nullopt);
  for (const auto& [name, text] : types) {
    const auto found = std::find_if(
        columns->begin(), columns->end(),
        [wanted = Upper(name)](const BareColumn& column) { return Upper(column.name) == wanted; });
    if (found == columns->end()) {
      *problem = fmt::format("there is no column {}", name);
      return false;
    }
    found->skipped = text == "X" || text == "x";
    if (found->skipped) continue;
    GivenFormat format;
    if (!ReadGivenFormat(text, &format, problem)) return false;
    (*given)[static_cast<std::size_t>(found - columns->begin())] = format;
    found->typeGiven = true;
  }
  return true;
}

TypeChoice ChooseColumnTypes(const std::vector<ColumnEvidence>& evidence,
                             const TypeSettings& settings, const GivenFormats& given,
                             std::vector<BareColumn>* columns) {
  TypeChoice types = ChooseTypes(evidence, settings);
  for (std::size_t i = 0; i < columns->size(); ++i) {
    const bool fixed = i < settings.columnWidths.size();
    if (given[i]) {
      FitGivenType(*given[i], evidence[i], fixed ? settings.columnWidths[i] : 0, types.decimal,
                   &types.columns[i]);
    }
    (*columns)[i].type = types.columns[i];
  }
  return types;
}

}  // namespace library
