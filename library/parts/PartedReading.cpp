#include "library/parts/PartedReading.h"

#include <algorithm>

namespace library {

using textwizard::ImportSettings;
using textwizard::ImportSource;

bool PartedReading::Plan(const ImportSource& source, std::string* problem) {
  view_->Show({});
  const ImportSettings& settings = source.settings();
  const LineCounter counter(source.stream(), settings, 1);
  head_ = {counter.markBytes(), std::max<std::int64_t>(settings.firstCase - 1, 0),
           counter.unitBytes(), counter.isBigEndian()};
  whole_ = {0, source.stream().Size(), source.GetNVariables()};
  if (options_.single) return PlanSingle(source, problem);
  return PlanCases(source.stream(), settings, source.variables().size(),
                   PartsOfSize(source.stream().Size(), options_.partBytes), &plan_);
}

bool PartedReading::PlanSingle(const ImportSource& source, std::string* problem) {
  const ImportSettings& settings = source.settings();
  if (settings.importMode == textwizard::kImportPercent) {
    *problem = "a command that draws its cases cannot be read in parts";
    return false;
  }
  PartPlan part;
  const PartOptions::Single& single = *options_.single;
  if (!PlanPart(source.stream(), settings, source.variables().size(), single.range,
                single.before ? &*single.before : nullptr, &part, problem)) {
    return false;
  }
  plan_ = {};
  whole_.begin = part.begin;
  whole_.end = part.end;
  if (part.read) plan_.stretches.push_back(*part.read);
  return true;
}

bool PartedReading::isCut() const {
  return plan_.stretches.size() != 1 || whole_.begin > 0 ||
         plan_.stretches.front().end < whole_.end;
}

void PartedReading::Begin() {
  next_ = 0;
  observer_.Begin(whole_);
  if (plan_.stretches.empty()) observer_.EndWithoutPass();
}

void PartedReading::BeginNext() {
  const Stretch& stretch = plan_.stretches[next_++];
  const StretchView::Shown shown{head_, stretch.begin, stretch.end};
  view_->Show(shown);
  observer_.BeginPass({stretch, shown.headBytes(), shown.headBytes() > 0 ? head_.lines : 0,
                       next_ == plan_.stretches.size()});
}

}  // namespace library
