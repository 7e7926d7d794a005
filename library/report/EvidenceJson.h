// What detection saw of an AUTO variable, as JSON and for a person.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "HostFramework/ImportObserver.h"
#include "library/report/ReportVariable.h"

namespace library {

// What the values that can be read in two ways say together.
enum class OrderVerdict {
  kNone,       // there is no such value
  kDecided,    // some can be read in one way only, and all of these in the same
  kAmbiguous,  // all can be read in both
  kMixed,      // some can be read in one way only, others in the other only
};

struct OrderEvidence {
  OrderVerdict verdict = OrderVerdict::kNone;
  // The way that the first value with one way has; the value by which the verdict stands: the first
  // that decides, or that contradicts. Null for a verdict without one.
  bool firstWay = false;
  const ImportWitness* by = nullptr;
};

// `one` and `other`: values with one way only; `either`: with both. The result points to these.
OrderEvidence OrderOf(const ImportWitness& one, const ImportWitness& other,
                      const ImportWitness& either);

// The class that the variable's format comes from, its share of the values that count, and the
// class that has most values besides.
struct ClassShares {
  ImportValueClass winner = ImportValueClass::kString;
  std::int64_t values = 0;  // of all classes
  double share = 0;         // of the winner, from 0 to 1; 0 without values
  // Has no values where there is no rival.
  ImportValueClass rival = ImportValueClass::kString;
};

ClassShares SharesOf(const ImportEvidence& evidence, int formatType);

// Such as "dollar".
std::string_view NameOf(ImportValueClass valueClass);

// `variable` is the one that the evidence is of.
nlohmann::ordered_json EvidenceJson(const ImportEvidence& evidence, const ReportVariable& variable);

// The same in lines for a person, each with its line end, the first with the variable's name.
std::string EvidenceText(const ImportEvidence& evidence, const ReportVariable& variable);

}  // namespace library
