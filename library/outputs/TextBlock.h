// Text that grows in memory, for many short pieces.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace library {

// One thread at a time. Throws std::bad_alloc and stays as it was.
class TextBlock {
 public:
  void Append(std::string_view text) {
    if (text.empty()) return;
    std::memcpy(Reserve(text.size()), text.data(), text.size());
    used_ += text.size();
  }
  void Append(char character) { *Reserve(1) = character, ++used_; }
  // Room for `bytes` bytes at the end of the text; write there and hand the end of what was written
  // to Advance. Valid until the next call.
  char* Reserve(std::size_t bytes) {
    if (room_ - used_ < bytes) Grow(bytes);
    return text_.get() + used_;
  }
  void Advance(const char* end) { used_ = static_cast<std::size_t>(end - text_.get()); }

  std::string_view view() const { return {text_.get(), used_}; }
  std::size_t size() const { return used_; }
  // Empties it; its memory is kept.
  void Clear() { used_ = 0; }

 private:
  void Grow(std::size_t bytes) {
    constexpr std::size_t kFirst = 4096;
    const std::size_t room = (room_ + bytes) * 2 < kFirst ? kFirst : (room_ + bytes) * 2;
    std::unique_ptr<char[]> grown(new char[room]);
    if (used_ != 0) std::memcpy(grown.get(), text_.get(), used_);
    text_ = std::move(grown);
    room_ = room;
  }

  std::unique_ptr<char[]> text_;
  std::size_t used_ = 0;
  std::size_t room_ = 0;
};

}  // namespace library
