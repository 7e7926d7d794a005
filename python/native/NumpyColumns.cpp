#include "native/NumpyColumns.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace python {
namespace {

namespace py = pybind11;

// Calls visit(row) for every missing value of the piece, looking at eight at a time.
template <class Visit>
void ForMissing(const Piece& piece, Visit visit) {
  const std::uint8_t* const bits = piece.validity();
  if (bits == nullptr) return;
  for (std::int64_t row = 0; row < piece.length; ++row) {
    const std::int64_t bit = piece.offset + row;
    if (bit % 8 == 0 && bits[bit / 8] == 0xFF) {
      row += 7;
      continue;
    }
    if (piece.IsMissing(row)) visit(row);
  }
}

bool HasMissing(const std::vector<Piece>& pieces) {
  return std::any_of(pieces.begin(), pieces.end(),
                     [](const Piece& piece) { return piece.validity() != nullptr; });
}

// Every piece's values behind one another, `missing` where one is missing.
template <class Value>
void CopyValues(const std::vector<Piece>& pieces, Value* out, Value missing) {
  for (const Piece& piece : pieces) {
    if (piece.length == 0) continue;
    std::memcpy(out, piece.values<Value>(), static_cast<std::size_t>(piece.length) * sizeof(Value));
    ForMissing(piece, [&](std::int64_t row) { out[row] = missing; });
    out += piece.length;
  }
}

template <class Value>
py::tuple IntegersOf(const Columns& columns, const std::vector<Piece>& pieces) {
  py::array_t<Value> values(columns.rows());
  Value* const out = values.mutable_data();
  if (!HasMissing(pieces)) {
    const py::gil_scoped_release release;
    CopyValues(pieces, out, Value{0});
  } else {
    py::array_t<bool> mask(columns.rows());
    bool* isMissing = mask.mutable_data();
    {
      const py::gil_scoped_release release;
      CopyValues(pieces, out, Value{0});
      std::fill_n(isMissing, columns.rows(), false);
      for (const Piece& piece : pieces) {
        ForMissing(piece, [&](std::int64_t row) { isMissing[row] = true; });
        isMissing += piece.length;
      }
    }
    return py::make_tuple(values, mask);
  }
  return py::make_tuple(values, py::none());
}

constexpr std::int64_t kNotATime = std::numeric_limits<std::int64_t>::min();

// False where a product does not fit.
template <class Value>
bool ScaleTimes(const std::vector<Piece>& pieces, std::int64_t scale, std::int64_t* out) {
  const std::int64_t most = std::numeric_limits<std::int64_t>::max() / scale;
  for (const Piece& piece : pieces) {
    const Value* const values = piece.values<Value>();
    std::uint64_t outside = 0;
    for (std::int64_t row = 0; row < piece.length; ++row) {
      const auto value = static_cast<std::int64_t>(values[row]);
      // A missing value may hold anything: judged below.
      outside +=
          static_cast<std::uint64_t>(value > most) | static_cast<std::uint64_t>(value < -most);
      out[row] = static_cast<std::int64_t>(static_cast<std::uint64_t>(value) *
                                           static_cast<std::uint64_t>(scale));
    }
    ForMissing(piece, [&](std::int64_t row) {
      const auto value = static_cast<std::int64_t>(values[row]);
      outside -=
          static_cast<std::uint64_t>(value > most) | static_cast<std::uint64_t>(value < -most);
      out[row] = kNotATime;
    });
    if (outside != 0) return false;
    out += piece.length;
  }
  return true;
}

// A new reference; null with a Python error set.
PyObject* MakeText(const char* data, std::size_t length) {
  return PyUnicode_DecodeUTF8(data, static_cast<Py_ssize_t>(length), "replace");
}

// Texts seen lately, so that a column of repeating texts makes few objects: a text's place is given
// by its hash, and a newer one takes it over. Gives up where texts hardly repeat.
class LateTexts {
 public:
  ~LateTexts() {
    for (const Entry& entry : entries_) Py_XDECREF(entry.object);
  }
  // A new reference; null with a Python error set.
  PyObject* Take(const char* data, std::size_t length) {
    if (length > kLongest || isOff_) return MakeText(data, length);
    Entry& entry = entries_[HashOf(data, length) % kEntries];
    ++asked_;
    if (entry.object != nullptr && entry.text == std::string_view(data, length)) {
      ++found_;
      Py_INCREF(entry.object);
      return entry.object;
    }
    isOff_ = asked_ > kTrial && found_ < asked_ / 4;
    PyObject* const made = MakeText(data, length);
    if (made == nullptr) return nullptr;
    Py_XDECREF(entry.object);
    Py_INCREF(made);
    entry = {{data, length}, made};
    return made;
  }

 private:
  // `text` is the batch's, which outlives this.
  struct Entry {
    std::string_view text;
    PyObject* object = nullptr;
  };
  static constexpr std::size_t kEntries = 2048;
  static constexpr std::size_t kLongest = 64;
  static constexpr std::uint64_t kTrial = 8192;

