#include "cli/parts/SummaryInput.h"

#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <utility>

#include <fmt/format.h>

#include "library/outputs/OutputFile.h"
#include "library/parts/SummaryMerge.h"

namespace cli {

using library::FilePartSummary;

bool ReadSummaries(const std::vector<std::string>& files, std::vector<FilePartSummary>* merged,
                   std::string* error) {
  struct OfFile {
    std::vector<FilePartSummary> summaries;
    std::vector<std::string> names;
  };
  std::map<std::string, OfFile> read;
  for (const std::string& name : files) {
    std::ifstream file(name, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    FilePartSummary summary;
    if (!file.good() || !library::ReadSummary(bytes.str(), &summary)) {
      *error = fmt::format("{} {}", name,
                           file.is_open() ? "is no summary of a part" : "cannot be opened");
      return false;
    }
    OfFile& of = read[summary.file];
    of.summaries.push_back(std::move(summary));
    of.names.push_back(name);
  }
  merged->clear();
  for (auto& [file, of] : read) {
    std::size_t wrong = 0;
    std::string problem;
    if (library::MergeSummaries(std::move(of.summaries), &merged->emplace_back(), &wrong,
                                &problem)) {
      continue;
    }
    *error = fmt::format("{}: {}", of.names[wrong], problem);
    return false;
  }
  return true;
}

bool ReadSummaries(const std::vector<std::string>& files, FilePartSummary* merged,
                   std::string* error) {
  std::vector<FilePartSummary> ofFiles;
  if (!ReadSummaries(files, &ofFiles, error)) return false;
  *merged = std::move(ofFiles.front());
  if (ofFiles.size() == 1) return true;
  *error = fmt::format("the summaries are of the files {} and {}, not of one", merged->file,
                       ofFiles[1].file);
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
