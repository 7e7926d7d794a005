#include "library/outputs/WholeWrite.h"

#include <algorithm>
#include <cerrno>
#include <climits>

#include <poll.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"

namespace library {
namespace {

// One write. After an interrupt no more than a pipe that has room takes at once.
ssize_t WriteSome(int descriptor, std::string_view text) {
  if (!embedded::AttentionRequested()) return write(descriptor, text.data(), text.size());
  pollfd room{descriptor, POLLOUT, 0};
  if (poll(&room, 1, 0) == 0) {
    errno = EINTR;
    return -1;
  }
  return write(descriptor, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
}

}  // namespace

bool WriteWhole(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = WriteSome(descriptor, text);
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR || embedded::AttentionRequested()) {
      return false;
    }
  }
  return true;
}

}  // namespace library
