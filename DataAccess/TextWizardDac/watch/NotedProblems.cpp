#include "watch/NotedProblems.h"

#include <algorithm>
#include <new>
#include <utility>

#include "watch/ToldText.h"

namespace textwizard {
void NotedProblems::Clear(bool all) {
  for (const std::uint32_t code : codes_) counts_[code] = 0;
  codes_.clear();
  problems_.clear();
  details_.clear();
  detailed_.clear();
  used_ = 0;
  latest_ = {};
  all_ = all;
}

NotedProblems::Text NotedProblems::Keep(std::string_view text) {
  const std::string_view told = ToldText(text);
  // Problems of one record or field follow one another.
  if (std::string_view(texts_.get() + latest_.at, latest_.bytes) == told) return latest_;
  return latest_ = KeepNew(told);
}

NotedProblems::Text NotedProblems::KeepOther(std::string_view text) {
  const std::string_view told = ToldText(text);
  // Short ones need all of their room.
  const std::size_t room = std::max<std::size_t>(told.size(), kShortText);
  if (room_ - used_ < room) Grow(room);
  std::memcpy(texts_.get() + used_, told.data(), told.size());
  const Text kept = {used_, static_cast<std::uint32_t>(told.size())};
  used_ += kept.bytes;
  return kept;
}

void NotedProblems::Grow(std::size_t bytes) {
  constexpr std::size_t kFirst = 4096;
  if (bytes > UINT32_MAX - std::size_t{used_}) throw std::bad_alloc();
  const std::size_t room =
      std::min<std::size_t>(std::max(2 * std::size_t{room_}, used_ + bytes + kFirst), UINT32_MAX);
  std::unique_ptr<char[]> grown(new char[room]);
  if (used_ != 0) std::memcpy(grown.get(), texts_.get(), used_);
  texts_ = std::move(grown);
  room_ = static_cast<std::uint32_t>(room);
}

}  // namespace textwizard
