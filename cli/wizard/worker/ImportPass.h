// A pass over the cases of a file that was understood, by the component.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "library/import/BareImport.h"
#include "library/import/CaseReceiver.h"
#include "library/import/CommandImport.h"

namespace cli {

// Reads what the import's command says, as `textwizard run` does. The import, the files and the
// null texts (UTF-8) outlive it. Worker's thread.
class ImportPass {
 public:
  // `workers`: conversion threads, 0 for one a processor. Throws RequestRefused with the
  // component's message when the command cannot be run.
  ImportPass(const library::BareImport& import, library::InputFiles& files,
             const std::vector<std::string>& nulls, int workers);

  const textwizard::ImportSource& source() const { return running_.source(); }
  // Reads up to the end or to where the receiver stops. Throws RequestRefused when that fails or is
  // interrupted.
  void Read(library::CaseReceiver& receiver);
  // What was told of the pass, once it was read to its end.
  const library::ProblemLog& problems() const { return watch_.account().problems; }

 private:
  class LastError : public library::ImportMessages {
   public:
    void Post(std::string_view hostText, int kind) override;
    std::string text;  // UTF-8
  };

  LastError messages_;
  library::ImportWatch watch_;
  library::CommandImport running_;
};

}  // namespace cli
