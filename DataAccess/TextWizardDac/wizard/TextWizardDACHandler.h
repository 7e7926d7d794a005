// The import wizard's request handler: opens a text file, rewinds it, hands out its raw records and
// closes it, so that the wizard can show a file before any command is written. Shares nothing with
// a running import. Calls to one handler come from one thread at a time.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "HostFramework/FileMessages.h"
#include "HostFramework/Names.h"
#include "HostFramework/Packages.h"
#include "model/TwExecInput.h"
#include "wizard/ReadLine16.h"

namespace textwizard {

class TextWizardDACHandler : public PackageProxy, public TwExecInput {
 public:
  explicit TextWizardDACHandler(ROTBase* rot);
  ~TextWizardDACHandler() override;
  // A new handler, owned by the caller; null when there is no memory for one.
  static PackageProxy* Factory(ROTBase* rot);

  // Opens a file in an encoding that a byte-order mark overrides. False when a file is open
  // already, or it cannot be opened or read, or begins with a UTF-32 mark.
  bool OpenFile(const std::string& fileName, const std::string& encoding) override;
  // Points *record at the next record in host text, valid until the next call; false at the end.
  // A line of more than 256 MiB comes as several records.
  bool GetRecord(char** record) override;
  bool CloseFile() override;
  // Moves to the first record, behind the byte-order mark if there is one. False without a file.
  bool SeekBegin();

  // The numbered calls: 1002 open, 1003 rewind, 1004 record, 1005 close. A failure is answered in
  // the response; the result is 1 only for another number, messages of the wrong class, or when
  // there is no memory for an answer.
  int OnCallSynchronous(unsigned short method, const VSerializable& request,
                        VSerializable& response) override;
  int OnCallAsynchronous(unsigned short method, const VSerializable& request) override;

 private:
  void AnswerOpen(const FileOpenRequest& request, FileOpenResponse& response);
  void AnswerRecord(TextWizardDacStringResponse& response);
  bool Utf16() const;
  void ChooseMode(const std::string& encoding);
  void MeasureFirstLine();
  // Reads the line, or its rest, behind the recordLength_ bytes that the read buffer holds of it;
  // false at the end of the file. *filled: the buffer ended the reading.
  bool ReadOn(bool* filled);
  void DropLineEnd();
  void Convert();

  FileHandle stream_;
  // Empty until the first record after an open.
  std::vector<char> readBuffer_;
  std::vector<char> outputBuffer_;
  // Bytes of the current record in the read buffer.
  std::size_t recordLength_ = 0;
  // The first line is longer than what is read of one.
  bool truncated_ = false;
  int mode_ = kWizardBytes;
  // A file was opened by the name of a Unicode encoding and had no byte-order mark. Stays set until
  // one is met: with it the name "UTF-16" keeps the mode of the file before.
  bool noMark_ = false;
  std::string encoding_;
};

}  // namespace textwizard
