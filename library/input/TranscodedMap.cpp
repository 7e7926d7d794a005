#include "library/input/TranscodedMap.h"

#include <algorithm>
#include <array>
#include <vector>

#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace library {
namespace {

// Of a file, between two places that the map notes.
constexpr std::int64_t kStretch = std::int64_t{1} << 19;

// Counts what is no character, unless the context is null, and puts the sign for it there.
void PutNoCharacter(const void* context, UConverterToUnicodeArgs* arguments, const char*, int32_t,
                    UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;
  if (context != nullptr) ++*static_cast<std::int64_t*>(const_cast<void*>(context));
  *error = U_ZERO_ERROR;
  ucnv_cbToUWriteUChars(arguments, &kNoCharacter, 1, 0, error);
}

// Runs of characters that are added one by one.
class RunBuilder {
 public:
  explicit RunBuilder(std::vector<CopyMap::Run>* runs) : runs_(*runs) {}

  void Add(std::int64_t copy, std::int64_t file, std::int64_t copyBytes) {
    if (characters_ > 0 && runs_.back().copyBytes == copyBytes) {
      CopyMap::Run& run = runs_.back();
      if (characters_ == 1) run.fileBytes = file - run.file;
      if (file == run.file + characters_ * run.fileBytes) {
        ++characters_;
        return;
      }
    }
    runs_.push_back({copy, file, copyBytes, 0});
    characters_ = 1;
  }

 private:
  std::vector<CopyMap::Run>& runs_;
  std::int64_t characters_ = 0;  // of the last run
};

// Appends the runs of a stretch, whose characters `converter` reads from its first byte on; `file`
// and `copy`: where it begins in each. `lineStart`: a line does.
void Replay(Converter converter, std::string_view bytes, std::int64_t file, std::int64_t copy,
            bool lineStart, bool ends, std::vector<CopyMap::Run>* runs) {
  // No byte becomes more than two units. All at once: places are not reliable where a call begins
  // within a character.
  std::vector<UChar> units(2 * bytes.size() + 32);
  std::vector<std::int32_t> places(units.size());
  UChar* target = units.data();
  const char* source = bytes.data();
  UErrorCode error = U_ZERO_ERROR;
  ucnv_toUnicode(converter.get(), &target, units.data() + units.size(), &source,
                 bytes.data() + bytes.size(), places.data(), ends ? 1 : 0, &error);
  if (U_FAILURE(error)) return;
  const std::int64_t unitBytes = ucnv_getMinCharSize(converter.get());
  // What stands between a line end and the next character, such as an escape, belongs to the line.
  std::int64_t lineBegin = lineStart ? file : -1;
  RunBuilder builder(runs);
  const auto count = static_cast<std::size_t>(target - units.data());
  for (std::size_t i = 0; i < count; ++i) {
    const UChar unit = units[i];
    const bool isPair = U16_IS_LEAD(unit) && i + 1 < count && U16_IS_TRAIL(units[i + 1]);
    const bool isNone = U16_IS_SURROGATE(unit) && !isPair;
    const int copyBytes = isPair ? 4 : isNone ? 1 : U8_LENGTH(unit);
    const std::int64_t begin = file + places[i];
    builder.Add(copy, lineBegin >= 0 ? lineBegin : begin, copyBytes);
    copy += copyBytes;
    lineBegin = unit == '\n' || unit == '\r' ? begin + unitBytes : -1;
    if (isPair) ++i;
  }
}

Converter Clone(const UConverter* converter) {
  UErrorCode error = U_ZERO_ERROR;
  Converter clone(ucnv_clone(converter, &error));
  if (U_FAILURE(error)) return nullptr;
  // Nothing is counted twice.
  ucnv_setToUCallBack(clone.get(), PutNoCharacter, nullptr, nullptr, nullptr, &error);
  return U_SUCCESS(error) ? std::move(clone) : nullptr;
}

// The line end `end` in the encoding; what a text in it begins with is left out.
std::string Encoded(UConverter* converter, UChar end, std::size_t unitBytes) {
  std::array<char, 32> bytes;
  UErrorCode error = U_ZERO_ERROR;
  const std::int32_t length =
      ucnv_fromUChars(converter, bytes.data(), bytes.size(), &end, 1, &error);
  if (U_FAILURE(error) || length < static_cast<std::int32_t>(unitBytes)) {
    return {static_cast<char>(end)};
  }
  return {bytes.data() + length - unitBytes, unitBytes};
}

}  // namespace

