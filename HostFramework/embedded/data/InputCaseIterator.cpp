#include <algorithm>
#include <cstring>

#include "HostFramework/DataSource.h"
#include "HostFramework/Text.h"

namespace {

constexpr std::size_t CellBytes(std::size_t width) {
  return (width + sizeof(OBS) - 1) / sizeof(OBS) * sizeof(OBS);
}

// Bytes behind a field's width that tell whether the character at its end is whole.
constexpr std::size_t kLongestCharacter = 8;

}  // namespace

QANT_InputCaseIterator::QANT_InputCaseIterator(const QANT_DataSource& source, OBS* obs)
    : source_(source), obs_(obs) {
  if (obs) ClearCase(source, obs);
}

QANT_InputCaseIterator::~QANT_InputCaseIterator() = default;

void QANT_InputCaseIterator::SetErrorMonitor(ErrorMonitor* monitor) { monitor_ = monitor; }

void QANT_InputCaseIterator::SetColumnValue(int column, const char* text) {
  SetColumnValue(column, text ? std::string_view(text) : std::string_view());
}

void QANT_InputCaseIterator::SetColumnValue(int column, std::string_view text) {
  const QANT_DataSource::Column* place = source_.FindColumn(column);
  if (!obs_ || !place || place->width == 0) return;
  char* field = reinterpret_cast<char*>(obs_ + place->cell);
  std::size_t filled = text.size();
  if (text.size() <= place->width) {
    if (!text.empty()) std::memcpy(field, text.data(), text.size());
  } else {
    const std::size_t seen = std::min(text.size(), place->width + kLongestCharacter);
    QANTMBCopyToFixed_A(field, static_cast<int>(place->width), text.data(), static_cast<int>(seen));
    filled = place->width;
  }
  std::memset(field + filled, ' ', CellBytes(place->width) - filled);
}

void QANT_InputCaseIterator::SetColumnValue(int column, double value) {
  const QANT_DataSource::Column* place = source_.FindColumn(column);
  if (!obs_ || !place || place->width != 0) return;
  std::memcpy(obs_ + place->cell, &value, sizeof value);
}

void ClearCase(const QANT_DataSource& source, OBS* obs) {
  for (const QANT_DataSource::Column& column : source.columns_) {
    if (column.width == 0) {
      std::memcpy(obs + column.cell, &kSystemMissing, sizeof kSystemMissing);
    } else {
      std::memset(obs + column.cell, ' ', CellBytes(column.width));
    }
  }
}
