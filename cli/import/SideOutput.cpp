#include "cli/import/SideOutput.h"

#include "HostFramework/embedded/messages/Attention.h"
#include "cli/ExitStatus.h"
#include "cli/run/RunOptions.h"

namespace cli {

int OpenSideOutput(const std::string& name, Console& console,
                   std::unique_ptr<library::OutputFile>* file) {
  if (name.empty()) return kExitSuccess;
  std::string error;
  *file = library::OutputFile::Open(NameForCommand(name, 1), &error);
  if (*file != nullptr) return kExitSuccess;
  if (embedded::AttentionRequested()) return kExitInterrupted;
  console.Error(error);
  return kExitUsage;
}

int PublishSideOutput(library::OutputFile& file, Console& console) {
  if (file.Finish() && file.Publish()) return kExitSuccess;
  if (file.interrupted()) return kExitInterrupted;
  console.Error(file.error());
  return kExitUsage;
}

}  // namespace cli
