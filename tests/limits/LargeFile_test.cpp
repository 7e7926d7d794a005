// A file of more than four gigabytes, whose bytes are made when they are read: every case comes, in
// order, and a position behind the 32nd bit is found again.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/CaseBuffer.h"
#include "HostFramework/embedded/data/StreamDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "tests/support/Effort.h"
#include "tests/support/ImportRun.h"

namespace whole {
namespace {

constexpr std::int64_t kLineBytes = std::int64_t{2} << 20;
constexpr std::int64_t kLines = 2200;
static_assert(kLines * kLineBytes > std::int64_t{1} << 32);

// Lines of the same length: the number of the line, a comma, and letters.
class NumberedDevice : public embedded::StreamDevice {
 public:
  std::ptrdiff_t ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) override {
    const std::int64_t end = std::min(offset + static_cast<std::int64_t>(bytes), Size());
    for (std::int64_t at = offset; at < end;) {
      const std::int64_t line = at / kLineBytes;
      const std::int64_t upTo = std::min((line + 1) * kLineBytes, end);
      std::memset(buffer + (at - offset), 'a' + static_cast<int>(line % 26),
                  static_cast<std::size_t>(upTo - at));
      char number[16];
      const int length = std::snprintf(number, sizeof number, "%d,", static_cast<int>(line));
      for (std::int64_t i = at - line * kLineBytes; i < length && at - offset + i < upTo - offset;
           ++i) {
        buffer[line * kLineBytes + i - offset] = number[i];
      }
      if (upTo == (line + 1) * kLineBytes) buffer[upTo - 1 - offset] = '\n';
      at = upTo;
    }
    return static_cast<std::ptrdiff_t>(end - offset);
  }
  std::int64_t Size() const override { return kLines * kLineBytes; }
  std::unique_ptr<StreamDevice> Duplicate() const override {
    return std::make_unique<NumberedDevice>();
  }
};

class LargeFile : public testing::TestWithParam<Reading> {
 protected:
  void SetUp() override {
    if (kEffortDivisor > 1) GTEST_SKIP() << "positions are the same under a sanitizer, only slower";
    ASSERT_TRUE(embedded::SetCodePage(nullptr));
    embedded::SetStreamDeviceOpener([](const char*) { return std::make_unique<NumberedDevice>(); });
  }
  void TearDown() override { embedded::SetStreamDeviceOpener(nullptr); }
};

TEST_P(LargeFile, EveryCaseComesAndIsFoundAgain) {
  const Import import(
      "GET DATA /TYPE=TXT /FILE='large.txt' /DELIMITERS=',' /VARIABLES=n F8.0 s A8.");
  ASSERT_TRUE(import.made());
  const embedded::CaseBuffer buffer(import.source());
  const auto expectCase = [&](std::int64_t line) {
    ASSERT_EQ(buffer.Number(0), static_cast<double>(line));
    ASSERT_EQ(buffer.Text(1), std::string(8, static_cast<char>('a' + line % 26)));
  };
  const auto iterator = import.MakeIterator(GetParam(), buffer.obs());
  for (std::int64_t line = 0; line < kLines; ++line) {
    ASSERT_TRUE(iterator->Next()) << line;
    expectCase(line);
  }
  EXPECT_FALSE(iterator->Next());
  EXPECT_EQ(import.source().RowCount(), kLines);
  // Only the iterator without threads goes back.
  if (GetParam() == Reading::kChosen) return;
  for (const std::int64_t line :
       {kLines - 1, std::int64_t{3}, kLines - 2, kLines / 2, kLines - 1}) {
    iterator->Seek(line);
    ASSERT_TRUE(iterator->Next()) << line;
    expectCase(line);
    EXPECT_EQ(iterator->Tell(), line + 1);
  }
}

INSTANTIATE_TEST_SUITE_P(All, LargeFile, testing::Values(Reading::kChosen, Reading::kOneThread),
                         [](const auto& test) {
                           return test.param == Reading::kChosen ? "threads" : "one_thread";
                         });

}  // namespace
}  // namespace whole
