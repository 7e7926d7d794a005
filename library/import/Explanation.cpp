#include "library/import/Explanation.h"

#include <optional>

#include <fmt/format.h>

#include "HostFramework/Formats.h"
#include "library/command/CommandText.h"
#include "library/report/ReportText.h"
#include "library/types/GivenFormat.h"

namespace library {
namespace {

// Values are shown in so many characters.
constexpr std::size_t kShownCharacters = 40;

class Explaining {
 public:
  explicit Explaining(const BareImport& import) : import_(import) {
    if (import.standIns) restorer_.emplace(*import.standIns);
  }

  std::string Text() {
    std::string text;
    for (std::size_t index = 0; index < import_.columns.size(); ++index) {
      const BareColumn& column = import_.columns[index];
      if (column.skipped) {
        text += column.name + ": left out\n";
      } else {
        text += TextOf(column, import_.summary.columns[index]);
      }
    }
    return text;
  }

 private:
  // A value as the file means it.
  std::string Shown(const Witness& witness) {
    const std::string_view text =
        restorer_ ? restorer_->Restore(witness.text, room_) : std::string_view(witness.text);
    return fmt::format("{} in line {}", escaped_.Escaped(text, kShownCharacters), witness.line);
  }

  std::string TextOf(const BareColumn& column, const ColumnEvidence& evidence) {
    const std::int64_t values = evidence.values();
    const std::optional<Reading> chosen = ReadingOf(column.type.format.code, import_.types.decimal);
    std::string text = fmt::format("{}: {}{}", column.name, FormatText(column.type.format),
                                   column.typeGiven ? " (given)" : "");
    if (values == 0) {
      text += ", no value in the file";
    } else {
      text += fmt::format(", reads {} of {} value{}", chosen ? evidence.Read(*chosen) : values,
                          values, values == 1 ? "" : "s");
    }
    if (evidence.nulls().count > 0) {
      text += fmt::format("; {} null, first {}", evidence.nulls().count, Shown(evidence.nulls()));
    }
    if (evidence.empties() > 0) text += fmt::format("; {} empty", evidence.empties());
    if (values > 0) {
      text += fmt::format("; longest {} byte{}, line {}", evidence.longest().count,
                          evidence.longest().count == 1 ? "" : "s", evidence.longest().line);
    }
    text += "\n";
    for (std::size_t i = 0; i < kReadings; ++i) {
      const auto reading = static_cast<Reading>(i);
      if (reading == chosen || evidence.Read(reading) == 0) continue;
      text += fmt::format("  {} reads {}", NameOf(reading), evidence.Read(reading));
      const Witness unread = evidence.Unread(reading);
      text += unread.count > 0 ? fmt::format(", not {}\n", Shown(unread)) : std::string(", all\n");
    }
    return text;
  }

  static std::string NameOf(Reading reading) {
    const DisplayFormat* const format = DisplayFormatOf(FormatOf(reading));
    std::string name(format != nullptr ? format->name : "?");
    if (reading == Reading::kPointPercent) name += " with a decimal point";
    if (reading == Reading::kCommaPercent) name += " with a decimal comma";
    return name;
  }

  const BareImport& import_;
  std::optional<TextRestorer> restorer_;
  ReportText escaped_;
  std::string room_;
};

}  // namespace

std::string ExplanationOf(const BareImport& import) { return Explaining(import).Text(); }

}  // namespace library
