#include "library/report/Digest.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <string_view>

#include <fmt/format.h>
#include <xxhash.h>

#include "library/columns/PaddedText.h"

namespace library {
namespace {

static_assert(std::endian::native == std::endian::little, "cells are hashed as they lie");

constexpr char kMissing = 0;
constexpr char kNumber = 1;
constexpr char kString = 2;

// In front of a string: what it is, and its length.
constexpr std::size_t kBesideCell = 1 + sizeof(std::uint32_t);

// No finite number above it is missing; neither is any that is no number at all a value.
bool IsMissing(double value) { return !(value > kSystemMissing) || std::isinf(value); }

// The number of a cell, -0 as 0; false where it is missing.
bool NumberIn(const unsigned char* cell, double* value) {
  std::memcpy(value, cell, sizeof *value);
  if (IsMissing(*value)) return false;
  *value += 0.0;
  return true;
}

void AppendCharacter(std::string& out, std::uint32_t code) {
  const auto put = [&out](std::uint32_t byte) { out.push_back(static_cast<char>(byte)); };
  const auto tail = [&put](std::uint32_t bits) { put(0x80U | (bits & 0x3FU)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0U | code >> 6U);
    tail(code);
  } else if (code < 0x10000) {
    put(0xE0U | code >> 12U);
    tail(code >> 6U);
    tail(code);
  } else {
    put(0xF0U | code >> 18U);
    tail(code >> 12U);
    tail(code >> 6U);
    tail(code);
  }
}

// The sum over a batch.
class PartDigest : public CasePart {
 public:
  Digest sum;
};

}  // namespace

std::string Digest::Hex() const { return fmt::format("{:016x}{:016x}", high, low); }

CaseDigester::CaseDigester(const QANT_DataSource& source) {
  columns_.reserve(source.GetNVariables());
  for (std::size_t index = 0; index < source.GetNVariables(); ++index) {
    const QANT_Variable& variable = *source.GetVariable(index);
    columns_.push_back({variable.ObsIndex(), static_cast<std::size_t>(variable.GetType())});
  }
  if (!qUTF8mode()) converter_.reset(QANTMBConverterNew_A(nullptr));
}

Digest CaseDigester::Of(const OBS* obs, std::int64_t caseNumber) {
  const std::string_view bytes = converter_ == nullptr ? BytesAsTheyLie(obs) : ConvertedBytes(obs);
  const XXH128_hash_t hash =
      XXH3_128bits_withSeed(bytes.data(), bytes.size(), static_cast<XXH64_hash_t>(caseNumber));
  return {hash.high64, hash.low64};
}

// Where texts need no conversion a case has no more bytes than its cells and what goes with them.
std::string_view CaseDigester::BytesAsTheyLie(const OBS* obs) {
  if (bytes_.empty()) {
    std::size_t most = 1;
    for (const Column& column : columns_) most += kBesideCell + sizeof(double) + column.bytes;
    bytes_.resize(most);
  }
  char* out = bytes_.data();
  for (const Column& column : columns_) {
    const unsigned char* cell = obs[column.cell].bytes;
    if (column.bytes == 0) {
      double value = 0;
      if (NumberIn(cell, &value)) {
        *out = kNumber;
        std::memcpy(out + 1, &value, sizeof value);
        out += 1 + sizeof value;
      } else {
        *out++ = kMissing;
      }
      continue;
    }
    const std::string_view text = WithoutPadding(obs + column.cell, column.bytes);
    const auto length = static_cast<std::uint32_t>(text.size());
    *out = kString;
    std::memcpy(out + 1, &length, sizeof length);
    std::memcpy(out + kBesideCell, text.data(), length);
    out += kBesideCell + length;
  }
  return {bytes_.data(), static_cast<std::size_t>(out - bytes_.data())};
}

std::string_view CaseDigester::ConvertedBytes(const OBS* obs) {
  bytes_.clear();
  for (const Column& column : columns_) {
    const unsigned char* cell = obs[column.cell].bytes;
    if (column.bytes == 0) {
      AppendNumber(cell);
    } else {
      AppendText(WithoutPadding(obs + column.cell, column.bytes));
    }
  }
  return bytes_;
}

void CaseDigester::AppendNumber(const unsigned char* cell) {
  double value = 0;
  if (!NumberIn(cell, &value)) {
    bytes_.push_back(kMissing);
    return;
  }
  char room[1 + sizeof value] = {kNumber};
  std::memcpy(room + 1, &value, sizeof value);
  bytes_.append(room, sizeof room);
}

void CaseDigester::AppendText(std::string_view text) {
  const std::size_t start = bytes_.size();
  std::uint32_t length = 0;
  bytes_.push_back(kString);
  bytes_.append(sizeof length, '\0');
  AppendUtf8(text);
  length = static_cast<std::uint32_t>(bytes_.size() - start - kBesideCell);
  std::memcpy(bytes_.data() + start + 1, &length, sizeof length);
}

void CaseDigester::AppendUtf8(std::string_view text) {
  constexpr std::size_t kLongestCharacter = 8;
  while (!text.empty()) {
    const auto byte = static_cast<unsigned char>(text.front());
    std::uint32_t code = 0;
    const int room = static_cast<int>(std::min(text.size(), kLongestCharacter));
    const int length =
        byte < 0x80 ? 0 : QANTMBU32GetC_A(converter_.get(), &code, text.data(), 0, room);
    if (length <= 0) {
      bytes_.push_back(text.front());
      text.remove_prefix(1);
    } else {
      AppendCharacter(bytes_, code);
      text.remove_prefix(static_cast<std::size_t>(length));
    }
  }
}

std::unique_ptr<CasePart> DigestSink::Make(const OBS* cases, std::size_t count,
                                           std::int64_t firstCase) const {
  std::unique_ptr<CaseDigester> digester;
  {
    const sfGuard guard(mutex_);
    if (!idle_.empty()) {
      digester = std::move(idle_.back());
      idle_.pop_back();
    }
  }
  if (digester == nullptr) digester = std::make_unique<CaseDigester>(source_);

  const std::size_t cells = source_.GetObsAreaSize() / sizeof(OBS);
  auto part = std::make_unique<PartDigest>();
  for (std::size_t index = 0; index < count; ++index) {
    const std::int64_t number = firstCase + static_cast<std::int64_t>(index) + 1;
    part->sum += digester->Of(cases + index * cells, number);
  }

  const sfGuard guard(mutex_);
  idle_.push_back(std::move(digester));
  return part;
}

void DigestSink::Take(std::unique_ptr<CasePart> part) {
  digest_ += static_cast<PartDigest&>(*part).sum;
}

}  // namespace library
