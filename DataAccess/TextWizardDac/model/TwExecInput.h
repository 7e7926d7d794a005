// A source of raw records that an import plan can be executed with.
#pragma once

#include <string>

namespace textwizard {

class TwExecInput {
 public:
  // Opens the file in the named encoding; false when it cannot.
  virtual bool OpenFile(const std::string& fileName, const std::string& encoding) = 0;
  // Points *record at the next record's text, valid until the next call; false when there is none.
  virtual bool GetRecord(char** record) = 0;
  virtual bool CloseFile() = 0;

 protected:
  ~TwExecInput() = default;
};

}  // namespace textwizard
