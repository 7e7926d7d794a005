#include "cli/run/MessageSink.h"

#include <fmt/format.h>

#include "library/outputs/JsonText.h"

namespace cli {
namespace {

// The counts that tell that a display of progress is over.
bool EndsProgress(std::string_view count) { return count == "-1" || count == "4294967295"; }

}  // namespace

MessageSink::MessageSink(Console& console) : console_(console) {}

void MessageSink::WriteTo(library::OutputFile* file) { file_ = file; }

void MessageSink::Post(std::string_view hostText, int kind) {
  if (UndecodableWarnings::IsOne(hostText) && !undecodable_.Take(hostText)) return;
  Write(hostText_.ToUtf8(hostText), kind);
}

void MessageSink::BeginCommand() { undecodable_.BeginCommand(); }

void MessageSink::BeginNextPass() { undecodable_.BeginNextPass(); }

void MessageSink::EndCommand() {
  if (const std::string rest = undecodable_.Rest(); !rest.empty()) Write(rest, kMessageWarning);
  undecodable_.BeginCommand();
}

void MessageSink::PostError(std::string_view text) { Write(ownText_.ToUtf8(text), kMessageError); }

void MessageSink::Write(std::string_view text, int kind) {
  if (kind == kMessageProgress) {
    ShowCount(text);
    return;
  }
  if (file_ != nullptr) {
    const char* name = kind == kMessageError     ? "error"
                       : kind == kMessageWarning ? "warning"
                                                 : "log";
    file_->Append("{\"kind\":\"");
    file_->Append(name);
    file_->Append("\",\"text\":");
    library::AppendJsonString(*file_, text);
    file_->Append("}\n");
    // Whoever reads a pipe gets each message when it is posted.
    if (file_->target() == "-") file_->Flush();
  } else if (kind == kMessageError) {
    console_.Error(text);
  } else if (kind == kMessageWarning) {
    console_.Warning(text);
  } else {
    console_.Log(text);
  }
}

void MessageSink::ShowCount(std::string_view count) {
  if (EndsProgress(count)) {
    console_.ClearProgress();
  } else if (console_.showsProgress()) {
    console_.ShowProgress(fmt::format("{} records, finding the types of the variables", count));
  }
}

}  // namespace cli
