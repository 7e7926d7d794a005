// The columns of a file as the page shows them: formats, and how the values fit them.
#pragma once

#include <nlohmann/json.hpp>

#include "library/import/BareImport.h"

namespace cli {

// One object a column, skipped ones included: `name`, `label`, `format` ("X" when it is skipped),
// `final`, counts of what was read so far (`read`, `empty`, `null`, `unreadable`), `longest` with
// `line` and `text` where texts are longer than the format holds, `offending`, `day_month` and
// `decimal` where there is something to say. Texts are UTF-8.
nlohmann::json ColumnReport(const library::BareImport& import, bool final);

}  // namespace cli
