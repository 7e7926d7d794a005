#include "TxtWzMultiThreadMgr/StoreText.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

TEST(StoreText, TextIsFollowedByBlanksToTheEndOfItsCells) {
  for (std::size_t cells = 8; cells <= 64; cells += 8) {
    for (std::size_t size = 0; size <= cells; ++size) {
      // Exactly as large as they may be, so that a sanitizer sees an access beyond.
      const std::unique_ptr<char[]> text(new char[size]);
      for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(0x81 + i);
      const std::unique_ptr<unsigned char[]> out(new unsigned char[cells]);
      StoreText({text.get(), size}, out.get(), cells);
      std::string expected(text.get(), size);
      expected.resize(cells, ' ');
      ASSERT_EQ(std::string(reinterpret_cast<const char*>(out.get()), cells), expected)
          << size << " of " << cells;
    }
  }
}

TEST(StoreText, ATextWithReadableBytesBehindItIsStoredAlike) {
  for (std::size_t cells = 8; cells <= kReadableCells; cells += 8) {
    for (std::size_t size = 0; size <= cells; ++size) {
      const std::unique_ptr<char[]> text(new char[cells]);
      for (std::size_t i = 0; i < cells; ++i) text[i] = static_cast<char>(0x81 + i);
      const std::unique_ptr<unsigned char[]> out(new unsigned char[cells]);
      StoreReadableText({text.get(), size}, out.get(), cells);
      std::string expected(text.get(), size);
      expected.resize(cells, ' ');
      ASSERT_EQ(std::string(reinterpret_cast<const char*>(out.get()), cells), expected)
          << size << " of " << cells;
    }
  }
}

}  // namespace
}  // namespace textwizard
