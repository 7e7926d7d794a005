#include "library/input/Transcoding.h"

#include <cerrno>
#include <cstring>
#include <optional>
#include <vector>

#include <fmt/format.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>
#include <unistd.h>

#include "library/input/TranscodedMap.h"

namespace library {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;
// Of them, what may be a mark and shows what stands behind it.
constexpr std::size_t kHeadBytes = 64;

// The byte for what is no character.
void WriteNoCharacter(const void*, UConverterFromUnicodeArgs* arguments, const UChar*, int32_t,
                      UChar32, UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;
  *error = U_ZERO_ERROR;
  ucnv_cbFromUWriteBytes(arguments, &kNoCharacterByte, 1, 0, error);
}

}  // namespace

bool IsEncodingName(const std::string& name) { return OpenConverter(name) != nullptr; }

bool NeedsTranscoding(const std::string& encoding) {
  const Converter converter = OpenConverter(encoding);
  if (converter == nullptr) return false;
  switch (ucnv_getType(converter.get())) {
    case UCNV_UTF32_BigEndian:
    case UCNV_UTF32_LittleEndian:
    case UCNV_UTF32:
    case UCNV_UTF7:
    case UCNV_IMAP_MAILBOX:
    case UCNV_ISO_2022:
    case UCNV_HZ:
    case UCNV_SCSU:
    case UCNV_BOCU1:
    case UCNV_EBCDIC_STATEFUL:
    case UCNV_COMPOUND_TEXT:
      return true;
    default:
      return false;
  }
}

bool Transcode(int descriptor, const std::string& encoding, const TranscodingListener& listener,
               std::int64_t* undecodable, std::string* problem, CopyMap* map) {
  *undecodable = 0;
  const Converter from = OpenConverter(encoding, undecodable);
  const Converter to = OpenConverter("UTF-8");
  if (from == nullptr || to == nullptr) {
    *problem = fmt::format("there is no encoding {}", encoding);
    return false;
  }
  UErrorCode error = U_ZERO_ERROR;
  ucnv_setFromUCallBack(to.get(), WriteNoCharacter, nullptr, nullptr, nullptr, &error);
  std::vector<char> source(kBlock);
  std::vector<char> target(kBlock);
  std::vector<UChar> pivot(kBlock);
  UChar* pivotSource = pivot.data();
  UChar* pivotTarget = pivot.data();
  std::int64_t read = 0;
  bool begins = true;
  std::optional<TranscodedMap> mapped;
  for (bool ends = false; !ends;) {
    const ssize_t got = pread(descriptor, source.data(), source.size(), read);
    if (got < 0) {
      *problem = std::strerror(errno);
      return false;
    }
    ends = got == 0;
    read += got;
    const std::string_view block(source.data(), static_cast<std::size_t>(got));
    if (map != nullptr && !mapped) mapped.emplace(encoding, block.substr(0, kHeadBytes), map);
    if (mapped) mapped->Begin(from.get());
    std::int64_t textBytes = 0;
    char last = '\0';
    const char* bytes = source.data();
    do {
      error = U_ZERO_ERROR;
      char* text = target.data();
      ucnv_convertEx(to.get(), from.get(), &text, target.data() + target.size(), &bytes,
                     source.data() + got, pivot.data(), &pivotSource, &pivotTarget,
                     pivot.data() + pivot.size(), begins ? 1 : 0, ends ? 1 : 0, &error);
      begins = false;
      if (U_FAILURE(error) && error != U_BUFFER_OVERFLOW_ERROR) {
        *problem = fmt::format("not converted from {}: {}", encoding, u_errorName(error));
        return false;
      }
      const auto length = static_cast<std::size_t>(text - target.data());
      if (length > 0 && !listener.write({target.data(), length}, problem)) return false;
      textBytes += static_cast<std::int64_t>(length);
      if (length > 0) last = target[length - 1];
    } while (error == U_BUFFER_OVERFLOW_ERROR);
    if (mapped) mapped->Converted(block, textBytes, last);
    if (!listener.progress(read)) return false;
  }
  if (mapped) mapped->End();
  return true;
}

}  // namespace library
