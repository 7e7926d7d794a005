#include "cli/wizard/WizardSubcommand.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include "HostFramework/embedded/messages/Attention.h"
#include "HostFramework/embedded/text/HostText.h"
#include "cli/ExitStatus.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/Interrupt.h"
#include "cli/wizard/PageService.h"
#include "cli/wizard/WizardServer.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr int kHighestPort = 65535;
constexpr std::chrono::milliseconds kPause{50};

constexpr char kExamples[] = R"(Examples:
  textwizard wizard data.csv
  textwizard wizard --root ~/surveys
  textwizard wizard data.csv --no-open --port 8080

It prints the address of the page, one line. Only this machine can open it, and only who has the
address. Ctrl-C ends it.
)";

struct WizardOptions {
  std::string file;
  std::string root;
  int port = 0;
  bool noOpen = false;
  bool once = false;
};

// The folder that the page may see: the one that was given, else the file's, else this one.
std::string RootOf(const WizardOptions& options) {
  if (!options.root.empty()) return options.root;
  if (options.file.empty()) return ".";
  const fs::path folder = fs::path(options.file).parent_path();
  return folder.empty() ? "." : folder.string();
}

// Hands the address to the desktop; who has none opens it by hand.
void OpenBrowser(const std::string& address) {
  std::string program = "xdg-open";
  std::string argument = address;
  char* const arguments[] = {program.data(), argument.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  // What a browser says is nobody's answer.
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  static_cast<void>(posix_spawnp(&process, program.c_str(), &actions, nullptr, arguments, environ));
  posix_spawn_file_actions_destroy(&actions);
}

int Serve(const WizardOptions& options) {
  Console console({});
  HandleInterrupts();
  embedded::SetCodePage(nullptr);
  try {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    PageService::Settings settings{error ? "textwizard" : program.string(), RootOf(options)};
    if (!options.file.empty()) {
      const RootFolder root(settings.root);
      const std::optional<std::string> name = root.NameOf(options.file);
      if (!name || !root.File(*name)) {
        console.Error(fmt::format("{}: there is no such file in {}", options.file, root.path()));
        return kExitUsage;
      }
      settings.file = *name;
    }
    PageService service(settings);
    WizardServer server(options.port, service);
    server.Start();
    console.PrintResult(server.Address());
    if (!console.Flush()) return kExitUsage;
    if (!options.noOpen) OpenBrowser(server.Address());
    while (!embedded::AttentionRequested() && !(options.once && server.PageClosed())) {
      std::this_thread::sleep_for(kPause);
    }
    server.Stop();
  } catch (const std::exception& error) {
    console.Error(error.what());
    return kExitUsage;
  }
  return kExitSuccess;
}

}  // namespace

void AddWizard(CLI::App& program, int* status) {
  CLI::App* wizard =
      program.add_subcommand("wizard", "Serves the import wizard as a page on this machine");
  const auto options = std::make_shared<WizardOptions>();
  wizard->add_option("FILE", options->file, "The file to open (default: the page asks)")
      ->type_name("FILE");
  wizard->add_option("--port", options->port, "The port (default: a free one)")
      ->type_name("N")
      ->check(CLI::Range(0, kHighestPort).description(""));
  wizard
      ->add_option("--root", options->root,
                   "The folder that the page may see (default: the file's, or this one)")
      ->type_name("DIR");
  wizard->add_flag("--no-open", options->noOpen, "Starts no browser");
  wizard->add_flag("--once", options->once, "Ends when the page is closed");
  wizard->footer(kExamples);
  wizard->callback([options, status] { *status = Serve(*options); });
}

}  // namespace cli
