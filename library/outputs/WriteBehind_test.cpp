// Batches reach the writer in order, and what it throws reaches whoever writes.
#include "library/outputs/WriteBehind.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace library {
namespace {

struct Written {
  std::vector<std::size_t> batches;  // cases of each
  std::size_t finished = 0;          // batches when it was finished
};

class RecordingWriter : public ColumnWriter {
 public:
  RecordingWriter(Written& written, std::size_t fails) : written_(written), fails_(fails) {}
  void Write(ColumnPieces batch) override {
    written_.batches.push_back(batch.cases());
    if (batch.cases() == fails_) throw std::runtime_error("no room");
  }
  void Finish(const std::vector<std::pair<std::string, std::string>>& metadata) override {
    written_.finished = written_.batches.size() + metadata.size();
  }

 private:
  Written& written_;
  const std::size_t fails_;
};

ColumnPieces BatchOf(std::size_t cases) {
  ColumnPieces pieces;
  pieces.Add({}).cases = cases;
  return pieces;
}

TEST(WriteBehind, BatchesAreWrittenInTheirOrderAndBeforeTheEnd) {
  Written written;
  WriteBehind writer(std::make_unique<RecordingWriter>(written, 0));
  std::vector<std::size_t> given;
  for (std::size_t i = 1; i <= 300; ++i) {
    given.push_back(i);
    writer.Write(BatchOf(i));
  }
  writer.Finish({{"key", "text"}});
  EXPECT_EQ(written.batches, given);
  EXPECT_EQ(written.finished, 301U);
}

TEST(WriteBehind, AFailureIsThrownAndNothingIsWrittenBehindIt) {
  Written written;
  WriteBehind writer(std::make_unique<RecordingWriter>(written, 7));
  const auto writeAll = [&] {
    for (std::size_t i = 1; i <= 100; ++i) writer.Write(BatchOf(i));
    writer.Finish({});
  };
  EXPECT_THROW(writeAll(), std::runtime_error);
  EXPECT_EQ(written.batches.back(), 7U);
  EXPECT_EQ(written.finished, 0U);
}

TEST(WriteBehind, GivenUpItEndsWithoutAnEnd) {
  Written written;
  {
    WriteBehind writer(std::make_unique<RecordingWriter>(written, 0));
    for (std::size_t i = 1; i <= 5; ++i) writer.Write(BatchOf(i));
  }
  EXPECT_LE(written.batches.size(), 5U);
  EXPECT_EQ(written.finished, 0U);
}

}  // namespace
}  // namespace library
