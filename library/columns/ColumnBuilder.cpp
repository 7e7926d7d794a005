#include "library/columns/ColumnBuilder.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "HostFramework/Text.h"
#include "library/columns/CellText.h"
#include "library/columns/NumberCells.h"
#include "library/columns/PaddedText.h"

namespace library {
namespace {

double NumberIn(const OBS* cell) { return std::bit_cast<double>(*cell); }

void CountMisfit(ColumnMisfits& misfits, std::size_t columns, const ColumnMisfit& misfit) {
  if (misfits.counts.empty()) misfits.counts.resize(columns);
  if (misfits.counts[misfit.column]++ == 0) misfits.first.push_back(misfit);
}

// The cases that are made into columns.
struct Cases {
  const OBS* first;
  std::size_t count;
  std::size_t cells;
  std::int64_t before;

  const OBS* CellAt(std::size_t row, const ColumnField& field) const {
    return first + row * cells + field.cell;
  }
};

// Cases of which all columns are built before the next ones: so many are in the nearest cache, from
// which each column takes its cells. A multiple of the bits in a word.
constexpr std::size_t kCasesAtOnce = 256;

// Of some cases, the first a multiple of kCasesAtOnce.
template <class Value, bool (*Convert)(double, Value*)>
void BuildNumbers(const Cases& cases, std::size_t begin, std::size_t end, std::size_t columns,
                  std::size_t number, const ColumnField& field, Column& column,
                  ColumnMisfits* misfits) {
  auto* const values = column.values.As<Value>();
  const OBS* cell = cases.CellAt(begin, field);
  for (std::size_t word = begin; word < end; word += 64) {
    const std::size_t wordEnd = std::min(end, word + 64);
    std::uint64_t present = 0;
    for (std::size_t i = word; i < wordEnd; ++i, cell += cases.cells) {
      const double value = NumberIn(cell);
      if (IsMissingNumber(value)) {
        values[i] = Value{};
      } else if (Convert(value, values + i)) {
        present |= std::uint64_t{1} << (i - word);
      } else {
        CountMisfit(*misfits, columns,
                    {cases.before + static_cast<std::int64_t>(i) + 1, number, value});
      }
    }
    const auto missing = static_cast<std::int64_t>(wordEnd - word) - std::popcount(present);
    if (missing != 0 && column.validity.empty()) {
      const std::size_t bytes = (cases.count + 7) / 8;
      std::memset(column.validity.Extend(bytes), 0xFF, bytes);
      // Bits behind the last case are 0.
      if (cases.count % 8 != 0) {
        column.validity.data()[bytes - 1] = static_cast<std::byte>((1U << (cases.count % 8)) - 1);
      }
    }
    if (missing != 0) {
      std::memcpy(column.validity.data() + word / 8, &present, (wordEnd - word + 7) / 8);
      column.missing += missing;
    }
  }
}

// Texts as UTF-8. Made where a text needs it first.
class TextConverter {
 public:
  std::string_view ToUtf8(std::string_view text) {
    if (converter_ == nullptr) converter_.reset(QANTMBConverterNew_A(nullptr));
    QANTMBCodePageToU8(converter_.get(), converted_, text);
    return converted_;
  }

