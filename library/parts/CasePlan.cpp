#include "library/parts/CasePlan.h"

#include <algorithm>

namespace library {
namespace {

constexpr char kEndsWithinLine[] = "the last case that the command reads ends within a line";

// Bytes behind a part in which the end of its last case is looked for at first.
constexpr std::int64_t kFirstLook = std::int64_t{1} << 16;

class Planning {
 public:
  Planning(const QANT_FileStream& stream, const textwizard::ImportSettings& settings,
           std::int64_t unitsPerCase)
      : settings_(settings),
        unitsPerCase_(unitsPerCase),
        counter_(stream, settings, unitsPerCase),
        size_(stream.Size()) {
    hasData_ = counter_.FindDataStart(&start_);
  }

  bool failed() const { return counter_.failed(); }

  bool Run(const std::vector<PartRange>& parts, CasePlan* plan) {
    if (!hasData_) return !failed();
    PartLines before = NoLines();
    for (const PartRange& part : parts) {
      PartLines lines;
      if (!Count(part, &lines)) return false;
      if (const auto next = StretchOf(lines, before); next && next->cases > 0) {
        plan->stretches.back().end = next->begin;
        plan->stretches.push_back(*next);
      }
      before.Append(lines);
    }
    return LimitCases(before.units, plan);
  }

  bool RunSingle(const PartRange& part, const PartLines* known, PartPlan* plan,
                 std::string* problem) {
    if (!hasData_) {
      if (part.from > 0) *plan = {part.from, part.from, {}};
      return !failed();
    }
    PartLines before = NoLines();
    if (known != nullptr) before = *known;
    if (known == nullptr && !Count({0, part.from}, &before)) return false;
    PartLines lines;
    // Whoever counted what stands before has found where the next line begins.
    const bool knowsLine = known != nullptr && known->end >= std::max(part.from, start_.byte + 1);
    if (knowsLine ? !counter_.CountFrom(known->end, part.to, &lines) : !Count(part, &lines)) {
      return false;
    }
    const auto own = StretchOf(lines, before);
    if (!own) {
      *plan = {part.from, part.from, {}};
      return true;
    }
    // What stands before the data is read with the first case.
    Stretch stretch = own->cases == 0 ? Stretch{0, size_, 0, 0} : *own;
    PartLines all = before;
    all.Append(lines);
    if (!FindNextCase(part.to, all, &stretch.end)) return false;
    *plan = {stretch.begin, stretch.end, stretch};
    return LimitPart(plan, problem);
  }

  // The part's lines of data.
  bool Count(const PartRange& part, PartLines* lines) {
    lines->unitsPerCase = unitsPerCase_;
    if (!hasData_) return !failed();
    return counter_.Count(std::max(part.from, start_.byte), part.to, part.from <= start_.byte,
                          lines);
  }

 private:
  PartLines NoLines() const {
    PartLines lines;
    lines.unitsPerCase = unitsPerCase_;
    return lines;
  }

  // From the first case that begins in the part to the end of the file.
  std::optional<Stretch> StretchOf(const PartLines& lines, const PartLines& before) const {
    const PartLines::Start* const first = before.dataEnds ? nullptr : lines.CaseStart(before.units);
    if (first == nullptr) return std::nullopt;
    return Stretch{first->byte, size_, start_.lines + before.lines + first->lines,
                   (before.units + first->units) / unitsPerCase_};
  }

  // Where the first case begins that is not the first of all, at `from` or behind it, where lines
  // come to `before`: looked for in ever larger parts. Left alone when there is none.
  bool FindNextCase(std::int64_t from, PartLines before, std::int64_t* begin) {
    for (std::int64_t bytes = kFirstLook; from < size_ && !before.dataEnds; bytes *= 2) {
      const std::int64_t to = bytes < size_ - from ? from + bytes : size_;
      PartLines lines;
      if (!Count({from, to}, &lines)) return false;
      if (const auto next = StretchOf(lines, before); next && next->cases > 0) {
        *begin = next->begin;
        return true;
      }
      before.Append(lines);
      from = to;
    }
    return true;
  }

  bool IsLimited() const { return settings_.importMode == textwizard::kImportFirst; }
  // Units to read of the stretch until the limit is reached, and where that is.
  std::int64_t FindLimit(const Stretch& stretch, std::int64_t* end) {
    return counter_.FindEnd(std::max(stretch.begin, start_.byte), stretch.end,
                            (settings_.caseLimit - stretch.cases) * unitsPerCase_, end);
  }

