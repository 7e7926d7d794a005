// An import as a consumer of columns has it: opened once, its cases pulled by batches, as often as
// wanted.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "library/capi/Failure.h"
#include "library/capi/ImportRecipe.h"
#include "library/capi/PlacedFile.h"
#include "library/capi/ProblemColumns.h"
#include "library/command/CommandOutline.h"
#include "library/import/BareImport.h"
#include "library/import/CommandImport.h"
#include "library/import/HostSettings.h"
#include "library/import/UndecodableWarnings.h"
#include "library/outputs/CasesFile.h"
#include "library/outputs/ColumnSink.h"
#include "library/outputs/Misfits.h"
#include "library/outputs/Utf8Converter.h"
#include "library/parts/PartOptions.h"
#include "library/parts/SummaryFile.h"
#include "library/report/Digest.h"
#include "library/report/ImportWatch.h"
#include "library/report/ProblemRows.h"

namespace library {

struct SessionOptions {
  HostSettings host;
  int workers = 0;
  std::vector<std::string> nullTexts = DefaultNullTexts();  // UTF-8
  RewritingOptions rewriting{};
  // Of a command: how the data file is shown and converted (ImportOptions).
  std::string shownMark{};
  std::string transcoding{};
  std::vector<std::int64_t> paddedAt{};
  std::int64_t problemLimit = 0;
  bool digest = true;
  bool strict = false;
  bool namesAsVariables = false;
  // Whether numbers are whole: of a command those whose format has no decimals; of a file those
  // that all its values say it of.
  bool integersOfCommand = false;
  bool integersOfFile = true;
  // Each may be empty. A message (UTF-8) and its kind; cases, and bytes so far and in all (-1 where
  // unknown): true goes on.
  std::function<void(int, const std::string&)> message;
  std::function<bool(std::int64_t, std::int64_t, std::int64_t)> progress;
  // One part of the data file alone.
  std::optional<PartOptions::Single> part = std::nullopt;
};

// What an import of a bare file was found from, beside the file: the merged summary of its parts,
// where there is one.
struct BareSource {
  std::string path;
  const FilePartSummary* summary = nullptr;
};

// Every operation throws Failure and std::bad_alloc. The operations of one object wait for one
// another, whatever threads call them; Cancel waits for none.
class ImportSession : private ImportMessages, private CaseReceiver {
 public:
  // Runs the one command of `text` (UTF-8) until its dictionary is made.
  ImportSession(std::string text, SessionOptions options);
  // Understands a bare file, and runs the command that this makes. The settings' null texts,
  // threads and progress are those of the options.
  ImportSession(const BareSource& source, BareImportSettings settings, SessionOptions options);
  // Runs the command of a recipe, whose settings replace those of the options.
  ImportSession(const ImportRecipe& recipe, SessionOptions options);
  ~ImportSession() override;
  ImportSession(const ImportSession&) = delete;
  ImportSession& operator=(const ImportSession&) = delete;

  const std::vector<ColumnField>& fields() const { return fields_; }
  // The command's text (UTF-8).
  const std::string& command() const { return text_; }
  // JSON: how a bare file was read; empty for a command.
  const std::string& reading() const { return reading_; }
  // What makes another session as this one, but for the part.
  const ImportRecipe& recipe() const { return recipe_; }

  // Begins a pass over the cases, which ends the one before. Its number.
  std::uint64_t BeginPass();
  // The next batch of the pass; false when there is none. A pass that failed fails again.
  bool Next(std::uint64_t pass, ColumnBatch* batch);
  // Gives up the pass where it is; nothing where another one began.
  void EndPass(std::uint64_t pass);
  // A pass that writes all cases to a file, in place of batches. What is not complete leaves no
  // file.
  void WriteCases(const std::string& target, CaseFormat format, ArrowBody arrowBody);
  // What the latest pass failed with; nothing where it did not.
  std::optional<Failure> PassFailure();
  // Ends the import: from now on there are no cases.
  void Close();
  // Stops the pass that runs, or the next one, at its next check. Any thread.
  void Cancel() { cancelled_ = true; }

