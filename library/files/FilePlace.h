// One file's place in a data set: how its cases and its account are those of one of all files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "library/files/CaseLayout.h"
#include "library/files/DataSetSource.h"
#include "library/report/PassAccount.h"

namespace library {

// What one file, or a part of it, came to.
struct FileAccount {
  std::string name;              // UTF-8
  std::int64_t casesBefore = 0;  // of the data set
  PassAccount account;           // with the data set's variables
};

// {"file":"b.csv","cases":2,"first_case":3,"problems":0,"digest":"...","ledger":{...}}
nlohmann::ordered_json FileJson(const std::string& name, std::int64_t casesBefore,
                                const PassAccount& account);

// Host's thread, but for layout().
class FilePlace {
 public:
  // `name` is the file's for people (UTF-8); `sourceText` what the data set's last variable has in
  // its cases (host text); nothing where there is no such variable.
  FilePlace(std::string name, std::optional<std::string> sourceText)
      : name_(std::move(name)), sourceText_(std::move(sourceText)) {}

  // Before anything else. False when the file's variables are none of the data set's, which
  // outlives this object.
  bool Open(const QANT_DataSource& file, const DataSetSource& all);
  const CaseLayout& layout() const { return *layout_; }
  // Of each variable of the file that of the data set.
  const std::vector<std::size_t>& variables() const { return variables_; }
  // Makes the account of a pass over the file that of cases of the data set.
  void Place(PassAccount* account) const;

 private:
  const std::string name_;
  const std::optional<std::string> sourceText_;
  const DataSetSource* all_ = nullptr;
  std::vector<std::size_t> variables_;
  std::optional<CaseLayout> layout_;
};

}  // namespace library
