#include "native/Settings.h"

#include <limits>
#include <tuple>

namespace python {
namespace {

namespace py = pybind11;

// Null where there is none.
py::object Given(const py::dict& given, const char* name) {
  return given.contains(name) ? py::object(given[name]) : py::none();
}

template <class Number>
Number Whole(const py::dict& given, const char* name) {
  const py::object value = Given(given, name);
  if (value.is_none()) return 0;
  if (!PyLong_Check(value.ptr())) {
    throw py::type_error(std::string(name) + " is a whole number");
  }
  int overflow = 0;
  const long long number = PyLong_AsLongLongAndOverflow(value.ptr(), &overflow);
  if (overflow != 0 || number > std::numeric_limits<Number>::max() ||
      number < std::numeric_limits<Number>::min()) {
    throw py::value_error(std::string(name) + " is too large");
  }
  return static_cast<Number>(number);
}

std::string TextOf(const py::handle& value, const char* name) {
  if (!PyUnicode_Check(value.ptr())) throw py::type_error(std::string(name) + " is a text");
  Py_ssize_t length = 0;
  const char* const text = PyUnicode_AsUTF8AndSize(value.ptr(), &length);
  if (text == nullptr) throw py::error_already_set();
  std::string copy(text, static_cast<std::size_t>(length));
  if (copy.find('\0') != std::string::npos) {
    throw py::value_error(std::string(name) + " has a character of code 0");
  }
  return copy;
}

}  // namespace

const char* Settings::Text(const py::dict& given, const char* name) {
  const py::object value = Given(given, name);
  if (value.is_none()) return nullptr;
  return texts_.emplace_back(TextOf(value, name)).c_str();
}

textwizard_file_options Settings::File(const py::dict& given) {
  textwizard_file_options options{};
  options.size = sizeof options;
  options.encoding = Text(given, "encoding");
  options.delimiter = Text(given, "delimiter");
  options.qualifier = Text(given, "qualifier");
  options.first_line = Whole<std::int64_t>(given, "first_line");
  options.header = Whole<std::int32_t>(given, "header");
  options.fixed = Text(given, "fixed");
  options.types = Text(given, "types");
  options.names = Text(given, "names");
  options.sample_lines = Whole<std::int64_t>(given, "sample_lines");
  return options;
}

textwizard_data_set_options Settings::DataSet(const py::dict& given) {
  textwizard_data_set_options options{};
  options.size = sizeof options;
  options.name = Text(given, "name");
  options.by = Text(given, "by");
  options.skip_misfits = Whole<std::int32_t>(given, "skip_misfits");
  options.source_column = Text(given, "source_column");
  return options;
}

textwizard_options Settings::Import(const py::dict& given) {
  textwizard_options options{};
  options.size = sizeof options;
  options.code_page = Text(given, "code_page");
  options.locale_code_page = Text(given, "locale_code_page");
  if (const char* const decimal = Text(given, "decimal"); decimal != nullptr) {
    if (decimal[0] == '\0' || decimal[1] != '\0') {
      throw py::value_error("decimal is one character, '.' or ','");
    }
    options.decimal = decimal[0];
  }
  options.workers = Whole<std::int32_t>(given, "workers");
  if (const py::object nulls = Given(given, "null_texts"); !nulls.is_none()) {
    for (const py::handle text : nulls) {
      nullTexts_.push_back(texts_.emplace_back(TextOf(text, "null_texts")).c_str());
    }
    options.null_text_count = nullTexts_.size();
    // None of them is something else than nothing said about them.
    nullTexts_.push_back(nullptr);
    options.null_texts = nullTexts_.data();
  }
  options.join_quoted_lines = Whole<std::int32_t>(given, "join_quoted_lines");
  options.backslash_escapes = Whole<std::int32_t>(given, "backslash_escapes");
  options.keep_stray_qualifiers = Whole<std::int32_t>(given, "keep_stray_qualifiers");
  options.byte_order_mark = Text(given, "byte_order_mark");
  options.transcode = Text(given, "transcode");
  options.pad_columns = Text(given, "pad_columns");
  options.problem_limit = Whole<std::int64_t>(given, "problem_limit");
  options.strict = Whole<std::int32_t>(given, "strict");
  options.names_as_variables = Whole<std::int32_t>(given, "names_as_variables");
  options.integers = Whole<std::int32_t>(given, "integers");
  if (const py::object part = Given(given, "part"); !part.is_none()) {
    const auto [from, to, before] = part.cast<std::tuple<std::int64_t, std::int64_t, py::bytes>>();
    part_ = {};
    part_.size = sizeof part_;
    part_.from = from;
    part_.to = to;
    const std::string& kept = texts_.emplace_back(before);
    part_.before = kept.empty() ? nullptr : kept.data();
    part_.before_size = kept.size();
    options.part = &part_;
  }
  return options;
}

}  // namespace python
