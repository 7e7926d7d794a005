// What the tests of the text functions share.
#pragma once

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <unistd.h>

#include "HostFramework/embedded/text/HostText.h"

namespace embedded {

// Puts the host in a code page (null: UTF-8) and back in UTF-8 mode with the locale's own page.
class InCodePage {
 public:
  explicit InCodePage(const char* page, const char* localePage = nullptr) {
    EXPECT_TRUE(SetCodePage(page));
    EXPECT_TRUE(SetLocaleCodePage(localePage));
  }
  ~InCodePage() {
    SetCodePage(nullptr);
    SetLocaleCodePage(nullptr);
  }
  InCodePage(const InCodePage&) = delete;
  InCodePage& operator=(const InCodePage&) = delete;
};

// Bytes in memory of exactly their size, so that a sanitizer sees a read past them.
class Exact {
 public:
  explicit Exact(std::string_view bytes) : bytes_(new char[bytes.size()]), size_(bytes.size()) {
    if (size_ > 0) std::memcpy(bytes_.get(), bytes.data(), size_);
  }
  const char* get() const { return bytes_.get(); }
  std::string_view view() const { return {bytes_.get(), size_}; }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_;
};

// `text` and its terminator, and not a byte more.
inline Exact Terminated(std::string_view text) { return Exact(std::string(text) + '\0'); }

// Path of a file of this process's own.
inline std::string TestFile(const std::string& name) {
  return testing::TempDir() + name + '-' + std::to_string(getpid());
}

// Text of which half the bytes are ASCII and the rest anything but NUL.
inline std::string RandomBytes(std::mt19937& random, std::size_t length) {
  std::string text(length, '\0');
  for (char& byte : text) {
    const auto bits = static_cast<unsigned>(random());
    byte = static_cast<char>((bits & 0x100) != 0 ? 1 + bits % 0x7F : 1 + bits % 0xFF);
  }
  return text;
}

}  // namespace embedded
