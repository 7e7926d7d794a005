#include "library/import/ImportMessages.h"

#include <utility>

namespace library {
namespace {

constinit thread_local ImportMessages* current = nullptr;

void PostToCurrent(const char* text, int kind) {
  if (current != nullptr && text != nullptr) current->Post(text, kind);
}

}  // namespace

MessageRoute::MessageRoute(ImportMessages& messages) : before_(std::exchange(current, &messages)) {}

MessageRoute::~MessageRoute() { current = before_; }

ErrorCallback MessageRoute::Callback() { return &PostToCurrent; }

}  // namespace library
