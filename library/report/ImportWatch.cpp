#include "library/report/ImportWatch.h"

#include <chrono>
#include <limits>

#include "HostFramework/Text.h"

namespace library {
namespace {

// Cells of kept cases that go to the sinks together, at least; they stay in the nearer caches.
constexpr std::size_t kGatheredCells = 16384;

// What the sinks made of a batch.
class Products : public ImportBatchProduct {
 public:
  std::vector<std::unique_ptr<CasePart>> parts;
};

}  // namespace

const std::vector<std::string>& DefaultNullTexts() {
  static const std::vector<std::string> texts = {"NA",  "N/A", "NULL", "null",
                                                 "NaN", "nan", ".",    "-"};
  return texts;
}

std::vector<std::string> HostTexts(const std::vector<std::string>& utf8) {
  if (qUTF8mode()) return utf8;
  std::vector<std::string> texts;
  for (const std::string& text : utf8) {
    texts.emplace_back();
    QANTMBU8ToCodePage(nullptr, texts.back(), text);
  }
  return texts;
}

ImportWatch::ImportWatch(WatchSettings settings) : settings_(std::move(settings)) {}

void ImportWatch::Prepare(const QANT_DataSource& source, const Outputs& outputs, const Mode& mode) {
  source_ = &source;
  outputs_ = outputs;
  mode_ = mode;
  OnPassBegin();
}

std::int64_t ImportWatch::ProblemLimit() const {
  // Which of them count is known only when the case was kept.
  return mode_.sampled ? std::numeric_limits<std::int64_t>::max() : settings_.problemLimit;
}

bool ImportWatch::WantsBatches() const {
  return mode_.batches && !mode_.sampled && !sinks_.empty();
}

void ImportWatch::OnEvidence(std::size_t variable, const ImportEvidence& evidence) {
  if (evidence_.size() <= variable) evidence_.resize(variable + 1);
  evidence_[variable] = evidence;
}

void ImportWatch::OnPassBegin() {
  account_ = {};
  cases_ = 0;
  bytes_ = 0;
  gathered_.clear();
  gatheredCases_ = 0;
  failure_ = nullptr;
  sinkSeconds_ = 0;
  Drop();
}

void ImportWatch::OnProblems(const ImportProblem* problems, std::size_t count) {
  if (!mode_.sampled) return TakeProblems(problems, count);
  for (const ImportProblem* problem = problems; problem != problems + count; ++problem) {
    if (held_.count == held_.problems.size()) held_.problems.emplace_back();
    HeldCase::Problem& held = held_.problems[held_.count++];
    held.problem = *problem;
    held.text = problem->text;
  }
}

template <typename Work>
void ImportWatch::Guarded(Work work) {
  if (failed()) return;
  try {
    work();
  } catch (...) {
    failure_ = std::current_exception();
  }
}

void ImportWatch::TakeProblems(const ImportProblem* problems, std::size_t count) {
  account_.problems.Add(problems, count);
  for (std::size_t index = 0; settings_.trail && index < count; ++index) {
    const bool traced = static_cast<std::int64_t>(account_.trail.size()) < settings_.problemLimit;
    if (traced) account_.trail.push_back(MarkOf(problems[index]));
  }
  if (outputs_.problems.empty()) return;
  Guarded([&] {
    for (ProblemSink* sink : outputs_.problems) sink->WriteAll(problems, count);
  });
}

void ImportWatch::OnProblemCase(const ImportCaseSpan& span) {
  if (mode_.sampled) {
    held_.span = span;
  } else {
    TakeCaseSpan(span);
  }
}

void ImportWatch::TakeCaseSpan(const ImportCaseSpan& span) {
  if (outputs_.rejects != nullptr) outputs_.rejects->CopyCase(span);
}

void ImportWatch::Keep(const OBS* obs) {
  ++cases_;
  for (std::size_t index = 0; index < held_.count; ++index) {
    HeldCase::Problem& held = held_.problems[index];
    held.problem.caseNumber = cases_;
    held.problem.text = held.text;
    TakeProblems(&held.problem, 1);
  }
  if (held_.span) TakeCaseSpan(*held_.span);
  account_.ledger.AddCells(held_.cells);
  if (!sinks_.empty()) Gather(obs);
  Drop();
}

void ImportWatch::Drop() {
  held_.count = 0;
  held_.span.reset();
  held_.cells = {};
}

void ImportWatch::OnSpan(const ImportSpan& span) {
  const bool isHead = span.kind == ImportSpan::kMark || span.kind == ImportSpan::kPreamble;
  if (isHead && outputs_.rejects != nullptr) outputs_.rejects->CopyHead(span.offset + span.bytes);
  if (span.kind != ImportSpan::kUnread) bytes_ += span.bytes;
  account_.ledger.AddSpan(span);
}

void ImportWatch::OnCells(const ImportCellCounts& cells) {
  if (mode_.sampled) {
    held_.cells = cells;
  } else {
    account_.ledger.AddCells(cells);
  }
}

void ImportWatch::OnProblemCounts(const ImportProblemCount* counts, std::size_t count) {
  // Where the host samples they hold those of dropped cases too; all were told one by one.
  if (mode_.sampled) return;
  for (std::size_t index = 0; index < count; ++index) account_.problems.SetCount(counts[index]);
}

void ImportWatch::OnPassEnd(const ImportPassEnd& end) {
  if (gatheredCases_ > 0) HandOnGathered();
  account_.complete = end.complete;
  account_.cases = mode_.sampled ? cases_ : end.cases;
  if (end.textsBeyondColumn != nullptr) account_.textsBeyondColumn = *end.textsBeyondColumn;
  account_.ledger.SetCounts({.bytes = end.bytes,
                             .cases = account_.cases,
                             .variables = static_cast<std::int64_t>(source_->GetNVariables()),
                             .recordsInCases = end.recordsInCases,
                             .recordsWithoutCase = end.recordsWithoutCase});
}

void ImportWatch::Gather(const OBS* obs) {
  gathered_.insert(gathered_.end(), obs, obs + source_->GetObsAreaSize() / sizeof(OBS));
  ++gatheredCases_;
  if (gathered_.size() >= kGatheredCells) HandOnGathered();
}

void ImportWatch::HandOnGathered() {
  WithSinks([this] {
    const std::int64_t before = cases_ - static_cast<std::int64_t>(gatheredCases_);
    TakeParts(MakeParts(gathered_.data(), gatheredCases_, before));
  });
  gathered_.clear();
  gatheredCases_ = 0;
}

template <typename Work>
void ImportWatch::WithSinks(Work work) {
  const auto start = std::chrono::steady_clock::now();
  Guarded(work);
  sinkSeconds_ += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

ImportWatch::Parts ImportWatch::MakeParts(const OBS* cases, std::size_t count,
                                          std::int64_t firstCase) const {
  Parts parts;
  parts.reserve(sinks_.size());
  for (const CaseSink* sink : sinks_) parts.push_back(sink->Make(cases, count, firstCase));
  return parts;
}

void ImportWatch::TakeParts(Parts parts) {
  for (std::size_t index = 0; index < sinks_.size(); ++index) {
    sinks_[index]->Take(std::move(parts[index]));
  }
}

std::unique_ptr<ImportBatchProduct> ImportWatch::MakeProduct(const OBS* cases, std::size_t count,
                                                             std::int64_t firstCase) {
  auto products = std::make_unique<Products>();
  products->parts = MakeParts(cases, count, firstCase);
  return products;
}

void ImportWatch::OnProduct(std::unique_ptr<ImportBatchProduct> product, const OBS* /*cases*/,
                            std::size_t count, std::int64_t /*firstCase*/) {
  if (!failed()) cases_ += static_cast<std::int64_t>(count);
  WithSinks([&] { TakeParts(std::move(static_cast<Products&>(*product).parts)); });
}

}  // namespace library
