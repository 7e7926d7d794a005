// Records, fields and values: a command chosen by the first two bytes reads the others as its file.
// Both engines must deliver what the naive reader does.

#include <string>

#include "HostFramework/embedded/data/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "fuzz/FuzzTarget.h"
#include "tests/differential/NaiveImport.h"
#include "tests/differential/PassDifference.h"
#include "tests/differential/RandomImport.h"
#include "tests/support/ImportRun.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr const char* kPath = "fuzz.txt";
  constexpr std::size_t kBlocks[] = {1, 2, 3, 7, 64, 0};
  if (size < 2) return 0;
  embedded::SetCodePage(nullptr);
  const std::uint64_t seed = data[0] + 256U * data[1];
  const naive::RandomImport import = naive::MakeRandomImport(seed, kPath);
  const std::string bytes(reinterpret_cast<const char*>(data) + 2, size - 2);
  const embedded::ScopedMemoryFiles files(kPath, bytes);
  const embedded::ScopedBlockSize blocks(kBlocks[seed % std::size(kBlocks)]);
  const whole::Import command(import.command, 2);
  fuzz::Require(command.made(), "the command fails: " + import.command);
  const naive::Import expected = naive::Read(bytes, import.settings, import.variables);
  for (const whole::Reading reading : {whole::Reading::kOneThread, whole::Reading::kChosen}) {
    const std::string difference =
        naive::PassDifference(command.Read(reading), command.source(), expected);
    fuzz::Require(difference.empty(), difference + "\n" + import.command);
  }
  return 0;
}
