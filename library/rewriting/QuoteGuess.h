// How the quotes stand in the midst of a file.
#pragma once

#include <cstdint>
#include <optional>

#include "HostFramework/embedded/data/StreamDevice.h"
#include "library/rewriting/QuoteRewriter.h"
#include "library/rewriting/RewritingDevice.h"

namespace library {

// Tries both states, outside and inside qualified text, from a little before byte `offset` of the
// file on, which is behind the preamble: in the wrong one closing qualifiers stand in unqualified
// fields. The state with fewer of those, outside where there are as many; whoever goes on from it
// has to check where records begin against what comes of the bytes before. The same whenever it is
// asked; reads a megabyte at most. Nothing where it takes the bytes before to tell characters, or
// when the file cannot be read.
std::optional<QuoteAnchor> GuessQuotes(const QuoteRewriter& rewriter, embedded::StreamDevice& file,
                                       std::int64_t offset);

}  // namespace library
