#include "cli/run/RunOptions.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <sys/stat.h>

namespace cli {
namespace {

constexpr std::string_view kNumberMark = "%d";
constexpr std::string_view kStandardOutput = "-";
constexpr std::string_view kStandardInput = "-";

struct Output {
  const char* option;
  std::string name;
  bool ofOneCommand = true;  // each command writes one of its own
};

std::filesystem::path Resolved(const std::string& name) {
  std::error_code failed;
  return std::filesystem::weakly_canonical(std::filesystem::absolute(name, failed), failed);
}

// The name that a file has however it is written.
std::string NameOf(const std::string& name) {
  return name == kStandardOutput ? name : Resolved(name).string();
}

// The files that are read, by their names and, where they are there and regular files, by their
// numbers on their devices: a file may have several names.
class InputFiles {
 public:
  InputFiles(const RunOptions& options, const std::vector<ListedCommand>& commands) {
    if (!options.commandFile.empty() && options.commandFile != kStandardInput) {
      Add(options.commandFile, "the command file");
    }
    for (std::size_t index = 0; index < commands.size(); ++index) {
      const std::string& file = commands[index].dataFile;
      if (file.empty() || file == kStandardInput) continue;
      Add(file, commands.size() == 1 ? "the data file"
                                     : fmt::format("the data file of command {}", index + 1));
    }
  }
  // What `name` is among them; empty when it is none.
  std::string Find(const std::string& name) const {
    const auto named = byName_.find(NameOf(name));
    if (named != byName_.end()) return named->second;
    const auto numbered = byNumber_.find(NumberOf(name));
    return numbered != byNumber_.end() ? numbered->second : std::string();
  }

 private:
  using Number = std::optional<std::pair<dev_t, ino_t>>;
  static Number NumberOf(const std::string& name) {
    struct stat file {};
    if (stat(name.c_str(), &file) != 0 || !S_ISREG(file.st_mode)) return std::nullopt;
    return std::pair(file.st_dev, file.st_ino);
  }
  void Add(const std::string& name, const std::string& what) {
    byName_.try_emplace(NameOf(name), what);
    if (const Number number = NumberOf(name)) byNumber_.try_emplace(number, what);
  }

  std::map<std::string, std::string> byName_;
  std::map<Number, std::string> byNumber_;
};

// How many things are read from standard input.
std::ptrdiff_t ReadersOfInput(const RunOptions& options,
                              const std::vector<ListedCommand>& commands) {
  return (options.commandFile == kStandardInput ? 1 : 0) +
         std::count_if(commands.begin(), commands.end(), [](const ListedCommand& command) {
           return command.dataFile == kStandardInput;
         });
}

// A device or a pipe: what is written there overwrites nothing.
bool IsStream(const std::string& name) {
  struct stat file {};
  return stat(name.c_str(), &file) == 0 && !S_ISREG(file.st_mode);
}

// Says which file the outputs would write twice, or which input they would overwrite; empty when
// they do neither.
std::string Overwritten(const std::vector<Output>& outputs, const RunOptions& options,
                        const std::vector<ListedCommand>& commands) {
  const InputFiles inputs(options, commands);
  std::map<std::string, const char*> written;
  for (const Output& output : outputs) {
    if (output.name.empty()) continue;
    const bool perCommand = IsPerCommand(output.name);
    const std::size_t names = perCommand ? std::max<std::size_t>(commands.size(), 1) : 1;
    for (std::size_t number = 1; number <= names; ++number) {
      const std::string name = NameForCommand(output.name, static_cast<int>(number));
      const auto [other, isNew] = written.try_emplace(NameOf(name), output.option);
      if (!isNew) return fmt::format("{} and {} are both {}", other->second, output.option, name);
      if (name == kStandardOutput || IsStream(name)) continue;
      if (const std::string input = inputs.Find(name); !input.empty()) {
        return fmt::format("{} {} would overwrite {}", output.option, name, input);
      }
    }
    const bool itself = !perCommand && output.ofOneCommand;
    if (itself && output.name != kStandardOutput && !options.asOne && SeveralRun(commands)) {
      return fmt::format(
          "{} {}: the file holds several commands, and the second would overwrite the first's; "
          "put %d, the command's number, into the name",
          output.option, output.name);
    }
  }
  return {};
}

}  // namespace

std::vector<CasesTarget> CasesTargets(const RunOptions& options) {
  const auto formatOf = [](const std::string& name) {
    return name == kStandardOutput ? library::CaseFormat::kCsv : library::CaseFormatOfFile(name);
  };
  std::vector<CasesTarget> targets;
  if (!options.cases.empty()) {
    targets.push_back(
        {"--cases", options.cases, options.format ? options.format : formatOf(options.cases)});
  }
  for (const std::string& name : options.outputs) {
    targets.push_back({"--output", name, formatOf(name)});
  }
  return targets;
}

int WorkersOf(const RunOptions& options) {
  return CasesTargets(options).empty() ? options.workers
                                       : library::WorkersWhileWriting(options.workers);
}

library::RewritingOptions RewritingOf(const RunOptions& options) {
  return {.joinQuotedLines = options.joinQuotedLines,
          .backslashEscapes = options.backslashEscapes,
          .keepStrayQualifiers = options.report.keepStrayQualifiers};
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
  const auto isStandard = [](const std::string& name) { return name == kStandardOutput; };
  return isStandard(options.cases) || isStandard(options.dictionary) ||
         isStandard(options.messages) || isStandard(options.commandOutput) ||
         isStandard(options.report.problems) || isStandard(options.report.rejects) ||
         std::any_of(options.outputs.begin(), options.outputs.end(), isStandard);
}

bool SeveralRun(const std::vector<ListedCommand>& commands) {
  return std::count_if(commands.begin(), commands.end(),
                       [](const ListedCommand& command) { return command.canRun; }) > 1;
}

std::string WhatIsWrong(const RunOptions& options, const std::vector<ListedCommand>& commands) {
  std::vector<Output> outputs;
  for (const CasesTarget& target : CasesTargets(options)) {
    if (!target.format) {
      return fmt::format("{} {}: the ending names no format; let it be {}{}", target.option,
                         target.name, library::CaseFormatNames(),
                         target.name == options.cases ? ", or name the format with --format" : "");
    }
    outputs.push_back({target.option, target.name});
  }
  if (options.format && options.cases.empty()) return "--format needs --cases";
  if (options.asOne && options.parts.single) return "--part is of one command, not of several";
  if (options.asOne && !options.report.rejects.empty()) {
    return "--rejects is of one file: import the files with problems one by one";
  }
  if (ReadersOfInput(options, commands) > 1) {
    return "standard input can be read only once, but more than one of the command file and the "
           "data files is -";
  }

  if (std::string what = WhatIsWrong(options.report); !what.empty()) return what;
  outputs.push_back({"--dictionary", options.dictionary});
  outputs.push_back({"--messages", options.messages, false});
  outputs.push_back({"--command", options.commandOutput});
  outputs.push_back({"--problems", options.report.problems});
  outputs.push_back({"--rejects", options.report.rejects});
  return Overwritten(outputs, options, commands);
}

}  // namespace cli
