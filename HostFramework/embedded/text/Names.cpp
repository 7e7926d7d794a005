#include "HostFramework/Names.h"

#include <cstring>
#include <string_view>

#include <unicode/uchar.h>

#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/Settings.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TEXTWIZARD_LEAKS_ARE_SOUGHT
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define TEXTWIZARD_LEAKS_ARE_SOUGHT
#endif
#ifdef TEXTWIZARD_LEAKS_ARE_SOUGHT
#include <sanitizer/lsan_interface.h>
#endif

namespace {

// glibc keeps the conversion steps of a stream opened with "ccs=" (some 450 bytes) after it is
// closed. Memory taken in this scope is not reported as leaked.
class LeaksOfTheLibrary {
#ifdef TEXTWIZARD_LEAKS_ARE_SOUGHT
  __lsan::ScopedDisabler disabled_;
#endif
};

enum NameFault {
  kValid = 0,
  kEmpty = 1,
  kTooLong = 2,
  kBadStart = 3,
  kBadCharacter = 4,
  kReserved = 5,
};

constexpr std::size_t kLongestName = 64;

bool CanStartName(char32_t ch) {
  return ch == U'_' || ch == U'@' || ch == U'#' || ch == U'$' ||
         u_isalpha(static_cast<UChar32>(ch));
}

bool CanContinueName(char32_t ch) {
  return ch == U'.' || CanStartName(ch) || u_isdigit(static_cast<UChar32>(ch));
}

}  // namespace

void ExtNameStr::SetGeneric(const char* name) { name_ = name != nullptr ? name : ""; }

FILE* ExtNameStr::fopen(const char* mode) const {
  if (std::strstr(mode, ",ccs=") == nullptr) return std::fopen(name_.c_str(), mode);
  [[maybe_unused]] const LeaksOfTheLibrary ignored;
  return std::fopen(name_.c_str(), mode);
}

int ValidateQANTName(const char* name) {
  if (name == nullptr || *name == '\0') return kEmpty;
  const std::string_view text(name, strnlen(name, kLongestName + 1));
  if (text.size() > kLongestName) return kTooLong;
  const embedded::CodePage& page = embedded::HostPage();
  for (std::size_t at = 0; at < text.size();) {
    const embedded::Character character = page.Decode(name + at, text.size() - at);
    const bool first = at == 0;
    if (!character.IsCharacter() ||
        !(first ? CanStartName(character.code) : CanContinueName(character.code))) {
      return first ? kBadStart : kBadCharacter;
    }
    at += static_cast<std::size_t>(character.length);
  }
  if (text.back() == '.') return kBadCharacter;
  for (const char* word : {"ALL", "AND", "BY", "NOT", "OR", "TO", "WITH"}) {
    if (QANTMBstricmp_A(name, word) == 0) return kReserved;
  }
  return kValid;
}
