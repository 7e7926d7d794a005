// Records, fields and values: a command chosen by the first two bytes, under a host code page and
// an encoding chosen by the third, reads the others as its file. Both engines, whatever the block
// size, must deliver what the naive reader does, and tell a host that watches what it tells. Under
// few of the commands the file goes on with the same lines until they fill some of the workers'
// batches.

#include <algorithm>
#include <iterator>
#include <string>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "fuzz/FuzzTarget.h"
#include "tests/differential/ChosenEncoding.h"
#include "tests/differential/NaiveImport.h"
#include "tests/differential/PassDifference.h"
#include "tests/differential/RandomImport.h"
#include "tests/differential/WatchedDifference.h"
#include "tests/support/ImportRun.h"

namespace {

constexpr const char* kPath = "fuzz.txt";
constexpr std::size_t kBlocks[] = {1, 2, 3, 7, 64, 0};

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
  const naive::ChosenEncoding encoding(data[2]);
  fuzz::Require(encoding.SetPages(), "an unknown code page");
  const naive::CodePageText& text = encoding.text();
  naive::RandomImport import = naive::MakeRandomImport(seed, kPath);
  encoding.Adapt(import);
  std::string bytes(reinterpret_cast<const char*>(data) + kHead, size - kHead);
  if (data[1] >= kRepeated && encoding.utf8Host() &&
      import.settings.lines == naive::Lines::kOneCase) {
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
