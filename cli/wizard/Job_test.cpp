// Followers get the latest of what was said, and the end once.
#include "cli/wizard/Job.h"

#include <thread>

#include <gtest/gtest.h>

namespace cli {
namespace {

using std::chrono::milliseconds;

TEST(Job, AFollowerWhoComesLateGetsTheLatest) {
  Job job;
  job.Progress({{"bytes", 1}});
  job.Progress({{"bytes", 2}});
  std::size_t seen = 0;
  const auto event = job.Next(&seen, milliseconds(0));
  ASSERT_TRUE(event.has_value());
  EXPECT_EQ(event->name, "progress");
  EXPECT_EQ(event->data, R"({"bytes":2})");
  EXPECT_EQ(job.Next(&seen, milliseconds(0)), std::nullopt);
  EXPECT_FALSE(job.EndedAt(seen));
}

TEST(Job, TheEndIsSaidOnceAndNothingBehindIt) {
  Job job;
  job.Done({{"cases", 3}});
  job.Failed({{"text", "late"}});
  job.Progress({{"bytes", 1}});
  for (int follower = 0; follower < 2; ++follower) {
    std::size_t seen = 0;
    const auto event = job.Next(&seen, milliseconds(0));
    ASSERT_TRUE(event.has_value());
    EXPECT_EQ(event->name, "done");
    EXPECT_TRUE(job.EndedAt(seen));
  }
}

TEST(Job, WakesWhoWaits) {
  Job job;
  std::thread teller([&job] { job.Cancelled(); });
  std::size_t seen = 0;
  const auto event = job.Next(&seen, milliseconds(60000));
  teller.join();
  ASSERT_TRUE(event.has_value());
  EXPECT_EQ(event->name, "cancelled");
  EXPECT_TRUE(job.ended());
}

TEST(Job, TellsThatItShallStop) {
  Job job;
  EXPECT_FALSE(job.cancelRequested());
  job.Cancel();
  EXPECT_TRUE(job.cancelRequested());
}

}  // namespace
}  // namespace cli
