#include "plan/TxtWzFile.h"

#include "HostFramework/Text.h"

namespace textwizard {

TxtWzFile::TxtWzFile() : lineBuffer_(std::make_unique<char[]>(kLineBufferSize)) {}

TxtWzFile::~TxtWzFile() = default;

bool TxtWzFile::OpenFile(const char* name) {
  if (file_) return false;
  fileName_ = name;
  file_.reset(std::fopen(name, "r"));
  return file_ != nullptr;
}

bool TxtWzFile::GetLine(char** line) {
  if (!file_ || ReadLine(lineBuffer_.get(), kLineBufferSize, file_.get()) != lineBuffer_.get()) {
    return false;
  }
  *line = lineBuffer_.get();
  return true;
}

bool TxtWzFile::SeekBegin() { return file_ && std::fseek(file_.get(), 0, SEEK_SET) == 0; }

int TxtWzFile::CloseFile() {
  if (!file_) return 0;
  file_.reset();
  return 1;
}

}  // namespace textwizard
