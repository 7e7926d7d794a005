// Host text for the regular-expression matcher.
#pragma once

#include <string>
#include <string_view>

#include <unicode/unistr.h>

namespace textwizard {

// `hostText` in UTF-8: the text itself when the host works in UTF-8, else converted into `buffer`.
std::string_view ToUtf8(std::string_view hostText, std::string& buffer);

// Throws std::bad_alloc when it is the lack of memory that `status` tells of: what a matcher says
// then is no answer.
void CheckMemory(UErrorCode status);

// A text for a matcher, whose memory is reused from one text to the next. One thread.
class UnicodeText {
 public:
  // The result belongs to this object and changes with the next call. Throws std::bad_alloc.
  const icu::UnicodeString& Assign(std::string_view hostText);

 private:
  std::string utf8_;
  icu::UnicodeString text_;
};

}  // namespace textwizard
