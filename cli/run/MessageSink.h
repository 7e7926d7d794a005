// Where the messages of the component go: to the console, or to a file as JSON Lines.
#pragma once

#include <string>
#include <string_view>

#include "HostFramework/Messages.h"
#include "cli/run/UndecodableWarnings.h"
#include "cli/terminal/Console.h"
#include "library/import/ImportMessages.h"
#include "library/outputs/OutputFile.h"
#include "library/outputs/Utf8Converter.h"

namespace cli {

// Takes messages from any thread, one at a time.
class MessageSink : public library::ImportMessages {
 public:
  explicit MessageSink(Console& console);
  MessageSink(const MessageSink&) = delete;
  MessageSink& operator=(const MessageSink&) = delete;

  // Sends the messages that follow to `file` as JSON Lines; null sends them to the console. The
  // file stays the caller's and outlives its use here.
  void WriteTo(library::OutputFile* file);

  // A command begins, it goes on to its next pass over the file, or it ends (the second time that
  // is said changes nothing): of its warnings of bytes that are no character (UndecodableWarnings)
  // the first are told, and at the end how many more there were.
  void BeginCommand();
  void BeginNextPass();
  void EndCommand();

  // One message: host text and its kind.
  void Post(std::string_view hostText, int kind) override;
  // An error of the program's own: UTF-8, or what a name from outside makes of it.
  void PostError(std::string_view text);

 private:
  void Write(std::string_view text, int kind);
  void ShowCount(std::string_view count);

  Console& console_;
  library::OutputFile* file_ = nullptr;
  UndecodableWarnings undecodable_;
  library::Utf8Converter hostText_;
  library::Utf8Converter ownText_{"UTF-8"};
};

}  // namespace cli
