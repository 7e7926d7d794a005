// Records, fields and values: a command chosen by the first two bytes, under a host code page and
// an encoding chosen by the third, reads the others as its file. Both engines, whatever the block
// size, must deliver what the naive reader does, and tell a host that watches what it tells. Under
// few of the commands the file goes on with the same lines until they fill some of the workers'
// batches.

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <string>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "fuzz/FuzzTarget.h"
#include "tests/differential/NaiveCodePage.h"
#include "tests/differential/NaiveImport.h"
#include "tests/differential/PassDifference.h"
#include "tests/differential/RandomImport.h"
#include "tests/differential/WatchedDifference.h"
#include "tests/support/ImportRun.h"

namespace {

constexpr const char* kPath = "fuzz.txt";
constexpr std::size_t kBlocks[] = {1, 2, 3, 7, 64, 0};
constexpr const char* kHostPages[] = {nullptr,      nullptr,     nullptr,  "ISO-8859-1",
                                      "ISO-8859-9", "Shift_JIS", "EUC-JP", "GB18030"};
constexpr const char* kLocalePages[] = {"ISO-8859-1", "windows-1252", "Shift_JIS", "EUC-JP",
                                        "GB18030",    "Big5",         "KOI8-R",    "UTF-8"};

// How a file is encoded, and what the host makes of it.
struct Encoding {
  enum Named { kNone, kLocale, kUtf16, kUtf8 };

  explicit Encoding(unsigned choice)
      : host(kHostPages[choice % 8]),
        named(static_cast<Named>(choice / 8 % 4)),
        locale(kLocalePages[choice / 32 % 8]) {}

  naive::Records records() const {
    return named == kLocale ? naive::Records::kLocale
           : named == kUtf8 ? naive::Records::kUtf8
                            : naive::Records::kHostText;
  }
  // How much wider than a string its field may be.
  std::size_t growth() const {
    if (named == kUtf16) return host ? 2 : 3;
    return named == kLocale && !host ? 3 : 1;
  }

  const char* host;
  Named named;
  const char* locale;
};

const naive::CodePageText& TextOf(unsigned choice, const Encoding& encoding) {
  static std::map<unsigned, std::unique_ptr<naive::CodePageText>> made;
  std::unique_ptr<naive::CodePageText>& text = made[choice];
  if (!text) {
    text =
        std::make_unique<naive::CodePageText>(encoding.host, encoding.records(), encoding.locale);
  }
  return *text;
}

// Puts the encoding and the host's text into an import that was made for UTF-8.
void Adapt(naive::RandomImport& import, const Encoding& encoding, const naive::CodePageText& text) {
  constexpr std::string_view kUtf8 = " /ENCODING='UTF8'";
  constexpr const char* kNames[] = {"", " /ENCODING=LOCALE", " /ENCODING='UTF-16'",
                                    " /ENCODING=UTF8"};
  std::string& command = import.command;
  if (const std::size_t at = command.find(kUtf8); at != std::string::npos) {
    command.erase(at, kUtf8.size());
  }
  command.insert(command.find(" /", command.find("/FILE")), kNames[encoding.named]);
  command = text.FromUtf8(command);
  for (char32_t& delimiter : import.settings.delimiters) {
    // A page that lacks it has a question mark for it.
    std::string bytes;
    text.Append(bytes, delimiter);
    if (bytes == "?") delimiter = U'?';
  }
  for (naive::Variable& variable : import.variables) {
    if (variable.format == 1) variable.fieldWidth = variable.width * encoding.growth();
  }
}

// From this second byte on.
constexpr unsigned kRepeated = 0xFC;

constexpr std::size_t kTwoBatches = 130'000;

void Repeat(std::string& bytes) {
  // A line end of either width.
  const std::string more = bytes + std::string("\n\0\n", 3);
  while (bytes.size() < kTwoBatches) bytes += more;
}

// Whether reading so many copies takes long: a warning costs more than a byte.
bool HasManyWarnings(const naive::Import& once, std::size_t size) {
  constexpr std::size_t kMost = 500;
  return once.undecodable.size() * (kTwoBatches / (size + 1)) > kMost;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kHead = 3;
  if (size < kHead) return 0;
  const std::uint64_t seed = data[0] + 256U * data[1];
  const Encoding encoding(data[2]);
  fuzz::Require(
      embedded::SetCodePage(encoding.host) && embedded::SetLocaleCodePage(encoding.locale),
      "an unknown code page");
  const naive::CodePageText& text = TextOf(data[2], encoding);
  naive::RandomImport import = naive::MakeRandomImport(seed, kPath);
  Adapt(import, encoding, text);
  std::string bytes(reinterpret_cast<const char*>(data) + kHead, size - kHead);
  if (data[1] >= kRepeated && !encoding.host && import.settings.lines == naive::Lines::kOneCase) {
    const naive::Import once = naive::Read(bytes, import.settings, import.variables, text);
    if (!HasManyWarnings(once, bytes.size())) Repeat(bytes);
  }
  const embedded::ScopedMemoryFiles files(kPath, bytes);
  const embedded::ScopedBlockSize blocks(kBlocks[seed % std::size(kBlocks)]);
  const whole::Import command(import.command, 2);
  fuzz::Require(command.made(), "the command fails: " + import.command);
  const naive::Import expected = naive::Read(bytes, import.settings, import.variables, text);
  for (const whole::Reading reading : {whole::Reading::kOneThread, whole::Reading::kChosen}) {
    const std::string difference =
        naive::PassDifference(command.Read(reading), command.source(), expected);
    fuzz::Require(difference.empty(), difference + "\n" + import.command);
  }
  import.bytes = bytes;
  naive::Import watched;
  const std::string difference = naive::WatchedDifference(import, seed, 2, text, watched);
  fuzz::Require(difference.empty(), difference + "\n" + import.command);
  return 0;
}
