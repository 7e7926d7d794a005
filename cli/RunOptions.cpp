#include "cli/RunOptions.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string_view>

#include <fmt/format.h>

#include "cli/OutputFile.h"

namespace cli {
namespace {

constexpr std::string_view kNumberMark = "%d";
constexpr std::string_view kStandardOutput = "-";

struct Output {
  const char* option;
  const std::string& name;
};

std::filesystem::path Resolved(const std::string& name) {
  std::error_code failed;
  return std::filesystem::weakly_canonical(std::filesystem::absolute(name, failed), failed);
}

// Names that are the same file however they are written.
bool NameSameFile(const std::string& left, const std::string& right) {
  if (left == right) return true;
  if (left == kStandardOutput || right == kStandardOutput) return false;
  return Resolved(left) == Resolved(right);
}

}  // namespace

std::optional<CaseFormat> CaseFormatOf(const RunOptions& options) {
  if (options.format) return options.format;
  if (options.cases == kStandardOutput) return CaseFormat::kCsv;
  std::string ending = std::filesystem::path(options.cases).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char character) { return std::tolower(character); });
  if (ending == ".csv") return CaseFormat::kCsv;
  if (ending == ".tsv") return CaseFormat::kTsv;
  if (ending == ".jsonl") return CaseFormat::kJsonLines;
  return std::nullopt;
}

bool IsPerCommand(const std::string& name) { return name.find(kNumberMark) != std::string::npos; }

std::string NameForCommand(const std::string& name, int number) {
  std::string result = name;
  const std::string digits = std::to_string(number);
  for (std::size_t at = result.find(kNumberMark); at != std::string::npos;
       at = result.find(kNumberMark, at + digits.size())) {
    result.replace(at, kNumberMark.size(), digits);
  }
  return result;
}

bool WritesStandardOutput(const RunOptions& options) {
  return options.cases == kStandardOutput || options.dictionary == kStandardOutput ||
         options.messages == kStandardOutput;
}

bool SeveralRun(const std::vector<CommandOutline>& commands) {
  return std::count_if(commands.begin(), commands.end(),
                       [](const CommandOutline& command) { return command.canRun; }) > 1;
}

std::string WhatIsWrong(const RunOptions& options, const std::vector<CommandOutline>& commands) {
  if (!options.cases.empty() && !CaseFormatOf(options)) {
    return fmt::format(
        "--cases {}: the ending is none of .csv, .tsv and .jsonl; name the format with --format",
        options.cases);
  }
  if (options.format && options.cases.empty()) return "--format needs --cases";

  const Output outputs[] = {{"--cases", options.cases},
                            {"--dictionary", options.dictionary},
                            {"--messages", options.messages}};
  for (const Output& output : outputs) {
    if (output.name.empty()) continue;
    for (const Output* other = outputs; other != &output; ++other) {
      if (!other->name.empty() && NameSameFile(other->name, output.name)) {
        return fmt::format("{} and {} are both {}", other->option, output.option, output.name);
      }
    }
    if (output.name == kStandardOutput) continue;
    if (options.commandFile != kStandardOutput && NameSameFile(output.name, options.commandFile)) {
      return fmt::format("{} {} would overwrite the command file", output.option, output.name);
    }
    const bool overwrites = !IsPerCommand(output.name) && &output.name != &options.messages;
    if (SeveralRun(commands) && overwrites) {
      return fmt::format(
          "{} {}: the file holds several commands, and the second would overwrite the first's; put "
          "%d, the command's number, into the name",
          output.option, output.name);
    }
    for (std::size_t index = 0; index < commands.size(); ++index) {
      const std::string name = NameForCommand(output.name, static_cast<int>(index + 1));
      if (SameFile(name, commands[index].dataFile)) {
        return fmt::format("{} {} would overwrite the data file", output.option, name);
      }
    }
  }
  return {};
}

}  // namespace cli
