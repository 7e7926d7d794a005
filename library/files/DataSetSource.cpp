#include "library/files/DataSetSource.h"

#include <algorithm>

#include <fmt/format.h>

#include "HostFramework/Names.h"
#include "HostFramework/Text.h"
#include "library/outputs/FormatName.h"
#include "library/outputs/Utf8Converter.h"
#include "model/FormatCode.h"

namespace library {
namespace {

std::string Upper(std::string name) { return QANTMBstrupr_A(name.data()); }

// Columns that a listing gives a long text at most.
constexpr int kWidestDisplay = 40;

// What amounts mean with the other decimal character.
bool IsSameFormat(const QANT_Format& left, const QANT_Format& right) {
  const auto isAmount = [](const QANT_Format& format) {
    return format.type == static_cast<int>(textwizard::kFormatComma) ||
           format.type == static_cast<int>(textwizard::kFormatDot);
  };
  return left == right || (isAmount(left) && isAmount(right) && left.width == right.width &&
                           left.decimals == right.decimals);
}

}  // namespace

bool DataSetSource::Add(const QANT_DataSource& source, std::string* problem) {
  for (std::size_t i = 0; i < source.GetNVariables(); ++i) {
    const QANT_Variable& variable = *source.GetVariable(i);
    const auto [place, isNew] = indices_.try_emplace(Upper(variable.GetName()), planned_.size());
    if (isNew) {
      planned_.push_back({variable.GetName(), variable.GetType(), variable.GetFormat(),
                          variable.GetWriteFormat(), variable.GetDisplayWidth()});
      continue;
    }
    DataSetVariable& known = planned_[place->second];
    const bool strings = known.type > 0 && variable.GetType() > 0;
    if (strings && variable.GetType() > known.type) {
      known.type = variable.GetType();
      known.format = variable.GetFormat();
      known.writeFormat = variable.GetWriteFormat();
      known.displayWidth = variable.GetDisplayWidth();
    }
    if (strings ||
        (known.type == variable.GetType() && IsSameFormat(known.format, variable.GetFormat()))) {
      continue;
    }
    *problem = fmt::format("the variable {} is {} here, and {} in an earlier file",
                           Utf8Converter().ToUtf8(variable.GetName()),
                           FormatName(variable.GetFormat()), FormatName(known.format));
    return false;
  }
  return true;
}

void DataSetSource::Make() {
  for (const DataSetVariable& planned : planned_) {
    QANT_Variable& variable = *MakeVariable(this, planned.type, nullptr);
    variable.SetName(planned.name.c_str());
    variable.SetFormat(planned.format.type, planned.format.width, planned.format.decimals);
    variable.SetWriteFormat(planned.writeFormat.type, planned.writeFormat.width,
                            planned.writeFormat.decimals);
    variable.SetDisplayWidth(planned.displayWidth);
  }
}

void DataSetSource::Add(const DataSetVariable& variable) {
  indices_.try_emplace(Upper(variable.name), planned_.size());
  planned_.push_back(variable);
}

bool DataSetSource::Find(const QANT_DataSource& source, std::vector<std::size_t>* variables) const {
  variables->clear();
  for (std::size_t i = 0; i < source.GetNVariables(); ++i) {
    const QANT_Variable& variable = *source.GetVariable(i);
    const auto found = indices_.find(Upper(variable.GetName()));
    if (found == indices_.end()) return false;
    const int type = planned_[found->second].type;
    if ((type == 0) != (variable.GetType() == 0) || variable.GetType() > type) return false;
    variables->push_back(found->second);
  }
  return true;
}

bool DataSetSource::AddText(const std::string& name, std::size_t bytes, std::string* problem) {
  std::string hostName = name;
  if (!qUTF8mode()) QANTMBU8ToCodePage(nullptr, hostName, name);
  if (ValidateQANTName(hostName.c_str()) != 0) {
    *problem = fmt::format("{} cannot be the name of a variable", name);
    return false;
  }
  if (!indices_.try_emplace(Upper(hostName), planned_.size()).second) {
    *problem = fmt::format("there is a column {} in the data already", name);
    return false;
  }
  const auto width =
      static_cast<int>(std::clamp<std::size_t>(bytes, 1, textwizard::kMaxStringWidth));
  const QANT_Format format{static_cast<int>(textwizard::kFormatA), width, 0};
  planned_.push_back({hostName, width, format, format, std::min(width, kWidestDisplay)});
  return true;
}

QANT_InputCaseIterator* DataSetSource::MakeIterator(OBS* /*obs*/) const { return nullptr; }

}  // namespace library
