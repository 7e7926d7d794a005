// Message records, the message catalogue and the error monitors of the host.
#pragma once

#include <cstdint>
#include <string>

// Kinds of a message record.
enum ErrorTextKind : std::uint8_t {
  kMessageWarning = 0,
  kMessageError = 1,
  kMessageLog = 3,
  kMessageProgress = 4,
};

// The host's message record: a text (host text), its kind, and a second number (always 0 here).
// Copied by value.
struct ErrorText {
  std::string text;
  std::uint8_t kind = kMessageWarning;
  std::int64_t value = 0;
};

// Where messages of an iterator or a command go.
class ErrorMonitor {
 public:
  virtual ~ErrorMonitor() = default;
  // Takes one message record. Called on any thread, by one thread at a time.
  virtual void Report(const ErrorText& message) = 0;
  // Sets *attention to true when the user asked to interrupt, else to false.
  virtual void AttentionCheck(bool* attention) = 0;
};

// The function that an adapter's owner supplies for messages: the text (host text, valid for the
// call) and the kind (ErrorTextKind).
using ErrorCallback = void (*)(const char* text, int kind);

// A monitor that passes every message to a callback. A null callback drops messages.
class QantErrorMonitor : public ErrorMonitor {
 public:
  explicit QantErrorMonitor(ErrorCallback callback);
  ~QantErrorMonitor() override;
  void Report(const ErrorText& message) override;
  void AttentionCheck(bool* attention) override;
  // A word of the host's that travels with the monitor.
  void SetContext(void* context);
  void* GetContext() const;

 private:
  ErrorCallback callback_;
  void* context_ = nullptr;
};

// One text of a message catalogue. A number without a text gives "[N] (no text for this message)".
class QantServerErrorText {
 public:
  // `file` is the catalogue's name, such as "lorvane.err". Any thread.
  QantServerErrorText(const char* file, long id);
  // The text, or printf format for the ids that have placeholders; lives as long as this object.
  // The catalogue is checked when it is loaded: a format never asks for other arguments than its
  // id's.
  const char* GetText() const;

 private:
  std::string text_;
};
