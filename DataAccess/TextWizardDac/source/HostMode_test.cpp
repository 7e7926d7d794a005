// The tests of this folder run in a host whose text is UTF-8, whatever locale they are started in.

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/HostText.h"

namespace textwizard {
namespace {

class Utf8Host : public testing::Environment {
 public:
  void SetUp() override { ASSERT_TRUE(embedded::SetCodePage(nullptr)); }
};

[[maybe_unused]] const testing::Environment* const kUtf8Host =
    testing::AddGlobalTestEnvironment(new Utf8Host);

}  // namespace
}  // namespace textwizard
