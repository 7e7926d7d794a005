#include "cli/run/MessageSink.h"

#include <algorithm>

#include <fmt/format.h>

#include "cli/terminal/VisibleText.h"
#include "library/outputs/JsonText.h"

namespace cli {
namespace {

// Columns of the command's words in a message.
constexpr std::size_t kWidestWords = 70;

// The counts that tell that a display of progress is over.
bool EndsProgress(std::string_view count) { return count == "-1" || count == "4294967295"; }

}  // namespace

MessageSink::MessageSink(Console& console) : console_(console) {}

void MessageSink::WriteTo(library::OutputFile* file) { file_ = file; }

void MessageSink::Post(std::string_view hostText, int kind) {
  if (library::UndecodableWarnings::IsOne(hostText) && !undecodable_.Take(hostText)) return;
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
  } else if (kind == kMessageError && holding_) {
    held_.emplace_back(text);
  } else if (kind == kMessageError) {
    WriteError(text, nullptr);
  } else if (file_ != nullptr) {
    WriteToFile(text, kind, nullptr);
  } else if (kind == kMessageWarning) {
    console_.Warning(text);
  } else {
    console_.Log(text);
  }
}

void MessageSink::ReleaseErrors(const library::CommandFault* fault, const std::string& file) {
  holding_ = false;
  for (std::size_t index = 0; index < held_.size(); ++index) {
    if (fault == nullptr || index + 1 < held_.size()) {
      WriteError(held_[index], nullptr);
      continue;
    }
    const ErrorDetails details = DetailsOf(*fault, file);
    WriteError(held_[index] + std::string(hostText_.ToUtf8(fault->completion)), &details);
  }
  held_.clear();
}

MessageSink::ErrorDetails MessageSink::DetailsOf(const library::CommandFault& fault,
                                                 const std::string& file) {
  ErrorDetails details;
  details.file = ownText_.ToUtf8(file);
  details.line = fault.place.line;
  details.column = fault.place.column;
  details.words = hostText_.ToUtf8(fault.place.words);
  details.variable = hostText_.ToUtf8(fault.variable);
  details.wayOut = hostText_.ToUtf8(fault.wayOut);
  return details;
}

void MessageSink::WriteError(std::string_view text, const ErrorDetails* details) {
  if (file_ != nullptr) {
    WriteToFile(text, kMessageError, details);
    return;
  }
  std::string lines(text);
  if (details != nullptr && details->line > 0) {
    std::string words = details->words;
    std::replace_if(
        words.begin(), words.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    lines += fmt::format("\n  {}, line {}, column {}: {}", details->file, details->line,
                         details->column, VisibleText(words, kWidestWords));
  }
  if (details != nullptr && !details->variable.empty()) {
    lines += fmt::format("\n  variable {}", VisibleText(details->variable, kWidestWords));
    if (!details->wayOut.empty()) lines += ": " + details->wayOut;
  } else if (details != nullptr && !details->wayOut.empty()) {
    lines += "\n  " + details->wayOut;
  }
  console_.Error(lines);
}

void MessageSink::WriteToFile(std::string_view text, int kind, const ErrorDetails* details) {
  const char* name = kind == kMessageError ? "error" : kind == kMessageWarning ? "warning" : "log";
  file_->Append("{\"kind\":\"");
  file_->Append(name);
  file_->Append("\",\"text\":");
  library::AppendJsonString(*file_, text);
  if (details != nullptr) AppendDetails(*details);
  file_->Append("}\n");
  // Whoever reads a pipe gets each message when it is posted.
  if (file_->target() == "-") file_->Flush();
}

void MessageSink::AppendDetails(const ErrorDetails& details) {
  const auto append = [this](const char* key, const std::string& text) {
    if (text.empty()) return;
    file_->Append(fmt::format(",\"{}\":", key));
    library::AppendJsonString(*file_, text);
  };
  if (details.line > 0) {
    file_->Append(fmt::format(",\"line\":{},\"column\":{}", details.line, details.column));
    append("words", details.words);
  }
  append("variable", details.variable);
  append("help", details.wayOut);
}

void MessageSink::ShowCount(std::string_view count) {
  if (EndsProgress(count)) {
    console_.ClearProgress();
  } else if (console_.showsProgress()) {
    console_.ShowProgress(fmt::format("{} records, finding the types of the variables", count));
  }
}

}  // namespace cli
