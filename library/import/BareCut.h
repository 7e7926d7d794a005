// How the component is told to cut a bare file: from what is known of its build.
#pragma once

#include <cstdint>
#include <string>

#include "library/parts/PartSummary.h"
#include "library/rewriting/RewritingOptions.h"
#include "library/sniff/SniffResult.h"

namespace library {

// What the host has to be set to.
struct HostNeeds {
  // The host's own code page; empty: UTF-8. Of fixed columns, so that they count characters.
  std::string codePage;
  // What ENCODING=LOCALE means; empty where it is not used.
  std::string localeCodePage;
  DecimalCharacter decimal = DecimalCharacter::kPoint;
};

struct BareCut {
  ColumnCut cut;
  HostNeeds host;
  // A byte-order mark that the file lacks.
  std::string shownMark;
  // What may have to be taken for data; what of it the file has is found by reading it.
  RewritingOptions rewriting;
  // Nobody has looked at the whole file yet: its quotes may be something else.
  bool quotesAreUncertain = false;
};

// False where the component cannot be told; *problem is then a sentence (UTF-8) with a way out. The
// host is in UTF-8 mode.
bool CutOf(const SniffResult& sniff, BareCut* cut, std::string* problem);

// Cuts the lines where the fixed columns of `sniff` are, counted in bytes.
void SetFixedColumns(const SniffResult& sniff, ColumnCut* cut);

// The host put so. False when it does not know a code page; *problem says which.
bool SetHost(const HostNeeds& needs, std::string* problem);

}  // namespace library
