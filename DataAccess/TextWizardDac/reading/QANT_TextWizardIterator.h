// The single-thread iterator: reads the records of one case after another, cuts them into fields
// and converts those into the case buffer. Dictionary building drives its record and field
// operations on the file's own text.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/DataSource.h"
#include "model/TxtWzVar.h"
#include "model/UndecodableWarnings.h"
#include "reading/CaseFeed.h"
#include "reading/DecimalCharacterPin.h"
#include "reading/FieldSplitter.h"
#include "reading/FixedFields.h"
#include "reading/PassWatch.h"
#include "reading/RecordDecoder.h"
#include "reading/RecordReader.h"

namespace textwizard {

class ImportSource;

// Returned by the buffer readers in place of a record after the last one.
inline constexpr std::string_view kEndOfDataText = "%_%_EOF_%_%";

// One thread at a time. Reads through its own copy of the source's stream. While it lives, the
// process's decimal character is the source's; the destructor puts back what it found.
class QANT_TextWizardIterator : public QANT_InputCaseIterator, private UndecodableListener {
 public:
  // The source is executed already and outlives the iterator. `obs` may be null: then no value is
  // ever stored. Never throws for the file: see readFailed.
  QANT_TextWizardIterator(const ImportSource& source, OBS* obs);
  ~QANT_TextWizardIterator() override;

  // Lets the source's threads read ahead for it (ImportSource::MakeCaseFeed) from the first Next on
  // until cases are wanted out of order. What is delivered and told is the same. Before Next.
  void UseFeed() { mayUseFeed_ = true; }

  // False when the host takes cases by the batch.
  bool IsSeekOK() override { return !gatherer_; }
  // No file access happens before Next.
  bool Seek(long long n) override;
  long long Tell() const override { return currentCase_; }
  bool Next() override;
  void Commit() override {}

  // The file could not be read on, or memory ran out; Next posts the error before it ends the data.
  bool readFailed() const { return outOfMemory_ || reader_.failed(); }

  // Records. The record is host text, without its line end.
  bool SeekBegin();
  void HandleByteOrderMark() { reader_.HandleByteOrderMark(); }
  // Reads the lines before the first case.
  void SkipStartingLines();
  // Reads an 8-bit record; false at the end of the data with nothing read. Empty records are
  // skipped unless `keepEmpty`.
  bool GetRecord(bool keepEmpty);
  // The same of a UTF-16 file.
  bool GetRecord16(bool keepEmpty);
  // The record read last, valid until the next one is read.
  std::string_view record() const { return record_; }

  // Characters that cut. SetWideDelimiters is for between records; see FieldRules.
  int SetWideDelimiters(const char* delimiters);
  bool IsDelimiter(int ch) const { return rules_.IsDelimiter(static_cast<std::uint32_t>(ch)); }
  bool IsQualifier(int ch) const { return rules_.IsQualifier(static_cast<std::uint32_t>(ch)); }

  // Cuts the next field of record() at `cursor`, which lies in it, and moves the cursor behind the
  // field and its delimiter. False, with an empty field, when the record was used up before.
  bool GetNextVar(std::string& field, const char*& cursor);
  // The same without a copy, at the record's own cursor: the field is valid until the next cut or
  // record.
  bool NextField(std::string_view& field) { return fields_.Next(field); }
  // Of a record from NextLine that is used up: a delimiter ended its last field.
  bool EndsInDelimiter() const { return fields_.EndsInDelimiter(); }
  // The same of a record that the caller keeps unchanged while it walks it. A blank at the start of
  // a field is held with MULTIPLESPACES only.
  bool GetNextVar(std::string& field, const char*& cursor, const std::string& record);
  // The text of a variable of fixed columns; false, and empty, when the record ends before it.
  bool GetVarBuffer(std::string& field, const TxtWzVar* variable, const std::string& record) const;

  // Read one case into the case buffer; false when none could be started.
  bool ProcessDlmLines();
  bool ProcessDlmCount();
  bool ProcessFixedLines();
  // Read the text of one case for dictionary building; kEndOfDataText at the end of the data. Of
  // lines a copy is for a host that keeps it: detection asks NextLine.
  std::string ProcessDlmLinesBuffer();
  // The same text, valid until the next record is read.
  std::string_view NextLine();
  // The same of the lines of a case of fixed columns.
  std::string_view NextFixedLines();
  std::string ProcessDlmCountBuffer();
  std::string ProcessFixedLinesBuffer();

