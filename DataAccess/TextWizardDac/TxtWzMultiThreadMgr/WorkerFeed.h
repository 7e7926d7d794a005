// The cases that the workers make for an iterator of one thread.
#pragma once

#include <cstdint>

#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedManager.h"
#include "reading/CaseFeed.h"

namespace textwizard {

class WorkerFeed final : public CaseFeed {
 public:
  // Starts the threads. The source has an arrangement that WorkerPlan::Converts, the iterator a
  // case buffer; both outlive it. Throws only when memory runs out.
  WorkerFeed(const ImportSource& source, QANT_InputCaseIterator& iterator)
      : manager_(source, iterator, false, source.decimalCharacter(), true) {
    manager_.Start();
  }

  // False when there was no thread or no copy of the stream for it.
  bool started() const { return !manager_.failed(); }

  bool Next() override {
    manager_.Seek(manager_.Tell());
    return manager_.Next();
  }
  std::int64_t caseCount() const override { return manager_.Tell(); }
  std::int64_t recordPosition() const override { return manager_.recordPosition(); }
  void EndTelling() override { manager_.LeaveTelling(); }

 private:
  QANT_TextWizardMultiThreadedManager manager_;
};

}  // namespace textwizard
