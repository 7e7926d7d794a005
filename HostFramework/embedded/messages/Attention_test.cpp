#include "HostFramework/embedded/messages/Attention.h"

#include <thread>

#include <gtest/gtest.h>

namespace embedded {
namespace {

bool RequestedOnAnotherThread() {
  bool requested = false;
  std::thread([&requested] { requested = AttentionRequested(); }).join();
  return requested;
}

TEST(Attention, ARequestIsForEveryThread) {
  EXPECT_FALSE(AttentionRequested());
  RequestAttention();
  EXPECT_TRUE(AttentionRequested());
  EXPECT_TRUE(RequestedOnAnotherThread());
  ClearAttention();
  EXPECT_FALSE(AttentionRequested());
}

TEST(Attention, AScopeIsForItsThreadAndItsTime) {
  std::atomic<bool> outer{false};
  std::atomic<bool> inner{false};
  {
    const AttentionScope outerScope(outer);
    EXPECT_FALSE(AttentionRequested());
    outer = true;
    EXPECT_TRUE(AttentionRequested());
    EXPECT_FALSE(RequestedOnAnotherThread());
    {
      const AttentionScope innerScope(inner);
      EXPECT_FALSE(AttentionRequested());
      RequestAttention();
      EXPECT_TRUE(AttentionRequested());
      ClearAttention();
    }
    EXPECT_TRUE(AttentionRequested());
  }
  EXPECT_FALSE(AttentionRequested());
}

TEST(Attention, AScopeMayLookBeforeItAnswers) {
  std::atomic<bool> wanted{false};
  int looks = 0;
  {
    const AttentionScope scope(wanted, [&] { wanted = ++looks == 2; });
    EXPECT_FALSE(AttentionRequested());
    EXPECT_TRUE(AttentionRequested());
    EXPECT_FALSE(RequestedOnAnotherThread());
    EXPECT_EQ(looks, 2);
  }
  EXPECT_FALSE(AttentionRequested());
}

}  // namespace
}  // namespace embedded
