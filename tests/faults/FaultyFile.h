// A file in memory with faults, the commands that read it, and what a failed pass must look like.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/data/testing/MemoryDevice.h"
#include "HostFramework/embedded/text/HostText.h"
#include "model/MessageText.h"
#include "tests/support/ImportRun.h"

namespace whole {

inline constexpr const char* kFaultyPath = "faulty.txt";

struct FaultyFile {
  explicit FaultyFile(const std::string& bytes) : files(kFaultyPath, bytes, faults) {}
  const std::shared_ptr<embedded::StreamFaults> faults = std::make_shared<embedded::StreamFaults>();
  const embedded::ScopedMemoryFiles files;
};

// The error that everything which goes wrong with a file or its reading ends with.
inline Message ReadFailure() {
  return {kMessageError, textwizard::ReadFailedError(kFaultyPath).text};
}

// A way to read one and the same file.
struct Arrangement {
  const char* name;
  const char* command;
  // Some types are found from the data, so the command reads the file, too.
  bool found;
};

inline std::ostream& operator<<(std::ostream& out, const Arrangement& arrangement) {
  return out << arrangement.name;
}

// All three arrangements, with declared formats and with types to find.
inline const std::vector<Arrangement>& Arrangements() {
  static const std::vector<Arrangement> arrangements = {
      {"lines",
       "GET DATA /TYPE=TXT /FILE='faulty.txt' /DELIMITERS=',' /QUALIFIER='\"' /MAP "
       "/VARIABLES=n F8.0 s A6.",
       false},
      {"lines_found",
       "GET DATA /TYPE=TXT /FILE='faulty.txt' /DELIMITERS=',' /QUALIFIER='\"' /MAP "
       "/VARIABLES=n AUTO s A6.",
       true},
      {"counted",
       "GET DATA /TYPE=TXT /FILE='faulty.txt' /DELCASE=VARIABLES 2 /DELIMITERS=',' /MAP "
       "/VARIABLES=n F8.0 s A6.",
       false},
      {"counted_found",
       "GET DATA /TYPE=TXT /FILE='faulty.txt' /DELCASE=VARIABLES 2 /DELIMITERS=',' /MAP "
       "/VARIABLES=n AUTO s A6.",
       true},
      {"fixed",
       "GET DATA /TYPE=TXT /FILE='faulty.txt' /ARRANGEMENT=FIXED /FIXCASE=2 "
       "/VARIABLES=/1 n 0-1 F2.0 s 2-7 A6 /2 m 0-1 F2.0.",
       false},
      {"fixed_found",
       "GET DATA /TYPE=TXT /FILE='faulty.txt' /ARRANGEMENT=FIXED /FIXCASE=2 "
       "/VARIABLES=/1 n 0-1 AUTO s 2-7 A6 /2 m 0-1 AUTO.",
       true},
  };
  return arrangements;
}

// The number of the one error that ended a pass; 0 when there was none.
inline int EndedBy(const Pass& pass) {
  const std::vector<std::string> errors = Texts(pass.messages, kMessageError);
  EXPECT_FALSE(pass.noIterator);
  if (errors.empty()) return 0;
  EXPECT_EQ(errors, std::vector<std::string>{ReadFailure().text});
  return textwizard::kReadFailed;
}

// A command that failed has posted one error, the last of its messages, and made no source.
inline void ExpectFailed(const Import& import) {
  EXPECT_FALSE(import.made());
  EXPECT_EQ(Texts(import.messages(), kMessageError), std::vector<std::string>{ReadFailure().text});
  EXPECT_EQ(import.messages().back(), ReadFailure());
}

class FaultTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(embedded::SetCodePage(nullptr)); }
};

}  // namespace whole
