#include "library/input/InputFiles.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HostFramework/embedded/messages/Attention.h"
#include "library/input/ColumnPadder.h"
#include "library/input/FileKind.h"
#include "library/input/Transcoding.h"

namespace library {
namespace {

using embedded::SpoolFile;

constexpr std::size_t kBlock = std::size_t{1} << 18;

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

// The places of text that is padded again.
void ReplayPadding(ColumnPadder padder, std::string_view bytes, std::int64_t file,
                   std::int64_t copy, bool ends, std::vector<CopyMap::Run>* runs) {
  std::string text;
  std::vector<ColumnPadder::Padding> paddings;
  padder.Copy(bytes, &text, &paddings);
  if (const std::int64_t blanks = ends ? padder.Finish(&text) : 0; blanks > 0) {
    paddings.push_back({bytes.size(), blanks});
  }
  std::size_t done = 0;
  const auto copyUpTo = [&](std::size_t at) {
    if (at > done) runs->push_back({copy, file + static_cast<std::int64_t>(done), 1, 1});
    copy += static_cast<std::int64_t>(at - done);
    done = at;
  };
  for (const ColumnPadder::Padding& padding : paddings) {
    copyUpTo(padding.at);
    runs->push_back({copy, file + static_cast<std::int64_t>(done), 1, 0});
    copy += padding.blanks;
  }
  copyUpTo(bytes.size());
}

// Copies UTF-8 text with its columns padded; `offsets` become those of the copy.
bool CopyPadded(int descriptor, const std::vector<std::int64_t>& places, SpoolFile& spool,
                CopyMap& map, const std::vector<std::int64_t*>& offsets,
                const std::function<bool(std::int64_t read)>& progress, std::string* problem) {
  ColumnPadder padder(places);
  std::vector<char> block(kBlock);
  std::string copy;
  std::int64_t read = 0;
  std::int64_t written = 0;
  auto offset = offsets.begin();
  for (bool ends = false; !ends;) {
    const ssize_t got = pread(descriptor, block.data(), block.size(), read);
    if (got < 0) {
      *problem = std::strerror(errno);
      return false;
    }
    ends = got == 0;
    if (!ends || read == 0) {
      map.AddStretch(read, written,
                     [padder](std::string_view bytes, std::int64_t file, std::int64_t copied,
                              bool isLast, std::vector<CopyMap::Run>* runs) {
                       ReplayPadding(padder, bytes, file, copied, isLast, runs);
                     });
    }
    std::string_view rest(block.data(), static_cast<std::size_t>(got));
    copy.clear();
    for (; offset != offsets.end() && **offset <= read + got; ++offset) {
      const auto before =
          rest.size() - static_cast<std::size_t>(read + got - std::max(**offset, read));
      padder.Copy(rest.substr(0, before), &copy);
      rest.remove_prefix(before);
      **offset = written + static_cast<std::int64_t>(copy.size());
    }
    padder.Copy(rest, &copy);
    if (ends) padder.Finish(&copy);
    if (!spool.Append(copy)) {
      *problem = NotConverted(errno);
      return false;
    }
    read += got;
    written += static_cast<std::int64_t>(copy.size());
    if (!progress(read)) return false;
  }
  map.End(read, written);
  return true;
}

}  // namespace

const InputFiles::Input& InputFiles::Open(const std::string& name) {
  const auto found = inputs_.find(name);
  if (found != inputs_.end()) return found->second;
  Input& input = inputs_.emplace(name, Make(name)).first->second;
  if (!encoding_.empty()) Convert(name, encoding_, &input);
  if (!places_.empty()) Pad(name, places_, {}, &input);
  return input;
}

const InputFiles::Input& InputFiles::Transcode(const std::string& name,
                                               const std::string& encoding) {
  Open(name);
  Input& input = inputs_.find(name)->second;
  Convert(name, encoding, &input);
  return input;
}

const InputFiles::Input& InputFiles::PadColumns(const std::string& name,
                                                const std::vector<std::int64_t>& places,
                                                const std::vector<std::int64_t*>& offsets) {
  Open(name);
  Input& input = inputs_.find(name)->second;
  Pad(name, places, offsets, &input);
  return input;
}

// The file is a copy from now on, unless it is none that can be copied or that failed.
void InputFiles::Replace(const std::string& name, const Copy& copy, Input* input) {
  const Descriptor stored(input->path);
  struct stat status {};
  // What cannot be opened is said by whoever opens it.
  if (stored.get() < 0 || fstat(stored.get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  SpoolFile spool = SpoolFile::Create();
  std::shared_ptr<CopyMap> map;
  if (!spool.IsOpen()) {
    input->problem = NotConverted(errno);
  } else if (auto file = FileSource::Open(input->path, &input->problem); file != nullptr) {
    map = std::make_shared<CopyMap>(std::move(file));
    const auto progress = [&](std::int64_t read) {
      if (progress_) progress_(read, status.st_size);
      return !embedded::AttentionRequested();
    };
    const bool done = copy(stored.get(), spool, *map, progress, &input->problem);
    if (!done && input->problem.empty()) input->problem = "interrupted";
  }
  converted_ = true;
  if (input->problem.empty()) {
    input->path = spool.path();
    input->copies.push_back(std::move(map));
    spools_.insert_or_assign(name, std::move(spool));
  } else {
    input->path = name + " (" + input->problem + ")";
  }
}

void InputFiles::Convert(const std::string& name, const std::string& encoding, Input* input) {
  if (!input->problem.empty() || !input->transcodedFrom.empty()) return;
  const Copy copy = [&](int descriptor, SpoolFile& spool, CopyMap& map,
                        const std::function<bool(std::int64_t)>& progress, std::string* problem) {
    const TranscodingListener listener{.write =
                                           [&](std::string_view bytes, std::string* why) {
                                             if (spool.Append(bytes)) return true;
                                             *why = NotConverted(errno);
                                             return false;
                                           },
                                       .progress = progress};
    if (!library::Transcode(descriptor, encoding, listener, &input->undecodable, problem, &map)) {
      return false;
    }
    input->transcodedFrom = encoding;
    return true;
  };
  Replace(name, copy, input);
}

void InputFiles::Pad(const std::string& name, const std::vector<std::int64_t>& places,
                     const std::vector<std::int64_t*>& offsets, Input* input) {
  if (!input->problem.empty() || !input->paddedAt.empty()) return;
  const Copy copy = [&](int descriptor, SpoolFile& spool, CopyMap& map,
                        const std::function<bool(std::int64_t)>& progress, std::string* problem) {
    if (!CopyPadded(descriptor, places, spool, map, offsets, progress, problem)) return false;
    input->paddedAt = places;
    return true;
  };
  Replace(name, copy, input);
}

void InputFiles::Release(const std::string& name) {
  const auto input = inputs_.find(name);
  // Pipes can be read once only.
  if (input == inputs_.end() || input->second.compression == Compression::kNone) return;
  if (!input->second.transcodedFrom.empty() || !input->second.paddedAt.empty()) return;
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
