#include "HostFramework/embedded/command/SpoolFile.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"

namespace embedded {

SpoolFile::~SpoolFile() {
  if (descriptor_ >= 0) close(descriptor_);
}

std::string SpoolFile::Folder() {
  const char* const chosen = std::getenv("TMPDIR");
  return chosen && *chosen ? chosen : "/tmp";
}

SpoolFile SpoolFile::Create() {
  const std::string folder = Folder();
  int file = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file < 0) {
    // The file system cannot make files without a name, so take the name away.
    std::string pattern = folder + "/textwizard-XXXXXX";
    file = mkostemp(pattern.data(), O_CLOEXEC);
    if (file >= 0) unlink(pattern.c_str());
  }
  return SpoolFile(file);
}

bool SpoolFile::Append(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor_, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR && !AttentionRequested()) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::string SpoolFile::path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

}  // namespace embedded