  static std::uint64_t HashOf(const char* data, std::size_t length) {
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
    std::memcpy(&head, data, std::min<std::size_t>(length, 8));
    if (length > 8) std::memcpy(&tail, data + length - 8, 8);
    const std::uint64_t mixed =
        (head ^ (tail * 0x9E3779B97F4A7C15U) ^ length) * 0xD6E8FEB86659FD93U;
    return mixed >> 40;
  }

  std::array<Entry, kEntries> entries_{};
  std::uint64_t asked_ = 0;
  std::uint64_t found_ = 0;
  bool isOff_ = false;
};

// Writes new references from `out` on; what was written before an error stays the array's.
template <class Offset>
void FillTexts(const Piece& piece, LateTexts& late, PyObject** out) {
  const Offset* const offsets = piece.values<Offset>();
  const char* const text = static_cast<const char*>(piece.array->buffers[2]);
  for (std::int64_t row = 0; row < piece.length; ++row) {
    PyObject* object = Py_None;
    if (piece.IsMissing(row)) {
      Py_INCREF(object);
    } else {
      object =
          late.Take(text + offsets[row], static_cast<std::size_t>(offsets[row + 1] - offsets[row]));
      if (object == nullptr) throw py::error_already_set();
    }
    Py_XDECREF(out[row]);
    out[row] = object;
  }
}

py::object ValueAt(const Piece& piece, const std::string& format, std::int64_t row) {
  if (piece.IsMissing(row)) return py::none();
  const auto text = [&](auto offset) {
    const auto* const offsets = piece.values<decltype(offset)>() + row;
    PyObject* const made = MakeText(static_cast<const char*>(piece.array->buffers[2]) + offsets[0],
                                    static_cast<std::size_t>(offsets[1] - offsets[0]));
    if (made == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(made);
  };
  switch (format[0]) {
    case 'g':
      return py::float_(piece.values<double>()[row]);
    case 'c':
      return py::int_(piece.values<std::int8_t>()[row]);
    case 'u':
      return text(std::int32_t{});
    case 'U':
      return text(std::int64_t{});
    default:
      break;
  }
  if (format == "tdD") return py::int_(piece.values<std::int32_t>()[row]);
  return py::int_(piece.values<std::int64_t>()[row]);
}

const std::string& FormatOf(const Columns& columns, std::size_t column) {
  return columns.fields().at(column).format;
}

void Require(bool holds) {
  if (!holds) throw std::invalid_argument("the column is of another type");
}

}  // namespace

py::array_t<double> Numbers(const Columns& columns, std::size_t column) {
  Require(FormatOf(columns, column) == "g");
  const std::vector<Piece> pieces = columns.Pieces(column);
  py::array_t<double> values(columns.rows());
  double* const out = values.mutable_data();
  {
    const py::gil_scoped_release release;
    CopyValues(pieces, out, std::numeric_limits<double>::quiet_NaN());
  }
  return values;
}

py::tuple Integers(const Columns& columns, std::size_t column) {
  const std::string& format = FormatOf(columns, column);
  Require(format == "l" || format == "c");
  const std::vector<Piece> pieces = columns.Pieces(column);
  return format == "l" ? IntegersOf<std::int64_t>(columns, pieces)
                       : IntegersOf<std::int8_t>(columns, pieces);
}

py::object Times(const Columns& columns, std::size_t column, std::int64_t scale) {
  const std::string& format = FormatOf(columns, column);
  Require(format[0] == 't' && scale > 0);
  const std::vector<Piece> pieces = columns.Pieces(column);
  py::array_t<std::int64_t> values(columns.rows());
  std::int64_t* const out = values.mutable_data();
  bool fits = false;
  {
    const py::gil_scoped_release release;
    fits = format == "tdD" ? ScaleTimes<std::int32_t>(pieces, scale, out)
                           : ScaleTimes<std::int64_t>(pieces, scale, out);
  }
  if (!fits) return py::none();
  return values;
}

py::array Texts(const Columns& columns, std::size_t column) {
  const std::string& format = FormatOf(columns, column);
  Require(format == "u" || format == "U");
  py::array texts(py::dtype("O"), std::vector<py::ssize_t>{columns.rows()});
  auto* out = static_cast<PyObject**>(texts.mutable_data());
  LateTexts late;
  for (const Piece& piece : columns.Pieces(column)) {
    if (format == "u") {
      FillTexts<std::int32_t>(piece, late, out);
    } else {
      FillTexts<std::int64_t>(piece, late, out);
    }
    out += piece.length;
  }
  return texts;
}

py::list Values(const Columns& columns, std::size_t column, std::int64_t first,
                std::int64_t count) {
  const std::string& format = FormatOf(columns, column);
  py::list values;
  for (const Piece& piece : columns.Pieces(column)) {
    for (std::int64_t row = std::max<std::int64_t>(first, 0); row < piece.length && count > 0;
         ++row, --count) {
      values.append(ValueAt(piece, format, row));
    }
    first = std::max<std::int64_t>(first - piece.length, 0);
  }
  return values;
}

}  // namespace python
