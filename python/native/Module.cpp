// The module textwizard._native: what the package's Python does not do itself.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "native/Columns.h"
#include "native/NumpyColumns.h"
#include "native/OpenImport.h"

namespace {

namespace py = pybind11;
using python::Columns;
using python::OpenImport;

// The package makes the exception, so that its classes are ordinary ones.
void Raise(const python::ImportError& thrown) {
  const textwizard::Error& error = thrown.error();
  const py::object exception = py::module_::import("textwizard._errors")
                                   .attr("error_of")(static_cast<int>(error.status()), error.text(),
                                                     error.number(), error.line(), error.column());
  PyErr_SetObject(py::type::of(exception).ptr(), exception.ptr());
}

py::list FieldsOf(const Columns& columns) {
  py::list fields;
  for (const python::Field& field : columns.fields()) {
    py::dict metadata;
    for (const auto& [key, value] : field.metadata) metadata[py::str(key)] = value;
    fields.append(py::make_tuple(field.name, field.format, metadata));
  }
  return fields;
}

}  // namespace

PYBIND11_MODULE(_native, module) {
  module.doc() = "Reads imports into columns; used by the package's modules only.";

  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) std::rethrow_exception(thrown);
    } catch (const python::ImportError& error) {
      Raise(error);
    }
  });

  py::class_<Columns, std::shared_ptr<Columns>>(module, "Columns")
      .def_property_readonly("rows", &Columns::rows)
      .def_property_readonly("fields", &FieldsOf)
      .def_property_readonly("batch_count", &Columns::batchCount)
      .def("batch",
           [](const Columns& columns, std::size_t batch) {
             return std::const_pointer_cast<Columns>(columns.BatchAt(batch));
           })
      .def("numbers", &python::Numbers)
      .def("integers", &python::Integers)
      .def("times", &python::Times)
      .def("texts", &python::Texts)
      .def("values", &python::Values)
      .def("schema", &Columns::SchemaCapsule)
      .def("array", &Columns::ArrayCapsule)
      .def("stream", &Columns::StreamCapsule);

  const auto columnsBy = [](std::shared_ptr<const Columns> (OpenImport::*columns)()) {
    return [columns](OpenImport& import) {
      return std::const_pointer_cast<Columns>((import.*columns)());
    };
  };
  py::class_<OpenImport>(module, "Import")
      .def("no_cases", columnsBy(&OpenImport::NoCases))
      .def("next", columnsBy(&OpenImport::Next))
      .def("all_cases", columnsBy(&OpenImport::AllCases))
      .def("problems", columnsBy(&OpenImport::Problems))
      .def("write", &OpenImport::Write)
      .def("command", &OpenImport::Command)
      .def("dictionary", &OpenImport::Dictionary)
      .def("reading", &OpenImport::Reading)
      .def("ledger", &OpenImport::Ledger)
      .def("digest", &OpenImport::Digest)
      .def("recipe", &OpenImport::Recipe)
      .def("take_warnings", &OpenImport::TakeWarnings)
      .def("close", &OpenImport::Close);

  module.def("open_file", &OpenImport::OfFile);
  module.def("open_command", &OpenImport::OfCommand);
  module.def("open_summary", &OpenImport::OfSummary);
  module.def("open_recipe", &OpenImport::OfRecipe);
  module.def("summarize_part", &python::SummarizePart);
  module.def("merge_summaries", &python::MergeSummaries);
  module.def("summary_json", &python::SummaryJson);
  module.def("list_files", &python::ListFiles);
  module.def("open_data_set", &python::OpenDataSet);
  module.def("sniff_file", &python::SniffFile);
  module.def("version", &textwizard_version);
}
