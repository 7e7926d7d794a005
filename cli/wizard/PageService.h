// What the wizard's server does for the page: files below a folder, questions about them, imports.
#pragma once

#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "cli/wizard/FirstLook.h"
#include "cli/wizard/RootFolder.h"
#include "cli/wizard/WizardServer.h"

namespace cli {

// Names of files in requests are below the root; any other is refused, and so is one in a command.
// Every question about a file, and every import, has a process of its own.
class PageService : public WizardService {
 public:
  struct Settings {
    std::string program;  // this program's file
    std::string root;     // the folder that the page may see
    // The file that the page opens, by its name below the root; empty: the user chooses.
    std::string file{};
  };

  // Begins to look at the file. Throws std::runtime_error when the root cannot be read.
  explicit PageService(Settings settings);

  std::optional<nlohmann::json> Answer(std::string_view name, const nlohmann::json& body) override;
  std::function<void(Job&)> Work(std::string_view name, const nlohmann::json& body) override;

 private:
  nlohmann::json Files(const nlohmann::json& body) const;
  nlohmann::json EditedCommand(const nlohmann::json& body) const;
  nlohmann::json Start();
  nlohmann::json Ask(std::string_view name, const nlohmann::json& body,
                     const std::stop_token& stop = {}) const;
  std::function<void(Job&)> Import(const nlohmann::json& body) const;
  // The request with the path of the file that it names.
  nlohmann::json WithPath(const nlohmann::json& body) const;
  // The name below the root of a file that a command names.
  std::string NameBelowRoot(const std::string& path) const;

  const Settings settings_;
  const RootFolder root_;
  // Of the file that the page opens on, where there is one.
  std::optional<FirstLook> firstLook_;
};

}  // namespace cli
