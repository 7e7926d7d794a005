#include "library/import/FixedPage.h"

#include <algorithm>
#include <array>
#include <memory>
#include <set>

#include "HostFramework/embedded/data/StreamDevice.h"
#include "HostFramework/embedded/text/CodePage.h"
#include "HostFramework/embedded/text/Settings.h"
#include "HostFramework/embedded/text/Utf8.h"

namespace library {
namespace {

using embedded::CodePage;

constexpr std::size_t kBlock = std::size_t{1} << 18;
// No page of one byte has more characters beyond ASCII.
constexpr std::size_t kMostCharacters = 128;

constexpr const char* kPages[] = {
    "windows-1252", "windows-1250", "windows-1251", "windows-1253", "windows-1254", "windows-1257",
    "windows-1255", "windows-1256", "windows-1258", "ISO-8859-15",  "ISO-8859-2",   "ISO-8859-3",
    "ISO-8859-4",   "ISO-8859-5",   "ISO-8859-7",   "ISO-8859-9",   "ISO-8859-10",  "ISO-8859-13",
    "ISO-8859-14",  "ISO-8859-16",  "KOI8-R",       "KOI8-U",       "macintosh",    "IBM437",
    "IBM850",       "IBM852",       "IBM866",       "TIS-620"};

// The characters beyond ASCII of a stretch of text that is decoded bit by bit.
class Characters {
 public:
  explicit Characters(textwizard::FileEncoding encoding) : encoding_(encoding) {}

  // False when there are more than any page has.
  bool Add(std::string_view bytes) {
    pending_ += bytes;
    std::size_t at = 0;
    while (at < pending_.size()) {
      const embedded::Character character = Next(at);
      // The rest of it is in the next block.
      if (character.code == embedded::Character::kIncomplete) break;
      at += static_cast<std::size_t>(character.length);
      if (character.IsCharacter() && character.code >= 0x80) found_.insert(character.code);
    }
    pending_.erase(0, at);
    return found_.size() <= kMostCharacters;
  }
  const std::set<char32_t>& found() const { return found_; }

 private:
  embedded::Character Next(std::size_t at) const {
    const char* const text = pending_.data() + at;
    const std::size_t available = pending_.size() - at;
    if (encoding_ == textwizard::kEncodingUtf8) return embedded::DecodeUtf8(text, available);
    if (available < 2) return {embedded::Character::kIncomplete, 1};
    const auto byte = [text](std::size_t i) {
      return static_cast<unsigned>(static_cast<unsigned char>(text[i]));
    };
    const bool bigEndian = encoding_ == textwizard::kEncodingUtf16BigEndian;
    // Halves of longer characters are in no page.
    return {bigEndian ? byte(0) << 8 | byte(1) : byte(1) << 8 | byte(0), 2};
  }

  const textwizard::FileEncoding encoding_;
  std::string pending_;
  std::set<char32_t> found_;
};

// The characters beyond ASCII of the data; false when they cannot be told or are too many.
bool FindCharacters(const std::string& path, const SniffResult& sniff,
                    textwizard::FileEncoding encoding, std::set<char32_t>* found) {
  const std::unique_ptr<embedded::StreamDevice> file = embedded::OpenPosixDevice(path.c_str());
  if (file == nullptr) return false;
  const std::unique_ptr<char[]> block(new char[kBlock]);
  Characters characters(encoding);
  auto at = static_cast<std::int64_t>(sniff.firstDataOffset);
  const auto end = static_cast<std::int64_t>(sniff.dataEndOffset);
  while (at < end) {
    const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(end - at, kBlock));
    const std::ptrdiff_t got = file->ReadAt(at, block.get(), wanted);
    if (got <= 0) break;
    if (!characters.Add({block.get(), static_cast<std::size_t>(got)})) return false;
    at += got;
  }
  *found = characters.found();
  return true;
}

bool HasAll(const CodePage& page, const std::set<char32_t>& characters) {
  std::array<char, embedded::kLongestCode> code;
  return page.IsSingleByte() &&
         std::all_of(characters.begin(), characters.end(),
                     [&](char32_t character) { return page.Encode(character, code.data()) == 1; });
}

}  // namespace

bool ChooseFixedPage(const std::string& path, const SniffResult& sniff, BareCut* cut) {
  textwizard::FileEncoding& encoding = cut->cut.settings.encoding;
  if (encoding == textwizard::kEncodingLocale) {
    const CodePage* const page = CodePage::Find(cut->host.localeCodePage.c_str());
    if (page == nullptr || !page->IsSingleByte()) return false;
    // Bytes are taken as they are, and are host text.
    cut->host.codePage = cut->host.localeCodePage;
    cut->host.localeCodePage.clear();
    encoding = textwizard::kEncodingNone;
    return true;
  }
  std::set<char32_t> characters;
  if (!FindCharacters(path, sniff, encoding, &characters)) return false;
  if (characters.empty()) return true;
  for (const char* name : kPages) {
    const CodePage* const page = CodePage::Find(name);
    if (page == nullptr || !HasAll(*page, characters)) continue;
    cut->host.codePage = name;
    return true;
  }
  return false;
}

bool HostTextOf(const std::string& text, std::string* hostText) {
  const CodePage& page = embedded::HostPage();
  hostText->clear();
  if (page.IsUtf8()) {
    *hostText = text;
    return true;
  }
  std::array<char, embedded::kLongestCode> code;
  for (std::size_t at = 0; at < text.size();) {
    const embedded::Character character = embedded::DecodeUtf8(text.data() + at, text.size() - at);
    const std::size_t length =
        character.IsCharacter() ? page.Encode(character.code, code.data()) : 0;
    if (length == 0) return false;
    hostText->append(code.data(), length);
    at += static_cast<std::size_t>(character.length);
  }
  return true;
}

}  // namespace library
