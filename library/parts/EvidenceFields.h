// Every field of what is known of a stretch of a file, for whoever writes it down and reads it
// again.
#pragma once

#include "library/parts/PartSummary.h"

namespace library {

// Calls `visit` with each of them, always in the same order; they are constant where the evidence
// is: numbers, texts and sets of readings. `visit.Size` is called with each vector before its
// elements are visited, and may make it as long as it is to be.
struct EvidenceFields {
  template <typename AWitness, typename Visitor>
  static void OfWitness(AWitness& witness, Visitor& visit) {
    visit(witness.count);
    visit(witness.line);
    visit(witness.text);
  }

  template <typename Numbers, typename Visitor>
  static void OfNumbers(Numbers& numbers, Visitor& visit) {
    visit(numbers.whole);
    visit(numbers.fraction);
    OfWitness(numbers.grouped, visit);
    visit(numbers.exponents);
    visit(numbers.fractions);
  }

  template <typename Evidence, typename Visitor>
  static void OfColumn(Evidence& column, Visitor& visit) {
    visit(column.values_);
    visit(column.empties_);
    OfWitness(column.nulls_, visit);
    visit.Size(column.groups_);
    for (auto& group : column.groups_) {
      visit(group.readings);
      OfWitness(group.values, visit);
    }
    OfNumbers(column.point_, visit);
    OfNumbers(column.comma_, visit);
    OfWitness(column.leadingZeros_, visit);
    OfWitness(column.lostDigits_, visit);
    visit(column.namedMonths_);
    visit(column.shortYears_);
    for (auto& count : column.separators_) visit(count);
    OfWitness(column.eitherOrder_, visit);
    visit(column.secondFraction_);
    visit(column.hasSeconds_);
    visit(column.longestRead_);
    OfWitness(column.longest_, visit);
  }

  template <typename Summary, typename Visitor>
  static void OfPart(Summary& part, Visitor& visit) {
    visit(part.lines);
    visit(part.records);
    OfWitness(part.surplus, visit);
    OfWitness(part.unexpected, visit);
    OfWitness(part.undecodable, visit);
    visit(part.filled);
    for (auto& count : part.controls) visit(count);
    visit.Size(part.columns);
    for (auto& column : part.columns) OfColumn(column, visit);
  }
};

}  // namespace library
