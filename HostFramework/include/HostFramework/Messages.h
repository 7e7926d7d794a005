// Message records, the message catalogue and the error monitors of the host.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

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

// The catalogue of the component's messages.
inline constexpr const char* kMessageCatalogue = "lorvane.err";

// The messages whose texts are printf formats: what the callers fill them with. A 'd' is an int, an
// 's' a text. The texts of all other numbers are plain, and a percent sign in them is one.
struct MessagePlaceholders {
  long id;
  std::string_view kinds;
};
inline constexpr MessagePlaceholders kMessagePlaceholders[] = {
    {2271, "d"}, {2272, "d"}, {2273, "d"}, {2274, "d"}, {2279, "dd"},
    {2284, "s"}, {2285, "s"}, {2287, "s"}, {2288, "s"}, {2289, "s"},
    {2291, "s"}, {2293, "s"}, {2294, "s"}, {2296, "s"}, {2297, "s"}};

// The placeholders of a message, in their order; empty for a plain text.
constexpr std::string_view PlaceholdersOf(long id) {
  for (const MessagePlaceholders& message : kMessagePlaceholders) {
    if (message.id == id) return message.kinds;
  }
  return {};
}

// One text of a message catalogue. A number without a text gives "[N] (no text for this message)".
class QantServerErrorText {
 public:
  // `file` is the catalogue's name: kMessageCatalogue. Any thread.
  QantServerErrorText(const char* file, long id);
  // The text, or printf format for the ids that have placeholders (kMessagePlaceholders); lives as
  // long as this object.
  // The catalogue is checked when it is loaded: a format never asks for other arguments than its
  // id's.
  const char* GetText() const;

 private:
  std::string text_;
};
