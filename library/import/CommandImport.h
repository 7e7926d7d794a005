// One command from its tokens to its cases.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/DataSource.h"
#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/data/CaseBuffer.h"
#include "library/import/ActiveSource.h"
#include "library/import/CaseReceiver.h"
#include "library/import/CaseSampler.h"
#include "library/import/ImportAdapter.h"
#include "library/import/ImportMessages.h"
#include "library/import/ImportStats.h"
#include "library/import/OriginalObserver.h"
#include "library/import/RestoringObserver.h"
#include "library/input/InputFiles.h"
#include "library/parts/PartedReading.h"
#include "library/report/ImportWatch.h"
#include "library/rewriting/RewritingOptions.h"
#include "library/rewriting/ShownFile.h"

namespace library {

struct ImportOptions {
  int workers = 0;               // conversion threads; below 1 for one per processor
  std::optional<unsigned> seed;  // makes the draw of IMPORTCASE PERCENT repeatable
  // Watches the import; outlives it. Null for none. Its owner prepares it before each reading.
  ImportWatch* watch = nullptr;
  // How the data file is shown to the component.
  RewritingOptions rewriting{};
  std::string shownMark{};             // a byte-order mark that the file lacks
  std::optional<StandIns> standIns{};  // where they are known; else the file is read for them
  // Opens data files and keeps them open; outlives the import. Null for its own.
  InputFiles* files = nullptr;
  // The data file is in this encoding and read as UTF-8; empty: as the command says.
  std::string transcoding{};
  // Where its columns are padded (ColumnPadder), as UTF-8; empty: nowhere.
  std::vector<std::int64_t> paddedAt{};
  // Cases are read part after part, or those of one part alone.
  PartOptions parts{};
};

enum class ImportEnd {
  kDone,
  kFailed,       // an error message was posted
  kInterrupted,  // by the user (the host's attention)
  kStopped,      // by the receiver of the cases
};

// Runs a command and reads its cases. The host's settings (code page, decimal character) are made
// before and stay while it lives; several may live at the same time. One thread at a time. Nothing
// is thrown: what goes wrong is a message.
class CommandImport : private ImportMessages {
 public:
  // `messages` gets what is posted and outlives this object.
  CommandImport(const ImportOptions& options, ImportMessages& messages);
  ~CommandImport() override;
  CommandImport(const CommandImport&) = delete;
  CommandImport& operator=(const CommandImport&) = delete;

  // Runs the command of these tokens (those behind GET DATA /TYPE=TXT /) until its dictionary is
  // made. Once. Done, failed or interrupted.
  ImportEnd Open(std::vector<embedded::CommandToken> tokens);
  // The command keeps a share of its cases (IMPORTCASE PERCENT); after Open has done.
  bool isSampled() const { return source_->sampleFraction().has_value(); }
  // The data source; after Open has done.
  const textwizard::ImportSource& source() const { return *source_->get(); }

  // After Open, of the data file that the command names: what would help with one that is no text,
  // and what should be known of one that hardly is (ImportAdapter). Mostly empty.
  std::string fileWayOut() const { return adapter_ ? adapter_->fileWayOut() : std::string(); }
  std::string fileAdvice() const { return adapter_ ? adapter_->fileAdvice() : std::string(); }

  // The data file itself, after Open has done: its bytes where the component reads a copy of it,
  // else null; and how it writes line ends.
  struct DataFile {
    ByteSource* bytes = nullptr;
    LineEndBytes lineEnds{};
  };
  DataFile dataFile() const;

  // Why the cases are read as one part though there are several: a sentence (UTF-8); else empty.
  // Once cases are read.
  std::string uncut() const { return parted_ ? parted_->uncut() : std::string(); }

  // Reads the cases that are left, up to the end of the data or to where the receiver stops; from
  // there the next call reads on. The first call begins.
  ImportEnd Read(CaseReceiver& receiver);

  // Reads all cases once more, for the watch alone, which there must be, and drops what is posted
  // but for errors: in blocks of `blockBytes` bytes unless that is 0. After Read has done.
  ImportEnd ReadAgain(std::size_t blockBytes);

  // Gives up the reading, so that the next Read begins with the first case again. After Open has
  // done.
  void Restart();

  // Nothing is left to be read: the data ended, or the import failed or was interrupted.
  bool finished() const { return finished_; }
  // Cases that were read so far, those that a sample leaves out included.
  long long casesRead() const { return casesRead_; }

  // So far, without readings again. Reading counts as a whole: who measures writing takes it off.
  const ImportStats& stats() const { return stats_; }

 private:
  // Counts errors on the way to the messages.
  void Post(std::string_view hostText, int kind) override;
  void PostError(std::string_view text) { Post(text, kMessageError); }
  std::optional<QuoteAnchor> KnownQuotes() const;
  bool ShowFile(const std::vector<embedded::CommandToken>& tokens);
  bool StartReading(CaseReceiver& receiver);
  bool MakeIterator();
  bool NextCase();
  // True at the end of the data, false where the receiver or the user stopped before.
  bool ReadOn(CaseReceiver& receiver);
  bool ReadBatches(CaseReceiver& receiver);
  void ReadAllAgain();
  bool ReadPassAgain(ErrorMonitor& monitor);
  // Whether the command keeps the case in the buffer; tells the watch.
  bool KeepsCase();
  void EndReading();

  const ImportOptions options_;
  ImportMessages& messages_;
  long long errors_ = 0;
  QantErrorMonitor monitor_;
  ImportStats stats_;
  // Each uses those before it.
  InputFiles ownFiles_;
  InputFiles& files_;
  std::unique_ptr<OriginalObserver> original_;    // null: what is opened is the file
  std::unique_ptr<ShownFile> shown_;              // null: what is opened, as it is
  std::unique_ptr<RestoringObserver> restoring_;  // where something is to be put right
  std::unique_ptr<PartedReading> parted_;         // null: all cases in one go
  std::unique_ptr<ImportAdapter> adapter_;
  std::optional<ActiveSource> source_;
  unsigned seed_ = 0;
  std::optional<CaseSampler> sampler_;
  std::unique_ptr<embedded::CaseBuffer> buffer_;
  std::unique_ptr<ErrorMonitor> partMonitor_;
  std::unique_ptr<QANT_InputCaseIterator> iterator_;
  int threadsBefore_ = 0;
  long long casesRead_ = 0;
  bool finished_ = false;
};

}  // namespace library
