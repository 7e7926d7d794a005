#include "reading/MarkedText.h"

namespace textwizard {

void MarkedText::MarkFrom(std::size_t word) {
  const std::string_view stretch = text_.substr(64 * word, 64 * kMarkWords);
  MarkBytes(stretch, bytes_, marks_.data());
  firstWord_ = word;
  markCount_ = (stretch.size() + 63) / 64;
}

}  // namespace textwizard
