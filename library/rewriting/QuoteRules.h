// What has to be known to tell which bytes of a file are inside qualified fields.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "HostFramework/embedded/text/CodePage.h"
#include "library/rewriting/RewritingOptions.h"
#include "model/ImportSettings.h"
#include "reading/RecordReader.h"

namespace library {

// What a file is read by.
enum class FileUnits : std::uint8_t { kBytes, kUtf16LittleEndian, kUtf16BigEndian };

inline bool IsUtf16(FileUnits units) { return units != FileUnits::kBytes; }

struct QuoteRules {
  FileUnits units = FileUnits::kBytes;
  // The byte-order mark's.
  std::int64_t markBytes = 0;
  // Physical lines that pass as they are: those before the first case's.
  std::int64_t linesBefore = 0;
  // Each as the bytes of the file.
  std::vector<std::string> delimiters;
  // ASCII.
  char qualifier = '"';
  RewritingOptions options;
  // The file's code page where it has characters of several bytes that hold ASCII ones; else null.
  const embedded::CodePage* page = nullptr;
};

// The rules of an import with `settings` of a file that begins with `mark`. False when the options
// cannot be followed there; *problem is then a sentence (UTF-8) that says why. The host's code
// pages are set.
bool MakeQuoteRules(const textwizard::ImportSettings& settings, textwizard::ByteOrderMark mark,
                    const RewritingOptions& options, QuoteRules* rules, std::string* problem);

}  // namespace library
