#include "library/parts/StretchDevice.h"

#include <string>

#include <gtest/gtest.h>

#include "HostFramework/FileStream.h"
#include "HostFramework/embedded/data/testing/MemoryDevice.h"

namespace library {
namespace {

constexpr const char* kPath = "stretch.txt";

std::string ReadAll(const QANT_FileStream& opened, bool* failed = nullptr) {
  QANT_FileStream stream(opened);
  std::string text;
  for (unsigned char byte = 0; stream.ReadByte(&byte);) text += static_cast<char>(byte);
  if (failed != nullptr) *failed = stream.ReadFailed();
  return text;
}

class AStretchDevice : public testing::Test {
 protected:
  void Open(const std::string& bytes, std::shared_ptr<embedded::StreamFaults> faults = nullptr) {
    files_ = std::make_unique<embedded::ScopedMemoryFiles>(kPath, bytes, std::move(faults));
    const ScopedStretches stretches(view_);
    ASSERT_TRUE(stream_.Open(kPath, "", "rb"));
  }
  std::shared_ptr<StretchView> view_ = std::make_shared<StretchView>();
  std::unique_ptr<embedded::ScopedMemoryFiles> files_;
  QANT_FileStream stream_;
};

TEST_F(AStretchDevice, ShowsAllAtFirst) {
  Open("head\n1\n2\n");
  EXPECT_EQ(ReadAll(stream_), "head\n1\n2\n");
  EXPECT_EQ(QANT_FileStream(stream_).Size(), 9);
}

TEST_F(AStretchDevice, ShowsAStretchWithAHead) {
  Open("\xEF\xBB\xBFhead\n1\n2\n3\n");
  view_->Show({{3, 2, 1, false}, 10, 12});
  EXPECT_EQ(ReadAll(stream_), "\xEF\xBB\xBF\n\n2\n");
  EXPECT_EQ(QANT_FileStream(stream_).Size(), 7);
  EXPECT_EQ(stream_.Size(), 14) << "the stream itself is that of the file";
}

TEST_F(AStretchDevice, ShowsTheFirstStretchAsItStands) {
  Open("head\n1\n2\n");
  view_->Show({{0, 1, 1, false}, 0, 7});
  EXPECT_EQ(ReadAll(stream_), "head\n1\n");
}

TEST_F(AStretchDevice, FillsWithLinesOfTheFilesUnits) {
  Open(std::string("\xFE\xFF\0a\0\n\0b", 8));
  view_->Show({{2, 1, 2, true}, 6, 8});
  EXPECT_EQ(ReadAll(stream_), std::string("\xFE\xFF\0\n\0b", 6));
  view_->Show({{2, 1, 2, false}, 6, 8});
  EXPECT_EQ(ReadAll(stream_), std::string("\xFE\xFF\n\0\0b", 6));
}

TEST_F(AStretchDevice, KeepsWhatACopyWasMadeWith) {
  Open("0123456789");
  view_->Show({{}, 2, 4});
  QANT_FileStream copy(stream_);
  view_->Show({{}, 5, 6});
  EXPECT_EQ(copy.Buffered(), "23");
  EXPECT_EQ(ReadAll(stream_), "5");
}

TEST_F(AStretchDevice, ReadsByteByByteToo) {
  auto faults = std::make_shared<embedded::StreamFaults>();
  faults->mostBytes = 1;
  Open("0123456789", faults);
  view_->Show({{2, 3, 1, false}, 4, 9});
  EXPECT_EQ(ReadAll(stream_), "01\n\n\n45678");
}

TEST_F(AStretchDevice, TellsAFileThatWasCutMeanwhile) {
  auto faults = std::make_shared<embedded::StreamFaults>();
  Open("0123456789", faults);
  view_->Show({{}, 4, 9});
  bool failed = false;
  EXPECT_EQ(ReadAll(stream_, &failed), "45678");
  EXPECT_FALSE(failed);
  faults->cutAt = 6;
  EXPECT_EQ(ReadAll(stream_, &failed), "45");
  EXPECT_TRUE(failed);
}

TEST_F(AStretchDevice, StreamsOpenedLaterAreOfTheFile) {
  Open("0123456789");
  view_->Show({{}, 4, 9});
  QANT_FileStream other;
  ASSERT_TRUE(other.Open(kPath, "", "rb"));
  EXPECT_EQ(ReadAll(other), "0123456789");
}

}  // namespace
}  // namespace library
