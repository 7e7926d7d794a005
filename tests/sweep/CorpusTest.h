// The base of tests that are done with every file of the corpus.
#pragma once

#include <optional>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "HostFramework/embedded/values/testing/ValueInputTesting.h"
#include "tests/sweep/Corpus.h"

namespace whole {

// The host is as the import wants it, and its file is there.
class CorpusTest : public testing::TestWithParam<CorpusImport> {
 protected:
  CorpusTest()
      : pages_(nullptr, GetParam().localePage.empty() ? nullptr : GetParam().localePage.c_str()) {
    if (GetParam().decimalComma) comma_.emplace();
    if (GetParam().bytes) files_.emplace(kCorpusPath, GetParam().bytes());
  }

 private:
  const embedded::InCodePage pages_;
  std::optional<embedded::DecimalComma> comma_;
  std::optional<embedded::ScopedMemoryFiles> files_;
};

}  // namespace whole
