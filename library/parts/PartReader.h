// Reads stretches of a data file and sums up what it sees.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>
#include <vector>

#include "HostFramework/FileStream.h"
#include "library/parts/FilledPlaces.h"
#include "library/parts/PartSummary.h"
#include "library/rewriting/StandIns.h"
#include "library/types/ColumnCounters.h"
#include "reading/FieldSplitter.h"
#include "reading/RecordDecoder.h"
#include "reading/RecordReader.h"
#include "watch/NullTexts.h"

namespace library {

// One thread. What it is made of outlives it.
class PartReader : private textwizard::UndecodableListener {
 public:
  // `stream` is the data file as the component sees it; `standIns` are those that it is shown with,
  // null where it is shown as it is.
  PartReader(const QANT_FileStream& stream, const ColumnCut& cut,
             const textwizard::NullTexts& nulls, const StandIns* standIns);

  // Reading stops when *stop is not 0: what was summed up then is of no use.
  void SetStop(const std::atomic<std::int32_t>* stop) { reader_.SetStop(stop); }
  // Adds the lines that begin at byte `from` or behind it, and before `to`, to `summary`, which is
  // that of no lines. When `from` is not the beginning of the data (`atStart`), the line that it
  // lies in belongs to the stretch before, unless it begins there. Costs the stretch's bytes and
  // the rest of its last line. False when the file cannot be read.
  bool Summarize(std::int64_t from, std::int64_t to, bool atStart, PartSummary* summary);

  // Bytes read so far, for whoever shows progress; any thread.
  std::int64_t bytesRead() const { return bytesRead_.load(std::memory_order_relaxed); }

 private:
  void OnUndecodable(const textwizard::UndecodableRun&) override { undecodable_ = true; }
  void TakeRun(std::size_t room);
  void TakeText(std::string_view text);
  void TakeLine(std::string_view line, bool marked);
  void TakeRaw(std::string_view raw);
  void TakeDelimited(std::string_view record);
  void TakeFixed(std::string_view record);
  void NoteControls(std::string_view text);
  void PassLine(std::string_view record);

  const ColumnCut& cut_;
  const StandIns* const standIns_;
  const bool fixed_;
  const textwizard::FieldRules rules_;
  // Looks for the first line.
  QANT_FileStream stream_;
  textwizard::RecordReader reader_;
  textwizard::RecordDecoder decoder_;
  textwizard::FieldSplitter splitter_;
  // Records are other bytes in the file than to the host.
  bool decodes_ = true;
  std::vector<char> run_;
  std::vector<std::uint64_t> lineEnds_;
  std::vector<std::string_view> fields_;
  const bool allImported_;
  ColumnCounters counters_;
  FilledPlaces filled_;
  PartSummary* summary_ = nullptr;
  // The line, within the stretch, that the record in hand begins in.
  std::int64_t line_ = 1;
  // The text in hand holds control characters, so that line ends may have been joined in it.
  bool hasControls_ = false;
  bool undecodable_ = false;
  std::atomic<std::int64_t> bytesRead_{0};
};

}  // namespace library
