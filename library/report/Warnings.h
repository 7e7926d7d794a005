// What a person should know about an import that succeeded: in plain words, with the way out.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "library/report/PassAccount.h"
#include "library/report/ReportVariable.h"

namespace library {

// The warnings of a pass, sentences in UTF-8, at most one of a kind for each variable. `evidenceOf`
// gives what detection saw of an AUTO variable, null of a declared one.
std::vector<std::string> WarningsOf(
    const PassAccount& account, const ReportVariables& variables,
    const std::function<const ImportEvidence*(std::size_t)>& evidenceOf);

}  // namespace library
