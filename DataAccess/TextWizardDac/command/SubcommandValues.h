// What the subcommands of a command said. A value is nothing until its subcommand has been met.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "model/ImportSettings.h"

namespace textwizard {

// ARRANGEMENT: how the fields of a line are told apart.
enum class FieldLayout { kDelimited, kFixed };

// DELCASE: where a delimited case ends.
enum class CaseEnd { kLine, kVariables };

struct DelCase {
  CaseEnd end = CaseEnd::kLine;
  // Of CaseEnd::kVariables.
  std::uint32_t variables = 0;
};

struct ImportCase {
  ImportMode mode = kImportAll;
  // Cases, or percent of them; not with kImportAll.
  std::uint32_t number = 0;
};

struct SubcommandValues {
  // Whether the columns are fixed, as far as the command has said so yet.
  bool IsFixed() const { return arrangement == FieldLayout::kFixed; }

  // In the host's form.
  std::optional<std::string> file;
  std::optional<FileEncoding> encoding;
  std::optional<FieldLayout> arrangement;
  std::optional<std::uint32_t> firstCase;
  std::optional<DelCase> delCase;
  std::optional<std::uint32_t> fixCase;
  std::optional<ImportCase> importCase;
  std::optional<std::string> delimiters;
  // One character.
  std::optional<std::string> qualifier;
  std::optional<bool> leadingSpacesIgnore;
  std::optional<bool> multipleSpacesIgnore;
  // In percent.
  std::optional<double> dataTypeMin;
  bool map = false;
  bool variables = false;
};

}  // namespace textwizard
