// Memory of a column: grows without being filled, aligned as vector instructions and readers of
// columns like it.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace library {

// Bytes, owned. Growing throws std::bad_alloc where there is no memory and leaves it as it was.
class Buffer {
 public:
  // Of the first byte, and what the size in memory is a multiple of.
  static constexpr std::size_t kAlignment = 64;
  // So many bytes can be read behind the last one once there is memory: short texts are looked at
  // in words.
  static constexpr std::size_t kReadable = 16;

  Buffer() = default;
  Buffer(Buffer&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)),
        size_(std::exchange(other.size_, 0)),
        capacity_(std::exchange(other.capacity_, 0)) {}
  Buffer& operator=(Buffer&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
    return *this;
  }
  ~Buffer() { std::free(data_); }

  const std::byte* data() const { return data_; }
  std::byte* data() { return data_; }
  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  std::size_t capacity() const { return capacity_; }
  void clear() { size_ = 0; }

  template <class Value>
  const Value* As() const {
    return reinterpret_cast<const Value*>(data_);
  }
  template <class Value>
  Value* As() {
    return reinterpret_cast<Value*>(data_);
  }

  // Room for `bytes` bytes in all, at least twice what there was when it has to grow.
  void Reserve(std::size_t bytes) {
    if (bytes > capacity_) Grow(bytes);
  }
  // Where the next bytes will stand; `bytes` of them can be written there before the buffer is made
  // longer.
  std::byte* Room(std::size_t bytes) {
    Reserve(size_ + bytes);
    return data_ + size_;
  }
  // Makes the buffer `bytes` bytes longer and returns where they begin; what they hold is
  // undefined.
  std::byte* Extend(std::size_t bytes) {
    Reserve(size_ + bytes);
    std::byte* const begin = data_ + size_;
    size_ += bytes;
    return begin;
  }
  // The same where that many bytes have room.
  void Lengthen(std::size_t bytes) { size_ += bytes; }
  // The same up to `end`, which lies there.
  void LengthenTo(const void* end) {
    size_ = static_cast<std::size_t>(static_cast<const std::byte*>(end) - data_);
  }
  void Append(const void* bytes, std::size_t count) {
    if (count != 0) std::memcpy(Extend(count), bytes, count);
  }
  // Forgets what stands behind the first `bytes` bytes.
  void Shorten(std::size_t bytes) { size_ = bytes; }

 private:
  void Grow(std::size_t bytes) {
    const std::size_t wanted = bytes > capacity_ * 2 ? bytes : capacity_ * 2;
    if (wanted > static_cast<std::size_t>(-1) - kAlignment - kReadable) throw std::bad_alloc();
    const std::size_t rounded = (wanted + kReadable + kAlignment - 1) / kAlignment * kAlignment;
    auto* const grown = static_cast<std::byte*>(std::aligned_alloc(kAlignment, rounded));
    if (grown == nullptr) throw std::bad_alloc();
    if (size_ != 0) std::memcpy(grown, data_, size_);
    std::free(data_);
    data_ = grown;
    capacity_ = rounded - kReadable;
  }

  std::byte* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace library
