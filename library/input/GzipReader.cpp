#include "library/input/GzipReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>
#include <zlib.h>

namespace library {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;

class Reader {
 public:
  Reader(int descriptor, const DecompressionListener& listener, std::string* problem)
      : descriptor_(descriptor),
        listener_(listener),
        problem_(problem),
        in_(kBlock),
        out_(kBlock) {}
  ~Reader() {
    if (ready_) inflateEnd(&stream_);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  bool Read() {
    // The member's header and checksum too.
    constexpr int kGzipWindow = MAX_WBITS + 16;
    ready_ = inflateInit2(&stream_, kGzipWindow) == Z_OK;
    if (!ready_) return Fail(std::strerror(ENOMEM));
    for (;;) {
      if (stream_.avail_in == 0 && !Fill()) return false;
      if (stream_.avail_in == 0) {
        return betweenMembers_ || Fail("the gzip data is damaged: it ends too early");
      }
      if (betweenMembers_ && !BeginMember()) return false;
      if (stream_.avail_in > 0 && !Inflate()) return false;
    }
  }

 private:
  bool Fail(const std::string& problem) {
    *problem_ = problem;
    return false;
  }

  // Place in the compressed file.
  std::int64_t Place() const { return read_ - static_cast<std::int64_t>(stream_.avail_in); }

  bool Fill() {
    ssize_t got;
    do {
      got = pread(descriptor_, in_.data(), in_.size(), read_);
    } while (got < 0 && errno == EINTR);
    if (got < 0) return Fail(std::strerror(errno));
    read_ += got;
    stream_.next_in = in_.data();
    stream_.avail_in = static_cast<unsigned>(got);
    return listener_.progress(read_) || Fail("interrupted");
  }

  // At what follows a member: another one, or what fills up the last block of a tape.
  bool BeginMember() {
    const auto isZero = [](Bytef byte) { return byte == 0; };
    const Bytef* const end = stream_.next_in + stream_.avail_in;
    if (isZero(*stream_.next_in) && !first_) {
      const Bytef* const next =
          std::find_if_not(stream_.next_in, stream_.next_in + stream_.avail_in, isZero);
      stream_.next_in += next - stream_.next_in;
      stream_.avail_in = static_cast<unsigned>(end - next);
      padded_ = true;
      if (stream_.avail_in == 0) return true;
    }
    if (padded_ || (!first_ && *stream_.next_in != 0x1F)) {
      return Fail(fmt::format("the gzip data is followed by something else at byte {}", Place()));
    }
    inflateReset(&stream_);
    betweenMembers_ = first_ = false;
    return true;
  }

  // Takes what is in hand, as far as it belongs to the member.
  bool Inflate() {
    int result = Z_OK;
    // A full buffer may leave more to be had without more input.
    do {
      stream_.next_out = out_.data();
      stream_.avail_out = static_cast<unsigned>(out_.size());
      result = inflate(&stream_, Z_NO_FLUSH);
      const std::size_t got = out_.size() - stream_.avail_out;
      const std::string_view bytes(reinterpret_cast<const char*>(out_.data()), got);
      if (got > 0 && !listener_.write(bytes, problem_)) return false;
    } while (result == Z_OK && stream_.avail_out == 0);
    if (result == Z_MEM_ERROR) return Fail(std::strerror(ENOMEM));
    if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) {
      return Fail(fmt::format("the gzip data is damaged: {} before byte {}",
                              stream_.msg != nullptr ? stream_.msg : "it cannot be read", Place()));
    }
    betweenMembers_ = result == Z_STREAM_END;
    return true;
  }

  const int descriptor_;
  const DecompressionListener& listener_;
  std::string* const problem_;
  std::vector<Bytef> in_;
  std::vector<Bytef> out_;
  z_stream stream_{};
  bool ready_ = false;
  std::int64_t read_ = 0;
  bool first_ = true;
  bool betweenMembers_ = true;
  // Zeros followed the last member.
  bool padded_ = false;
};

}  // namespace

bool ReadGzip(int descriptor, const DecompressionListener& listener, std::string* problem) {
  return Reader(descriptor, listener, problem).Read();
}

}  // namespace library
