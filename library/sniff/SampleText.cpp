#include "library/sniff/SampleText.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include <unicode/ucnv.h>

#include "reading/ByteScan.h"

namespace library {
namespace {

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter OpenConverter(const char* name) {
  UErrorCode status = U_ZERO_ERROR;
  Converter converter(ucnv_open(name, &status));
  return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

void AppendUtf8(UConverter& from, UConverter& utf8, std::string_view bytes, std::string* text) {
  const char* source = bytes.data();
  const char* const end = source + bytes.size();
  UChar pivot[4096];
  UChar* pivotSource = pivot;
  UChar* pivotTarget = pivot;
  bool reset = true;
  for (;;) {
    const std::size_t used = text->size();
    text->resize(used + std::max<std::size_t>(1024, 2 * static_cast<std::size_t>(end - source)));
    char* target = text->data() + used;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_convertEx(&utf8, &from, &target, text->data() + text->size(), &source, end, pivot,
                   &pivotSource, &pivotTarget, pivot + 4096, reset, true, &status);
    text->resize(static_cast<std::size_t>(target - text->data()));
    reset = false;
    if (status != U_BUFFER_OVERFLOW_ERROR) return;
  }
}

bool IsUtf8Name(const std::string& name) { return ucnv_compareNames(name.c_str(), "UTF-8") == 0; }

}  // namespace

bool SampleText::Decode(const SampleBytes& bytes, const std::string& encoding, std::size_t skip) {
  const Converter from = OpenConverter(encoding.c_str());
  const Converter utf8 = OpenConverter("UTF-8");
  if (!from || !utf8) return false;
  bytes_ = &bytes;
  skip_ = skip;
  unit_ = static_cast<std::size_t>(ucnv_getMinCharSize(from.get()));
  low_ = 0;
  if (unit_ > 1) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const canonical = ucnv_getName(from.get(), &status);
    if (std::strstr(canonical, "BE") != nullptr) low_ = unit_ - 1;
  }
  regions_.clear();
  // Lines are views of a region's text, which therefore must not move.
  regions_.reserve(bytes.regions().size());
  headIsWhole_ = bytes.whole();
  for (const SampleBytes::Region& region : bytes.regions()) {
    std::string_view raw = region.bytes;
    if (region.offset == 0) raw.remove_prefix(std::min(skip, raw.size()));
    Region decoded;
    if (IsUtf8Name(encoding) && textwizard::IsUtf8(raw)) {
      decoded.text.assign(raw);
    } else {
      AppendUtf8(*from, *utf8, raw, &decoded.text);
      std::erase(decoded.text, '\0');
    }
    regions_.push_back(std::move(decoded));
    const bool last = &region == &bytes.regions().back();
    SplitLines(regions_.back(), region.offset != 0, !last || !bytes.reachesEnd());
  }
  const auto kinds = std::count_if(std::begin(counts_), std::end(counts_),
                                   [](std::int64_t count) { return count != 0; });
  lineEnd_ = LineEnd::kLf;
  if (kinds > 1) {
    lineEnd_ = LineEnd::kMixed;
  } else if (counts_[1] != 0) {
    lineEnd_ = LineEnd::kCrLf;
  } else if (counts_[2] != 0) {
    lineEnd_ = LineEnd::kCr;
  }
  return true;
}

void SampleText::SplitLines(Region& region, bool cutFront, bool cutBack) {
  const std::string_view text = region.text;
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = text.find_first_of("\r\n", begin);
    if (end == std::string_view::npos) {
      if (!cutBack) region.lines.push_back(text.substr(begin));
      break;
    }
    const bool pair = text[end] == '\r' && text.substr(end + 1, 1) == "\n";
    ++counts_[static_cast<std::size_t>(text[end] == '\n' ? LineEnd::kLf
                                       : pair            ? LineEnd::kCrLf
                                                         : LineEnd::kCr)];
    if (!cutFront || begin != 0) {
      region.lines.push_back(text.substr(begin, end - begin));
    } else {
      region.skippedLines = 1;
    }
    begin = end + (pair ? 2 : 1);
  }
}

std::uint64_t SampleText::OffsetOfLine(std::size_t region, std::size_t index) const {
  const SampleBytes::Region& from = bytes_->regions()[region];
  const std::string_view raw = from.bytes;
  const auto at = [&](std::size_t position) {
    for (std::size_t i = 0; i < unit_; ++i) {
      if (i != low_ && raw[position + i] != '\0') return '\0';
    }
    return raw[position + low_];
  };
  std::size_t position = region == 0 ? std::min(skip_, raw.size()) : 0;
  const std::int64_t lines = static_cast<std::int64_t>(index) + regions_[region].skippedLines;
  for (std::int64_t line = 0; line < lines; ++line) {
    while (position + unit_ <= raw.size() && at(position) != '\n' && at(position) != '\r') {
      position += unit_;
    }
    if (position + unit_ > raw.size()) return from.offset + raw.size();
    const bool carriage = at(position) == '\r';
    position += unit_;
    if (carriage && position + unit_ <= raw.size() && at(position) == '\n') position += unit_;
  }
  return from.offset + position;
}

bool SampleText::Holds(char byte) const {
  return std::any_of(regions_.begin(), regions_.end(), [&](const Region& region) {
    return region.text.find(byte) != std::string::npos;
  });
}

void SampleText::KeepLines(std::size_t count) {
  regions_.resize(1);
  if (regions_.front().lines.size() <= count) return;
  regions_.front().lines.resize(count);
  headIsWhole_ = false;
}

}  // namespace library
