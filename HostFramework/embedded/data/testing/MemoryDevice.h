// Stream devices for tests: a file in memory, and a device that misbehaves on demand.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "HostFramework/embedded/data/StreamDevice.h"

namespace embedded {

// A file in memory. Duplicates share the bytes.
class MemoryDevice : public StreamDevice {
 public:
  explicit MemoryDevice(std::string bytes)
      : bytes_(std::make_shared<const std::string>(std::move(bytes))) {}
  explicit MemoryDevice(std::shared_ptr<const std::string> bytes) : bytes_(std::move(bytes)) {}

  std::ptrdiff_t ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) override {
    if (offset < 0) return -1;
    if (offset >= Size()) return 0;
    const std::size_t got = std::min(bytes, bytes_->size() - static_cast<std::size_t>(offset));
    std::memcpy(buffer, bytes_->data() + offset, got);
    return static_cast<std::ptrdiff_t>(got);
  }
  std::int64_t Size() const override { return static_cast<std::int64_t>(bytes_->size()); }
  std::unique_ptr<StreamDevice> Duplicate() const override {
    return std::make_unique<MemoryDevice>(bytes_);
  }

 private:
  std::shared_ptr<const std::string> bytes_;
};

// What goes wrong. Shared by a device and its duplicates; the numbers may be changed while they are
// in use, on any thread.
struct StreamFaults {
  // Reading the byte at this offset fails, and so does every later one; negative: never.
  std::atomic<std::int64_t> failAt{-1};
  // The file ends here although Size() still tells the whole; negative: it does not.
  std::atomic<std::int64_t> cutAt{-1};
  // The most bytes that one read returns (1: byte by byte); 0: as many as asked for.
  std::atomic<std::size_t> mostBytes{0};
  // Duplicates that may still be made; negative: any number.
  std::atomic<int> duplicatesLeft{-1};
  // Called with the offset before every read, on the reading thread; may wait. Set before use.
  std::function<void(std::int64_t)> beforeRead;
};

// Another device with faults added.
class FaultyDevice : public StreamDevice {
 public:
  FaultyDevice(std::unique_ptr<StreamDevice> device, std::shared_ptr<StreamFaults> faults)
      : device_(std::move(device)), faults_(std::move(faults)) {}

  std::ptrdiff_t ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) override {
    if (faults_->beforeRead) faults_->beforeRead(offset);
    const std::int64_t failAt = faults_->failAt;
    const std::int64_t cutAt = faults_->cutAt;
    const std::size_t mostBytes = faults_->mostBytes;
    if (failAt >= 0 && offset >= failAt) return -1;
    if (cutAt >= 0 && offset >= cutAt) return 0;
    if (mostBytes > 0) bytes = std::min(bytes, mostBytes);
    if (failAt >= 0) bytes = std::min(bytes, static_cast<std::size_t>(failAt - offset));
    if (cutAt >= 0) bytes = std::min(bytes, static_cast<std::size_t>(cutAt - offset));
    return device_->ReadAt(offset, buffer, bytes);
  }
  std::int64_t Size() const override { return device_->Size(); }
  std::unique_ptr<StreamDevice> Duplicate() const override {
    int left = faults_->duplicatesLeft;
    while (left > 0 && !faults_->duplicatesLeft.compare_exchange_weak(left, left - 1)) {
    }
    std::unique_ptr<StreamDevice> copy = left != 0 ? device_->Duplicate() : nullptr;
    if (!copy) return nullptr;
    return std::make_unique<FaultyDevice>(std::move(copy), faults_);
  }

 private:
  std::unique_ptr<StreamDevice> device_;
  std::shared_ptr<StreamFaults> faults_;
};

// Makes every stream that opens during its lifetime read from memory: the paths of `files` open
// (with `faults`, when given), any other does not. One at a time.
class ScopedMemoryFiles {
 public:
  explicit ScopedMemoryFiles(std::map<std::string, std::string> files,
                             std::shared_ptr<StreamFaults> faults = nullptr) {
    auto shared = std::make_shared<const std::map<std::string, std::string>>(std::move(files));
    SetStreamDeviceOpener([shared, faults](const char* path) -> std::unique_ptr<StreamDevice> {
      const auto found = shared->find(path);
      if (found == shared->end()) return nullptr;
      // Shares ownership of the map, so the bytes are not copied for every opening.
      auto device = std::make_unique<MemoryDevice>(
          std::shared_ptr<const std::string>(shared, &found->second));
      if (!faults) return device;
      return std::make_unique<FaultyDevice>(std::move(device), faults);
    });
  }
  // One file.
  ScopedMemoryFiles(const std::string& path, std::string bytes,
                    std::shared_ptr<StreamFaults> faults = nullptr)
      : ScopedMemoryFiles(std::map<std::string, std::string>{{path, std::move(bytes)}},
                          std::move(faults)) {}
  ~ScopedMemoryFiles() { SetStreamDeviceOpener(nullptr); }
  ScopedMemoryFiles(const ScopedMemoryFiles&) = delete;
  ScopedMemoryFiles& operator=(const ScopedMemoryFiles&) = delete;
};

// The block size of the streams that read for the first time during its lifetime.
class ScopedBlockSize {
 public:
  explicit ScopedBlockSize(std::size_t bytes) { SetStreamBlockSize(bytes); }
  ~ScopedBlockSize() { SetStreamBlockSize(0); }
  ScopedBlockSize(const ScopedBlockSize&) = delete;
  ScopedBlockSize& operator=(const ScopedBlockSize&) = delete;
};

}  // namespace embedded
