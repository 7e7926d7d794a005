// A line of 100 MB is read, and takes no more than four times its length of memory.
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/StreamDevice.h"
#include "reading/testing/ReadingTesting.h"

namespace textwizard {
namespace {

using namespace testing_support;

constexpr std::int64_t kLineSize = 100'000'000;

// A file whose bytes are made when they are read, so that it takes no memory itself.
class MadeDevice : public embedded::StreamDevice {
 public:
  using ByteAt = char (*)(std::int64_t);
  MadeDevice(std::int64_t size, ByteAt byteAt) : size_(size), byteAt_(byteAt) {}
  std::ptrdiff_t ReadAt(std::int64_t offset, char* buffer, std::size_t bytes) override {
    const auto count = std::min(static_cast<std::int64_t>(bytes), size_ - offset);
    for (std::int64_t i = 0; i < count; ++i) buffer[i] = byteAt_(offset + i);
    return static_cast<std::ptrdiff_t>(count);
  }
  std::int64_t Size() const override { return size_; }
  std::unique_ptr<StreamDevice> Duplicate() const override {
    return std::make_unique<MadeDevice>(size_, byteAt_);
  }

 private:
  std::int64_t size_;
  ByteAt byteAt_;
};

// Kilobytes of a line of /proc/self/status.
std::int64_t MemoryOf(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word != name + ":") continue;
    std::int64_t kilobytes = 0;
    status >> kilobytes;
    return kilobytes;
  }
  ADD_FAILURE() << "no " << name;
  return 0;
}

// Reads the only case of the file into a string and a number, and returns the bytes of memory that
// this took at its peak.
std::int64_t PeakOfReading(std::int64_t size, MadeDevice::ByteAt byteAt, const char* expected) {
  embedded::SetStreamDeviceOpener(
      [=](const char*) { return std::make_unique<MadeDevice>(size, byteAt); });
  std::int64_t peak = 0;
  {
    QANT_TextWizardSrc source(kPath, 0, 0, nullptr);
    QANT_DataSource::MakeVariable(&source, 4, nullptr);
    QANT_DataSource::MakeVariable(&source, 0, nullptr);
    std::vector<std::unique_ptr<TxtWzVar>> variables;
    variables.push_back(std::make_unique<TxtWzVar>(String("A", 4)));
    variables.push_back(std::make_unique<TxtWzVar>(Number("B")));
    ImportSettings settings = Delimited(",");
    settings.qualifierSet = true;
    settings.qualifier = "\"";
    source.SetSettings(settings);
    source.SetVariables(std::move(variables));
    embedded::CaseBuffer buffer(source);

    // From here on the peak is counted anew.
    std::ofstream("/proc/self/clear_refs") << "5" << std::flush;
    const std::int64_t before = MemoryOf("VmRSS");
    QANT_TextWizardIterator iterator(source, buffer.obs());
    EXPECT_TRUE(iterator.Next());
    EXPECT_EQ(buffer.Text(0), expected);
    EXPECT_EQ(buffer.Number(1), 7.0);
    EXPECT_FALSE(iterator.Next());
    peak = (MemoryOf("VmHWM") - before) * 1024;
  }
  embedded::SetStreamDeviceOpener(nullptr);
  return peak;
}

class LongRecords : public testing::Test {
 protected:
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
  void SetUp() override { GTEST_SKIP() << "the sanitizer's own memory would be measured"; }
#endif
};

// The last bytes of every line: a delimiter, a 7 and a line feed.
char LineTail(std::int64_t fromEnd) { return fromEnd == 3 ? ',' : fromEnd == 2 ? '7' : '\n'; }

TEST_F(LongRecords, OfPlainText) {
  const auto byteAt = [](std::int64_t at) {
    return at < kLineSize - 3 ? 'x' : LineTail(kLineSize - at);
  };
  EXPECT_LE(PeakOfReading(kLineSize, byteAt, "xxxx"), 4 * kLineSize);
}

TEST_F(LongRecords, OfOneQualifiedFieldFullOfDoubledQualifiers) {
  const auto byteAt = [](std::int64_t at) {
    if (at >= kLineSize - 3) return LineTail(kLineSize - at);
    // The first qualifier opens and the last closes; between them stands yyy"" again and again.
    return at == 0 || (at - 1) % 5 >= 3 || at == kLineSize - 4 ? '"' : 'y';
  };
  const std::int64_t peak = PeakOfReading(kLineSize, byteAt, "yyy\"");
  EXPECT_LE(peak, 4 * kLineSize);
}

TEST_F(LongRecords, OfUtf16) {
  const auto byteAt = [](std::int64_t at) -> char {
    if (at < 2) return at == 0 ? '\xFF' : '\xFE';
    if (at % 2 == 1) return at < kLineSize / 2 ? '\x20' : '\0';
    return at < kLineSize - 6 ? 'x' : LineTail((kLineSize - at) / 2);
  };
  // Units 2078 first, which are three bytes of UTF-8 each.
  EXPECT_LE(PeakOfReading(kLineSize, byteAt, "\xE2\x81\xB8 "), 4 * kLineSize);
}

}  // namespace
}  // namespace textwizard
