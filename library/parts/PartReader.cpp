#include "library/parts/PartReader.h"

#include <algorithm>
#include <bit>

#include "library/parts/LineSeek.h"
#include "library/rewriting/Controls.h"
#include "reading/ByteScan.h"

namespace library {
namespace {

constexpr std::size_t kRunBytes = std::size_t{1} << 17;

bool Decodes(const textwizard::RecordReader& reader, textwizard::FileEncoding encoding) {
  return reader.isUtf16() || encoding == textwizard::kEncodingLocale ||
         (encoding == textwizard::kEncodingUtf8 && !qUTF8mode());
}

}  // namespace

PartReader::PartReader(const QANT_FileStream& stream, const ColumnCut& cut,
                       const textwizard::NullTexts& nulls, const StandIns* standIns)
    : cut_(cut),
      standIns_(standIns),
      fixed_(cut.settings.arrangement == textwizard::kFixedColumns),
      rules_(cut.settings),
      stream_(stream),
      reader_(stream),
      decoder_(cut.settings.encoding),
      splitter_(rules_, textwizard::SplitUse::kReading, this),
      run_(kRunBytes),
      lineEnds_(kRunBytes / 64),
      fields_(cut.fields.size()),
      allImported_(ColumnsOf(cut) == cut.fields.size()),
      counters_(ColumnsOf(cut), nulls) {
  reader_.SeekBegin();
  reader_.HandleByteOrderMark();
  decodes_ = Decodes(reader_, cut.settings.encoding);
}

bool PartReader::Summarize(std::int64_t from, std::int64_t to, bool atStart, PartSummary* summary) {
  summary_ = summary;
  line_ = 1;
  const bool begins = atStart ? reader_.SeekTo(from) : SeekToLine(from, to, stream_, reader_);
  while (begins && reader_.position() < to) {
    // Whole lines that lie in the stretch; then one that may go on behind it.
    TakeRun(
        static_cast<std::size_t>(std::min<std::int64_t>(to - reader_.position() + 1, kRunBytes)));
    const std::int64_t position = reader_.position();
    if (position >= to || !reader_.Read(true)) break;
    TakeRaw(reader_.record());
    bytesRead_.fetch_add(reader_.position() - position, std::memory_order_relaxed);
  }
  summary->lines = line_ - 1;
  // Line ends may have been counted along, or not.
  for (const char text : {'\t', '\n', '\r'}) {
    summary->controls[static_cast<unsigned char>(text)] = 0;
  }
  summary->columns = counters_.Take();
  summary->filled = filled_.Take();
  return !reader_.failed() && !stream_.ReadFailed();
}

void PartReader::TakeRun(std::size_t room) {
  std::uint32_t count = 0;
  const std::size_t bytes = reader_.ReadRun(run_.data(), room, UINT32_MAX, &count);
  if (bytes == 0) return;
  bytesRead_.fetch_add(static_cast<std::int64_t>(bytes), std::memory_order_relaxed);
  TakeText({run_.data(), bytes});
}

// Whole lines as they stand in the file.
void PartReader::TakeText(std::string_view text) {
  constexpr textwizard::ByteSet kLineEnds = {{'\n', '\r'}, 2};
  const bool marked = !fixed_ && !decodes_ && splitter_.CutsByBytes(text);
  if (marked) {
    NoteControls(text);
    splitter_.SetByteText(text);
  }
  textwizard::MarkBytes(text, kLineEnds, lineEnds_.data());
  std::size_t begin = 0;
  for (std::size_t word = 0; 64 * word < text.size(); ++word) {
    for (std::uint64_t left = lineEnds_[word]; left != 0; left &= left - 1) {
      const std::size_t end = 64 * word + static_cast<std::size_t>(std::countr_zero(left));
      // The second half of CR LF.
      if (end == begin && end > 0 && text[end] == '\n' && text[end - 1] == '\r') {
        begin = end + 1;
        continue;
      }
      TakeLine(text.substr(begin, end - begin), marked);
      begin = end + 1;
    }
  }
}

// A line of a text that is marked already, or not.
inline void PartReader::TakeLine(std::string_view line, bool marked) {
  if (!marked) return TakeRaw(line);
  if (!line.empty()) {
    splitter_.SetRecordOfText(line);
    TakeDelimited(line);
  }
  PassLine(line);
}

// A line without its end, as it stands in the file.
void PartReader::TakeRaw(std::string_view raw) {
  const std::string_view record =
      raw.empty() || !decodes_ ? raw : decoder_.Decode(raw, reader_.mark());
  NoteControls(record);
  if (!raw.empty()) {
    if (fixed_) {
      TakeFixed(record);
    } else {
      splitter_.SetRecord(record);
      TakeDelimited(record);
    }
  }
  PassLine(record);
}

void PartReader::NoteControls(std::string_view text) {
  if (standIns_ == nullptr) return;
  hasControls_ = HoldsControl(text);
  if (hasControls_) CountControls(text, &summary_->controls);
}

// The record ends here. So do the lines whose ends were joined in it.
void PartReader::PassLine(std::string_view record) {
  ++line_;
  if (!hasControls_) return;
  char before = '\0';
  for (const char byte : record) {
    const bool isPair = byte == standIns_->lineFeed && before == standIns_->carriageReturn;
    const bool joins = byte == standIns_->lineFeed || byte == standIns_->carriageReturn;
    if (joins && !isPair) ++line_;
    before = byte;
  }
}

void PartReader::TakeDelimited(std::string_view record) {
  ++summary_->records;
  undecodable_ = false;
  const std::size_t count = fields_.size();
  std::size_t column = 0;
  for (std::size_t field = 0; field < count;) {
    const std::size_t cut = splitter_.Cut(fields_.data(), count - field);
    for (std::size_t i = 0; i < cut; ++i, ++field) {
      if (allImported_ || cut_.fields[field].imported) {
        counters_.Count(column++, fields_[i], line_);
      } else if (!fields_[i].empty()) {
        summary_->unexpected.Add(fields_[i], line_);
      }
    }
  }
  if (splitter_.offset() < record.size()) {
    const std::string_view rest = record.substr(splitter_.offset());
    const bool isData = std::any_of(rest.begin(), rest.end(), [this](char byte) {
      return byte != ' ' && !rules_.IsDelimiter(static_cast<unsigned char>(byte));
    });
    if (isData) summary_->surplus.Add(rest, line_);
  }
  if (undecodable_) summary_->undecodable.Add(record, line_);
}

void PartReader::TakeFixed(std::string_view record) {
  ++summary_->records;
  filled_.Add(record);
  std::size_t column = 0;
  for (const ColumnCut::Field& place : cut_.fields) {
    std::string_view field =
        record.size() < place.start ? std::string_view() : record.substr(place.start, place.width);
    if (cut_.padded) field.remove_suffix(field.size() - (field.find_last_not_of(' ') + 1));
    if (place.imported) counters_.Count(column++, field, line_);
  }
}

}  // namespace library
