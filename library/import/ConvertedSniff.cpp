#include "library/import/ConvertedSniff.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "library/input/ByteSource.h"
#include "library/sniff/Sniffer.h"

namespace library {

bool SniffConverted(const InputFiles::Input& input, const SniffSettings& settings,
                    SniffResult* sniff, std::string* problem) {
  SniffSettings utf8 = settings;
  utf8.encoding = "UTF-8";
  const std::unique_ptr<FileSource> source = FileSource::Open(input.path, problem);
  SniffResult found;
  if (source == nullptr || !Sniff(*source, utf8, &found, problem)) return false;
  const bool isFirst = sniff->encoding.value.empty();
  found.encoding = sniff->encoding;
  if (isFirst) {
    found.encoding = {input.transcodedFrom, settings.encoding.has_value(), "", "", 1.0};
  } else {
    found.byteOrderMark = sniff->byteOrderMark;
    found.verdict = std::min(found.verdict, sniff->verdict);
  }
  std::string& evidence = found.encoding.evidence;
  evidence += evidence.empty() ? "converted to UTF-8" : "; converted to UTF-8";
  if (input.undecodable > 0) {
    evidence += fmt::format(", {} time{} bytes that are no character", input.undecodable,
                            input.undecodable == 1 ? "" : "s");
  }
  if (!input.copies.empty()) {
    CopyMap& file = *input.copies.front();
    found.fileSize = file.file().Size();
    if (isFirst) found.byteOrderMark = file.markBytes() > 0;
  }
  *sniff = std::move(found);
  return true;
}

}  // namespace library
