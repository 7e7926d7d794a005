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
constexpr std::string_view kStandardInput = "-";

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

// How many things are read from standard input.
std::ptrdiff_t ReadersOfInput(const RunOptions& options,
                              const std::vector<CommandOutline>& commands) {
  return (options.commandFile == kStandardInput ? 1 : 0) +
         std::count_if(commands.begin(), commands.end(), [](const CommandOutline& command) {
           return command.dataFile == kStandardInput;
         });
}

// The file that both outputs are for the same one of `commands` commands; empty when there is none.
std::string CommonName(const Output& one, const Output& other, std::size_t commands) {
  const int last = std::max(1, static_cast<int>(commands));
  for (int number = 1; number <= last; ++number) {
    std::string name = NameForCommand(other.name, number);
    if (NameSameFile(NameForCommand(one.name, number), name)) return name;
  }
  return {};
}

// Says what an output, a file, would overwrite; empty when nothing.
std::string Overwritten(const Output& output, const RunOptions& options,
                        const std::vector<CommandOutline>& commands) {
  if (options.commandFile != kStandardInput && NameSameFile(output.name, options.commandFile)) {
    return fmt::format("{} {} would overwrite the command file", output.option, output.name);
  }
  const bool itself = !IsPerCommand(output.name) && &output.name != &options.messages;
  if (itself && SeveralRun(commands)) {
    return fmt::format(
        "{} {}: the file holds several commands, and the second would overwrite the first's; put "
        "%d, the command's number, into the name",
        output.option, output.name);
  }
  int number = 0;
  for (const CommandOutline& command : commands) {
    const std::string name = NameForCommand(output.name, ++number);
    if (SameFile(name, command.dataFile)) {
      return fmt::format("{} {} would overwrite the data file", output.option, name);
    }
  }
  return {};
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
  if (ReadersOfInput(options, commands) > 1) {
    return "standard input can be read only once, but more than one of the command file and the "
           "data files is -";
  }

  const Output outputs[] = {{"--cases", options.cases},
                            {"--dictionary", options.dictionary},
                            {"--messages", options.messages}};
  for (const Output& output : outputs) {
    if (output.name.empty()) continue;
    for (const Output* other = outputs; other != &output; ++other) {
      if (other->name.empty()) continue;
      if (std::string name = CommonName(*other, output, commands.size()); !name.empty()) {
        return fmt::format("{} and {} are both {}", other->option, output.option, name);
      }
    }
    if (output.name == kStandardOutput) continue;
    if (std::string what = Overwritten(output, options, commands); !what.empty()) return what;
  }
  return {};
}

}  // namespace cli
