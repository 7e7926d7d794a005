// Raw records into host text, by the command's encoding and the file's byte-order mark.
#pragma once

#include <string>
#include <string_view>

#include "HostFramework/Text.h"
#include "plan/ImportSettings.h"
#include "reading/RecordReader.h"

namespace textwizard {

// One thread; owns its converter. A result is a view of the raw record when nothing has to change,
// else of a buffer of the decoder's, valid until its next call.
class RecordDecoder {
 public:
  explicit RecordDecoder(FileEncoding encoding);
  ~RecordDecoder();
  RecordDecoder(const RecordDecoder&) = delete;
  RecordDecoder& operator=(const RecordDecoder&) = delete;

  // Either of the two, by the mark.
  std::string_view Decode(std::string_view raw, ByteOrderMark mark);
  // An 8-bit record, by the encoding alone.
  std::string_view Decode8(std::string_view raw);
  // 16-bit units in the order that the mark names.
  std::string_view Decode16(std::string_view raw, ByteOrderMark mark);

 private:
  FileEncoding encoding_;
  QANTMBConverter* converter_;
  std::string buffer_;
};

}  // namespace textwizard
