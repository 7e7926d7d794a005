#include "HostFramework/FileMessages.h"

#include <utility>

namespace {

bool ReadFlag(VStream& stream, bool* flag) {
  std::uint8_t byte = 0;
  if (!stream.ReadUInt8(&byte) || byte > 1) return false;
  *flag = byte == 1;
  return true;
}

const MessageType kTypes[] = {
    MessageType::Of<DACErrorResponse>(), MessageType::Of<FileOpenRequest>(),
    MessageType::Of<FileOpenResponse>(), MessageType::Of<TextWizardDacStringRequest>(),
    MessageType::Of<TextWizardDacStringResponse>()};

}  // namespace

DACErrorResponse::DACErrorResponse(std::uint32_t code, std::string text)
    : code_(code), text_(std::move(text)) {}
const char* DACErrorResponse::GetSignature() const { return "VSerializable::DACErrorResponse"; }
std::uint32_t DACErrorResponse::GetVersion() const { return 1; }
void DACErrorResponse::WriteFields(VStream& stream) const {
  stream.WriteUInt32(code_);
  stream.WriteString(text_);
}
bool DACErrorResponse::ReadFields(VStream& stream) {
  return stream.ReadUInt32(&code_) && stream.ReadString(&text_);
}

FileOpenRequest::FileOpenRequest(std::string fileName, std::string openEncoding, bool validateOnly)
    : fileName_(std::move(fileName)),
      openEncoding_(std::move(openEncoding)),
      validateOnly_(validateOnly) {}
const char* FileOpenRequest::GetSignature() const { return "VSerializable::FileOpenRequest"; }
std::uint32_t FileOpenRequest::GetVersion() const { return 1; }
void FileOpenRequest::WriteFields(VStream& stream) const {
  stream.WriteString(fileName_);
  stream.WriteString(openEncoding_);
  stream.WriteUInt8(validateOnly_ ? 1 : 0);
}
bool FileOpenRequest::ReadFields(VStream& stream) {
  return stream.ReadString(&fileName_) && stream.ReadString(&openEncoding_) &&
         ReadFlag(stream, &validateOnly_);
}

FileOpenResponse::FileOpenResponse(DACErrorResponse error)
    : hasError_(true), error_(std::move(error)) {}
const char* FileOpenResponse::GetSignature() const { return "VSerializable::FileOpenResponse"; }
std::uint32_t FileOpenResponse::GetVersion() const { return 1; }
void FileOpenResponse::WriteFields(VStream& stream) const {
  stream.WriteUInt8(hasError_ ? 1 : 0);
  if (hasError_) error_.Write(stream);
}
bool FileOpenResponse::ReadFields(VStream& stream) {
  return ReadFlag(stream, &hasError_) && (!hasError_ || error_.Read(stream));
}

TextWizardDacStringRequest::TextWizardDacStringRequest(std::string text) : text_(std::move(text)) {}
const char* TextWizardDacStringRequest::GetSignature() const {
  return "VSerializable::TextWizardDacStringRequest";
}
std::uint32_t TextWizardDacStringRequest::GetVersion() const { return 1; }
void TextWizardDacStringRequest::WriteFields(VStream& stream) const { stream.WriteString(text_); }
bool TextWizardDacStringRequest::ReadFields(VStream& stream) { return stream.ReadString(&text_); }

TextWizardDacStringResponse::TextWizardDacStringResponse(DACErrorResponse error, std::string text,
                                                         std::uint32_t number)
    : error_(std::move(error)), text_(std::move(text)), number_(number) {}
const char* TextWizardDacStringResponse::GetSignature() const {
  return "VSerializable::TextWizardDacStringResponse";
}
std::uint32_t TextWizardDacStringResponse::GetVersion() const { return 2; }
void TextWizardDacStringResponse::WriteFields(VStream& stream) const {
  error_.Write(stream);
  stream.WriteString(text_);
  stream.WriteUInt32(number_);
}
bool TextWizardDacStringResponse::ReadFields(VStream& stream) {
  return error_.Read(stream) && stream.ReadString(&text_) && stream.ReadUInt32(&number_);
}
