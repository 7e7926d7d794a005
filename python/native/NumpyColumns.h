// Columns as numpy arrays, made from the Arrow buffers. All of them want the GIL; they let go of it
// while only numbers are copied.
#pragma once

#include <pybind11/numpy.h>

#include <cstdint>

#include "native/Columns.h"

namespace python {

// float64; a missing value is NaN.
pybind11::array_t<double> Numbers(const Columns& columns, std::size_t column);

// (int64 or int8 array, bool array that is true where the value is missing; None where none is). A
// missing value is 0.
pybind11::tuple Integers(const Columns& columns, std::size_t column);

// int64: days of a date, microseconds of a timestamp or duration, each times `scale`; a missing
// value is the smallest int64, as numpy's NaT. None where a product does not fit.
pybind11::object Times(const Columns& columns, std::size_t column, std::int64_t scale);

// Objects: str; a missing value is None. Equal texts that follow soon may be one object.
pybind11::array Texts(const Columns& columns, std::size_t column);

// Values of the cases from `first` on, at most `count`: float, int (days or microseconds of a
// time), str, or None.
pybind11::list Values(const Columns& columns, std::size_t column, std::int64_t first,
                      std::int64_t count);

}  // namespace python
