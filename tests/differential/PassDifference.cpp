#include "tests/differential/PassDifference.h"

#include <cstring>

#include "model/MessageText.h"

namespace naive {
namespace {

// `row`: the cells of one case.
Cell CellOf(const QANT_Variable& variable, const char* row) {
  Cell cell;
  const char* const at = row + variable.ObsIndex() * sizeof(OBS);
  if (variable.GetType() == 0) {
    double value = 0.0;
    std::memcpy(&value, at, sizeof value);
    if (value != kSystemMissing) cell.number = value;
    return cell;
  }
  cell.isString = true;
  cell.text.assign(at, static_cast<std::size_t>(variable.GetType()));
  cell.text.erase(cell.text.find_last_not_of(' ') + 1);
  return cell;
}

std::string Shown(const Cell& cell) {
  if (cell.isString) return "'" + cell.text + "'";
  return cell.number ? std::to_string(*cell.number) : "missing";
}

}  // namespace

std::string PassDifference(const whole::Pass& pass, const QANT_DataSource& source,
                           const Import& expected) {
  if (pass.cases != expected.cases.size()) {
    return std::to_string(pass.cases) + " cases, expected " + std::to_string(expected.cases.size());
  }
  for (std::size_t number = 0; number < pass.cases; ++number) {
    const Case& wanted = expected.cases[number];
    if (source.GetNVariables() != wanted.size()) return "another number of variables";
    const char* const row = pass.bytes.data() + number * source.GetObsAreaSize();
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      const Cell got = CellOf(*source.GetVariable(i), row);
      if (got == wanted[i]) continue;
      return "case " + std::to_string(number) + ", variable " + std::to_string(i) + ": " +
             Shown(got) + ", expected " + Shown(wanted[i]);
    }
  }
  whole::Messages warnings;
  for (const auto& [caseNumber, position] : expected.undecodable) {
    const ErrorText warning = textwizard::UndecodableWarning(caseNumber, position);
    warnings.push_back({warning.kind, warning.text});
  }
  if (pass.messages == warnings) return {};
  return std::to_string(pass.messages.size()) + " messages, expected " +
         std::to_string(warnings.size()) + ", or other ones";
}

}  // namespace naive
