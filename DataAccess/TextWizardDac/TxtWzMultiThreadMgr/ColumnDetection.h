// Type detection of fixed columns on workers, with the very results of one thread that counts one
// record after another (detection/SamplingPass.h).
//
// Workers count batches from the latest states that are known on. Here they are added up in the
// order of the file: a column whose state at a batch's begin is another one than the worker
// supposed is counted again.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "HostFramework/Messages.h"
#include "TxtWzMultiThreadMgr/CaseBatch.h"
#include "TxtWzMultiThreadMgr/ColumnCounter.h"
#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedManager.h"
#include "TxtWzMultiThreadMgr/RecordBatch.h"
#include "detection/DetectionEvidence.h"
#include "model/TxtWzVar.h"
#include "reading/ImportSource.h"

namespace textwizard {

// Runs once, on the host's thread. What it is given outlives it.
class ColumnDetection {
 public:
  // kFailed: the variables and the evidence are as they were, and another pass has to find out why.
  enum class Outcome { kDone, kInterrupted, kFailed };

  // Whether the import's columns can be detected so: of one record each case, all of them looked
  // at.
  static bool Detects(const ImportSource& source);

  // Progress goes to `monitor`. `evidence`: one for each slot, null when nobody wants them. Throws
  // only when memory runs out.
  ColumnDetection(const ImportSource& source, QANT_InputCaseIterator& iterator,
                  const std::vector<TxtWzVar*>& slots, ErrorMonitor& monitor,
                  DetectionEvidence* evidence);

  // Throws when memory runs out.
  Outcome Run();
  // Columns of batches that were counted again.
  std::int64_t recounted() const { return fRecounted; }
  // For tests, before Run: what the workers suppose until a batch has been added up, a state for
  // each AUTO variable.
  void Suppose(const std::vector<SamplingState>& states) { fKnown.Set(states); }

 private:
  bool Take(const CaseBatch& batch, const RecordBatch& records);
  bool ReportProgress(std::int64_t records);

  const std::vector<TxtWzVar*>& fSlots;
  ErrorMonitor& fMonitor;
  DetectionEvidence* const fEvidence;
  KnownStates fKnown;
  QANT_TextWizardMultiThreadedManager fManager;
  // Made when a column is counted again.
  std::unique_ptr<ColumnCounter> fCounter;

  // Of the columns, in the order of the plan's detectedColumns: what has been added up.
  std::vector<TxtWzVar> fCounters;
  std::vector<DetectionEvidence> fAdded;
  std::vector<SamplingState> fStates;
  CaseBatch fAgain;
  std::vector<std::uint32_t> fOthers;
  std::int64_t fRecords = 0;
  std::int64_t fLines = 0;
  std::int64_t fRecounted = 0;
  bool fInterrupted = false;
};

}  // namespace textwizard
