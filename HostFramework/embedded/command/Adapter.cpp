#include "HostFramework/embedded/command/Adapter.h"

#include <utility>

namespace embedded {

bool Adapter::Tokens::NextToken() {
  if (current_ + 1 < tokens_.size()) {
    ++current_;
    return true;
  }
  std::vector<CommandToken>().swap(tokens_);
  current_ = 0;
  return false;
}

int Adapter::Tokens::TokenKind() const { return tokens_.empty() ? 0 : tokens_[current_].kind; }

void Adapter::Tokens::TokenText(const char** text, int* length) const {
  if (tokens_.empty()) {
    *text = nullptr;
    *length = 0;
    return;
  }
  *text = tokens_[current_].text.data();
  *length = static_cast<int>(tokens_[current_].text.size());
}

Adapter::Adapter(std::vector<CommandToken> tokens, ErrorCallback callback, void* context,
                 int workers, int paramB)
    : tokens_(std::move(tokens)),
      callback_(callback),
      context_(context),
      workers_(workers),
      paramB_(paramB) {}

const std::string& Adapter::ConvertFilePath(std::string& result, const std::string& input,
                                            bool /*unquoted*/) {
  result = spools_.PathOf(input);
  return result;
}

}  // namespace embedded
