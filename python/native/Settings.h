// The library's option structs filled from dictionaries of Python.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "textwizard/textwizard.h"

namespace python {

// Keeps the texts that the structs point to. Members that the dictionaries lack, or that are None,
// are zero. Throws pybind11::type_error and pybind11::value_error that name the setting.
class Settings {
 public:
  Settings() = default;
  Settings(const Settings&) = delete;
  Settings& operator=(const Settings&) = delete;

  textwizard_file_options File(const pybind11::dict& given);
  // But for its summaries.
  textwizard_data_set_options DataSet(const pybind11::dict& given);
  // Also "part": where it begins and ends, and the summary of what stands before, which may be
  // empty.
  textwizard_options Import(const pybind11::dict& given);

 private:
  const char* Text(const pybind11::dict& given, const char* name);

  std::deque<std::string> texts_;
  std::vector<const char*> nullTexts_;
  textwizard_part part_{};
};

}  // namespace python