  // Leaves out what is behind the last case that the command reads.
  bool LimitCases(std::int64_t units, CasePlan* plan) {
    if (!IsLimited()) return true;
    if (settings_.caseLimit <= 0) return Join(plan);
    if (units / unitsPerCase_ < settings_.caseLimit) return true;
    while (plan->stretches.back().cases >= settings_.caseLimit) plan->stretches.pop_back();
    Stretch& last = plan->stretches.back();
    std::int64_t end = 0;
    const std::int64_t left = FindLimit(last, &end);
    if (failed()) return false;
    if (left < 0) {
      plan->uncut = kEndsWithinLine;
      return Join(plan);
    }
    if (left == 0) last.end = end;
    return true;
  }
  bool Join(CasePlan* plan) {
    plan->stretches = {{0, size_, 0, 0}};
    return true;
  }

  bool LimitPart(PartPlan* plan, std::string* problem) {
    if (!IsLimited()) return true;
    if (plan->read->cases >= settings_.caseLimit) {
      plan->read.reset();
      return true;
    }
    std::int64_t end = 0;
    const std::int64_t left = FindLimit(*plan->read, &end);
    if (failed()) return false;
    if (left == 0) plan->read->end = end;
    if (left < 0) *problem = kEndsWithinLine;
    return left >= 0;
  }

  const textwizard::ImportSettings& settings_;
  const std::int64_t unitsPerCase_;
  LineCounter counter_;
  const std::int64_t size_;
  bool hasData_ = false;
  DataStart start_;
};

}  // namespace

std::vector<PartRange> PartsOfSize(std::int64_t bytes, std::int64_t partBytes) {
  std::vector<PartRange> parts;
  for (std::int64_t from = 0; from < bytes || parts.empty();) {
    const std::int64_t to = partBytes < bytes - from ? from + partBytes : bytes;
    parts.push_back({from, to});
    from = to;
  }
  return parts;
}

PartRange PartOf(std::int64_t bytes, std::int64_t number, std::int64_t count) {
  // Without overflow, and the same whoever asks.
  const auto begin = [&](std::int64_t index) {
    return bytes / count * index + bytes % count * index / count;
  };
  return {begin(number - 1), begin(number)};
}

bool PlanCases(const QANT_FileStream& stream, const textwizard::ImportSettings& settings,
               std::size_t values, const std::vector<PartRange>& parts, CasePlan* plan) {
  *plan = {{{0, stream.Size(), 0, 0}}, {}};
  const std::int64_t units = UnitsPerCase(settings, values);
  if (parts.size() < 2 || units == 0) return true;
  if (units > kMostUnitsPerCase) {
    plan->uncut = "its cases have more than 65,536 lines or values";
    return true;
  }
  return Planning(stream, settings, units).Run(parts, plan);
}

bool PlanPart(const QANT_FileStream& stream, const textwizard::ImportSettings& settings,
              std::size_t values, const PartRange& part, const PartLines* before, PartPlan* plan,
              std::string* problem) {
  const std::int64_t size = stream.Size();
  *plan = {0, size, Stretch{0, size, 0, 0}};
  const std::int64_t units = UnitsPerCase(settings, values);
  const bool whole = part.from == 0 && part.to >= size;
  if (whole) return true;
  if (units == 0 || units > kMostUnitsPerCase) {
    *problem = "cases of no values, or of more than 65,536 lines or values, are not read in parts";
    return false;
  }
  if (before != nullptr && before->unitsPerCase != units) {
    *problem = "what stands before the part was counted by cases of another number of lines";
    return false;
  }
  return Planning(stream, settings, units).RunSingle(part, before, plan, problem);
}

bool CountPart(const QANT_FileStream& stream, const textwizard::ImportSettings& settings,
               std::size_t values, const PartRange& part, PartLines* lines) {
  const std::int64_t units = UnitsPerCase(settings, values);
  lines->unitsPerCase = std::max<std::int64_t>(units, 1);
  if (units == 0 || units > kMostUnitsPerCase) return true;
  return Planning(stream, settings, units).Count(part, lines);
}

}  // namespace library