 private:
  ConverterHandle converter_;
  std::string converted_;
};

// A text in a variable of at most so many bytes is copied with its padding, which is then left out
// again: where it ends is hard to foresee, and to find out first takes longer. In a wider variable
// padding may be most of it.
constexpr std::size_t kMostCopied = 128;

// The texts of some cases, of which the first `bytes` bytes are copied.
template <class Offset>
void CopyTexts(const Cases& cases, std::size_t begin, std::size_t end, const ColumnField& field,
               std::size_t bytes, TextConverter& converter, Column& column) {
  Buffer& texts = column.text;
  Offset* const ends = column.values.As<Offset>() + 1;
  const OBS* cell = cases.CellAt(begin, field);
  // For all at once: nobody looks after the end for every one.
  const auto roomFrom = [&](std::size_t row) {
    return reinterpret_cast<char*>(texts.Room((end - row) * CellRoom(bytes)));
  };
  char* out = roomFrom(begin);
  for (std::size_t i = begin; i < end; ++i, cell += cases.cells) {
    std::uint64_t seen = 0;
    const std::size_t length = CopyCells(reinterpret_cast<const char*>(cell->bytes), bytes, out,
                                         [&seen](std::uint64_t word) { seen |= word; });
    if (WordScan::HasNoAscii(seen) == 0) {
      out += length;
    } else {
      texts.LengthenTo(out);
      const std::string_view converted = converter.ToUtf8({out, length});
      texts.Append(converted.data(), converted.size());
      // It may be longer than it was: the texts behind it have their room still.
      out = roomFrom(i + 1);
    }
    ends[i] = static_cast<Offset>(out - texts.As<char>());
  }
  texts.LengthenTo(out);
}

template <class Offset>
void BuildTexts(const Cases& cases, std::size_t begin, std::size_t end, const ColumnField& field,
                TextConverter& converter, Column& column) {
  if (begin == 0) *column.values.As<Offset>() = 0;
  if (field.bytes <= kMostCopied) {
    CopyTexts<Offset>(cases, begin, end, field, field.bytes, converter, column);
    return;
  }
  for (std::size_t i = begin; i < end; ++i) {
    const std::size_t bytes = WithoutPadding(cases.CellAt(i, field), field.bytes).size();
    CopyTexts<Offset>(cases, i, i + 1, field, bytes, converter, column);
  }
}

// The column's values get their room.
void BeginColumn(const ColumnField& field, std::size_t cases, Column& column) {
  const bool texts = field.type == ColumnType::kUtf8 || field.type == ColumnType::kLargeUtf8;
  column.values.Extend((cases + (texts ? 1 : 0)) * ValueBytes(field.type));
}

}  // namespace

void MergeMisfits(const ColumnMisfits& from, ColumnMisfits& into) {
  if (from.counts.empty()) return;
  if (into.counts.empty()) into.counts.resize(from.counts.size());
  for (const ColumnMisfit& misfit : from.first) {
    if (into.counts[misfit.column] == 0) into.first.push_back(misfit);
  }
  for (std::size_t i = 0; i < from.counts.size(); ++i) into.counts[i] += from.counts[i];
}

ColumnBatch BuildColumns(const std::vector<ColumnField>& fields, const OBS* cases,
                         std::size_t count, std::size_t cells, std::int64_t firstCase,
                         ColumnMisfits* misfits, ColumnBatch batch) {
  batch.firstCase = firstCase;
  batch.cases = count;
  batch.columns.resize(fields.size());
  if (count == 0) return batch;
  TextConverter converter;
  const Cases source{cases, count, cells, firstCase};
  for (std::size_t i = 0; i < fields.size(); ++i) BeginColumn(fields[i], count, batch.columns[i]);
  for (std::size_t begin = 0; begin < count; begin += kCasesAtOnce) {
    const std::size_t end = std::min(count, begin + kCasesAtOnce);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const ColumnField& field = fields[i];
      Column& column = batch.columns[i];
      const auto numbers = [&]<class Value, bool (*Convert)(double, Value*)>() {
        BuildNumbers<Value, Convert>(source, begin, end, fields.size(), i, field, column, misfits);
      };
      switch (field.type) {
        case ColumnType::kFloat64:
          numbers.template operator()<double, CellFloat64>();
          break;
        case ColumnType::kInt64:
          numbers.template operator()<std::int64_t, CellInt64>();
          break;
        case ColumnType::kInt8:
          numbers.template operator()<std::int8_t, CellInt8>();
          break;
        case ColumnType::kDate32:
          numbers.template operator()<std::int32_t, CellDate32>();
          break;
        case ColumnType::kTimestampMicros:
          numbers.template operator()<std::int64_t, CellTimestamp>();
          break;
        case ColumnType::kDurationMicros:
          numbers.template operator()<std::int64_t, CellMicros>();
          break;
        case ColumnType::kUtf8:
          BuildTexts<std::int32_t>(source, begin, end, field, converter, column);
          break;
        case ColumnType::kLargeUtf8:
          BuildTexts<std::int64_t>(source, begin, end, field, converter, column);
          break;
      }
    }
  }
  return batch;
}

}  // namespace library
