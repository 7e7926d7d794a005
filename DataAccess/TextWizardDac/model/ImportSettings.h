// What an import command asks for, apart from its variables: filled by the parser, carried by the
// plan, copied into the data source, constant from then on.
#pragma once

#include <cstdint>
#include <string>

namespace textwizard {

enum Arrangement : std::uint32_t {
  kDelimitedLines = 1,  // delimited, one case per line
  kDelimitedCount = 2,  // delimited, a fixed number of values per case, across lines
  kFixedColumns = 3,    // fixed columns, one or more lines per case
};

enum ImportMode : std::uint32_t { kImportAll = 0, kImportFirst = 1, kImportPercent = 2 };

enum FileEncoding : std::int32_t {
  kEncodingNone = -1,   // not given: no conversion
  kEncodingLocale = 0,  // the locale's code page
  kEncodingUtf8 = 1,
  kEncodingUtf16BigEndian = 2,
  kEncodingUtf16LittleEndian = 3,
};

struct ImportSettings {
  // Whether a case may be delivered after `cases` others.
  bool AllowsCaseAfter(std::int64_t cases) const {
    return importMode != kImportFirst || cases < caseLimit;
  }

  // Line where the data begins.
  std::int64_t firstCase = 1;
  Arrangement arrangement = kDelimitedLines;
  ImportMode importMode = kImportAll;
  // Cases to deliver with kImportFirst, 0 with the other modes. Type detection looks at as many
  // records, at all of them when it is 0.
  std::int64_t caseLimit = 0;
  // Share of the cases to keep with kImportPercent, 0 to 1.
  double sampleFraction = 0.0;
  // Delimiter characters (host text).
  std::string delimiters;
  // Lines of one case, for fixed columns.
  std::uint32_t recordsPerCase = 1;
  bool qualifierSet = false;
  // The qualifier character (host text).
  std::string qualifier;
  bool leadingSpaces = false;   // LEADINGSPACES IGNORE=YES
  bool multipleSpaces = false;  // MULTIPLESPACES IGNORE=YES
  // The host's wish: a qualifier inside a field that does not begin with one is a character of it.
  bool keepsStrayQualifiers = false;
  FileEncoding encoding = kEncodingNone;
  // Share of values in percent that decides a detected type.
  double dataTypeMinPercentage = 95.0;
  bool mapRequested = false;
};

}  // namespace textwizard
