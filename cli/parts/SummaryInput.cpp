#include "cli/parts/SummaryInput.h"

#include <fstream>
#include <memory>
#include <sstream>
#include <utility>

#include <fmt/format.h>

#include "library/outputs/OutputFile.h"
#include "library/parts/SummaryMerge.h"

namespace cli {

using library::FilePartSummary;

bool ReadSummaries(const std::vector<std::string>& files, FilePartSummary* merged,
                   std::string* error) {
  std::vector<FilePartSummary> read;
  for (const std::string& name : files) {
    std::ifstream file(name, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    read.emplace_back();
    if (file.good() && library::ReadSummary(bytes.str(), &read.back())) continue;
    *error =
        fmt::format("{} {}", name, file.is_open() ? "is no summary of a part" : "cannot be opened");
    return false;
  }
  std::size_t wrong = 0;
  std::string problem;
  if (library::MergeSummaries(std::move(read), merged, &wrong, &problem)) return true;
  *error = fmt::format("{}: {}", files[wrong], problem);
  return false;
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
