// Runs the built program in a folder of its own, the way a person at a shell does.
#pragma once

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include "TreePaths.h"
#include "library/testing/TestFolder.h"

namespace program {

// How a run of the program ended.
struct Ended {
  int status = -1;  // its exit status, or minus the signal that ended it
  std::string out;
  std::string err;
};

inline int StatusOf(int waited) {
  return WIFEXITED(waited) ? WEXITSTATUS(waited) : -WTERMSIG(waited);
}

class ProgramTest : public testing::Test {
 protected:
  // Starts the program with its standard streams on files of the folder (".in", ".out", ".err").
  pid_t Start(const std::vector<std::string>& arguments, const std::string& input = "") const {
    streams_.Write("in", input);
    const pid_t child = fork();
    if (child != 0) return child;
    Redirect("in", O_RDONLY, STDIN_FILENO);
    Redirect("out", O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    Redirect("err", O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
    Execute(arguments);
  }

  // Becomes the program, in the test's folder.
  [[noreturn]] void Execute(const std::vector<std::string>& arguments) const {
    std::string path = TEXTWIZARD_BINARY_DIR "/bin/textwizard";
    std::vector<char*> words{path.data()};
    std::vector<std::string> copies = arguments;
    for (std::string& argument : copies) words.push_back(argument.data());
    words.push_back(nullptr);
    for (const auto& [name, value] : environment_) setenv(name.c_str(), value.c_str(), 1);
    signal(SIGINT, SIG_DFL);
    signal(SIGPIPE, SIG_DFL);
    if (chdir(folder_.path().c_str()) != 0) _exit(127);
    // Last: this process may have more than the limit already, and could not even grow its stack.
    if (addressSpace_ > 0) {
      const rlimit limit{addressSpace_, addressSpace_};
      setrlimit(RLIMIT_AS, &limit);
    }
    execv(path.c_str(), words.data());
    _exit(127);
  }

  Ended Wait(pid_t child) const {
    int waited = 0;
    EXPECT_EQ(waitpid(child, &waited, 0), child);
    return {StatusOf(waited), streams_.Text("out"), streams_.Text("err")};
  }

  // What a program that still runs has printed so far.
  std::string Printed() const {
    return std::filesystem::exists(streams_ / "out") ? streams_.Text("out") : std::string();
  }

  Ended Run(const std::vector<std::string>& arguments, const std::string& input = "") const {
    return Wait(Start(arguments, input));
  }

  // What the program, which succeeds, writes to a terminal on which its standard streams are.
  // `begun` is called once it has been started.
  std::string OnTerminal(
      const std::vector<std::string>& arguments, const std::function<void()>& begun = [] {}) const {
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) Execute(arguments);
    begun();
    std::string text;
    char block[4096];
    for (ssize_t length = 0; (length = read(terminal, block, sizeof block)) > 0;) {
      text.append(block, static_cast<std::size_t>(length));
    }
    close(terminal);
    int waited = 0;
    EXPECT_EQ(waitpid(child, &waited, 0), child);
    EXPECT_EQ(StatusOf(waited), 0) << text;
    return text;
  }

  // Runs the program from a shell; `line` is what stands behind its name, redirections too.
  Ended Shell(const std::string& line, const std::string& before = "") const {
    const std::string command = "cd '" + folder_.path().string() + "' && " + before +
                                "'" TEXTWIZARD_BINARY_DIR "/bin/textwizard' >'" +
                                (streams_ / "out") + "' 2>'" + (streams_ / "err") + "' " + line;
    const int status = StatusOf(std::system(command.c_str()));
    return {status, streams_.Text("out"), streams_.Text("err")};
  }

  // Runs the command file `command` quietly with more arguments.
  Ended Quiet(const std::string& command, std::vector<std::string> arguments = {}) const {
    folder_.Write("command.sps", command);
    arguments.insert(arguments.begin(), {"run", "--quiet", "command.sps"});
    Ended ended = Run(arguments);
    std::filesystem::remove(folder_ / "command.sps");
    return ended;
  }

  // The same, with what a person is shown.
  Ended Shown(const std::string& command, std::vector<std::string> arguments = {}) const {
    folder_.Write("command.sps", command);
    arguments.insert(arguments.begin(), {"run", "command.sps"});
    return Run(arguments);
  }

  nlohmann::json Json(const std::string& name) const {
    return nlohmann::json::parse(folder_.Text(name));
  }

  // The imports most tests run: town.csv and a command for it.
  void WriteTowns() const {
    folder_.Write("town.csv",
                  "id,town,founded,fee\n"
                  "1,Bern,05/15/1891,2.5\n"
                  "2,\"Chur, Graubuenden\",,1000000\n"
                  "3,Olten,01/31/2020,none\n");
  }
  static std::string Towns(const std::string& more = "") {
    return "GET DATA /TYPE=TXT /FILE='town.csv' /ARRANGEMENT=DELIMITED /DELCASE=LINE\n"
           "  /FIRSTCASE=2 /DELIMITERS=',' /QUALIFIER='\"' " +
           more + " /VARIABLES=id F4.0 town A20 founded ADATE10 fee F8.2.\n";
  }

  library::TestFolder folder_;
  std::vector<std::pair<std::string, std::string>> environment_;
  // Bytes of memory that the program can have; 0 is no limit.
  rlim_t addressSpace_ = 0;

 private:
  void Redirect(const char* name, int flags, int target) const {
    const int descriptor = open((streams_ / name).c_str(), flags, 0600);
    if (descriptor < 0 || dup2(descriptor, target) < 0) _exit(126);
    close(descriptor);
  }

  library::TestFolder streams_{"streams"};
};

}  // namespace program
