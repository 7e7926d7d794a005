#include "cli/files/FileReadings.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include <fmt/format.h>

#include "library/input/ColumnPadder.h"
#include "library/input/Transcoding.h"

namespace cli {

using library::DecimalCharacter;

namespace {

constexpr char kLittleEndian[] = "\xFF\xFE";
constexpr char kBigEndian[] = "\xFE\xFF";

bool ReadNumber(std::string_view text, std::size_t* number) {
  const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return failed == std::errc() && end == text.data() + text.size() && *number > 0;
}

std::vector<std::string_view> Parts(std::string_view text) {
  std::vector<std::string_view> parts;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(',', begin), text.size());
    parts.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return parts;
}

bool ReadWord(std::string_view word, FileReading* reading) {
  constexpr std::string_view kLocale = "locale-code-page=";
  constexpr std::string_view kTranscode = "transcode=";
  constexpr std::string_view kPad = "pad-columns=";
  if (word == "decimal=comma") {
    reading->host.decimal = DecimalCharacter::kComma;
  } else if (word.starts_with(kLocale) && word.size() > kLocale.size()) {
    reading->host.localeCodePage = word.substr(kLocale.size());
  } else if (word == "byte-order-mark=utf-16le" || word == "byte-order-mark=utf-16be") {
    reading->shownMark = word.ends_with("le") ? kLittleEndian : kBigEndian;
  } else if (word.starts_with(kTranscode)) {
    reading->transcoding = word.substr(kTranscode.size());
    return library::IsEncodingName(reading->transcoding);
  } else if (word.starts_with(kPad)) {
    std::string places(word.substr(kPad.size()));
    std::replace(places.begin(), places.end(), '/', ',');
    std::string problem;
    reading->paddedAt =
        library::ParsePlaces(places, &problem).value_or(std::vector<std::int64_t>());
    return !reading->paddedAt.empty();
  } else if (word == "join-quoted-lines") {
    reading->rewriting.joinQuotedLines = true;
  } else if (word == "backslash-escapes") {
    reading->rewriting.backslashEscapes = true;
  } else if (word == "keep-stray-qualifiers") {
    reading->rewriting.keepStrayQualifiers = true;
  } else {
    return false;
  }
  return true;
}

std::string WordsOf(const FileReading& reading) {
  std::string words;
  const auto add = [&words](const std::string& word) {
    words += (words.empty() ? "" : ",") + word;
  };
  if (reading.host.decimal == DecimalCharacter::kComma) add("decimal=comma");
  if (!reading.host.localeCodePage.empty()) {
    add("locale-code-page=" + reading.host.localeCodePage);
  }
  if (!reading.shownMark.empty()) {
    add(reading.shownMark == kBigEndian ? "byte-order-mark=utf-16be" : "byte-order-mark=utf-16le");
  }
  if (!reading.transcoding.empty()) add("transcode=" + reading.transcoding);
  if (!reading.paddedAt.empty()) {
    std::string places = library::PlacesText(reading.paddedAt);
    std::replace(places.begin(), places.end(), ',', '/');
    add("pad-columns=" + places);
  }
  if (reading.rewriting.joinQuotedLines) add("join-quoted-lines");
  if (reading.rewriting.backslashEscapes) add("backslash-escapes");
  if (reading.rewriting.keepStrayQualifiers) add("keep-stray-qualifiers");
  return words.empty() ? "none" : words;
}

}  // namespace

bool FileReading::operator==(const FileReading& other) const {
  return host.codePage == other.host.codePage && host.localeCodePage == other.host.localeCodePage &&
         host.decimal == other.host.decimal && rewriting == other.rewriting &&
         shownMark == other.shownMark && transcoding == other.transcoding &&
         paddedAt == other.paddedAt;
}

bool ApplyReading(const std::string& text, std::vector<FileReading>* readings, std::string* error) {
  *error = fmt::format("{} is nothing like 3,5-7:decimal=comma", text);
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) return false;
  FileReading reading;
  const std::string_view words = std::string_view(text).substr(colon + 1);
  for (const std::string_view word : Parts(words)) {
    if (words == "none" || ReadWord(word, &reading)) continue;
    *error = fmt::format("{} is no way of reading a file", word);
    return false;
  }
  for (const std::string_view range : Parts(std::string_view(text).substr(0, colon))) {
    const std::size_t dash = std::min(range.find('-'), range.size());
    std::size_t from = 0;
    std::size_t to = 0;
    if (!ReadNumber(range.substr(0, dash), &from)) return false;
    to = from;
    if (dash < range.size() && !ReadNumber(range.substr(dash + 1), &to)) return false;
    if (from > to || to > readings->size()) {
      *error = fmt::format("{} is no command of the {} that there are", range, readings->size());
      return false;
    }
    for (std::size_t i = from; i <= to; ++i) {
      const std::string codePage = (*readings)[i - 1].host.codePage;
      (*readings)[i - 1] = reading;
      (*readings)[i - 1].host.codePage = codePage;
    }
  }
  error->clear();
  return true;
}

std::vector<std::string> ReadingTexts(const std::vector<FileReading>& readings,
                                      const FileReading& usual) {
  // In the order of their first commands.
  std::vector<std::pair<std::string, std::string>> lists;
  for (std::size_t i = 0; i < readings.size();) {
    std::size_t end = i + 1;
    while (end < readings.size() && readings[end] == readings[i]) ++end;
    if (!(readings[i] == usual)) {
      const std::string words = WordsOf(readings[i]);
      auto found = std::find_if(lists.begin(), lists.end(),
                                [&words](const auto& list) { return list.first == words; });
      if (found == lists.end()) found = lists.insert(lists.end(), {words, ""});
      found->second += fmt::format("{}{}", found->second.empty() ? "" : ",", i + 1);
      if (end > i + 1) found->second += fmt::format("-{}", end);
    }
    i = end;
  }
  std::vector<std::string> texts;
  texts.reserve(lists.size());
  for (const auto& [words, list] : lists) texts.push_back(fmt::format("{}:{}", list, words));
  return texts;
}

}  // namespace cli
