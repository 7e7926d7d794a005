#include "library/command/CommandFault.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "library/command/CommandOutline.h"
#include "library/command/CommandWalk.h"
#include "library/command/WayOut.h"
#include "model/MessageText.h"

namespace library {
namespace {

using textwizard::SubcommandResult;
using textwizard::VariableResult;

// The subcommand that a message of the check of all subcommands is about.
const char* SubcommandOf(std::uint32_t message, const CommandOutline& outline) {
  switch (message) {
    case textwizard::kFixCaseWithDelimited:
      return "FIXCASE";
    case textwizard::kDelimitedWithFixed:
      return outline.Find("DELCASE") != nullptr ? "DELCASE" : "DELIMITERS";
    case textwizard::kQualifierIsDelimiter:
      return "QUALIFIER";
    case textwizard::kVariableCountDiffers:
      return "DELCASE";
    default:
      return "FILE";
  }
}

class FaultFinder {
 public:
  FaultFinder(const std::vector<embedded::CommandToken>& tokens, std::string_view source,
              CommandPlace command)
      : words_(tokens, source),
        outline_(OutlineOf(tokens, source)),
        command_(std::move(command)),
        walk_(words_) {}

  CommandFault Find(const std::string& fileWayOut) {
    textwizard::TxtWzParser parser(words_.text().c_str(), nullptr);
    const bool accepted = parser.ParseToExecutor() != nullptr;
    fault_.message = accepted ? textwizard::kReadFailed : parser.GetErrorMesID();
    if (accepted) {
      AtSubcommand("FILE");
      fault_.wayOut = fileWayOut;
    } else if (!FindRefusedSubcommand()) {
      if (!walk_.parser().VerifySyntax()) {
        FindMisfit();
      } else if (!FindRefusedVariable()) {
        AtSubcommand(SubcommandOf(fault_.message, outline_));
      }
    }
    return std::move(fault_);
  }

 private:
  void AtSubcommand(const char* name) {
    const OutlinedSubcommand* subcommand = outline_.Find(name);
    fault_.place = subcommand != nullptr ? subcommand->place : command_;
    fault_.wayOut =
        fault_.message == textwizard::kVariableCountDiffers
            ? "the list defines " + std::to_string(variables_) + "; write DELCASE=VARIABLES " +
                  std::to_string(variables_)
            : SubcommandWayOut(fault_.message, name, subcommand ? subcommand->value : "");
  }

  // The subcommand at which the parser stops; leaves the walk behind the subcommands otherwise.
  bool FindRefusedSubcommand() {
    SubcommandResult result = textwizard::kSubcommand;
    while (result == textwizard::kSubcommand) result = walk_.Next();
    if (result != textwizard::kSubcommandError) return false;
    const textwizard::Subcommand& subcommand = walk_.subcommand();
    fault_.place = walk_.Place();
    fault_.wayOut = SubcommandWayOut(fault_.message, subcommand.name, subcommand.value);
    // The value is a keyword whose number is missing.
    if (MissesNumber() && walk_.parser().scratch().empty()) {
      fault_.completion = subcommand.value + " alone";
    }
    return true;
  }

  bool MissesNumber() const {
    return fault_.message == textwizard::kBadImportCase ||
           fault_.message == textwizard::kBadDelCase;
  }

  // What does not fit together, or is missing.
  void FindMisfit() {
    if (fault_.message != textwizard::kMissingSubcommand) {
      AtSubcommand(SubcommandOf(fault_.message, outline_));
      return;
    }
    fault_.place = command_;
    for (const char* name : {"VARIABLES", "FILE", "DELIMITERS"}) {
      if (IsMissing(name)) fault_.wayOut = SubcommandWayOut(fault_.message, name, "");
    }
  }

  // By the message's own text, whose token is the name of what is missing.
  bool IsMissing(const std::string& name) {
    const char* text = walk_.parser().GetErrorMesToken();
    return text != nullptr && std::string_view(text).ends_with("/" + name);
  }

  bool FindRefusedVariable() {
    const std::unique_ptr<textwizard::TxtWzExecFile> plan = walk_.parser().SetExecFile();
    for (;; ++variables_) {
      const std::size_t begin = walk_.Offset();
      const VariableResult result = walk_.parser().ParseVariable(plan.get());
      if (result == textwizard::kVariableAdded) continue;
      if (result != textwizard::kVariableError) return false;
      const bool fixed = plan->settings.arrangement == textwizard::kFixedColumns;
      const std::size_t end = std::min(walk_.Offset(), words_.end());
      const std::string words = words_.text().substr(begin, end - begin);
      fault_.place = words_.PlaceOf(begin, end);
      fault_.variable = VariableName(words, fixed);
      fault_.wayOut = VariableWayOut(fault_.message, words, fixed);
      return true;
    }
  }

  const CommandWords words_;
  const CommandOutline outline_;
  const CommandPlace command_;
  CommandWalk walk_;
  std::size_t variables_ = 0;  // of the list that were accepted
  CommandFault fault_;
};

}  // namespace

CommandFault FindFault(const std::vector<embedded::CommandToken>& tokens, std::string_view source,
                       const CommandPlace& command, const std::string& fileWayOut) {
  return FaultFinder(tokens, source, command).Find(fileWayOut);
}

}  // namespace library
