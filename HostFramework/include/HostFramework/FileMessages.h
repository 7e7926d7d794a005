// The messages of calls about files.
#pragma once

#include <memory>
#include <string>

#include "HostFramework/Serialization.h"

// A numbered error.
class DACErrorResponse : public VSerializable {
 public:
  DACErrorResponse() = default;
  DACErrorResponse(std::uint32_t code, std::string text);
  const char* GetSignature() const override;
  std::uint32_t GetVersion() const override;
  std::uint32_t GetCode() const { return code_; }
  const std::string& GetText() const { return text_; }

 protected:
  void WriteFields(VStream& stream) const override;
  bool ReadFields(VStream& stream) override;

 private:
  std::uint32_t code_ = 0;
  std::string text_;
};

class FileOpenRequest : public VSerializable {
 public:
  FileOpenRequest() = default;
  FileOpenRequest(std::string fileName, std::string openEncoding, bool validateOnly);
  const char* GetSignature() const override;
  std::uint32_t GetVersion() const override;
  const std::string& GetFileName() const { return fileName_; }
  const std::string& GetOpenEncoding() const { return openEncoding_; }
  bool GetValidateOnly() const { return validateOnly_; }

 protected:
  void WriteFields(VStream& stream) const override;
  bool ReadFields(VStream& stream) override;

 private:
  std::string fileName_;
  std::string openEncoding_;
  bool validateOnly_ = false;
};

// The answer to a call about a file: nothing (success), or an error.
class FileOpenResponse : public VSerializable {
 public:
  FileOpenResponse() = default;
  explicit FileOpenResponse(DACErrorResponse error);
  const char* GetSignature() const override;
  std::uint32_t GetVersion() const override;
  bool HasError() const { return hasError_; }
  const DACErrorResponse& GetError() const { return error_; }

 protected:
  void WriteFields(VStream& stream) const override;
  bool ReadFields(VStream& stream) override;

 private:
  bool hasError_ = false;
  DACErrorResponse error_;
};

// The text wizard's package: its two names, its calls, and the numbers of its answers' errors.
inline constexpr const char* kWizardPackage = "TextWizardDACPkg";
inline constexpr const char* kWizardPackageVersion = "TextWizardDACPkg.1";

enum WizardCall : unsigned short {
  kWizardOpen = 1002,    // FileOpenRequest, FileOpenResponse
  kWizardRewind = 1003,  // FileOpenRequest, FileOpenResponse
  kWizardRecord = 1004,  // FileOpenRequest, TextWizardDacStringResponse
  kWizardClose = 1005,   // FileOpenRequest, FileOpenResponse
};

enum WizardError : std::uint32_t {
  kWizardNoRecord = 1006,  // also at the end of the file
  kWizardOpenFailed = 2004,
  kWizardRewindFailed = 2005,
  kWizardCloseFailed = 2006,
  kWizardUnknownEncoding = 2008,
};

// A text request of the text wizard's package.
class TextWizardDacStringRequest : public VSerializable {
 public:
  TextWizardDacStringRequest() = default;
  explicit TextWizardDacStringRequest(std::string text);
  const char* GetSignature() const override;
  std::uint32_t GetVersion() const override;
  const std::string& GetText() const { return text_; }

 protected:
  void WriteFields(VStream& stream) const override;
  bool ReadFields(VStream& stream) override;

 private:
  std::string text_;
};

// A text and a number, or an error (its code is then not 0).
class TextWizardDacStringResponse : public VSerializable {
 public:
  TextWizardDacStringResponse() = default;
  TextWizardDacStringResponse(DACErrorResponse error, std::string text, std::uint32_t number);
  const char* GetSignature() const override;
  std::uint32_t GetVersion() const override;
  const DACErrorResponse& GetError() const { return error_; }
  const std::string& GetText() const { return text_; }
  std::uint32_t GetNumber() const { return number_; }

 protected:
  void WriteFields(VStream& stream) const override;
  bool ReadFields(VStream& stream) override;

 private:
  DACErrorResponse error_;
  std::string text_;
  std::uint32_t number_ = 0;
};
