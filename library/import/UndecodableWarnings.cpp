#include "library/import/UndecodableWarnings.h"

#include <algorithm>
#include <cstdio>

#include <fmt/format.h>

#include "HostFramework/Messages.h"

namespace library {
namespace {

constexpr char kCatalogue[] = "lorvane.err";
constexpr long kUndecodable = 2279;
// Every text of the catalogue begins with its number.
constexpr std::string_view kNumber = "[2279]";

// The case that the text of a warning names; 0 where the catalogue's text names none.
int CaseOf(const std::string& text) {
  // The catalogue is checked: the format has two whole numbers, the case first.
  const QantServerErrorText format(kCatalogue, kUndecodable);
  int caseNumber = 0;
  int position = 0;
  const int filled = std::sscanf(text.c_str(), format.GetText(), &caseNumber, &position);
  return filled > 0 ? caseNumber : 0;
}

}  // namespace

bool UndecodableWarnings::IsOne(std::string_view text) { return text.starts_with(kNumber); }

void UndecodableWarnings::BeginNextPass() {
  if (now_.count > mostSoFar_.count) mostSoFar_ = now_;
  now_ = {};
  repeatable_ = told_.size();
  nextRepeated_ = 0;
}

bool UndecodableWarnings::Take(std::string_view text) {
  if (nextRepeated_ < repeatable_) {
    const auto begin = told_.begin();
    const auto end = begin + static_cast<std::ptrdiff_t>(repeatable_);
    const auto found = std::find(begin + static_cast<std::ptrdiff_t>(nextRepeated_), end, text);
    if (found != end) {
      nextRepeated_ = static_cast<std::size_t>(found - begin) + 1;
      return false;
    }
  }
  if (told_.size() < kMostTold) {
    told_.emplace_back(text);
    return true;
  }
  ++now_.count;
  now_.last = text;
  return false;
}

std::string UndecodableWarnings::Rest() const {
  // A pass that was cut short met fewer than one before it.
  const Untold& untold = now_.count >= mostSoFar_.count ? now_ : mostSoFar_;
  if (untold.count == 0) return {};
  const int caseNumber = CaseOf(untold.last);
  std::string text = fmt::format("and {} more", untold.count);
  if (caseNumber > 0) text += fmt::format(", the last in case {}", caseNumber);
  return text;
}

}  // namespace library
