#include "library/files/FileLook.h"

#include <memory>

#include "HostFramework/embedded/messages/Attention.h"
#include "library/import/ConvertedSniff.h"
#include "library/input/ByteSource.h"
#include "library/input/Transcoding.h"
#include "library/sniff/SniffEvidence.h"
#include "library/sniff/Sniffer.h"

namespace library {
namespace {

// Files whose decompressed copies may all be kept.
constexpr std::size_t kMostCopies = 32;

bool SniffPath(const std::string& path, const SniffSettings& settings, SniffResult* sniff,
               std::string* problem) {
  const std::unique_ptr<FileSource> source = FileSource::Open(path, problem);
  return source != nullptr && Sniff(*source, settings, sniff, problem);
}

// A file that no command can name the encoding of is converted, and places are those of its text.
bool SniffFile(InputFiles& files, const std::string& name, const SniffSettings& settings,
               SniffResult* sniff, std::string* problem) {
  std::string encoding = files.Open(name).transcodedFrom;
  if (encoding.empty() && settings.encoding && NeedsTranscoding(*settings.encoding)) {
    encoding = *settings.encoding;
  }
  if (encoding.empty()) {
    if (!SniffPath(files.Open(name).path, settings, sniff, problem)) return false;
    if (NeedsTranscoding(sniff->encoding.value)) encoding = sniff->encoding.value;
  }
  if (!encoding.empty()) {
    const InputFiles::Input& input = files.Transcode(name, encoding);
    *problem = input.problem;
    if (!problem->empty() || !SniffConverted(input, settings, sniff, problem)) return false;
  }
  // They are many, and nobody asks for them here.
  sniff->otherLines = {};
  return true;
}

bool HoldsNoData(const SniffResult& sniff) {
  return sniff.headerLines.value > 0 && sniff.firstDataOffset >= sniff.dataEndOffset;
}

}  // namespace

bool LookAtFile(InputFiles& files, const SniffSettings& settings, DataSetFile* file) {
  FileState state;
  if (GetFileState(file->name, &state)) file->state = state;
  const InputFiles::Input& input = files.Open(file->name);
  if (embedded::AttentionRequested()) return false;
  file->problem = input.problem;
  if (!input.problem.empty() && !input.wayOut.empty()) file->problem += "; " + input.wayOut;
  SniffResult& sniff = file->import.sniff;
  const bool sniffed =
      file->problem.empty() && SniffFile(files, file->name, settings, &sniff, &file->problem);
  if (embedded::AttentionRequested()) return false;
  if (sniffed && sniff.columns.empty()) {
    file->kind = DataSetFile::Kind::kEmpty;
    file->problem = WhyNoColumns(sniff);
  } else if (sniffed) {
    const bool none = HoldsNoData(sniff);
    file->kind = none ? DataSetFile::Kind::kHeaderOnly : DataSetFile::Kind::kData;
    if (none) file->problem = "it holds names of columns and no data";
  } else if (file->state && file->state->bytes == 0) {
    file->kind = DataSetFile::Kind::kEmpty;
    file->problem = "it is empty";
  } else {
    file->kind = DataSetFile::Kind::kLeftOut;
  }
  return true;
}

bool LookAgain(InputFiles& files, const SniffSettings& settings, DataSetFile* file) {
  const InputFiles::Input& input = files.Open(file->name);
  SniffResult sniff;
  std::string problem;
  if (!input.problem.empty() || !SniffFile(files, file->name, settings, &sniff, &problem)) {
    return false;
  }
  if (sniff.columns.empty()) return false;
  file->kind = HoldsNoData(sniff) ? DataSetFile::Kind::kHeaderOnly : DataSetFile::Kind::kData;
  file->problem = HoldsNoData(sniff) ? "it holds names of columns and no data" : "";
  file->import.sniff = std::move(sniff);
  return true;
}

std::vector<std::string> LabelsOf(const DataSetFile& file) {
  std::vector<std::string> labels;
  for (const SniffColumn& column : file.import.sniff.columns) labels.push_back(column.label);
  return labels;
}

void LetGo(InputFiles& files, const std::string& name, std::size_t fileCount) {
  if (fileCount > kMostCopies) files.Release(name);
}

}  // namespace library
