#include <csignal>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/Messages.h"
#include "HostFramework/embedded/messages/Attention.h"

namespace {

std::vector<std::pair<std::string, int>> received;

void Receive(const char* text, int kind) { received.emplace_back(text, kind); }

class ErrorMonitors : public testing::Test {
 protected:
  void SetUp() override { received.clear(); }
  void TearDown() override { embedded::ClearAttention(); }
};

TEST_F(ErrorMonitors, PassesTextAndKindToTheCallback) {
  QantErrorMonitor monitor(Receive);
  monitor.Report({"[2266] cut x", kMessageWarning, 0});
  monitor.Report({"[2258] not Y", kMessageError, 0});
  monitor.Report({"map", kMessageLog, 0});
  monitor.Report({"-1", kMessageProgress, 0});
  const std::vector<std::pair<std::string, int>> expected{
      {"[2266] cut x", 0}, {"[2258] not Y", 1}, {"map", 3}, {"-1", 4}};
  EXPECT_EQ(received, expected);
}

TEST_F(ErrorMonitors, ANullCallbackDropsMessages) {
  QantErrorMonitor monitor(nullptr);
  monitor.Report({"text", kMessageError, 0});
  EXPECT_TRUE(received.empty());
}

TEST_F(ErrorMonitors, ContextTravelsAlong) {
  QantErrorMonitor monitor(Receive);
  EXPECT_EQ(monitor.GetContext(), nullptr);
  int word = 0;
  monitor.SetContext(&word);
  EXPECT_EQ(monitor.GetContext(), &word);
}

TEST_F(ErrorMonitors, AttentionIsTrueOnceTheUserAsked) {
  QantErrorMonitor monitor(Receive);
  bool attention = true;
  monitor.AttentionCheck(&attention);
  EXPECT_FALSE(attention);
  embedded::RequestAttention();
  monitor.AttentionCheck(&attention);
  EXPECT_TRUE(attention);
  monitor.AttentionCheck(&attention);
  EXPECT_TRUE(attention);
  embedded::ClearAttention();
  monitor.AttentionCheck(&attention);
  EXPECT_FALSE(attention);
}

TEST_F(ErrorMonitors, ASignalHandlerMayAskForAttention) {
  const auto before = std::signal(SIGUSR1, [](int) { embedded::RequestAttention(); });
  ASSERT_NE(before, SIG_ERR);
  ASSERT_EQ(std::raise(SIGUSR1), 0);
  std::signal(SIGUSR1, before);
  EXPECT_TRUE(embedded::AttentionRequested());
}

}  // namespace
