// The dictionary of several sources that are one data set.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "HostFramework/DataSource.h"

namespace library {

struct DataSetVariable {
  std::string name;  // host text
  int type = 0;      // bytes of a string; 0: a number
  QANT_Format format;
  QANT_Format writeFormat;
  int displayWidth = 0;
};

// Holds variables, and no cases of its own: those are the sources'. Host's thread.
class DataSetSource final : public QANT_DataSource {
 public:
  DataSetSource() : QANT_DataSource(nullptr) {}

  // Takes the variables of a source that are not there yet, by name in any letter case; strings
  // become as wide as the widest of their name. False, with a sentence (UTF-8), when one is there
  // with another type or format. Before Make.
  bool Add(const QANT_DataSource& source, std::string* problem);
  // Appends a string of `bytes` bytes. False, with a sentence, when the name (UTF-8) is none, or
  // taken. Before Make.
  bool AddText(const std::string& name, std::size_t bytes, std::string* problem);
  // Appends a variable as variables() of another one has it. Before Make.
  void Add(const DataSetVariable& variable);
  // Makes all variables, in the order in which they were met. Once.
  void Make();
  const std::vector<DataSetVariable>& variables() const { return planned_; }
  // Of each variable of a source that of this one. False when one is not there, or would not fit.
  // After Make.
  bool Find(const QANT_DataSource& source, std::vector<std::size_t>* variables) const;

  // There is none.
  QANT_InputCaseIterator* MakeIterator(OBS* obs) const override;

 private:
  std::vector<DataSetVariable> planned_;
  // By name in capital letters.
  std::unordered_map<std::string, std::size_t> indices_;
};

}  // namespace library
