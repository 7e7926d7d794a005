#include "library/rewriting/QuoteRules.h"

#include "HostFramework/embedded/text/Settings.h"
#include "reading/FieldSplitter.h"

namespace library {
namespace {

using textwizard::ByteOrderMark;

std::string Utf16Bytes(std::uint32_t code, bool bigEndian) {
  std::string bytes;
  const auto put = [&](std::uint32_t unit) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  };
  if (code < 0x10000) {
    put(code);
  } else {
    put(0xD800 + ((code - 0x10000) >> 10));
    put(0xDC00 + ((code - 0x10000) & 0x3FF));
  }
  return bytes;
}

// The page of the file's bytes, as the component takes them.
const embedded::CodePage& FilePage(textwizard::FileEncoding encoding) {
  if (encoding == textwizard::kEncodingUtf8) return embedded::CodePage::Utf8();
  if (encoding == textwizard::kEncodingLocale) return embedded::LocalePage();
  return embedded::HostPage();
}

}  // namespace

bool MakeQuoteRules(const textwizard::ImportSettings& settings, ByteOrderMark mark,
                    const RewritingOptions& options, QuoteRules* rules, std::string* problem) {
  *rules = {};
  rules->options = options;
  if (settings.arrangement == textwizard::kFixedColumns) {
    *problem = "fixed columns have no qualifier";
    return false;
  }
  const textwizard::FieldRules fields(settings);
  if (fields.qualifier() == 0) {
    *problem = "there is no qualifier; the command names none (/QUALIFIER)";
    return false;
  }
  if (fields.qualifier() >= 0x80) {
    *problem = "the qualifier is no ASCII character";
    return false;
  }
  rules->qualifier = static_cast<char>(fields.qualifier());

  if (mark == ByteOrderMark::kUtf16LittleEndian) rules->units = FileUnits::kUtf16LittleEndian;
  if (mark == ByteOrderMark::kUtf16BigEndian) rules->units = FileUnits::kUtf16BigEndian;
  rules->markBytes = mark == ByteOrderMark::kNone ? 0 : mark == ByteOrderMark::kUtf8 ? 3 : 2;
  rules->linesBefore = settings.firstCase - 1;

  const embedded::CodePage& page = FilePage(settings.encoding);
  const bool bytes = rules->units == FileUnits::kBytes;
  if (bytes && !page.IsUtf8() && !page.IsSingleByte()) rules->page = &page;
  for (const std::uint32_t code : fields.delimiters()) {
    if (code == 0) break;
    if (!bytes) {
      rules->delimiters.push_back(Utf16Bytes(code, rules->units == FileUnits::kUtf16BigEndian));
      continue;
    }
    char encoded[embedded::kLongestCode];
    // A delimiter that the page lacks does not occur.
    if (const std::size_t length = page.Encode(code, encoded); length > 0) {
      rules->delimiters.emplace_back(encoded, length);
    }
  }
  return true;
}

}  // namespace library
