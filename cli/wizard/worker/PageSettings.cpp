#include "cli/wizard/worker/PageSettings.h"

#include <charconv>
#include <string_view>

#include <fmt/format.h>

#include "cli/wizard/WizardServer.h"
#include "library/report/ImportWatch.h"

namespace cli {
namespace {

using nlohmann::json;

std::int64_t NumberOf(std::string_view text, const std::string& all) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < 1) {
    throw RequestRefused(fmt::format("{} are no columns: write 1-8,9-20", all));
  }
  return number;
}

library::DecimalCharacter DecimalOf(const std::string& name) {
  if (name == "comma") return library::DecimalCharacter::kComma;
  if (name == "point") return library::DecimalCharacter::kPoint;
  throw RequestRefused(name + " is no decimal character");
}

}  // namespace

std::vector<library::CharacterRange> RangesOf(const std::string& text) {
  std::vector<library::CharacterRange> ranges;
  std::string_view left = text;
  std::int64_t before = 0;
  for (;;) {
    const std::size_t comma = left.find(',');
    const std::string_view range = left.substr(0, comma);
    const std::size_t dash = range.find('-');
    library::CharacterRange one;
    one.from = NumberOf(range.substr(0, dash), text);
    one.to = dash == std::string_view::npos
                 ? one.from
                 : (dash + 1 == range.size() ? 0 : NumberOf(range.substr(dash + 1), text));
    const bool last = comma == std::string_view::npos;
    if (one.from <= before || (one.to != 0 && one.to < one.from) || (one.to == 0 && !last)) {
      throw RequestRefused(fmt::format("{} are no columns one behind the other", text));
    }
    before = one.to;
    ranges.push_back(one);
    if (last) return ranges;
    left.remove_prefix(comma + 1);
  }
}

std::string TextOf(const std::vector<library::CharacterRange>& ranges) {
  std::string text;
  for (const library::CharacterRange& range : ranges) {
    if (!text.empty()) text += ",";
    text += std::to_string(range.from) + "-";
    if (range.to != 0) text += std::to_string(range.to);
  }
  return text;
}

library::BareImportSettings PageSettings(const json& given) {
  library::BareImportSettings settings;
  settings.nulls = library::DefaultNullTexts();
  library::SniffSettings& sniff = settings.sniff;
  for (const auto& [key, value] : given.items()) {
    if (key == "encoding") {
      sniff.encoding = value.get<std::string>();
    } else if (key == "delimiter") {
      sniff.delimiter = value.get<std::string>();
    } else if (key == "qualifier") {
      sniff.qualifier = value.get<std::string>();
    } else if (key == "decimal") {
      sniff.decimal = DecimalOf(value.get<std::string>());
    } else if (key == "leading_blanks") {
      settings.leadingBlanks = value.get<bool>();
    } else if (key == "multiple_blanks") {
      sniff.multipleBlanks = value.get<bool>();
    } else if (key == "first_line") {
      sniff.firstLine = value.get<std::int64_t>();
      if (*sniff.firstLine < 1) throw RequestRefused("lines are counted from 1");
    } else if (key == "header") {
      sniff.header = value.get<bool>();
    } else if (key == "fixed") {
      sniff.fixed = RangesOf(value.get<std::string>());
    } else if (key == "names") {
      settings.names = value.get<std::vector<std::string>>();
    } else if (key == "types") {
      for (const auto& [name, format] : value.items()) {
        settings.types.emplace_back(name, format.get<std::string>());
      }
    } else {
      throw RequestRefused("there is no setting " + key);
    }
  }
  return settings;
}

}  // namespace cli
