#include "cli/wizard/PageService.h"

#include <array>
#include <chrono>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "cli/run/CommandFile.h"
#include "cli/wizard/ImportWork.h"
#include "cli/wizard/WorkerProcess.h"
#include "cli/wizard/worker/Worker.h"

namespace cli {
namespace {

using nlohmann::json;

// An answer that takes longer is given up; so is a reading that says nothing for so long.
constexpr std::chrono::seconds kPatience{60};
constexpr std::chrono::milliseconds kPause{100};
// A page that starts waits so long for what it would ask next; then it shows that it is waiting.
constexpr std::chrono::milliseconds kStartPatience{200};

constexpr std::array<std::string_view, 4> kQuestions = {"sniff", "raw", "encodings", "head"};

WorkerProcess::Settings WorkerFor(const std::string& program, std::string_view name,
                                  const json& body) {
  const json question = {{"request", name}, {"body", body}};
  return {
      program, {kWorkerSubcommand}, question.dump(-1, ' ', false, json::error_handler_t::replace)};
}

[[noreturn]] void Refuse(const json& failure) {
  const json& error = failure.at("error");
  throw RequestRefused(error.at("text"), error.value("number", 0), error.value("line", 0),
                       error.value("column", 0));
}

[[noreturn]] void TellBroken(WorkerProcess& worker) {
  const int status = worker.Wait();
  throw RequestRefused(fmt::format("Reading the file ended without an answer (status {}). {}",
                                   status, worker.errors()));
}

}  // namespace

PageService::PageService(Settings settings)
    : settings_(std::move(settings)), root_(settings_.root) {
  if (const auto path = settings_.file.empty() ? std::nullopt : root_.File(settings_.file)) {
    firstLook_.emplace([this](std::string_view name, const json& body,
                              const std::stop_token& stop) { return Ask(name, body, stop); },
                       *path);
  }
}

json PageService::WithPath(const json& body) const {
  const std::string name = body.at("path");
  const auto path = root_.File(name);
  if (!path) throw RequestRefused("There is no file of that name that this page may read: " + name);
  json with = body;
  with["path"] = *path;
  return with;
}

std::string PageService::NameBelowRoot(const std::string& path) const {
  const auto name = root_.NameOf(path);
  if (!name || !root_.File(*name)) {
    throw RequestRefused(fmt::format(
        "The command names a file that this page may not read: {}. It reads files in {}.", path,
        root_.path()));
  }
  return *name;
}

std::optional<json> PageService::Answer(std::string_view name, const json& body) {
  if (name == "start") return Start();
  if (name == "files") return Files(body);
  if (name == "command") return EditedCommand(body);
  for (const std::string_view question : kQuestions) {
    if (name != question) continue;
    const json with = WithPath(body);
    if (firstLook_) {
      if (std::optional<json> known = firstLook_->Take(name, with)) return known;
    }
    return Ask(name, with);
  }
  return std::nullopt;
}

// With the answers to the page's first questions, where they are known already.
json PageService::Start() {
  json answer = {{"path", settings_.file},
                 {"root", root_.path()},
                 {"counts", {{"raw", FirstLook::kRecords}, {"head", FirstLook::kCases}}}};
  if (firstLook_) {
    if (std::optional<json> first = firstLook_->Whole(kStartPatience)) {
      answer["first"] = std::move(*first);
    }
  }
  return answer;
}

json PageService::Files(const json& body) const {
  const std::string folder = body.at("folder");
  const auto entries = root_.List(folder);
  if (!entries) throw RequestRefused("There is no such folder: " + folder);
  json list = json::array();
  for (const FolderEntry& entry : *entries) {
    list.push_back({{"name", entry.name}, {"folder", entry.folder}, {"size", entry.size}});
  }
  return {{"folder", folder}, {"root", root_.path()}, {"entries", list}};
}

json PageService::EditedCommand(const json& body) const {
  json answer = Ask("command", body);
  answer["path"] = NameBelowRoot(answer.at("path"));
  return answer;
}

json PageService::Ask(std::string_view name, const json& body, const std::stop_token& stop) const {
  WorkerProcess worker(WorkerFor(settings_.program, name, body));
  std::string line;
  const auto until = std::chrono::steady_clock::now() + kPatience;
  while (std::chrono::steady_clock::now() < until && !stop.stop_requested()) {
    const WorkerProcess::Told told = worker.NextLine(kPause, &line);
    if (told == WorkerProcess::Told::kNothing) continue;
    if (told == WorkerProcess::Told::kEnd) TellBroken(worker);
    json event = json::parse(line);
    if (event.at("name") == "done") return std::move(event.at("data"));
    if (event.at("name") == "failed") Refuse(event.at("data"));
  }
  throw RequestRefused("Reading the file takes too long.");
}

std::function<void(Job&)> PageService::Work(std::string_view name, const json& body) {
  if (name == "import") return Import(body);
  if (name != "types") return nullptr;
  return [program = settings_.program, question = WithPath(body)](Job& job) {
    WorkerProcess worker(WorkerFor(program, "types", question));
    std::string line;
    bool cancelled = false;
    for (;;) {
      if (job.cancelRequested() && !std::exchange(cancelled, true)) worker.Interrupt();
      const WorkerProcess::Told told = worker.NextLine(kPause, &line);
      if (told == WorkerProcess::Told::kNothing) continue;
      if (told == WorkerProcess::Told::kEnd) {
        if (cancelled) return job.Cancelled();
        TellBroken(worker);
      }
      const json event = json::parse(line);
      const std::string kind = event.at("name");
      if (kind == "progress") job.Progress(event.at("data"));
      if (kind == "cancelled") return job.Cancelled();
      if (kind == "done") return job.Done(event.at("data"));
      if (kind == "failed") return job.Failed(event.at("data"));
    }
  };
}

std::function<void(Job&)> PageService::Import(const json& body) const {
  ImportOrder order;
  order.program = settings_.program;
  order.command = body.at("command");
  const std::vector<ListedCommand> commands = CommandsOf(order.command);
  if (commands.size() != 1 || !commands.front().canRun) {
    throw RequestRefused("The command is not one GET DATA command.");
  }
  const auto data = root_.File(NameBelowRoot(commands.front().dataFile));
  order.data = data.value();
  order.options = CheckedOptions(body.value("options", json::array()));
  const bool replace = body.value("replace", false);
  for (const auto& name : body.at("outputs")) {
    const auto path = root_.Output(name.get<std::string>());
    if (!path) {
      throw RequestRefused("There is no folder for that output below the root: " +
                           name.get<std::string>());
    }
    order.outputs.push_back(CheckedOutput(*path, order, replace));
  }
  return [order](Job& job) { RunImport(order, job); };
}

}  // namespace cli
