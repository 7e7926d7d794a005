// Where the messages of the component go: to the console, or to a file as JSON Lines.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "HostFramework/Messages.h"
#include "cli/Console.h"
#include "cli/OutputFile.h"
#include "cli/UndecodableWarnings.h"
#include "cli/Utf8Converter.h"

namespace cli {

// Takes messages from any thread, but one at a time, as the component gives them: there may be
// millions. The host's callback is a plain function, so the sink that it posts to is the one that
// was made last; sinks nest.
class MessageSink {
 public:
  explicit MessageSink(Console& console);
  ~MessageSink();
  MessageSink(const MessageSink&) = delete;
  MessageSink& operator=(const MessageSink&) = delete;

  // The function to give to the host.
  static ErrorCallback Callback();

  // Sends the messages that follow to `file` as JSON Lines; null sends them to the console. The
  // file stays the caller's and outlives its use here.
  void WriteTo(OutputFile* file);

  // A command begins, it goes on to its next pass over the file, or it ends (the second time that
  // is said changes nothing): of its warnings of bytes that are no character (UndecodableWarnings)
  // the first are told, and at the end how many more there were.
  void BeginCommand();
  void BeginNextPass();
  void EndCommand();

  // One message: host text and its kind.
  void Post(std::string_view hostText, int kind);
  // An error of the program's own: UTF-8, or what a name from outside makes of it.
  void PostError(std::string_view text);

  // Errors posted so far.
  long long errors() const { return errors_; }

 private:
  void Write(std::string_view text, int kind);
  void ShowCount(std::string_view count);

  Console& console_;
  MessageSink* const before_;
  long long errors_ = 0;
  OutputFile* file_ = nullptr;
  UndecodableWarnings undecodable_;
  Utf8Converter hostText_;
  Utf8Converter ownText_{"UTF-8"};
};

}  // namespace cli
