// The data source of an import: the open file, the variables of the finished dictionary, the
// command's settings, and the index of case positions. Makes the iterators.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "HostFramework/DACAdapter.h"
#include "HostFramework/DataSource.h"
#include "HostFramework/FileStream.h"
#include "model/ImportSettings.h"
#include "model/TxtWzVar.h"

namespace textwizard {

class QANT_TextWizardSrc : public QANT_DataSource {
 public:
  // Opens `path` (host text). Throws the integer 2269 when it cannot be opened. `workerCount`:
  // conversion threads, below 1 for one per processor; `hostParameter` is only stored. The adapter
  // is not owned and may be null.
  QANT_TextWizardSrc(const char* path, int workerCount, int hostParameter, DACAdapterBase* adapter);
  ~QANT_TextWizardSrc() override;

  bool OpenFile(const char* path);
  // Throws the integer 2269 when the file cannot be opened again or there is no memory.
  QANT_InputCaseIterator* MakeIterator(OBS* obs) const override;
  // Cases of the longest pass that reached the end of the data; -1 before.
  long long RowCount() const override;
  // An iterator for type detection; `obs` may be null. Multi-threaded for one case per line unless
  // DISABLE_MULTI_THREAD_AUTO is "YES"; that one throws the integer 2269 when the file cannot be
  // opened again.
  virtual QANT_InputCaseIterator* MakeAutoDetectIterator(OBS* obs) const;

  // What the plan hands over while it executes; before any iterator but the detection's.
  void SetSettings(const ImportSettings& settings) { settings_ = settings; }
  void SetVariables(std::vector<std::unique_ptr<TxtWzVar>> variables) {
    variables_ = std::move(variables);
  }

  const ImportSettings& settings() const { return settings_; }
  // In file order, skipped ones included. Iterators set flags of the variables.
  const std::vector<std::unique_ptr<TxtWzVar>>& variables() const { return variables_; }
  DACAdapterBase* adapter() const { return adapter_; }
  int workerCount() const { return workerCount_; }
  int hostParameter() const { return hostParameter_; }
  // '.' or ',': the host's decimal character when the source was made.
  char decimalCharacter() const { return decimalCharacter_; }
  const QANT_FileStream& stream() const { return stream_; }
  QANT_SparseFileIndex& index() const { return *index_; }

  // A pass has reached the end of the data after `cases` cases: when no earlier pass found so many,
  // keeps the count and, when the command asked for it, writes the variable map to `monitor`.
  // Host's thread.
  void NotePassEnd(std::int64_t cases, ErrorMonitor* monitor) const;

 private:
  // Constant after construction and the plan's execution.
  DACAdapterBase* adapter_;
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

}  // namespace textwizard
