// The adapter through which the host hands a tokenised command to a data-access component.
#pragma once

#include <string>

#include "HostFramework/Messages.h"

// The tokens of the command being run, positioned on the first token to read.
class DACTokenSource {
 public:
  virtual ~DACTokenSource() = default;
  // Advances to the next token; false when none is left (then there is no current token).
  virtual bool NextToken() = 0;
  // Kind of the current token; kDACTokenLiteral is a quoted string literal.
  virtual int TokenKind() const = 0;
  // Characters of the current token and their number in bytes. Not terminated; valid until the next
  // NextToken. Null and 0 when there is no current token.
  virtual void TokenText(const char** text, int* length) const = 0;
};

inline constexpr int kDACTokenLiteral = 4;

// Owned by the host; outlives the command and every data source made from it. Host's thread only.
class DACAdapterBase {
 public:
  virtual ~DACAdapterBase() = default;
  virtual DACTokenSource* GetTokenSource() = 0;
  virtual ErrorCallback GetErrorCallback() = 0;
  // A value of the host's, stored and passed on unchanged.
  virtual void* GetAdapterContext() = 0;
  // Sets `result` to the host's form of the path `input` and returns it. `unquoted` tells that the
  // command gave the path without quotes.
  virtual const std::string& ConvertFilePath(std::string& result, const std::string& input,
                                             bool unquoted) = 0;
  // Number of conversion workers of the data source; below 1 means one per processor.
  virtual int GetSourceParamA() = 0;
  // Stored with the data source.
  virtual int GetSourceParamB() = 0;
};
