// The data source of an import: the open file, the variables of the finished dictionary, the
// command's settings, and the index of case positions. Makes the iterators.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "reading/ImportSource.h"

namespace textwizard {

class QANT_TextWizardSrc : public ImportSource {
 public:
  // Opens `path` (host text). Throws the integer 2269 when it cannot be opened. `workerCount`:
  // conversion threads, below 1 for one per processor; `hostParameter` is only stored. The adapter
  // is not owned and may be null.
  QANT_TextWizardSrc(const char* path, int workerCount, int hostParameter, DACAdapterBase* adapter);
  ~QANT_TextWizardSrc() override;

  bool OpenFile(const char* path);
  QANT_InputCaseIterator* MakeIterator(OBS* obs) const override;
  // Cases of the longest pass that reached the end of the data; -1 before.
  long long RowCount() const override;
  // Multi-threaded for one case per line unless DISABLE_MULTI_THREAD_AUTO is "YES".
  QANT_InputCaseIterator* MakeAutoDetectIterator(OBS* obs) const override;
  // The same setting, or a host that wants one thread, keeps the detection of fixed columns on it.
  bool DetectsOnOneThread() const;
  // Null for an arrangement that workers cannot convert, and where none can be started.
  std::unique_ptr<CaseFeed> MakeCaseFeed(QANT_InputCaseIterator& iterator) const override;

  // What the plan hands over while it executes; before any iterator but the detection's.
  void SetSettings(const ImportSettings& settings);
  void SetVariables(std::vector<std::unique_ptr<TxtWzVar>> variables) {
    variables_ = std::move(variables);
  }

  const ImportSettings& settings() const override { return settings_; }
  const std::vector<std::unique_ptr<TxtWzVar>>& variables() const override { return variables_; }
  DACAdapterBase* adapter() const override { return adapter_; }
  int workerCount() const override { return workerCount_; }
  int hostParameter() const { return hostParameter_; }
  char decimalCharacter() const override { return decimalCharacter_; }
  const QANT_FileStream& stream() const override { return stream_; }
  ImportObserver* observer() const override { return observer_; }
  QANT_SparseFileIndex& index() const override { return *index_; }
  void NotePassEnd(std::int64_t cases, ErrorMonitor* monitor) const override;

 private:
  // Constant after construction and the plan's execution.
  DACAdapterBase* adapter_;
  ImportObserver* observer_;
  ImportSettings settings_;
  std::vector<std::unique_ptr<TxtWzVar>> variables_;
  int workerCount_;
  int hostParameter_;
  char decimalCharacter_;
  QANT_FileStream stream_;
  // Synchronises itself.
  std::unique_ptr<QANT_SparseFileIndex> index_;
  // Host's thread only.
  mutable std::int64_t highestCaseCount_ = -1;
};

// The report of the variable map, of a source known by its class.
void EmitMapOutput(ErrorMonitor* monitor, const QANT_TextWizardSrc& source);

}  // namespace textwizard
