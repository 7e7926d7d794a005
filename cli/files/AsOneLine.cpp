#include "cli/files/AsOneLine.h"

#include "cli/files/FileReadings.h"
#include "library/import/RunLine.h"

namespace cli {

using library::DataSetFile;

namespace {

FileReading ReadingOf(const DataSetFile& file) {
  return {file.import.host, file.import.rewriting, file.import.shownMark, file.import.transcoding,
          file.import.paddedAt};
}

}  // namespace

std::string AsOneLine(const library::DataSetPlan& plan, const std::string& sourceColumn,
                      const std::vector<std::string>& nulls, const std::string& commandFile) {
  std::vector<FileReading> readings;
  for (const DataSetFile& file : plan.files) {
    if (file.isRead()) readings.push_back(ReadingOf(file));
  }
  const library::BareImport& usual = plan.files[plan.reference].isRead()
                                         ? plan.files[plan.reference].import
                                         : library::BareImport();
  std::vector<std::string> line = {"--as-one"};
  const auto add = [&line](const char* name, const std::string& value) {
    line.emplace_back(name);
    line.push_back(value);
  };
  if (!sourceColumn.empty()) add("--source-column", sourceColumn);
  const std::vector<std::string> options = library::RunOptionsFor(usual, nulls);
  line.insert(line.end(), options.begin(), options.end());
  const FileReading usualReading{usual.host, usual.rewriting, usual.shownMark, usual.transcoding,
                                 usual.paddedAt};
  for (const std::string& text : ReadingTexts(readings, usualReading)) add("--with", text);
  return library::RunLine(line, commandFile);
}

}  // namespace cli
