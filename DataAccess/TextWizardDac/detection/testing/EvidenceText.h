// Evidence as text, so that tests can compare and print it.
#pragma once

#include <sstream>
#include <string>

#include "HostFramework/ImportObserver.h"

namespace textwizard {

inline std::string Shown(const ImportWitness& witness) {
  std::ostringstream out;
  out << witness.count << " line " << witness.line << " '" << witness.text << "'";
  return out.str();
}

// All of it, a line for each part.
inline std::string Shown(const ImportEvidence& evidence) {
  std::ostringstream out;
  for (const ImportWitness& witness : evidence.classes) out << Shown(witness) << '\n';
  out << "blanks " << evidence.blanks << " empties " << evidence.empties << '\n';
  for (const ImportDateLayout& layout : evidence.layouts) {
    out << layout.pattern << ' ' << layout.format << ' ' << Shown(layout.seen) << '\n';
  }
  for (const ImportWitness* const witness :
       {&evidence.dayFirst, &evidence.monthFirst, &evidence.eitherOrder, &evidence.decimalComma,
        &evidence.groupingComma, &evidence.eitherComma, &evidence.leadingZeros,
        &evidence.longest}) {
    out << Shown(*witness) << '\n';
  }
  return out.str();
}

}  // namespace textwizard
