#include "cli/parts/SummaryInput.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <sstream>
#include <utility>

#include <fmt/format.h>

#include "library/outputs/OutputFile.h"

namespace cli {

using library::FilePartSummary;

bool ReadSummaries(const std::vector<std::string>& files, FilePartSummary* merged,
                   std::string* error) {
  std::vector<std::pair<FilePartSummary, std::string>> read;
  for (const std::string& name : files) {
    std::ifstream file(name, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    read.emplace_back(FilePartSummary(), name);
    if (file.good() && library::ReadSummary(bytes.str(), &read.back().first)) continue;
    *error =
        fmt::format("{} {}", name, file.is_open() ? "is no summary of a part" : "cannot be opened");
    return false;
  }
  std::stable_sort(read.begin(), read.end(), [](const auto& a, const auto& b) {
    return a.first.range.from < b.first.range.from ||
           (a.first.range.from == b.first.range.from && a.first.range.to < b.first.range.to);
  });
  *merged = std::move(read.front().first);
  for (std::size_t index = 1; index < read.size(); ++index) {
    std::string problem;
    if (merged->Append(read[index].first, &problem)) continue;
    *error = fmt::format("{}: {}", read[index].second, problem);
    return false;
  }
  return true;
}

bool WriteSummary(const FilePartSummary& summary, const std::string& file, std::string* error) {
  const std::unique_ptr<library::OutputFile> output = library::OutputFile::Open(file, error);
  if (output == nullptr) return false;
  output->Append(library::SummaryBytes(summary));
  if (output->Finish() && output->Publish()) return true;
  *error = output->error();
  return false;
}

}  // namespace cli
