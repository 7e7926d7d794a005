// The adapter through which this host hands a command to a data-access component.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "HostFramework/DACAdapter.h"
#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/command/PipeSpools.h"

namespace embedded {

// One command and what its sources need. Outlives the command and every data source made from it:
// the copies of its pipes are open as long as it lives. Host's thread only.
class Adapter : public DACAdapterBase {
 public:
  // `tokens` are those behind GET DATA /TYPE=TXT /. `context` is passed on unchanged; `workers` is
  // the number of conversion workers, below 1 for one per processor; `paramB` is stored with the
  // source.
  Adapter(std::vector<CommandToken> tokens, ErrorCallback callback, void* context, int workers,
          int paramB);

  DACTokenSource* GetTokenSource() override { return &tokens_; }
  ErrorCallback GetErrorCallback() override { return callback_; }
  void* GetAdapterContext() override { return context_; }
  // Leaves a path as it is, but for "-" (standard input) and pipes, which are read to their end
  // into a temporary file; see PipeSpools.
  const std::string& ConvertFilePath(std::string& result, const std::string& input,
                                     bool unquoted) override;
  int GetSourceParamA() override { return workers_; }
  int GetSourceParamB() override { return paramB_; }

 private:
  // Stands on the first token at once. Lets go of the tokens once the last one was passed.
  class Tokens : public DACTokenSource {
   public:
    explicit Tokens(std::vector<CommandToken> tokens) : tokens_(std::move(tokens)) {}
    bool NextToken() override;
    int TokenKind() const override;
    void TokenText(const char** text, int* length) const override;

   private:
    std::vector<CommandToken> tokens_;
    std::size_t current_ = 0;
  };

  Tokens tokens_;
  ErrorCallback callback_;
  void* context_;
  int workers_;
  int paramB_;
  PipeSpools spools_;
};

}  // namespace embedded
