#include "library/input/InputFiles.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "library/input/FileKind.h"
#include "library/input/Transcoding.h"

namespace library {
namespace {

using embedded::SpoolFile;

class Descriptor {
 public:
  explicit Descriptor(const std::string& path)
      : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)) {}
  ~Descriptor() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return descriptor_; }

 private:
  const int descriptor_;
};

// The compression of a regular file and its size; none for everything else.
Compression CompressionOfFile(int descriptor, std::int64_t* size) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return Compression::kNone;
  *size = status.st_size;
  std::array<char, kCompressionHeadBytes> head;
  const ssize_t got = pread(descriptor, head.data(), head.size(), 0);
  return got > 0 ? CompressionOf({head.data(), static_cast<std::size_t>(got)}) : Compression::kNone;
}

std::string NoRoom(int code) {
  return fmt::format("not decompressed into {}: {}; TMPDIR names another folder",
                     SpoolFile::Folder(), std::strerror(code));
}

std::string NotConverted(int code) {
  return fmt::format("not converted into {}: {}; TMPDIR names another folder", SpoolFile::Folder(),
                     std::strerror(code));
}

}  // namespace

const InputFiles::Input& InputFiles::Open(const std::string& name) {
  const auto found = inputs_.find(name);
  if (found != inputs_.end()) return found->second;
  Input& input = inputs_.emplace(name, Make(name)).first->second;
  if (!encoding_.empty()) Convert(name, encoding_, &input);
  return input;
}

const InputFiles::Input& InputFiles::Transcode(const std::string& name,
                                               const std::string& encoding) {
  Open(name);
  Input& input = inputs_.find(name)->second;
  Convert(name, encoding, &input);
  return input;
}

void InputFiles::Convert(const std::string& name, const std::string& encoding, Input* input) {
  if (!input->problem.empty() || !input->transcodedFrom.empty()) return;
  const Descriptor stored(input->path);
  struct stat status {};
  // What cannot be opened is said by whoever opens it.
  if (stored.get() < 0 || fstat(stored.get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  SpoolFile spool = SpoolFile::Create();
  if (!spool.IsOpen()) {
    input->problem = NotConverted(errno);
  } else {
    const TranscodingListener listener{.write =
                                           [&](std::string_view bytes, std::string* problem) {
                                             if (spool.Append(bytes)) return true;
                                             *problem = NotConverted(errno);
                                             return false;
                                           },
                                       .progress =
                                           [&](std::int64_t read) {
                                             if (progress_) progress_(read, status.st_size);
                                             return !embedded::AttentionRequested();
                                           }};
    const bool done =
        library::Transcode(stored.get(), encoding, listener, &input->undecodable, &input->problem);
    if (!done && input->problem.empty()) input->problem = "interrupted";
  }
  if (input->problem.empty()) {
    input->transcodedFrom = encoding;
    input->path = spool.path();
    spools_.insert_or_assign(name, std::move(spool));
  } else {
    input->path = name + " (" + input->problem + ")";
  }
}

void InputFiles::Release(const std::string& name) {
  const auto input = inputs_.find(name);
  // Pipes can be read once only.
  if (input == inputs_.end() || input->second.compression == Compression::kNone) return;
  if (!input->second.transcodedFrom.empty()) return;
  if (pipes_.PathOf(name) != name) return;
  inputs_.erase(input);
  spools_.erase(name);
}

InputFiles::Input InputFiles::Make(const std::string& name) {
  Input input;
  input.path = pipes_.PathOf(name);
  const Descriptor stored(input.path);
  if (stored.get() < 0) {
    // A pipe that could not be copied; of other names whoever opens the file says it.
    if (input.path != name) input.problem = std::strerror(errno);
    return input;
  }
  std::int64_t size = 0;
  input.compression = CompressionOfFile(stored.get(), &size);
  if (input.compression == Compression::kNone) return input;

  input.compressedBytes = size;
  // Documents are archives, too.
  const FileKind kind = FileKindOf(FileHead(input.path));
  if (input.compression == Compression::kZip && kind.isDocument) {
    input.problem = fmt::format("{}, and no text", kind.what);
    input.wayOut = kind.wayOut;
    input.path = name + " (" + input.problem + ")";
    return input;
  }
  SpoolFile spool = SpoolFile::Create();
  if (!spool.IsOpen()) {
    input.problem = NoRoom(errno);
  } else {
    const DecompressionListener listener{.write =
                                             [&](std::string_view bytes, std::string* problem) {
                                               if (spool.Append(bytes)) return true;
                                               *problem = NoRoom(errno);
                                               return false;
                                             },
                                         .progress =
                                             [&](std::int64_t read) {
                                               if (progress_) progress_(read, size);
                                               return !embedded::AttentionRequested();
                                             }};
    Decompress(stored.get(), input.compression, listener, &input.problem);
  }
  if (input.problem.empty()) {
    input.path = spool.path();
    spools_.emplace(name, std::move(spool));
  } else {
    input.path = name + " (" + input.problem + ")";
  }
  return input;
}

}  // namespace library
