#include "library/sniff/CommasInNumbers.h"

#include <algorithm>

#include "library/sniff/RecordCutter.h"
#include "library/sniff/SampleRecords.h"

namespace library {
namespace {

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

}  // namespace

bool AreDecimalCommas(const std::vector<std::string_view>& lines, CellKinds& kinds) {
  std::size_t numbers = 0;
  std::size_t zeros = 0;
  std::size_t filled = 0;
  std::size_t length = 0;
  for (const std::string_view line : lines) {
    if (line.empty()) continue;
    ++filled;
    std::string_view text = line;
    if (text.size() > 2 && text.front() == '"' && text.back() == '"') {
      text = text.substr(1, text.size() - 2);
    }
    if (kinds.Of(text) != CellKind::kCommaNumber) continue;
    const std::string_view fraction = text.substr(text.rfind(',') + 1);
    if (numbers++ == 0) length = fraction.size();
    if (fraction.size() != length) return false;
    zeros += fraction.size() > 1 && fraction.front() == '0' ? 1 : 0;
  }
  return zeros > 0 && 20 * numbers >= 19 * filled;
}

CommaPlaces FindCommas(const std::vector<std::string_view>& lines, const Dialect& dialect,
                       std::size_t width) {
  CommaPlaces places;
  const SampleRecords joined = JoinRecords(lines, lines.size(), dialect);
  RecordCutter cutter(dialect);
  std::vector<RecordCutter::Field> fields;
  std::size_t commas = 0;
  bool first = true;
  for (const SampleRecord& record : joined.records) {
    cutter.Cut(record.text, &fields);
    if (fields.size() != width) continue;
    bool plain = true;
    for (const RecordCutter::Field& field : fields) {
      const std::string_view text = field.text;
      plain = plain && std::none_of(text.begin(), text.end(),
                                    [](char byte) { return IsDigit(byte) || byte == ','; });
      if (field.qualified) continue;
      for (std::size_t at = text.find(','); at != std::string_view::npos;
           at = text.find(',', at + 1)) {
        ++commas;
        if (at == 0 || at + 1 == text.size() || !IsDigit(text[at - 1]) || !IsDigit(text[at + 1])) {
          return places;
        }
      }
    }
    if (first) places.underNames = plain;
    first = false;
  }
  places.betweenDigits = commas > 0;
  return places;
}

}  // namespace library
