// Cases as text, made where the cases are converted.
#pragma once

#include <cstddef>
#include <memory>

#include "library/outputs/ByteSink.h"
#include "library/outputs/CaseSink.h"
#include "library/outputs/CaseWriter.h"

namespace library {

class TextSink : public CaseSink {
 public:
  // Writes the header. `cells`: of a case. `out` outlives the sink.
  TextSink(std::unique_ptr<CaseWriter> writer, std::size_t cells, ByteSink& out);

  std::unique_ptr<CasePart> Make(const OBS* cases, std::size_t count,
                                 std::int64_t firstCase) const override;
  void Take(std::unique_ptr<CasePart> part) override;
  void Finish() override {}

 private:
  const std::unique_ptr<CaseWriter> writer_;
  const std::size_t cells_;
  ByteSink& out_;
};

}  // namespace library
