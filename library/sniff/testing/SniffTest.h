// What tests of understanding bare files share: texts as sources, and text in other encodings.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/sniff/Sniffer.h"

namespace library {

class SniffTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};

  static SniffResult Sniffed(std::string_view bytes, const SniffSettings& settings = {}) {
    MemorySource source(bytes, true);
    SniffResult result;
    std::string problem;
    EXPECT_TRUE(Sniff(source, settings, &result, &problem)) << problem;
    return result;
  }

  // Why the bytes are refused.
  static std::string Refusal(std::string_view bytes, const SniffSettings& settings = {}) {
    MemorySource source(bytes, true);
    SniffResult result;
    std::string problem;
    EXPECT_FALSE(Sniff(source, settings, &result, &problem));
    return problem;
  }

  // UTF-8 in another encoding.
  static std::string In(const char* encoding, std::string_view utf8) {
    const icu::UnicodeString text = icu::UnicodeString::fromUTF8(
        icu::StringPiece(utf8.data(), static_cast<int32_t>(utf8.size())));
    const int32_t length = text.extract(0, text.length(), nullptr, 0, encoding);
    std::string bytes(static_cast<std::size_t>(length), '\0');
    text.extract(0, text.length(), bytes.data(), static_cast<std::uint32_t>(length), encoding);
    return bytes;
  }

  static std::vector<std::string> Names(const SniffResult& result) {
    std::vector<std::string> names;
    for (const SniffColumn& column : result.columns) names.push_back(column.name);
    return names;
  }
  static std::vector<std::string> Formats(const SniffResult& result) {
    std::vector<std::string> formats;
    for (const SniffColumn& column : result.columns) formats.push_back(column.format);
    return formats;
  }
};

}  // namespace library