  // Problems of the latest pass.
  std::vector<std::shared_ptr<const ColumnBatch>> Problems();
  // JSON. The ledger and the digest are empty before a pass ended.
  std::string Dictionary();
  std::string Ledger();
  std::string Digest();

 private:
  void Open(ImportOptions settings);
  // What cases are delivered as: the file's, or those of the data set that it is one of.
  const QANT_DataSource& source() const {
    return placed_ ? placed_->source() : static_cast<const QANT_DataSource&>(import_->source());
  }
  BareImport Understand(const BareSource& source, BareImportSettings settings);
  // What of the recipe is known once the import is open, which was opened with `opened`.
  void CompleteRecipe(const ImportOptions& opened);
  // That the file is not as it was when the recipe was made; nothing where it is.
  std::optional<Failure> Changed() const;
  std::string EvidenceOf(std::size_t variable) const;
  // Ends the pass before.
  void PreparePass();
  // A pass begins whose cases go to `sink`.
  void StartPass(CaseSink& sink, std::function<void(const ProblemRow&)> problem);
  std::vector<Misfit> PassMisfits() const;
  [[noreturn]] void FailOpen(const embedded::ParsedCommand& command);
  void ReadOn();
  void FinishFile();
  // The pass has ended: `failure` is what the next call for a batch says; null where all is well.
  void Conclude(std::optional<Failure> failure);
  // What makes a pass fail that was read to its end.
  std::optional<Failure> Objection() const;
  Failure Cancelled();
  // Of the errors that were posted, the last of which is completed.
  Failure FailureOf(const std::string& completion) const;
  void CheckOpen() const;
  void UseHost();
  void Tell(int kind, const std::string& text);
  bool TellProgress(std::int64_t cases);
  // Of a file that is understood or decompressed.
  void CountBytes(std::int64_t bytes, std::int64_t all);
  struct Progress {
    std::int64_t cases = 0;
    std::int64_t bytes = -1;
    std::int64_t allBytes = -1;
  };
  // False where it shall end.
  bool Tell(const Progress& progress);
  // Tells what was told before: a caller that wants to stop is asked also while nothing goes on, as
  // when a pipe is waited for.
  void LookAround();

  void Post(std::string_view hostText, int kind) override;
  void Take(const OBS* /*obs*/) override {}
  bool GoesOn(long long taken) override;

  std::string text_;
  std::string reading_;
  ImportRecipe recipe_;
  bool checksState_ = false;  // the recipe is another session's
  SessionOptions options_;
  std::recursive_mutex mutex_;
  std::atomic<bool> cancelled_{false};
  Progress told_;  // by the thread that opens or reads

  // Guarded by mutex_. Each uses those before it.
  std::unique_ptr<HostUse> use_;  // null while nothing is read
  InputFiles files_;
  std::string hostText_;  // the command in the host's encoding
  CommandOutline outline_;
  std::optional<Utf8Converter> utf8_;
  std::vector<std::string> errors_;  // UTF-8
  UndecodableWarnings undecodable_;
  std::optional<ImportWatch> watch_;
  std::unique_ptr<CommandImport> import_;  // null once it was closed
  std::unique_ptr<PlacedFile> placed_;     // the file is one of several
  CasesFileOptions columnOptions_;
  std::vector<ColumnField> fields_;
  ReportVariables variables_;
  // JSON, of a bare file's variables.
  std::vector<std::string> evidence_;

  // Of the pass.
  std::uint64_t pass_ = 0;
  bool isReading_ = false;
  std::optional<Failure> failure_;
  // One of the two takes the cases.
  std::unique_ptr<ColumnSink> columns_;
  std::unique_ptr<CasesFile> file_;
  CaseSink* sink_ = nullptr;
  std::optional<DigestSink> digest_;
  ProblemColumns problems_;
  std::optional<ProblemRowSink> problemSink_;
  std::deque<ColumnBatch> ready_;
  std::optional<PassAccount> account_;  // of the latest pass that ended
};

}  // namespace library