  // Physical line, from 1, where the latest of these texts begins.
  std::int64_t textLine() const { return textLine_; }

  // Stores a field in column `column` (counted over the imported variables). Always true: a field
  // that is no value is stored as missing, and the variable's flag tells.
  bool ConvertVar(std::string_view field, TxtWzVar* variable, unsigned column);

  // Whether the case limit lets a further case be read.
  bool MoreCases() const;
  // The rule of a random share of the cases, for callers that want it; Next delivers every case.
  bool SampleCase();
  // Advances the case counters as Next does, but reads no case: for callers of the buffer readers.
  bool NextBuffer();
  // Sends one line to the log of the iterator's own monitor.
  void ReportLogMessage(const std::string& text);

 private:
  // An imported variable and its column. The variables belong to the source; reading sets their
  // flags.
  struct Column {
    TxtWzVar* variable;
    unsigned number;
    // In the source's list of variables.
    std::uint32_t position;
    // Bytes of a string's cells.
    std::size_t width;
    // Fixed columns: the record of the case, and where in it.
    std::uint32_t line;
    FixedColumn place;
  };
  // What reads one case after another (CaseReading.h) asks for.
  struct CaseEngine;
  // Bytes of text that a string may have and lose none.
  std::size_t StringRoom(const TxtWzVar& variable, unsigned column) const;

  void OnUndecodable(const UndecodableRun& run) override;
  bool ReadRecord(bool keepEmpty) {
    const bool found = reader_.isUtf16() ? GetRecord16(keepEmpty) : GetRecord(keepEmpty);
    if (watch_ && found && settings_.arrangement != kDelimitedLines) {
      watch_->cases().TakeRecord(watch_->Record(record_));
    }
    return found;
  }
  void TakeRecord(std::string_view record);
  // Forgets the record and how far its fields were cut.
  void DropRecord();
  // Moves to the case that is wanted, or to one before it: to the start of the data, or where the
  // index knows a case.
  void Position();
  // Delivers the case that is wanted, or ends the data. Throws when memory runs out.
  bool ReadOn();
  void StartFeed();
  // The next case of feed_, or the end of the data.
  bool NextOfFeed();
  // Another case than the next one is wanted; true when it is there already.
  bool LeaveFeed();
  // Delivers the batch that follows, or ends the data. Throws when memory runs out.
  bool ReadBatch();
  bool EndOfData();
  bool ReadCase();
  // Reads and stores a field, and tells who watches.
  // The record's fields, for a host that does not watch.
  void ConvertLine();
  void ConvertField(std::string_view field, const Column& column);
  void ConvertColumn(std::string_view field, const Column& column);
  void StoreMissing(const Column& column, TxtWzVar* flagged);

  const ImportSource& source_;
  const ImportSettings& settings_;
  QANT_SparseFileIndex& index_;
  const DecimalCharacterPin decimalCharacter_;
  FieldRules rules_;
  RecordReader reader_;
  RecordDecoder decoder_;
  // Of record(), and of a record that the caller supplies.
  FieldSplitter fields_;
  std::array<std::string_view, 64> cut_;
  FieldSplitter suppliedFields_;
  // In file order, skipped variables too; those have no column.
  std::vector<Column> columns_;
  // Fixed columns: imported variables by line of the case, in file order within a line.
  std::vector<Column> lineColumns_;
  // By column; 0 for numbers.
  std::vector<std::size_t> stringRooms_;
  UndecodableWarnings undecodableWarnings_;

  // Null when nobody watches.
  std::unique_ptr<PassWatch> watch_;
  std::unique_ptr<CaseGatherer> gatherer_;
  // Null when cases are read here.
  std::unique_ptr<CaseFeed> feed_;
  // Fixed columns: imported variables on lines that no case has.
  std::int64_t unreachable_ = 0;

  std::string_view record_;
  std::string_view suppliedRecord_;
  std::int64_t textLine_ = 0;
  std::string linesText_;
  std::int64_t currentCase_ = 0;
  std::int64_t requestedCase_ = 0;
  // Cleared when the values of all lines are used up (a fixed number of values per case).
  bool moreData_ = true;
  // Next has returned false since the latest repositioning.
  bool ended_ = false;
  bool outOfMemory_ = false;
  // Behind the batch delivered last are no more cases; or there was no memory for them.
  bool batchesEnded_ = false;
  bool batchesFailed_ = false;
  bool randomSeeded_ = false;
  bool mayUseFeed_ = false;
};

}  // namespace textwizard
