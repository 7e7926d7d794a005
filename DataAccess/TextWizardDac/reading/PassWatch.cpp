#include "reading/PassWatch.h"

#include <algorithm>
#include <cstring>

namespace textwizard {
namespace {

// Memory and number of the cases that are gathered.
constexpr std::size_t kGatheredBytes = std::size_t{1} << 20;
constexpr std::size_t kGatheredCases = 4096;

}  // namespace

PassWatch::PassWatch(ImportObserver& observer, const ImportSource& source, FieldSplitter& fields,
                     RecordReader& reader)
    : reader_(reader),
      batch_(source.GetNVariables()),
      cases_(observer, source, fields),
      teller_(observer, source.GetNVariables(), source.settings().arrangement == kFixedColumns) {
  reader.KeepNuls(&nuls_);
  cases_.StartBatch(batch_, false);
}

PassWatch::~PassWatch() {
  Leave();
  reader_.KeepNuls(nullptr);
}

void PassWatch::Leave() { teller_.End(false, -1, reader_.fileBytes()); }

void PassWatch::StartBatch() {
  batch_.Clear(!teller_.limitReached());
  cases_.StartBatch(batch_, false);
}

void PassWatch::Deliver(std::uint32_t cases, std::int64_t firstCase) {
  if (!teller_.telling()) return;
  teller_.StartBatch(batch_, firstCase);
  teller_.TellCases(cases);
  teller_.EndBatch();
}

void PassWatch::End(bool complete, bool dataEnded) {
  teller_.End(complete, dataEnded ? reader_.position() : -1, reader_.fileBytes());
}

WatchedRecord PassWatch::Record(std::string_view text) const {
  return {reader_.record(), text,         reader_.mark(),
          reader_.place(),  nuls_.data(), nuls_.data() + nuls_.size()};
}

CaseGatherer::CaseGatherer(ImportObserver& observer, std::size_t caseBytes)
    : observer_(observer),
      cells_(caseBytes / sizeof(OBS)),
      most_(static_cast<std::uint32_t>(std::clamp<std::size_t>(
          kGatheredBytes / std::max<std::size_t>(caseBytes, 1), 1, kGatheredCases))) {
  cases_.reset(new OBS[most_ * cells_]);
}

void CaseGatherer::Add(const OBS* obs) {
  std::memcpy(cases_.get() + count_ * cells_, obs, cells_ * sizeof(OBS));
  ++count_;
}

void CaseGatherer::Deliver(std::int64_t firstCase) const {
  observer_.OnProduct(observer_.MakeProduct(cases_.get(), count_, firstCase), cases_.get(), count_,
                      firstCase);
}

}  // namespace textwizard
