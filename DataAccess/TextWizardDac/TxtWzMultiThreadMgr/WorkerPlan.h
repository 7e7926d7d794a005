// What conversion workers do with the fields of a record, settled once from the data source.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "detection/DetectionCounters.h"
#include "model/ImportSettings.h"
#include "model/TxtWzVar.h"
#include "reading/FieldSplitter.h"
#include "reading/FixedFields.h"
#include "reading/ValueConverter.h"

namespace textwizard {

class ImportSource;
class KnownStates;
class PassTeller;

enum class FieldUse : std::uint8_t {
  kDiscard,  // cut, but neither stored nor counted
  kNumber,   // one cell
  kString,   // one or more cells
  kDetect,   // counted for type detection
};

struct FieldTask {
  FieldUse use = FieldUse::kDiscard;
  std::uint32_t formatType = 0;
  // Position in the list of variables.
  std::uint32_t variable = 0;
  // Strings: the host variable's width and the bytes of its cells. (The format may be wider: it
  // counts what decoding may add.)
  std::uint32_t cellWidth = 0;
  std::uint32_t cellBytes = 0;
  // Numbers, for a host that watches: some text of those that mean a missing one may be a value of
  // the format.
  bool nullsAreValues = false;
  // Byte offset of the first cell in a case.
  std::size_t offset = 0;
};

// A field of fixed columns.
struct ColumnTask : FieldTask {
  // The record of the case, from 1, and where in it.
  std::uint32_t line = 0;
  FixedColumn place;
};

// A field of fixed columns whose type is to be found. How many bytes it has depends on the values
// before it.
struct DetectedColumn {
  std::uint32_t start = 0;
  // A record that is shorter ends before this column or before one that stands in front of it in
  // the list: then its columns from there on are not looked at.
  std::uint32_t reach = 0;
};

// Made on the host's thread; constant while a worker runs, and outlives all of them.
struct WorkerPlan {
  // Only the settings that both modes share; Convert or Detect completes it.
  explicit WorkerPlan(const ImportSource& source);

  // Whether workers can make the cases of such an import.
  static bool Converts(const ImportSource& source);

  // Every variable of the source into its cells. Of another arrangement than one case per line
  // nothing is converted unless it is asked for, and can be (Converts).
  void Convert(bool anyArrangement = false);
  // Then, for a host that names texts that mean a missing number: settles nullsAreValues.
  void TakeNulls(const std::vector<std::string>& texts);
  // Counts for the AUTO variables among `variables`, by detectionRules.
  void Detect(TxtWzVar* const* variables, std::size_t count);
  // The same of fixed columns, one record to a case, as one thread does it; `known`: see
  // ColumnCounter.h.
  void DetectColumns(const std::vector<TxtWzVar*>& variables, KnownStates& known);

  const ImportSource& source;
  FieldRules fieldRules;
  bool detection = false;
  // Of delimited records, in file order.
  std::vector<FieldTask> fields;
  // Of fixed columns, imported ones by rising line; and how many of them are on lines that no case
  // has.
  std::vector<ColumnTask> columns;
  std::int64_t unreachable = 0;
  // Cases are lines. Else empty lines may count.
  bool caseIsLine = true;
  bool keepsEmpty = false;
  // Records of a case, all lines then.
  std::uint32_t recordsPerCase = 1;
  // Fields of a case that run across lines, else 0; and most fields of one batch, whole cases.
  std::size_t fieldsPerCase = 0;
  std::size_t maxFields = 0;
  // Of the variables that autoVariables names, and their indices; and the states to begin with,
  // null when none are detected.
  std::vector<DetectedColumn> detectedColumns;
  std::vector<std::uint32_t> columnNumbers;
  KnownStates* known = nullptr;
  StringRules stringRules;
  DetectionRules detectionRules;
  // A host watches what detection sees.
  bool evidence = false;
  // Positions of the AUTO variables in the list of variables.
  std::vector<std::uint32_t> autoVariables;
  std::size_t variableCount = 0;
  // Bytes of one case.
  std::size_t caseBytes = 0;
  // The fields do not assign every cell of a case.
  bool clearCases = false;
  // Most records of one batch.
  std::uint32_t maxRecords = 0xFFFFFFFF;
  // Batches of records keep where these lie in the file, and batches of cases where the last record
  // of each begins.
  bool keepsPlaces = false;
  bool keepsPositions = false;
  // For a host that watches the cases: who is told of them, else null; and who wants whole batches,
  // of which no case is behind the first `caseLimit`.
  const PassTeller* teller = nullptr;
  ImportObserver* batchObserver = nullptr;
  std::int64_t caseLimit = INT64_MAX;
};

}  // namespace textwizard
