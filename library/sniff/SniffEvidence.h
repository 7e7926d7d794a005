// What speaks for each setting, in words, and how sure the whole is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "library/sniff/DialectFinder.h"
#include "library/sniff/EncodingFinder.h"
#include "library/sniff/SampleRecords.h"
#include "library/sniff/SampleTable.h"
#include "library/sniff/SampleText.h"
#include "library/sniff/SniffResult.h"
#include "library/sniff/TableShape.h"
#include "library/types/ColumnEvidence.h"

namespace library {

// What was found on the way to a result.
struct SniffFindings {
  const EncodingAnswer* encoding = nullptr;
  const DialectAnswer* dialect = nullptr;
  const SampleRecords* records = nullptr;
  const TableShape* shape = nullptr;
  const SampleTable* table = nullptr;
  const SampleText* text = nullptr;
  // A value that shows the decimal character, and how many show the other one.
  Witness decimalWitness;
  std::int64_t decimalAgainst = 0;
  // Lines of remarks, from 1.
  std::vector<std::int64_t> comments;
  // Records that were looked at behind the head, and how many of them have the modal width.
  std::size_t otherRecords = 0;
  std::size_t otherModal = 0;
  // A border between fixed columns goes through words of some lines.
  bool cutsWords = false;
};

// Fills the evidence, runner-up and margin of every setting.
void TellEvidence(const SniffFindings& findings, SniffResult* result);
// Fills verdict, margin, runner-up and advice.
void JudgeConfidence(const SniffFindings& findings, SniffResult* result);

// A delimiter or qualifier as a person reads it: "comma", "tab", "\"", "|".
std::string NameOfDelimiter(const Dialect& dialect);
std::string NameOfQualifier(const std::string& qualifier);

// What speaks for a decimal character: the first value that only it reads, and how many values
// speak for the other one.
std::string DecimalEvidence(const Witness& witness, std::int64_t against);

// Why a file has no columns: a sentence without a full stop.
std::string WhyNoColumns(const SniffResult& result);

}  // namespace library
