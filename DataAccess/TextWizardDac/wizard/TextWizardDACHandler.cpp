#include "wizard/TextWizardDACHandler.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "HostFramework/Text.h"

namespace textwizard {
namespace {

// Calls up to this number are the base proxy's.
constexpr unsigned short kLastBaseMethod = 999;
constexpr std::array<std::string_view, 9> kEncodings = {
    "UTF-8", "UTF8", "UTF16", "UTF-16", "UTF16BE", "UTF-16BE", "UTF16LE", "UTF-16LE", "Locale"};

// Of a longer first line no record shows more than this at once.
constexpr std::size_t kLongestFirstLine = 2000000;
// A record is not gathered beyond this; what follows is the next record.
constexpr std::size_t kLongestRecord = std::size_t{1} << 28;
// Bytes that a record may grow to in host text, per byte read.
constexpr std::size_t kGrowth = 3;

bool StartsWith(const unsigned char* bytes, std::size_t count,
                std::initializer_list<unsigned char> mark) {
  return count >= mark.size() && std::equal(mark.begin(), mark.end(), bytes);
}

FileOpenResponse Refusal(std::uint32_t code, const std::string& fileName) {
  return FileOpenResponse(DACErrorResponse(code, fileName));
}

}  // namespace

TextWizardDACHandler::TextWizardDACHandler(ROTBase* rot) : PackageProxy(rot) {}

TextWizardDACHandler::~TextWizardDACHandler() = default;

PackageProxy* TextWizardDACHandler::Factory(ROTBase* rot) {
  try {
    return new TextWizardDACHandler(rot);
  } catch (...) {
    // Nothing may be thrown to the host.
    return nullptr;
  }
}

bool TextWizardDACHandler::Utf16() const {
  return mode_ == kWizardUtf16BigEndian || mode_ == kWizardUtf16LittleEndian;
}

bool TextWizardDACHandler::OpenFile(const std::string& fileName, const std::string& encoding) {
  if (stream_) return false;
  recordLength_ = 0;
  truncated_ = false;
  ExtNameStr name;
  name.SetGeneric(fileName.c_str());
  FileHandle stream(name.fopen("rb"));
  if (!stream) return false;
  encoding_ = encoding;

  std::array<unsigned char, 4> head{};
  const std::size_t count = std::fread(head.data(), 1, head.size(), stream.get());
  if (std::ferror(stream.get())) return false;
  const auto marked = [&](std::initializer_list<unsigned char> mark) {
    return count >= 3 && StartsWith(head.data(), count, mark);
  };
  if (marked({0xFF, 0xFE, 0x00, 0x00}) || marked({0x00, 0x00, 0xFE, 0xFF})) return false;
  if (marked({0xEF, 0xBB, 0xBF})) {
    mode_ = kWizardUtf8;
    noMark_ = false;
  } else if (marked({0xFF, 0xFE})) {
    mode_ = kWizardUtf16LittleEndian;
    noMark_ = false;
  } else if (marked({0xFE, 0xFF})) {
    mode_ = kWizardUtf16BigEndian;
    noMark_ = false;
  } else if (!encoding.empty()) {
    ChooseMode(encoding);
  }
  if (std::fseek(stream.get(), 0, SEEK_SET) != 0) return false;
  stream_ = std::move(stream);
  return true;
}

// The mode of a file without a byte-order mark.
void TextWizardDACHandler::ChooseMode(const std::string& encoding) {
  if (encoding == "UTF-8") {
    mode_ = kWizardUtf8;
    noMark_ = true;
  } else if (encoding == "UTF-16LE") {
    mode_ = kWizardUtf16LittleEndian;
    noMark_ = true;
  } else if (encoding == "UTF-16BE") {
    mode_ = kWizardUtf16BigEndian;
    noMark_ = true;
  } else if (encoding != "UTF-16" || !noMark_) {
    mode_ = kWizardBytes;
  }
}

bool TextWizardDACHandler::SeekBegin() {
  if (!stream_) return false;
  const long mark = noMark_ || mode_ == kWizardBytes ? 0 : mode_ == kWizardUtf8 ? 3 : 2;
  return std::fseek(stream_.get(), mark, SEEK_SET) == 0;
}

bool TextWizardDACHandler::CloseFile() {
  if (!stream_) return false;
  stream_.reset();
  readBuffer_ = {};
  return true;
}

void TextWizardDACHandler::MeasureFirstLine() {
  std::size_t count = 0;
  bool truncated = false;
  // In big-endian files the line ends are looked for with their bytes swapped.
  const std::uint16_t lineFeed = mode_ == kWizardUtf16BigEndian ? 0x0A00 : 0x000A;
  const std::uint16_t lineReturn = mode_ == kWizardUtf16BigEndian ? 0x0D00 : 0x000D;
  while (true) {
    std::uint16_t unit = 0;
    if (Utf16()) {
      if (!ReadUnit(mode_, stream_.get(), &unit)) break;
    } else {
      const int byte = std::fgetc(stream_.get());
      if (byte == EOF) break;
      unit = static_cast<std::uint16_t>(byte);
    }
    if (unit == lineFeed || unit == lineReturn) break;
    count += Utf16() ? 2 : 1;
    if (count > kLongestFirstLine) {
      truncated = true;
      break;
    }
  }
  SeekBegin();
  truncated_ = truncated;
  readBuffer_.assign(truncated ? kLongestFirstLine : count + (Utf16() ? 2 : 3), '\0');
}

bool TextWizardDACHandler::ReadOn(bool* filled) {
  *filled = false;
  char* const target = readBuffer_.data() + recordLength_;
  const std::size_t room = readBuffer_.size() - recordLength_;
  if (Utf16()) {
    if (!ReadLine16(mode_, target, static_cast<int>(room), stream_.get())) return false;
    std::size_t length = 0;
    while (target[length] != '\0' || target[length + 1] != '\0') length += 2;
    recordLength_ += length;
    *filled = length + 2 == room;
    return true;
  }
  const off_t before = ftello(stream_.get());
  if (!ReadLine(target, static_cast<int>(room), stream_.get())) return false;
  const auto read = static_cast<std::size_t>(ftello(stream_.get()) - before);
  *filled = read + 1 == room && target[read - 1] != '\n';
  // NUL bytes are dropped, as in an import.
  char* const end = std::remove(target, target + read, '\0');
  *end = '\0';
  recordLength_ += static_cast<std::size_t>(end - target);
  return true;
}

bool TextWizardDACHandler::GetRecord(char** record) {
  *record = nullptr;
  if (!stream_) return false;
  if (readBuffer_.empty()) MeasureFirstLine();
  recordLength_ = 0;
  readBuffer_[0] = '\0';
  bool filled = false;
  const bool good = ReadOn(&filled);
  while (filled && !truncated_ && readBuffer_.size() < kLongestRecord) {
    readBuffer_.resize(2 * readBuffer_.size(), '\0');
    ReadOn(&filled);
  }
  DropLineEnd();
  Convert();
  *record = outputBuffer_.data();
  return good;
}

void TextWizardDACHandler::DropLineEnd() {
  if (recordLength_ <= 1) return;
  if (Utf16()) {
    std::uint16_t last = 0;
    std::memcpy(&last, readBuffer_.data() + recordLength_ - 2, 2);
    if (last == 0x000A || (mode_ == kWizardUtf16BigEndian && last == 0x000D)) recordLength_ -= 2;
  } else if (readBuffer_[recordLength_ - 1] == '\n') {
    --recordLength_;
  }
}

void TextWizardDACHandler::Convert() {
  const std::size_t wanted = kGrowth * readBuffer_.size();
  if (outputBuffer_.size() < wanted + 1) outputBuffer_.assign(wanted + 1, '\0');
  char* const out = outputBuffer_.data();
  const char* const in = readBuffer_.data();
  const bool utf8 = qUTF8mode();
  std::size_t length = 0;
  if (Utf16()) {
    length = utf8 ? QANTMB16to8(out, wanted, in, recordLength_)
                  : QANTMB16toGeneric(out, wanted, in, recordLength_);
  } else if (mode_ == kWizardUtf8) {
    length = QANTMB8toGeneric(out, wanted, in, recordLength_);
  } else {
    length = utf8 ? QANTMBCodePageto8(out, wanted, in, recordLength_)
                  : QANTMBCodePagetoGeneric(out, wanted, in, recordLength_);
  }
  out[length] = '\0';
}

void TextWizardDACHandler::AnswerOpen(const FileOpenRequest& request, FileOpenResponse& response) {
  const std::string& fileName = request.GetFileName();
  const std::string& encoding = request.GetOpenEncoding();
  response = FileOpenResponse();
  if (std::find(kEncodings.begin(), kEncodings.end(), encoding) == kEncodings.end()) {
    response = Refusal(kWizardUnknownEncoding, fileName);
  }
  bool opened = false;
  try {
    opened = OpenFile(fileName, encoding);
  } catch (...) {
    // Memory ran out: a file that cannot be opened.
  }
  if (!opened) {
    response = Refusal(kWizardOpenFailed, fileName);
    CloseFile();
  } else if (request.GetValidateOnly()) {
    CloseFile();
  }
}

void TextWizardDACHandler::AnswerRecord(TextWizardDacStringResponse& response) {
  try {
    char* record = nullptr;
    if (GetRecord(&record)) {
      response = TextWizardDacStringResponse({}, record, truncated_ ? 1 : 0);
      return;
    }
  } catch (...) {
    // Memory ran out: a record that cannot be had.
  }
  response = TextWizardDacStringResponse(DACErrorResponse(kWizardNoRecord, ""), "", 0);
}

int TextWizardDACHandler::OnCallSynchronous(unsigned short method, const VSerializable& request,
                                            VSerializable& response) {
  QantServerCallContext::SetCaller(this);
  if (method <= kLastBaseMethod) {
    return PackageProxy::OnCallSynchronous(method, request, response);
  }
  const auto* file = dynamic_cast<const FileOpenRequest*>(&request);
  auto* fileResponse = dynamic_cast<FileOpenResponse*>(&response);
  auto* textResponse = dynamic_cast<TextWizardDacStringResponse*>(&response);
  if (!file || !(method == kWizardRecord ? textResponse != nullptr : fileResponse != nullptr)) {
    return 1;
  }
  try {
    switch (method) {
      case kWizardOpen:
        AnswerOpen(*file, *fileResponse);
        return 0;
      case kWizardRewind:
        *fileResponse = FileOpenResponse();
        if (!SeekBegin()) {
          *fileResponse = Refusal(kWizardRewindFailed, file->GetFileName());
          CloseFile();
        }
        return 0;
      case kWizardRecord:
        AnswerRecord(*textResponse);
        return 0;
      case kWizardClose:
        *fileResponse = FileOpenResponse();
        if (!CloseFile()) {
          *fileResponse = Refusal(kWizardCloseFailed, file->GetFileName());
          CloseFile();
        }
        return 0;
      default:
        return 1;
    }
  } catch (...) {
    // Not even the answer could be made; nothing may be thrown to the host.
    return 1;
  }
}

int TextWizardDACHandler::OnCallAsynchronous(unsigned short method, const VSerializable& request) {
  if (method <= kLastBaseMethod) return PackageProxy::OnCallAsynchronous(method, request);
  return 1;
}

}  // namespace textwizard
