// Cases as text, made where the cases are converted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "HostFramework/Threads.h"
#include "library/outputs/ByteSink.h"
#include "library/outputs/CaseSink.h"
#include "library/outputs/CaseWriter.h"

namespace library {

class TextSink : public CaseSink {
 public:
  // Writes the header. `cells`: of a case. `out` outlives the sink.
  TextSink(std::unique_ptr<CaseWriter> writer, std::size_t cells, ByteSink& out);
  ~TextSink() override;

  std::unique_ptr<CasePart> Make(const OBS* cases, std::size_t count,
                                 std::int64_t firstCase) const override;
  void Take(std::unique_ptr<CasePart> part) override;
  void Finish() override {}

 private:
  class Part;

  const std::unique_ptr<CaseWriter> writer_;
  const std::size_t cells_;
  ByteSink& out_;
  mutable sfMutex mutex_;
  // Those that no batch needs now.
  mutable std::vector<std::unique_ptr<Part>> idle_ SF_GUARDED_BY(mutex_);
};

}  // namespace library
