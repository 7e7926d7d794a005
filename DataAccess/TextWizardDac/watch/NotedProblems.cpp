#include "watch/NotedProblems.h"

#include <array>

#include "HostFramework/Text.h"

namespace textwizard {
namespace {

std::string_view ToldText(std::string_view text) {
  if (text.size() <= kImportTextBytes) return text;
  // A copy of whole characters only tells how many they are.
  std::array<char, kImportTextBytes + 1> whole;
  QANTMBstrncpy_A(whole.data(), text.data(), kImportTextBytes);
  return text.substr(0, std::string_view(whole.data()).size());
}

}  // namespace

void NotedProblems::Clear(bool all) {
  for (const Problem& problem : problems_) seen_[problem.code] = 0;
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
  latest_ = {texts_.size(), told.size()};
  texts_.append(told);
  return latest_;
}

}  // namespace textwizard
