#include "library/files/CaseLayout.h"

#include <algorithm>
#include <cstring>

namespace library {
namespace {

std::size_t CellsOf(const QANT_Variable& variable) {
  const auto bytes = static_cast<std::size_t>(variable.GetType());
  return bytes == 0 ? 1 : (bytes + sizeof(OBS) - 1) / sizeof(OBS);
}

}  // namespace

CaseLayout::CaseLayout(const QANT_DataSource& from, const QANT_DataSource& to,
                       const std::vector<std::size_t>& variables, const std::string* lastText)
    : fromCells_(from.GetObsAreaSize() / sizeof(OBS)), blank_(to.GetObsAreaSize() / sizeof(OBS)) {
  ClearCase(to, blank_.data());
  if (lastText != nullptr) {
    const QANT_Variable& last = *to.GetVariable(to.GetNVariables() - 1);
    std::memcpy(blank_.data() + last.ObsIndex(), lastText->data(),
                std::min(lastText->size(), static_cast<std::size_t>(last.GetType())));
  }
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const QANT_Variable& source = *from.GetVariable(i);
    const Run run{source.ObsIndex(), to.GetVariable(variables[i])->ObsIndex(), CellsOf(source)};
    if (!runs_.empty() && runs_.back().from + runs_.back().cells == run.from &&
        runs_.back().to + runs_.back().cells == run.to) {
      runs_.back().cells += run.cells;
    } else {
      runs_.push_back(run);
    }
  }
  same_ = lastText == nullptr && fromCells_ == blank_.size() && runs_.size() == 1 &&
          runs_[0].cells == fromCells_;
}

void CaseLayout::Copy(const OBS* from, std::size_t count, OBS* to) const {
  for (std::size_t i = 0; i < count; ++i) {
    std::copy(blank_.begin(), blank_.end(), to);
    for (const Run& run : runs_) std::copy_n(from + run.from, run.cells, to + run.to);
    from += fromCells_;
    to += blank_.size();
  }
}

}  // namespace library
