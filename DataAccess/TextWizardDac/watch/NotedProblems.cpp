#include "watch/NotedProblems.h"

#include <new>

#include "watch/ToldText.h"

namespace textwizard {
void NotedProblems::Clear(bool all) {
  for (const std::uint32_t code : codes_) counts_[code] = 0;
  codes_.clear();
  problems_.clear();
  details_.clear();
  detailed_.clear();
  texts_.clear();
  latest_ = {};
  all_ = all;
}

NotedProblems::Text NotedProblems::Keep(std::string_view text) {
  const std::string_view told = ToldText(text);
  // Problems of one record or field follow one another.
  if (std::string_view(texts_).substr(latest_.at, latest_.bytes) == told) return latest_;
  return KeepNew(told);
}

NotedProblems::Text NotedProblems::KeepNew(std::string_view text) {
  const std::string_view told = ToldText(text);
  if (texts_.size() > UINT32_MAX - told.size()) throw std::bad_alloc();
  latest_ = {static_cast<std::uint32_t>(texts_.size()), static_cast<std::uint32_t>(told.size())};
  texts_.append(told);
  return latest_;
}

}  // namespace textwizard
