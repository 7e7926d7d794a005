// The host text of these tests is UTF-8 unless a test says otherwise, whatever locale they run in.
#include <gtest/gtest.h>

#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/HostText.h"

namespace {

class Utf8Host : public testing::Environment {
 public:
  void SetUp() override { ASSERT_TRUE(embedded::SetCodePage(nullptr)); }
};

const testing::Environment* const kUtf8Host = testing::AddGlobalTestEnvironment(new Utf8Host);

TEST(HostText, IsUtf8) {
  EXPECT_NE(kUtf8Host, nullptr);
  EXPECT_TRUE(qUTF8mode());
}

}  // namespace
