#include "library/import/FieldPlaces.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>

#include "library/outputs/Utf8Converter.h"
#include "library/rewriting/StandIns.h"
#include "reading/FieldRules.h"
#include "reading/FieldSplitter.h"
#include "reading/RecordDecoder.h"
#include "reading/RecordReader.h"

namespace library {
namespace {

std::int64_t Characters(std::string_view utf8) {
  return std::count_if(utf8.begin(), utf8.end(),
                       [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; });
}

class Placing {
 public:
  Placing(const textwizard::ImportSource& source, const BareImport& import)
      : settings_(source.settings()),
        import_(import),
        rules_(settings_),
        reader_(source.stream()),
        decoder_(settings_.encoding),
        splitter_(rules_, textwizard::SplitUse::kReading, nullptr) {
    if (import.standIns) restorer_.emplace(*import.standIns);
    // Where a delimiter has several characters, fields that are passed over lie between columns.
    const std::size_t fields = source.variables().size();
    const std::size_t columns = import.columns.size();
    if (columns > 1 && fields > columns) stride_ = (fields - 1) / (columns - 1);
    // What is no 16-bit file stays as it is where it is the host's text already.
    converts_ = settings_.encoding == textwizard::kEncodingLocale ||
                settings_.encoding == textwizard::kEncodingUtf8;
  }

  std::vector<PlacedRecord> Run(std::int64_t count);

 private:
  PlacedRecord Place(std::string_view record, std::int64_t line);
  void PlaceDelimited(std::string_view record, PlacedRecord* placed);
  void PlaceFixed(std::string_view record, PlacedRecord* placed);
  std::string Utf8Of(std::string_view text);
  std::int64_t LineBreaksIn(std::string_view record) const;

  const textwizard::ImportSettings& settings_;
  const BareImport& import_;
  const textwizard::FieldRules rules_;
  textwizard::RecordReader reader_;
  textwizard::RecordDecoder decoder_;
  textwizard::FieldSplitter splitter_;
  std::optional<TextRestorer> restorer_;
  std::string room_;
  Utf8Converter hostText_;
  std::size_t stride_ = 1;
  bool converts_ = false;
};

std::string Placing::Utf8Of(std::string_view text) {
  if (restorer_) text = restorer_->Restore(text, room_);
  return std::string(hostText_.ToUtf8(text));
}

// Lines that end within the record.
std::int64_t Placing::LineBreaksIn(std::string_view record) const {
  if (!import_.standIns) return 0;
  std::int64_t breaks = 0;
  char before = '\0';
  for (const char byte : record) {
    const bool feed = byte == import_.standIns->lineFeed;
    const bool pair = feed && before == import_.standIns->carriageReturn;
    breaks += (feed && !pair) || byte == import_.standIns->carriageReturn ? 1 : 0;
    before = byte;
  }
  return breaks;
}

void Placing::PlaceDelimited(std::string_view record, PlacedRecord* placed) {
  splitter_.SetRecord(record);
  const std::size_t wanted = (import_.columns.size() - 1) * stride_ + 1;
  std::size_t begin = splitter_.offset();
  std::string_view field;
  for (std::size_t i = 0; i < wanted && splitter_.Next(field); ++i) {
    PlacedField one;
    one.text = Utf8Of(field);
    std::size_t end = splitter_.offset();
    const bool delimited = end < record.size() || splitter_.EndsInDelimiter();
    // The delimiter that ended it, and blanks that belong to it, are no part of the field.
    while (delimited && end > begin &&
           (static_cast<unsigned char>(record[end - 1]) & 0xC0) == 0x80) {
      --end;
    }
    if (delimited && end > begin) --end;
    one.from = Characters(Utf8Of(record.substr(0, begin)));
    one.to = one.from + Characters(Utf8Of(record.substr(begin, end - begin)));
    begin = splitter_.offset();
    if (i % stride_ == 0) placed->fields.push_back(std::move(one));
  }
}

void Placing::PlaceFixed(std::string_view record, PlacedRecord* placed) {
  for (const SniffColumn& column : import_.sniff.columns) {
    const auto size = static_cast<std::int64_t>(record.size());
    const std::int64_t from = std::min(size, column.range.from - 1);
    const std::int64_t to = column.range.to == 0 ? size : std::min(size, column.range.to);
    const auto part = [&](std::int64_t at, std::int64_t end) {
      return record.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(end - at));
    };
    PlacedField one;
    one.text = Utf8Of(part(from, to));
    one.from = Characters(Utf8Of(part(0, from)));
    one.to = one.from + Characters(one.text);
    placed->fields.push_back(std::move(one));
  }
}

PlacedRecord Placing::Place(std::string_view record, std::int64_t line) {
  PlacedRecord placed;
  placed.line = line;
  if (settings_.arrangement == textwizard::kFixedColumns) {
    PlaceFixed(record, &placed);
  } else {
    PlaceDelimited(record, &placed);
  }
  return placed;
}

std::vector<PlacedRecord> Placing::Run(std::int64_t count) {
  std::vector<PlacedRecord> records;
  reader_.SeekBegin();
  reader_.HandleByteOrderMark();
  std::int64_t line = 1;
  for (; line < settings_.firstCase && reader_.Read(true); ++line) {
  }
  for (; static_cast<std::int64_t>(records.size()) < count && reader_.Read(true); ++line) {
    const std::string_view raw = reader_.record();
    if (raw.empty()) continue;
    const std::string_view record =
        reader_.isUtf16() || converts_ ? decoder_.Decode(raw, reader_.mark()) : raw;
    records.push_back(Place(record, line));
    line += LineBreaksIn(record);
  }
  return records;
}

}  // namespace

std::vector<PlacedRecord> PlaceFields(const textwizard::ImportSource& source,
                                      const BareImport& import, std::int64_t count) {
  return Placing(source, import).Run(count);
}

}  // namespace library
