// From a record's host text back to the bytes that it was made of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "HostFramework/Text.h"
#include "model/ImportSettings.h"
#include "reading/RecordDecoder.h"
#include "reading/RecordReader.h"

namespace textwizard {

// One record after another, each walked from its start as far as somebody asks. One thread. For
// encodings that keep no state between characters.
class TextOrigin {
 public:
  explicit TextOrigin(FileEncoding encoding);
  ~TextOrigin();
  TextOrigin(const TextOrigin&) = delete;
  TextOrigin& operator=(const TextOrigin&) = delete;

  // Starts on a record that was decoded from `raw`: the same text where nothing was converted,
  // empty for 16-bit units that were ASCII all. `halfUnit`: see RecordPlace. Both texts outlive the
  // questions.
  void Start(std::string_view raw, std::string_view host, ByteOrderMark mark, bool halfUnit);
  // Bytes of the file, without NULs, that the first `at` bytes of the host text were made of; up to
  // the start of the character when `at` lies inside one. Cheap where `at` does not fall.
  std::size_t RawOffset(std::size_t at);
  // Characters of the host text that begin in [from, to) and only stand in for bytes that are no
  // character, or for a character that host text lacks. Bytes that are no character count one by
  // one where nothing was converted.
  std::int64_t Substitutes(std::size_t from, std::size_t to);
  // What stands in for bytes that are no character in text that was converted.
  std::string_view substitute() const { return substitute_; }

 private:
  enum class Kind { kSame, kAscii16, kUnits, kConverted };
  struct Step {
    std::size_t raw;
    std::size_t host;
    bool substitute;
  };

  Step NextStep();
  Step NextUnit() const;
  Step NextConverted();
  std::string_view ReadingOf(std::string_view raw, std::string_view host, std::size_t length);
  // Length of the character of the host text at hostAt_; 0 when there is none.
  std::size_t HostLength() const;
  void Rewind();

  QANTMBConverter* const converter_;
  RecordDecoder decoder_;
  // What stands in for bytes that are no character.
  const std::string_view substitute_;
  // Bytes of a record that are that character themselves; empty for none.
  std::string_view replacement_;
  std::string piece_;

  Kind kind_ = Kind::kSame;
  std::string_view raw_;
  std::string_view host_;
  bool littleEndian_ = false;
  bool halfUnit_ = false;
  // As far as was walked.
  std::size_t rawAt_ = 0;
  std::size_t hostAt_ = 0;
};

}  // namespace textwizard
