#include "library/sniff/EncodingFinder.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>

#include <fmt/format.h>
#include <unicode/ucnv.h>
#include <unicode/ucsdet.h>

#include "library/input/FileKind.h"
#include "library/sniff/CodePageScore.h"
#include "library/sniff/MultiByteScore.h"
#include "library/sniff/Utf8.h"
#include "reading/ByteScan.h"

namespace library {
namespace {

// Text with bytes above 7F that is looked at for code pages.
constexpr std::size_t kMostHighText = 48 << 10;
// ICU looks at less.
constexpr std::size_t kMostForIcu = 8 << 10;
// What ICU's full confidence adds to an encoding's likelihood.
constexpr double kIcuWeight = 12.0;
// The runner-up is so much less likely where an answer is certain, and where it is likely.
constexpr double kCertainMargin = 25.0;
constexpr double kLikelyMargin = 6.0;
// The likelihood of a byte above 7F in a text that makes sense.
constexpr double kSense = -5.0;
// Bytes that are looked at for the places of zero bytes.
constexpr std::size_t kMostForZeros = 64 << 10;

struct Candidate {
  std::string name;
  double likelihood;
  bool singleByte;
};

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

EncodingAnswer Sure(const char* name, const char* evidence, std::size_t markLength = 0) {
  EncodingAnswer answer;
  answer.encoding.value = answer.converter = name;
  answer.encoding.evidence = evidence;
  answer.verdict = Verdict::kCertain;
  answer.markLength = markLength;
  return answer;
}

// An encoding that a byte-order mark names; an empty name when there is no mark.
EncodingAnswer ByMark(std::string_view head) {
  EncodingAnswer answer;
  constexpr const char* kEvidence = "byte-order mark";
  if (head.starts_with("\xEF\xBB\xBF")) return Sure("UTF-8", kEvidence, 3);
  if (head.starts_with(std::string_view("\xFF\xFE\0\0", 4))) {
    answer = Sure("UTF-32", kEvidence, 4);
    answer.converter = "UTF-32LE";
  } else if (head.starts_with(std::string_view("\0\0\xFE\xFF", 4))) {
    answer = Sure("UTF-32", kEvidence, 4);
    answer.converter = "UTF-32BE";
  } else if (head.starts_with("\xFF\xFE")) {
    answer = Sure("UTF-16", kEvidence, 2);
    answer.converter = "UTF-16LE";
  } else if (head.starts_with("\xFE\xFF")) {
    answer = Sure("UTF-16", kEvidence, 2);
    answer.converter = "UTF-16BE";
  }
  return answer;
}

// Whether units of UTF-16 without a mark are text: surrogates in pairs, no unit that is no
// character, and line ends or blanks among them.
bool IsUtf16Text(std::string_view text, bool bigEndian) {
  std::size_t known = 0;
  bool high = false;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    const auto first = static_cast<unsigned char>(text[i]);
    const auto second = static_cast<unsigned char>(text[i + 1]);
    const unsigned unit = bigEndian ? first * 256U + second : second * 256U + first;
    const bool low = unit >= 0xDC00 && unit < 0xE000;
    if (high != low && i > 0) return false;
    high = unit >= 0xD800 && unit < 0xDC00;
    if (unit == 0xFFFE || unit == 0xFFFF || unit == 0) return false;
    if (unit < 0x20 && unit != '\n' && unit != '\r' && unit != '\t') return false;
    known += unit == '\n' || unit == '\r' || unit == ' ' || unit == ',' || unit == '\t' ||
                     (unit >= '0' && unit <= '9')
                 ? 1
                 : 0;
  }
  return known * 40 >= text.size() / 2;
}

// Whether units of four bytes without a mark are text: every one a character, and some of those
// that tables have.
bool IsUtf32Text(std::string_view text, bool bigEndian) {
  std::size_t known = 0;
  for (std::size_t i = 0; i + 3 < text.size(); i += 4) {
    std::uint32_t unit = 0;
    for (std::size_t k = 0; k < 4; ++k) {
      const char byte = text[i + (bigEndian ? k : 3 - k)];
      unit = unit << 8 | static_cast<unsigned char>(byte);
    }
    if (unit > 0x10FFFF || (unit >= 0xD800 && unit < 0xE000)) return false;
    const bool blank = unit == '\n' || unit == '\r' || unit == '\t' || unit == ' ';
    if (unit < 0x20 && !blank) return false;
    known += blank || unit == ',' || (unit >= '0' && unit <= '9') ? 1 : 0;
  }
  return known * 40 >= text.size() / 4;
}

// UTF-16 and UTF-32 without a mark, by the places of their zero bytes.
EncodingAnswer ByZeros(std::string_view head) {
  EncodingAnswer none;
  const std::string_view text = head.substr(0, kMostForZeros);
  std::size_t zeros[4] = {0, 0, 0, 0};
  for (std::size_t i = 0; i < text.size(); ++i) zeros[i % 4] += text[i] == '\0' ? 1 : 0;
  const std::size_t quarter = text.size() / 4;
  if (quarter == 0) return none;
  constexpr const char* kEvidence = "places of the zero bytes";
  if (text.size() % 4 == 0 && zeros[3] == quarter && IsUtf32Text(text, false)) {
    return Sure("UTF-32LE", kEvidence);
  }
  if (text.size() % 4 == 0 && zeros[0] == quarter && IsUtf32Text(text, true)) {
    return Sure("UTF-32BE", kEvidence);
  }
  const std::size_t even = zeros[0] + zeros[2];
  const std::size_t odd = zeros[1] + zeros[3];
  const std::string_view units = text.substr(0, text.size() & ~std::size_t{1});
  // A few zero bytes in a text of bytes are zero bytes; in a wide one every second byte of what is
  // ASCII is one, and other letters have control characters for halves.
  std::string narrow(text);
  std::erase(narrow, '\0');
  const bool bytes = textwizard::IsUtf8(narrow) && 4 * (even + odd) < text.size() &&
                     ControlsBeyondText(narrow) == 0;
  if (bytes) return none;
  const bool little = odd > even && IsUtf16Text(units, false);
  const bool big = even > odd && IsUtf16Text(units, true);
  if (little) return Sure("UTF-16LE", kEvidence);
  if (big) return Sure("UTF-16BE", kEvidence);
  return none;
}

// The encodings that switch by escape sequences and have no bytes above 7F.
EncodingAnswer ByEscapes(std::string_view head) {
  constexpr const char* kEvidence = "escape sequences";
  if (Contains(head, "\x1B$B") || Contains(head, "\x1B$@") || Contains(head, "\x1B(J")) {
    return Sure("ISO-2022-JP", kEvidence);
  }
  if (Contains(head, "\x1B$)C")) return Sure("ISO-2022-KR", kEvidence);
  if (Contains(head, "~{") && Contains(head, "~}")) {
    EncodingAnswer answer = Sure("HZ", kEvidence);
    answer.verdict = Verdict::kLikely;
    return answer;
  }
  return {};
}

// A region without the parts of characters that its ends may cut.
std::string_view WholeCharacters(const SampleBytes::Region& region) {
  std::string_view text = region.bytes;
  if (region.offset != 0) {
    std::size_t front = 0;
    while (front < 3 && front < text.size() && IsUtf8Continuation(text[front])) ++front;
    text.remove_prefix(front);
  }
  std::size_t back = 0;
  while (back < 4 && back < text.size() && IsUtf8Continuation(text[text.size() - 1 - back])) ++back;
  if (back < text.size() && back < 4) {
    const char lead = text[text.size() - 1 - back];
    if (static_cast<unsigned char>(lead) >= 0xC0 && Utf8Length(lead) > back + 1) {
      text.remove_suffix(back + 1);
    }
  }
  return text;
}

// The lines that hold bytes above 7F, as many as are looked at.
std::string HighLines(const SampleBytes& sample) {
  std::string high;
  for (const SampleBytes::Region& region : sample.regions()) {
    const std::string_view text = region.bytes;
    std::size_t begin = 0;
    while (begin < text.size() && high.size() < kMostHighText) {
      const std::size_t end = std::min(text.find('\n', begin), text.size());
      const std::string_view line = text.substr(begin, std::min(end - begin, kMostHighText));
      if (!textwizard::IsAscii(line)) high.append(line).push_back('\n');
      begin = end + 1;
    }
  }
  return high;
}

// What ICU thinks of the text: names and confidences from 0 to 1.
std::vector<std::pair<std::string, double>> AskIcu(std::string_view text) {
  std::vector<std::pair<std::string, double>> answers;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UCharsetDetector, decltype(&ucsdet_close)> detector(ucsdet_open(&status),
                                                                            &ucsdet_close);
  if (U_FAILURE(status)) return answers;
  text = text.substr(0, kMostForIcu);
  ucsdet_setText(detector.get(), text.data(), static_cast<int32_t>(text.size()), &status);
  int32_t found = 0;
  const UCharsetMatch** const matches = ucsdet_detectAll(detector.get(), &found, &status);
  for (int32_t i = 0; U_SUCCESS(status) && i < found; ++i) {
    const char* const name = ucsdet_getName(matches[i], &status);
    const int32_t confidence = ucsdet_getConfidence(matches[i], &status);
    if (U_SUCCESS(status)) answers.emplace_back(name, confidence / 100.0);
  }
  return answers;
}

bool SameFamily(const std::string& name, const std::string& icu) {
  if (ucnv_compareNames(name.c_str(), icu.c_str()) == 0) return true;
  if (icu == "Shift_JIS") return name == "ms932";
  if (icu == "GB18030") return name == "GB2312" || name == "GBK";
  if (icu == "Big5") return name == "ms950";
  return icu == "EUC-KR" && name == "ms949";
}

EncodingAnswer ByLikelihood(const SampleBytes& sample) {
  const std::string high = HighLines(sample);
  BytePairs pairs;
  pairs.Add(high);
  std::vector<Candidate> candidates;
  const std::vector<CodePageScore> pages = ScoreCodePages(pairs);
  candidates.reserve(pages.size());
  for (const CodePageScore& page : pages) candidates.push_back({page.name, page.likelihood, true});
  for (const MultiByteScore& score : ScoreMultiByte(high)) {
    candidates.push_back({score.name, score.likelihood, false});
  }
  for (const auto& [name, confidence] : AskIcu(high)) {
    for (Candidate& candidate : candidates) {
      if (!candidate.singleByte && SameFamily(candidate.name, name)) {
        candidate.likelihood += kIcuWeight * confidence;
      }
    }
  }
  std::stable_sort(
      candidates.begin(), candidates.end(),
      [](const Candidate& a, const Candidate& b) { return a.likelihood > b.likelihood; });
  const Candidate& best = candidates.front();
  const auto pageOf = [&](const std::string& name) {
    return std::find_if(pages.begin(), pages.end(),
                        [&](const CodePageScore& page) { return page.name == name; });
  };
  const auto alike = [&](const Candidate& other) {
    if (!best.singleByte || !other.singleByte) return false;
    const CodePageScore& one = *pageOf(best.name);
    const CodePageScore& two = *pageOf(other.name);
    for (unsigned byte = 0x80; byte < 256; ++byte) {
      if (pairs.Has(static_cast<unsigned char>(byte)) &&
          one.characters[byte - 0x80] != two.characters[byte - 0x80]) {
        return false;
      }
    }
    return true;
  };
  EncodingAnswer answer;
  answer.encoding.value = answer.converter = best.name;
  double margin = kCertainMargin;
  for (const Candidate& other : candidates) {
    if (&other == &best) continue;
    if (alike(other)) {
      answer.same.push_back(other.name);
    } else if (answer.encoding.runnerUp.empty()) {
      answer.encoding.runnerUp = other.name;
      margin = best.likelihood - other.likelihood;
    }
  }
  answer.encoding.margin = std::min(1.0, margin / kCertainMargin);
  const auto bytes = static_cast<double>(std::max<std::uint64_t>(1, pairs.highBytes()));
  const bool sense = best.likelihood / bytes > kSense;
  answer.verdict = sense && margin >= kCertainMargin  ? Verdict::kCertain
                   : sense && margin >= kLikelyMargin ? Verdict::kLikely
                                                      : Verdict::kGuess;
  answer.encoding.evidence = best.singleByte
                                 ? fmt::format("letters as in {}", pageOf(best.name)->language)
                                 : "characters that are frequent";
  return answer;
}

}  // namespace

EncodingAnswer FindEncoding(const SampleBytes& sample) {
  const std::string_view head = sample.head();
  EncodingAnswer answer = ByMark(head);
  if (answer.encoding.value.empty() && Contains(head, std::string_view("\0", 1))) {
    answer = ByZeros(head);
  }
  if (!answer.encoding.value.empty()) return answer;
  bool ascii = true;
  bool utf8 = true;
  for (const SampleBytes::Region& region : sample.regions()) {
    std::string text(WholeCharacters(region));
    std::erase(text, '\0');
    ascii = ascii && textwizard::IsAscii(text);
    utf8 = utf8 && textwizard::IsUtf8(text);
  }
  if (ascii) answer = ByEscapes(head);
  if (!answer.encoding.value.empty()) return answer;
  if (ascii) {
    answer = Sure("UTF-8", "plain ASCII, which most encodings read alike");
    answer.same = {"US-ASCII", "ISO-8859-1", "windows-1252"};
    return answer;
  }
  if (utf8) return Sure("UTF-8", "valid UTF-8");
  return ByLikelihood(sample);
}

}  // namespace library
