#include "library/outputs/MakeCaseWriter.h"

#include <utility>

#include "library/outputs/DelimitedWriter.h"
#include "library/outputs/JsonLinesWriter.h"

namespace library {

std::unique_ptr<CaseWriter> MakeCaseWriter(CaseFormat format, std::vector<CaseColumn> columns,
                                           OutputFile& file) {
  switch (format) {
    case CaseFormat::kTsv:
      return std::make_unique<DelimitedWriter>('\t', std::move(columns), file);
    case CaseFormat::kJsonLines:
      return std::make_unique<JsonLinesWriter>(std::move(columns), file);
    case CaseFormat::kCsv:
      break;
  }
  return std::make_unique<DelimitedWriter>(',', std::move(columns), file);
}

}  // namespace library
