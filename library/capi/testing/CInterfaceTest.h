// What tests of the C interface share: a folder, commands on its files, cells as texts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "library/testing/TestFolder.h"
#include "textwizard/textwizard.hpp"

namespace capi {

inline bool IsValid(const ArrowArray& column, std::int64_t row) {
  const auto* const bits = static_cast<const unsigned char*>(column.buffers[0]);
  return bits == nullptr || ((bits[row / 8] >> (row % 8)) & 1) != 0;
}

template <class Offset = std::int32_t>
std::string TextOf(const ArrowArray& column, std::int64_t row) {
  const auto* const offsets = static_cast<const Offset*>(column.buffers[1]);
  const auto* const bytes = static_cast<const char*>(column.buffers[2]);
  return IsValid(column, row) ? std::string(bytes + offsets[row], bytes + offsets[row + 1])
                              : "(null)";
}

template <class Value>
std::string NumberOf(const ArrowArray& column, std::int64_t row) {
  const auto* const values = static_cast<const Value*>(column.buffers[1]);
  return IsValid(column, row) ? nlohmann::json(values[row]).dump() : "(null)";
}

inline std::string CellOf(const std::string& format, const ArrowArray& column, std::int64_t row) {
  if (format == "u") return TextOf(column, row);
  if (format == "U") return TextOf<std::int64_t>(column, row);
  if (format == "g") return NumberOf<double>(column, row);
  if (format == "tdD") return NumberOf<std::int32_t>(column, row);
  if (format == "c") return NumberOf<std::int8_t>(column, row);
  return NumberOf<std::int64_t>(column, row);
}

// Reads a stream to its end: cells as text. What it says when it fails is the last row.
inline std::vector<std::vector<std::string>> RowsOf(textwizard::Stream& stream) {
  std::vector<std::vector<std::string>> rows;
  const auto schema = stream.ReadSchema();
  EXPECT_TRUE(schema);
  if (!schema) return rows;
  while (true) {
    const textwizard::Result<textwizard::Batch> batch = stream.Next();
    if (!batch) {
      rows.push_back({batch.error().text()});
      return rows;
    }
    if (!*batch) return rows;
    for (std::int64_t row = 0; row < batch->length(); ++row) {
      rows.emplace_back();
      for (std::int64_t i = 0; i < schema->get().n_children; ++i) {
        rows.back().push_back(
            CellOf(schema->get().children[i]->format, *batch->array().children[i], row));
      }
    }
  }
}

template <class Options>
Options Defaults() {
  Options options{};
  options.size = sizeof options;
  return options;
}

class TextWizardTest : public testing::Test {
 protected:
  // A command on `name`; the variables follow.
  std::string Command(const std::string& variables, const std::string& name = "data.csv",
                      const std::string& more = "") const {
    return "GET DATA /TYPE=TXT /FILE='" + (folder_ / name) +
           "' /ARRANGEMENT=DELIMITED /DELCASE=LINE /FIRSTCASE=1 " + more +
           " /DELIMITERS=',' /QUALIFIER='\"' /VARIABLES=" + variables + ".";
  }
  // `rows` lines "1,a" "2,b" ...
  void WriteRows(int rows) const {
    std::string text;
    for (int i = 1; i <= rows; ++i) text += std::to_string(i) + ",text " + std::to_string(i) + "\n";
    folder_.Write("data.csv", text);
  }
  static std::vector<std::vector<std::string>> Rows(textwizard::Result<textwizard::Stream> stream) {
    EXPECT_TRUE(stream);
    return stream ? RowsOf(*stream) : std::vector<std::vector<std::string>>();
  }

  library::TestFolder folder_;
  textwizard_options options_ = Defaults<textwizard_options>();
};

}  // namespace capi
