// Data files as the component can open them: standard input and pipes copied, compressed files
// decompressed, encodings converted, columns padded.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "HostFramework/embedded/command/PipeSpools.h"
#include "HostFramework/embedded/command/SpoolFile.h"
#include "library/input/CopyMap.h"
#include "library/input/Decompression.h"

namespace library {

// What can be read without seeking only is in unnamed temporary files, which last as long as this
// object. Host's thread only.
class InputFiles {
 public:
  // Bytes of a compressed file that are read, and its size.
  using Progress = std::function<void(std::int64_t read, std::int64_t size)>;

  explicit InputFiles(Progress progress = nullptr) : progress_(std::move(progress)) {}
  InputFiles(const InputFiles&) = delete;
  InputFiles& operator=(const InputFiles&) = delete;

  struct Input {
    // What to open (host text).
    std::string path;
    Compression compression = Compression::kNone;
    // Bytes of the compressed file; 0 when it is none.
    std::int64_t compressedBytes = 0;
    // A sentence (UTF-8) that says why there is nothing to open; `path` is then one that does not
    // exist and says it too. Empty when all is well, and for what is no pipe and not compressed,
    // which may be there or not.
    std::string problem;
    // What would help then: a sentence without a full stop, or empty.
    std::string wayOut;
    // The encoding that it is converted from, to UTF-8; empty where it is read as it is.
    std::string transcodedFrom;
    // How often it had bytes there that are no character.
    std::int64_t undecodable = 0;
    // Where its columns are padded (ColumnPadder); empty where they stand as they are.
    std::vector<std::int64_t> paddedAt;
    // Where it was converted or padded: the way back, of each copy to what it is a copy of, the
    // first one to the file itself (a compressed one decompressed).
    std::vector<std::shared_ptr<CopyMap>> copies;
  };

  // The input of the name "-" (standard input) or a path (host text); asked again, the same. The
  // user may interrupt it.
  const Input& Open(const std::string& name);
  // Forgets what was copied of a compressed file; asked for it again, it is decompressed again.
  void Release(const std::string& name);
  // The same as UTF-8, converted from the encoding (a name that ICU knows), for whoever asks from
  // now on; what was converted before is not converted again.
  const Input& Transcode(const std::string& name, const std::string& encoding);
  // The same, UTF-8 or converted to it, padded at those places for whoever asks from now on; what
  // was padded before is not padded again. `offsets`: of bytes that begin or end lines, rising;
  // they become those of the padded text.
  const Input& PadColumns(const std::string& name, const std::vector<std::int64_t>& places,
                          const std::vector<std::int64_t*>& offsets);
  // Converts and pads all inputs that are asked for from now on; empty: none.
  void ConvertAll(std::string encoding, std::vector<std::int64_t> places) {
    encoding_ = std::move(encoding);
    places_ = std::move(places);
  }
  // Whether an input has been converted or padded, or will be.
  bool converts() const { return converted_ || !encoding_.empty() || !places_.empty(); }

 private:
  // Copies what is open as the descriptor into a file; `progress` is asked whether to go on.
  using Copy = std::function<bool(int descriptor, embedded::SpoolFile& spool, CopyMap& map,
                                  const std::function<bool(std::int64_t read)>& progress,
                                  std::string* problem)>;

  Input Make(const std::string& name);
  void Convert(const std::string& name, const std::string& encoding, Input* input);
  void Pad(const std::string& name, const std::vector<std::int64_t>& places,
           const std::vector<std::int64_t*>& offsets, Input* input);
  void Replace(const std::string& name, const Copy& copy, Input* input);

  const Progress progress_;
  std::string encoding_;
  std::vector<std::int64_t> places_;
  bool converted_ = false;
  embedded::PipeSpools pipes_;
  std::map<std::string, Input> inputs_;  // by name
  std::map<std::string, embedded::SpoolFile> spools_;
};

}  // namespace library
