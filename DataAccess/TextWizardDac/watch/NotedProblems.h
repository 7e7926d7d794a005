// The problems of some cases on their way from where they are found to the host's thread. Every one
// is counted; what more is known of it is kept as far as somebody may be told.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
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
    std::int64_t line = 0;
    std::int64_t byte = 0;
    std::int64_t amount = 0;
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
  // The same of one that needs no details; false, and nothing is done, where it needs some.
  bool AddCounted(std::uint32_t record, std::uint32_t code) {
    if (all_ || counts_[code] == 0 || problems_.size() == problems_.capacity()) return false;
    ++counts_[code];
    problems_.push_back({record, code});
    return true;
  }
  void Add(std::uint32_t record, std::uint32_t code, const Detail& detail) {
    Add(record, code, detail.line, detail.byte, detail.amount, detail.text);
  }
  // Member by member: a copy of what was just put together would have to wait for its parts.
  void Add(std::uint32_t record, std::uint32_t code, std::int64_t line, std::int64_t byte,
           std::int64_t amount, Text text) {
    // In this order, so that lack of memory leaves no details without a problem.
    Add(record, code);
    Detail& detail = details_.emplace_back();
    detail.line = line;
    detail.byte = byte;
    detail.amount = amount;
    detail.text = text;
    if (!all_) detailed_.push_back(problems_.size() - 1);
  }
  // Keeps a text for details, as much of it as is told: at most kImportTextBytes bytes, in whole
  // characters (host text). Throws std::bad_alloc when all texts are too long together.
  Text Keep(std::string_view text);
  // The same of a text that is unlike the one before.
  Text KeepNew(std::string_view text) {
    if (text.size() > kShortText || room_ - used_ < kShortText) return KeepOther(text);
    CopyShort(text, texts_.get() + used_);
    const Text kept = {used_, static_cast<std::uint32_t>(text.size())};
    used_ += kept.bytes;
    return kept;
  }

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
    if (detail.text.bytes == 0) return "";
    return {texts_.get() + detail.text.at, detail.text.bytes};
  }

 private:
  static constexpr std::uint32_t kShortText = 16;

  Text KeepOther(std::string_view text);
  void Grow(std::size_t bytes);
  // By words that may overlap, without a call.
  static void CopyShort(std::string_view text, char* to) {
    const std::size_t size = text.size();
    const char* const from = text.data();
    if (size >= 8) {
      CopyEnds<std::uint64_t>(from, size, to);
    } else if (size >= 4) {
      CopyEnds<std::uint32_t>(from, size, to);
    } else if (size >= 2) {
      CopyEnds<std::uint16_t>(from, size, to);
    } else if (size == 1) {
      *to = *from;
    }
  }
  template <typename Word>
  static void CopyEnds(const char* from, std::size_t size, char* to) {
    Word first;
    Word last;
    std::memcpy(&first, from, sizeof first);
    std::memcpy(&last, from + size - sizeof last, sizeof last);
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + size - sizeof last, &last, sizeof last);
  }

  bool all_ = true;
  std::vector<Problem> problems_;
  std::vector<Detail> details_;
  // By number of the details, unless all have some: the problem's number.
  std::vector<std::size_t> detailed_;
  // Of `room_` bytes, of which `used_` are texts.
  std::unique_ptr<char[]> texts_;
  std::uint32_t used_ = 0;
  std::uint32_t room_ = 0;
  Text latest_;
  // By code: how many were added. The codes of which one was.
  std::vector<std::uint32_t> counts_;
  std::vector<std::uint32_t> codes_;
};

}  // namespace textwizard
