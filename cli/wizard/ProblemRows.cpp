#include "cli/wizard/ProblemRows.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <utility>

namespace cli {
namespace {

using nlohmann::json;

constexpr std::int64_t kMostRows = 1000;

}  // namespace

ProblemRows::ProblemRows(std::string folder, const std::string& file)
    : folder_(std::move(folder)), path_(folder_ + "/" + file) {
  std::ifstream rows(path_, std::ios::binary);
  std::map<std::string, std::uint32_t> known;
  std::string line;
  std::int64_t at = 0;
  while (std::getline(rows, line)) {
    const json row = json::parse(line, nullptr, false);
    const auto bytes = static_cast<std::uint32_t>(line.size());
    if (row.is_object()) {
      const json& name = row.contains("variable") ? row.at("variable") : json();
      const auto [variable, isNew] = known.emplace(name.is_string() ? name.get<std::string>() : "",
                                                   static_cast<std::uint32_t>(variables_.size()));
      if (isNew) variables_.push_back(variable->first);
      rows_.push_back({at, bytes, variable->second});
    }
    at += bytes + 1;
  }
}

ProblemRows::~ProblemRows() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::optional<json> ProblemRows::Answer(std::string_view name, const json& question) const {
  if (name != "problems") return std::nullopt;
  const std::string variable = question.at("variable");
  const std::int64_t offset = std::max<std::int64_t>(0, question.at("offset"));
  const std::int64_t count = std::clamp<std::int64_t>(question.at("count"), 0, kMostRows);
  std::ifstream file(path_, std::ios::binary);
  json problems = json::array();
  std::int64_t all = 0;
  std::string line;
  for (const Row& row : rows_) {
    if (!variable.empty() && variables_[row.variable] != variable) continue;
    const std::int64_t number = all++;
    if (number < offset || number >= offset + count) continue;
    line.resize(row.bytes);
    file.seekg(row.begin);
    file.read(line.data(), static_cast<std::streamsize>(line.size()));
    problems.push_back(json::parse(line, nullptr, false));
  }
  return json{{"problems", problems}, {"all", all}};
}

}  // namespace cli
