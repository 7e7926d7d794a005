// Where the messages of an import go.
#pragma once

#include <string_view>

#include "HostFramework/Messages.h"

namespace library {

class ImportMessages {
 public:
  virtual ~ImportMessages() = default;
  // Takes one message: host text and its kind (ErrorTextKind). On the thread of the import, as the
  // component gives them: there may be millions.
  virtual void Post(std::string_view hostText, int kind) = 0;
};

// Leads the host's callback, which is a plain function, to the messages of the import that runs on
// this thread: the route that the thread made last leads. Routes nest; each is destroyed on the
// thread that made it.
class MessageRoute {
 public:
  // `messages` outlives the route.
  explicit MessageRoute(ImportMessages& messages);
  ~MessageRoute();
  MessageRoute(const MessageRoute&) = delete;
  MessageRoute& operator=(const MessageRoute&) = delete;

  // The function to give to the host. Without a route it drops what is posted.
  static ErrorCallback Callback();

 private:
  ImportMessages* const before_;
};

}  // namespace library
