#include "cli/wizard/ImportWork.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "cli/ExitStatus.h"
#include "cli/wizard/ProblemRows.h"
#include "cli/wizard/WizardServer.h"
#include "cli/wizard/WorkerProcess.h"
#include "library/import/RunLine.h"
#include "library/outputs/OutputFile.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr std::chrono::milliseconds kPause{100};
constexpr char kCommandFile[] = "command.sps";
constexpr char kProblemsFile[] = "problems.jsonl";

std::string TemporaryFolder() {
  const char* const folder = std::getenv("TMPDIR");
  std::string path = fmt::format("{}/textwizard-XXXXXX", folder != nullptr ? folder : "/tmp");
  if (mkdtemp(path.data()) == nullptr) {
    throw RequestRefused("No temporary folder can be made in " + path);
  }
  return path;
}

std::string TextOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// One import, from its order to the job's end.
class Running {
 public:
  Running(const ImportOrder& order, Job& job)
      : order_(order),
        job_(job),
        folder_(TemporaryFolder()),
        problems_(std::make_shared<Folder>(folder_)) {}

  void Run();

 private:
  // Goes with its path.
  struct Folder {
    explicit Folder(std::string where) : path(std::move(where)) {}
    ~Folder() {
      std::error_code ignored;
      if (!path.empty()) fs::remove_all(path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::string path;
  };

  std::string At(const char* name) const { return folder_ + "/" + name; }
  std::vector<std::string> Arguments() const;
  int Follow(WorkerProcess& worker);
  void TellProgress(long long bytesRead);
  void WriteCommands() const;
  std::string Errors(const WorkerProcess& worker) const;
  json Outcome() const;

  const ImportOrder& order_;
  Job& job_;
  const std::string folder_;
  const std::shared_ptr<Folder> problems_;
  long long allBytes_ = 0;
  std::string digest_;
};

std::vector<std::string> Running::Arguments() const {
  std::vector<std::string> words = {"run",
                                    At(kCommandFile),
                                    "--quiet",
                                    "--no-progress",
                                    "--digest",
                                    "--dictionary",
                                    At("dictionary.json"),
                                    "--problems",
                                    At(kProblemsFile),
                                    "--messages",
                                    At("messages.jsonl")};
  words.insert(words.end(), order_.options.begin(), order_.options.end());
  for (const std::string& output : order_.outputs) {
    if (!IsCommandFile(output)) words.insert(words.end(), {"-o", output});
  }
  return words;
}

void Running::TellProgress(long long bytesRead) {
  if (bytesRead < 0) return;
  job_.Progress({{"bytes", std::min(bytesRead, allBytes_)}, {"all_bytes", allBytes_}});
}

// Up to its end; the exit status.
int Running::Follow(WorkerProcess& worker) {
  constexpr std::string_view kDigest = "digest: ";
  bool cancelled = false;
  std::string line;
  for (;;) {
    if (job_.cancelRequested() && !std::exchange(cancelled, true)) worker.Interrupt();
    const WorkerProcess::Told told = worker.NextLine(kPause, &line);
    if (told == WorkerProcess::Told::kEnd) return worker.Wait();
    if (told == WorkerProcess::Told::kNothing) {
      TellProgress(worker.bytesRead());
    } else if (line.starts_with(kDigest)) {
      digest_ = line.substr(kDigest.size());
    }
  }
}

// The component's errors, and what the program said besides.
std::string Running::Errors(const WorkerProcess& worker) const {
  std::string errors;
  std::ifstream messages(At("messages.jsonl"));
  std::string line;
  while (std::getline(messages, line)) {
    const json message = json::parse(line, nullptr, false);
    if (!message.is_object() || message.value("kind", "") != "error") continue;
    errors += (errors.empty() ? "" : "\n") + message.value("text", "");
  }
  if (errors.empty()) errors = worker.errors();
  // The command is the page's, not a file's.
  const std::string file = At(kCommandFile);
  for (std::size_t at = errors.find(file); at != std::string::npos; at = errors.find(file)) {
    errors.replace(at, file.size(), "the command");
  }
  return errors.empty() ? "The import ended without saying why." : errors;
}

void Running::WriteCommands() const {
  for (const std::string& output : order_.outputs) {
    if (!IsCommandFile(output)) continue;
    std::string error;
    const auto file = library::OutputFile::Open(output, &error);
    if (file == nullptr) throw RequestRefused(error);
    file->Append(std::string_view(order_.command));
    if (!file->Finish() || !file->Publish()) throw RequestRefused(file->error());
  }
}

json Running::Outcome() const {
  const json dictionary = json::parse(TextOf(At("dictionary.json")));
  std::vector<std::string> options = order_.options;
  std::string commandFile = kCommandFile;
  for (const std::string& output : order_.outputs) {
    if (IsCommandFile(output)) {
      commandFile = output;
    } else {
      options.insert(options.end(), {"-o", output});
    }
  }
  return {{"cases", dictionary.at("cases")},   {"variables", dictionary.at("variables")},
          {"ledger", dictionary.at("ledger")}, {"digest", digest_},
          {"outputs", order_.outputs},         {"line", library::RunLine(options, commandFile)}};
}

void Running::Run() {
  std::error_code ignored;
  allBytes_ = static_cast<long long>(fs::file_size(order_.data, ignored));
  if (ignored) throw RequestRefused("The file is no longer there: " + order_.data);
  std::ofstream(At(kCommandFile), std::ios::binary) << order_.command;
  // Where this process works, so that names in the command mean the files that were checked.
  WorkerProcess worker({order_.program, Arguments()});
  const int status = Follow(worker);
  if (status == kExitInterrupted) return job_.Cancelled();
  if (status != kExitSuccess) throw RequestRefused(Errors(worker));
  WriteCommands();
  const json outcome = Outcome();
  job_.Keep(std::make_shared<ProblemRows>(std::exchange(problems_->path, {}), kProblemsFile));
  job_.Done(outcome);
}

}  // namespace

void RunImport(const ImportOrder& order, Job& job) { Running(order, job).Run(); }

}  // namespace cli