Converter OpenConverter(const std::string& name, std::int64_t* undecodable) {
  UErrorCode error = U_ZERO_ERROR;
  Converter converter(ucnv_open(name.c_str(), &error));
  if (U_SUCCESS(error)) {
    ucnv_setToUCallBack(converter.get(), PutNoCharacter, undecodable, nullptr, nullptr, &error);
  }
  return U_SUCCESS(error) ? std::move(converter) : nullptr;
}

TranscodedMap::TranscodedMap(const std::string& encoding, std::string_view head, CopyMap* map)
    : encoding_(encoding), map_(*map) {
  const Converter converter = OpenConverter(encoding);
  if (converter == nullptr) return;
  unitBytes_ = ucnv_getMinCharSize(converter.get());
  // A mark is what the encoding begins with and the text does not.
  UErrorCode error = U_ZERO_ERROR;
  std::int32_t signature = 0;
  const char* const marked = ucnv_detectUnicodeSignature(
      head.data(), static_cast<std::int32_t>(head.size()), &signature, &error);
  std::vector<CopyMap::Run> runs;
  Replay(OpenConverter(encoding), head, 0, 0, false, true, &runs);
  const bool isMarked = marked != nullptr && (runs.empty() || runs.front().file == signature);
  if (isMarked) markBytes_ = signature;

  // Those in either byte order are written in the greater one's where no mark tells.
  const UConverterType type = ucnv_getType(converter.get());
  std::string written = encoding;
  if (type == UCNV_UTF16) written = "UTF-16BE";
  if (type == UCNV_UTF32) written = "UTF-32BE";
  const Converter writer = OpenConverter(isMarked ? marked : written);
  if (writer != nullptr) {
    const auto unit = static_cast<std::size_t>(unitBytes_);
    lineEnds_ = {Encoded(writer.get(), u'\n', unit), Encoded(writer.get(), u'\r', unit)};
  }
  map_.SetText(markBytes_, lineEnds_, unitBytes_);
}

// Whether whoever goes on from here needs nothing of what was before.
bool TranscodedMap::StandsAtCharacter(const UConverter* converter) const {
  UErrorCode error = U_ZERO_ERROR;
  return ucnv_toUCountPending(converter, &error) == 0 && U_SUCCESS(error) &&
         (!endsLine_ || atLineStart_);
}

void TranscodedMap::Begin(const UConverter* converter) {
  if (file_ == 0) {
    map_.AddStretch(0, 0,
                    [encoding = encoding_, mark = markBytes_](
                        std::string_view bytes, std::int64_t file, std::int64_t copy, bool ends,
                        std::vector<CopyMap::Run>* runs) {
                      // Behind a mark the first character stands where it is found.
                      Replay(OpenConverter(encoding), bytes, file, copy, mark == 0, ends, runs);
                    });
    return;
  }
  if (file_ - begun_ < kStretch || !StandsAtCharacter(converter)) return;
  // The state of these cannot be kept.
  if (ucnv_getType(converter) == UCNV_COMPOUND_TEXT) return;
  const std::shared_ptr<UConverter> state = Clone(converter);
  if (state == nullptr) return;
  begun_ = file_;
  map_.AddStretch(
      file_, copy_,
      [state, lineStart = endsLine_](std::string_view bytes, std::int64_t file, std::int64_t copy,
                                     bool ends, std::vector<CopyMap::Run>* runs) {
        if (Converter clone = Clone(state.get())) {
          Replay(std::move(clone), bytes, file, copy, lineStart, ends, runs);
        }
      });
}

void TranscodedMap::Converted(std::string_view bytes, std::int64_t textBytes, char last) {
  file_ += static_cast<std::int64_t>(bytes.size());
  copy_ += textBytes;
  if (textBytes > 0) endsLine_ = last == '\n' || last == '\r';
  atLineStart_ = bytes.ends_with(lineEnds_.feed) || bytes.ends_with(lineEnds_.carriageReturn);
}

}  // namespace library
