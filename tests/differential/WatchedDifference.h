// What a host that watches is told, compared with the naive reader.
#pragma once

#include <cstdint>
#include <string>

#include "tests/differential/NaiveImport.h"
#include "tests/differential/RandomImport.h"

namespace naive {

// Runs the import, whose file `path` of the command holds `import.bytes`, with both engines for a
// host that watches; what the host wants, and whether it stops early, is drawn from `seed`. Returns
// what differs first from what `expected` becomes, which is the naive import of the same; empty
// when nothing does.
std::string WatchedDifference(RandomImport import, std::uint64_t seed, int workers,
                              const HostText& host, Import& expected);

}  // namespace naive
