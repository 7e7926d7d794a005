// The digest of cases: a number that two readings of the same data share, whatever engine, number
// of workers or cut of the work delivered them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/DataSource.h"
#include "HostFramework/Text.h"
#include "HostFramework/Threads.h"
#include "library/outputs/CaseSink.h"

namespace library {

// A number modulo 2^128.
struct Digest {
  std::uint64_t high = 0;
  std::uint64_t low = 0;

  Digest& operator+=(const Digest& other) {
    low += other.low;
    high += other.high + (low < other.low ? 1U : 0U);
    return *this;
  }
  bool operator==(const Digest&) const = default;
  // 32 hexadecimal digits in lower case.
  std::string Hex() const;
};

// The digest of one case: XXH3-128, seeded with the case's number, of the bytes that stand for its
// values variable by variable: 1 and the number's 8 bytes (little endian, -0 as 0), or 0 for a
// missing one; 2, the length of a string without trailing blanks (4 bytes, little endian) and the
// string in UTF-8, bytes that are no character as they stand. One thread; allocates only while its
// buffer grows. The source outlives it and has all its variables.
class CaseDigester {
 public:
  explicit CaseDigester(const QANT_DataSource& source);
  // `caseNumber` from 1.
  Digest Of(const OBS* obs, std::int64_t caseNumber);

 private:
  struct Column {
    std::size_t cell;
    std::size_t bytes;  // of a string; 0 for a number
  };

  // The bytes that stand for a case; good until the next call.
  std::string_view BytesAsTheyLie(const OBS* obs);
  std::string_view ConvertedBytes(const OBS* obs);
  void AppendNumber(const unsigned char* cell);
  void AppendText(std::string_view text);
  void AppendUtf8(std::string_view text);

  std::vector<Column> columns_;
  // Host text that is not UTF-8 is converted; null where it need not be.
  ConverterHandle converter_;
  std::string bytes_;
};

// The digest of all cases of an import: the sum of theirs.
class DigestSink : public CaseSink {
 public:
  // The source outlives it and has all its variables.
  explicit DigestSink(const QANT_DataSource& source) : source_(source) {}

  std::unique_ptr<CasePart> Make(const OBS* cases, std::size_t count,
                                 std::int64_t firstCase) const override;
  void Take(std::unique_ptr<CasePart> part) override;
  void Finish() override {}

  // Of the cases taken.
  const Digest& digest() const { return digest_; }

 private:
  const QANT_DataSource& source_;
  Digest digest_;
  mutable sfMutex mutex_;
  // Those that no thread works with.
  mutable std::vector<std::unique_ptr<CaseDigester>> idle_ SF_GUARDED_BY(mutex_);
};

}  // namespace library
