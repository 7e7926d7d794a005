#include "library/outputs/WholeWrite.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#include <poll.h>
#include <sys/uio.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"

namespace library {
namespace {

// Pieces that are given to the system together; it takes as many.
constexpr std::size_t kMostAtOnce = 512;
static_assert(kMostAtOnce <= IOV_MAX);

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

bool WriteWhole(int descriptor, const std::vector<std::string_view>& pieces) {
  std::array<iovec, kMostAtOnce> some{};
  for (std::size_t at = 0; at < pieces.size();) {
    std::size_t count = 0;
    std::size_t bytes = 0;
    for (; count < some.size() && at + count < pieces.size(); ++count) {
      const std::string_view piece = pieces[at + count];
      // The system only reads them.
      some[count] = {const_cast<char*>(piece.data()), piece.size()};
      bytes += piece.size();
    }
    ssize_t written = 0;
    if (!embedded::AttentionRequested()) {
      written = writev(descriptor, some.data(), static_cast<int>(count));
    }
    if (written < 0 && errno != EINTR) return false;
    auto done = static_cast<std::size_t>(std::max<ssize_t>(written, 0));
    if (done == bytes) {
      at += count;
      continue;
    }
    // Some of it was taken: the rest of the piece that it ends in goes by itself.
    for (; done >= pieces[at].size(); ++at) done -= pieces[at].size();
    if (!WriteWhole(descriptor, pieces[at].substr(done))) return false;
    ++at;
  }
  return true;
}

}  // namespace library
