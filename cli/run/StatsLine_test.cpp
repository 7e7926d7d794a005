#include "cli/run/StatsLine.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace cli {
namespace {

TEST(StatsLine, AddsUpAndKeepsTheLargestNumberOfThreads) {
  library::ImportStats sum;
  sum.Add({10, 2, 100, 0.5, 1, 0.25, 3});
  sum.Add({5, 3, 50, 0.5, 2, 0.25, 1});
  const std::string line = StatsLine(sum);
  const auto json = nlohmann::ordered_json::parse(line);
  std::vector<std::string> keys;
  for (const auto& [key, value] : json.items()) keys.push_back(key);
  EXPECT_EQ(keys, (std::vector<std::string>{"cases", "variables", "bytes", "dictionary_seconds",
                                            "read_seconds", "write_seconds", "peak_rss_bytes",
                                            "threads"}));
  EXPECT_EQ(json["cases"], 15);
  EXPECT_EQ(json["variables"], 5);
  EXPECT_EQ(json["bytes"], 150);
  EXPECT_EQ(json["dictionary_seconds"], 1.0);
  EXPECT_EQ(json["read_seconds"], 3.0);
  EXPECT_EQ(json["write_seconds"], 0.5);
  EXPECT_EQ(json["threads"], 3);
  EXPECT_GT(json["peak_rss_bytes"], 1000000);
  EXPECT_EQ(line.find('\n'), std::string::npos);
}

}  // namespace
}  // namespace cli
