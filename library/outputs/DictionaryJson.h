// The dictionary of a data source as JSON.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "HostFramework/DataSource.h"
#include "library/outputs/ByteSink.h"

namespace library {

// What an import found out besides, as JSON texts.
struct DictionaryReport {
  // Empty where none is known yet.
  std::string ledger;
  // Of a variable; an empty text where there is none.
  std::function<std::string(std::size_t)> evidence;
  // Of several files that are one data set: what each came to, and how they differ; else empty.
  std::string files = {};
  std::string drift = {};
};

// Writes one line with its line end. `dataFile` is the file's name in the command (host text),
// which need not be the path that the source reads: standard input is copied. `cases` is the number
// of cases read. `report` may be null. Holds one variable at a time, however many there are.
void WriteDictionary(const QANT_DataSource& source, const std::string& dataFile, long long cases,
                     ByteSink& sink, const DictionaryReport* report = nullptr);

}  // namespace library
