// Texts as they are told to a host that watches.
#pragma once

#include <array>
#include <string_view>

#include "HostFramework/ImportObserver.h"
#include "HostFramework/Text.h"

namespace textwizard {

// As much of a host text as is told: at most kImportTextBytes bytes, in whole characters.
inline std::string_view ToldText(std::string_view text) {
  if (text.size() <= kImportTextBytes) return text;
  // A copy of whole characters only tells how many they are.
  std::array<char, kImportTextBytes + 1> whole;
  QANTMBstrncpy_A(whole.data(), text.data(), kImportTextBytes);
  return text.substr(0, std::string_view(whole.data()).size());
}

}  // namespace textwizard
