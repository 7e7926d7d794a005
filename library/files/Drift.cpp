#include "library/files/Drift.h"

#include <array>
#include <map>
#include <utility>

#include <fmt/format.h>

namespace library {

const char* NameOf(DriftKind kind) {
  constexpr std::array<const char*, 10> kNames = {"left-out", "empty", "header-only", "no-header",
                                                  "missing",  "added", "renamed",     "reordered",
                                                  "decimal",  "type"};
  return kNames[static_cast<std::size_t>(kind)];
}

std::vector<std::string> DriftLines(const std::vector<Drift>& drift,
                                    const std::vector<std::string>& names, std::size_t most) {
  struct Group {
    const Drift* first;
    std::size_t files;
  };
  // Of whole files by the kind, else by kind and column, in the order in which they were met.
  std::map<std::pair<DriftKind, std::string>, std::size_t> places;
  std::vector<Group> groups;
  for (const Drift& one : drift) {
    const auto [place, isNew] = places.try_emplace({one.kind, one.column}, groups.size());
    if (isNew) groups.push_back({&one, 0});
    ++groups[place->second].files;
  }
  std::vector<std::string> lines;
  for (const Group& group : groups) {
    if (lines.size() == most) {
      lines.push_back(
          fmt::format("and {} more (--dictionary writes them all)", groups.size() - lines.size()));
      break;
    }
    std::string line = fmt::format("{}: {}", names[group.first->file], group.first->detail);
    if (group.files > 1) {
      line += fmt::format("; so in {} more file{}", group.files - 1, group.files == 2 ? "" : "s");
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

nlohmann::ordered_json DriftJson(const std::vector<Drift>& drift,
                                 const std::vector<std::string>& names) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const Drift& one : drift) {
    nlohmann::ordered_json entry = {{"kind", NameOf(one.kind)}, {"file", names[one.file]}};
    if (!one.column.empty()) entry["column"] = one.column;
    if (one.line > 0) {
      entry["line"] = one.line;
      entry["value"] = one.value;
      entry["count"] = one.count;
    }
    entry["detail"] = one.detail;
    list.push_back(std::move(entry));
  }
  return list;
}

}  // namespace library
