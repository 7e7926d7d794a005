// Raw records into host text, by the command's encoding and the file's byte-order mark.
#pragma once

#include <string>
#include <string_view>

#include "HostFramework/Text.h"
#include "model/ImportSettings.h"
#include "reading/ByteScan.h"
#include "reading/RecordReader.h"

namespace textwizard {

// One thread. A result is a view of the raw record when nothing has to change,
// else of a buffer of the decoder's, valid until its next call.
class RecordDecoder {
 public:
  explicit RecordDecoder(FileEncoding encoding);
  RecordDecoder(const RecordDecoder&) = delete;
  RecordDecoder& operator=(const RecordDecoder&) = delete;

  // Either of the two, by the mark.
  std::string_view Decode(std::string_view raw, ByteOrderMark mark) {
    const bool wide =
        mark == ByteOrderMark::kUtf16BigEndian || mark == ByteOrderMark::kUtf16LittleEndian;
    return wide ? Decode16(raw, mark) : Decode8(raw);
  }
  // An 8-bit record, by the encoding alone.
  std::string_view Decode8(std::string_view raw);
  // Whether 8-bit records in `text` stay as they are.
  bool Keeps(std::string_view text) const { return !conversion_ || (keepsAscii_ && IsAscii(text)); }
  // 16-bit units, none zero, in the order that the mark names. The encoding plays no part.
  std::string_view Decode16(std::string_view raw, ByteOrderMark mark);

 private:
  // Constant after construction: null when 8-bit records stay as they are.
  void (*conversion_)(QANTMBConverter*, std::string&, std::string_view);
  // ASCII records need no conversion.
  bool keepsAscii_;
  // Grows to the longest record; the text is what Decode returned of it.
  std::string buffer_;
};

}  // namespace textwizard
