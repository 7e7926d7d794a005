// Tells a host that watches an import of its file what it would be told of that file itself, where
// the component was shown another.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "library/report/ForwardingObserver.h"
#include "library/rewriting/ShownFile.h"
#include "library/rewriting/StandIns.h"

namespace library {

// Stands between the component and the host's observer: lines and offsets are those of the file,
// texts and the strings of cases are its own. Threads as those of ImportObserver.
class RestoringObserver final : public ForwardingObserver {
 public:
  // `observer` may be null. Both outlive this object.
  RestoringObserver(ImportObserver* observer, const ShownFile& file, bool keepStrayQualifiers);

  // The source whose cases come; before the first iterator is made.
  void SetSource(const QANT_DataSource& source);
  // Puts the values of cases right that came one by one.
  void Restore(OBS* obs) const {
    if (cases_) cases_->Restore(obs, 1);
  }

  bool KeepsStrayQualifiers() const override;

  void OnEvidence(std::size_t variable, const ImportEvidence& evidence) override;
  void OnPassBegin() override;
  void OnProblem(const ImportProblem& problem) override;
  void OnProblemCase(const ImportCaseSpan& span) override;
  void OnSpan(const ImportSpan& span) override;
  void OnPassEnd(const ImportPassEnd& end) override;
  std::unique_ptr<ImportBatchProduct> MakeProduct(const OBS* cases, std::size_t count,
                                                  std::int64_t firstCase) override;

 private:
  void Restore(ImportWitness* witness);

  const ShownFile& file_;
  const bool keepStrayQualifiers_;
  // Where characters were replaced.
  std::optional<TextRestorer> texts_;
  std::optional<CaseRestorer> cases_;
  std::string room_;
  // Where the pass begins in what is shown, once it is known; negative before.
  std::int64_t begin_ = -1;
};

}  // namespace library
