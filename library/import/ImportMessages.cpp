#include "library/import/ImportMessages.h"

#include <atomic>

namespace library {
namespace {

std::atomic<ImportMessages*> current{nullptr};

void PostToCurrent(const char* text, int kind) {
  ImportMessages* messages = current.load();
  if (messages != nullptr && text != nullptr) messages->Post(text, kind);
}

}  // namespace

MessageRoute::MessageRoute(ImportMessages& messages) : before_(current.exchange(&messages)) {}

MessageRoute::~MessageRoute() { current = before_; }

ErrorCallback MessageRoute::Callback() { return &PostToCurrent; }

}  // namespace library
