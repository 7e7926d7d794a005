// A pass of the component compared with a naive import.
#pragma once

#include <string>

#include "HostFramework/DataSource.h"
#include "tests/differential/NaiveImport.h"
#include "tests/support/ImportRun.h"

namespace naive {

// What differs first between the pass and the naive import, in cases, their order or the messages;
// empty when nothing does.
std::string PassDifference(const whole::Pass& pass, const QANT_DataSource& source,
                           const Import& expected);

}  // namespace naive
