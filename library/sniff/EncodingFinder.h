// The encoding of a text file, from its bytes alone.
#pragma once

#include <string>
#include <vector>

#include "library/sniff/SampleBytes.h"
#include "library/sniff/SniffResult.h"

namespace library {

struct EncodingAnswer {
  Setting<std::string> encoding;
  // The name of ICU's converter for what stands behind the byte-order mark.
  std::string converter;
  // How sure that is.
  Verdict verdict = Verdict::kGuess;
  // Bytes of the byte-order mark; 0 when there is none.
  std::size_t markLength = 0;
  // Other encodings that decode the sample to the same text.
  std::vector<std::string> same;
};

EncodingAnswer FindEncoding(const SampleBytes& sample);

}  // namespace library
