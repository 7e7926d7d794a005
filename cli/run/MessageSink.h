// Where the messages of the component go: to the console, or to a file as JSON Lines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/Messages.h"
#include "cli/terminal/Console.h"
#include "library/command/CommandFault.h"
#include "library/import/ImportMessages.h"
#include "library/import/UndecodableWarnings.h"
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

  // Keeps errors back until their place is known.
  void HoldErrors() { holding_ = true; }
  // Writes the errors that were kept back, the last one with what is known of it: `fault` may be
  // null, `file` is the command file as messages name it.
  void ReleaseErrors(const library::CommandFault* fault, const std::string& file);

 private:
  // What is known of an error beyond its text, in UTF-8.
  struct ErrorDetails {
    std::string file;
    int line = 0;
    int column = 0;
    std::string words;
    std::string variable;
    std::string wayOut;
  };
  ErrorDetails DetailsOf(const library::CommandFault& fault, const std::string& file);
  void Write(std::string_view text, int kind);
  void WriteError(std::string_view text, const ErrorDetails* details);
  void AppendDetails(const ErrorDetails& details);
  void WriteToFile(std::string_view text, int kind, const ErrorDetails* details);
  void ShowCount(std::string_view count);

  Console& console_;
  library::OutputFile* file_ = nullptr;
  library::UndecodableWarnings undecodable_;
  bool holding_ = false;
  std::vector<std::string> held_;  // UTF-8
  library::Utf8Converter hostText_;
  library::Utf8Converter ownText_{"UTF-8"};
};

}  // namespace cli
