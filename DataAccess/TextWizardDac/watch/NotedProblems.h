// The problems of some cases on their way from where they are found to the host's thread. Every one
// is counted; what more is known of it is kept as far as somebody may be told.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/ImportObserver.h"

namespace textwizard {

// A kind of problem of a variable (-1: of none) as one number, rising by variable and kind.
constexpr std::uint32_t ProblemCode(ImportProblemKind kind, std::int32_t variable) {
  return static_cast<std::uint32_t>(variable + 1) * std::uint32_t{kImportProblemKinds} +
         static_cast<std::uint32_t>(kind);
}
constexpr ImportProblemKind KindOf(std::uint32_t code) {
  return static_cast<ImportProblemKind>(code % kImportProblemKinds);
}
constexpr std::int32_t VariableOf(std::uint32_t code) {
  return static_cast<std::int32_t>(code / kImportProblemKinds) - 1;
}

// Belongs to one thread at a time. Its memory is kept from batch to batch.
class NotedProblems {
 public:
  // A text that was kept.
  struct Text {
    std::uint32_t at = 0;
    std::uint32_t bytes = 0;
  };
  // Place and more of a problem.
  struct Detail {
    std::int64_t line;
    std::int64_t byte;
    std::int64_t amount;
    Text text;
  };
  struct Problem {
    // Number of the case in the batch, from 0.
    std::uint32_t record;
    std::uint32_t code;
  };

  // `variables`: those of the source.
  explicit NotedProblems(std::size_t variables) : counts_((variables + 1) * kImportProblemKinds) {
    codes_.reserve(counts_.size());
  }

  // Forgets all. `all`: keep the details of every problem; else of the first of each code only.
  void Clear(bool all);
  // Whether the next problem of the code needs details.
  bool WantsDetail(std::uint32_t code) const { return all_ || counts_[code] == 0; }
  // Adds a problem of a case, none of a later one having been added.
  void Add(std::uint32_t record, std::uint32_t code) {
    problems_.push_back({record, code});
    if (counts_[code]++ == 0) codes_.push_back(code);
  }
  void Add(std::uint32_t record, std::uint32_t code, const Detail& detail) {
    // In this order, so that lack of memory leaves no details without a problem.
    Add(record, code);
    details_.push_back(detail);
    if (!all_) detailed_.push_back(problems_.size() - 1);
  }
  // Keeps a text for details, as much of it as is told: at most kImportTextBytes bytes, in whole
  // characters (host text). Throws std::bad_alloc when all texts are too long together.
  Text Keep(std::string_view text);
  // The same of a text that is unlike the one before.
  Text KeepNew(std::string_view text);

  const std::vector<Problem>& problems() const { return problems_; }
  // The codes of all problems, and how many have one.
  const std::vector<std::uint32_t>& codes() const { return codes_; }
  std::uint32_t CountOf(std::uint32_t code) const { return counts_[code]; }
  const std::vector<Detail>& details() const { return details_; }
  // The problem that has details number `detail`; rises with it.
  const Problem& ProblemOf(std::size_t detail) const {
    return problems_[all_ ? detail : detailed_[detail]];
  }
  std::string_view TextOf(const Detail& detail) const {
    return std::string_view(texts_).substr(detail.text.at, detail.text.bytes);
  }

 private:
  bool all_ = true;
  std::vector<Problem> problems_;
  std::vector<Detail> details_;
  // By number of the details, unless all have some: the problem's number.
  std::vector<std::size_t> detailed_;
  std::string texts_;
  Text latest_;
  // By code: how many were added. The codes of which one was.
  std::vector<std::uint32_t> counts_;
  std::vector<std::uint32_t> codes_;
};

}  // namespace textwizard
