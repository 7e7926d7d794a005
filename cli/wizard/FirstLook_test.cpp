#include "cli/wizard/FirstLook.h"

#include <atomic>
#include <stdexcept>

#include <gtest/gtest.h>

#include "library/testing/TestFolder.h"

namespace cli {
namespace {

using nlohmann::json;

constexpr std::chrono::seconds kLong{60};

// A file, and one who answers each question about it with its name and body, once `open` says so.
class FirstLookTest : public testing::Test {
 protected:
  FirstLookTest() { folder_.Write("d.csv", "a,b\n1,2\n"); }

  json Echo(std::string_view name, const json& body, const std::stop_token& stop) {
    ++asked_;
    while (!open_ && !stop.stop_requested()) std::this_thread::yield();
    if (name == broken_) throw std::runtime_error("broken");
    return Answer(name, body);
  }
  static json Answer(std::string_view name, const json& body) {
    return {{"name", name}, {"body", body}, {"reading", {{"encoding", "UTF-16LE"}}}};
  }
  FirstLook::Ask ask() {
    return [this](auto... of) { return Echo(of...); };
  }
  std::string path() const { return folder_ / "d.csv"; }
  json Given() const { return {{"path", path()}, {"given", json::object()}}; }
  json OfHead() const {
    json body = Given();
    body["count"] = FirstLook::kCases;
    return body;
  }
  json OfLines() const {
    return {
        {"path", path()}, {"encoding", "UTF-16LE"}, {"first", 1}, {"count", FirstLook::kRecords}};
  }

  library::TestFolder folder_;
  std::atomic<int> asked_ = 0;
  std::atomic<bool> open_ = true;
  std::string broken_;
};

TEST_F(FirstLookTest, TellsAllAnswersOnce) {
  FirstLook look(ask(), path());
  const json all = look.Whole(kLong).value();
  EXPECT_EQ(all, (json{{"sniff", Answer("sniff", Given())},
                       {"head", Answer("head", OfHead())},
                       {"raw", Answer("raw", OfLines())}}));
  EXPECT_EQ(asked_, 3);
  EXPECT_EQ(look.Whole(kLong), std::nullopt);
  EXPECT_EQ(look.Take("sniff", Given()), std::nullopt);
}

TEST_F(FirstLookTest, WaitsNoLongerThanItIsToldTo) {
  open_ = false;
  FirstLook look(ask(), path());
  EXPECT_EQ(look.Whole(std::chrono::milliseconds(1)), std::nullopt);
  open_ = true;
  EXPECT_EQ(look.Take("sniff", Given()), Answer("sniff", Given()));
  EXPECT_EQ(look.Take("head", OfHead()), Answer("head", OfHead()));
}

TEST_F(FirstLookTest, AnswersTheVeryQuestionOnly) {
  FirstLook look(ask(), path());
  json other = OfHead();
  other["given"]["header"] = false;
  EXPECT_EQ(look.Take("head", other), std::nullopt);
  EXPECT_EQ(look.Take("raw", OfHead()), std::nullopt);
  EXPECT_EQ(look.Take("head", OfHead()), Answer("head", OfHead()));
  EXPECT_EQ(look.Take("head", OfHead()), std::nullopt);
  // What has been taken is missing from the whole.
  EXPECT_EQ(look.Whole(kLong), std::nullopt);
}

TEST_F(FirstLookTest, TellsNothingOfAFileThatHasChanged) {
  FirstLook look(ask(), path());
  folder_.Write("d.csv", "a,b\n1,2\n3,4\n");
  EXPECT_EQ(look.Whole(kLong), std::nullopt);
  EXPECT_EQ(look.Take("sniff", Given()), std::nullopt);
}

TEST_F(FirstLookTest, WhatFailsIsToldToWhoTakesIt) {
  broken_ = "sniff";
  FirstLook look(ask(), path());
  EXPECT_EQ(look.Whole(kLong), std::nullopt);
  EXPECT_THROW(look.Take("sniff", Given()), std::runtime_error);
  EXPECT_EQ(look.Take("head", OfHead()), Answer("head", OfHead()));
  EXPECT_EQ(asked_, 2);
}

// The end of the look ends what is asked; were it not told to stop, this would never return.
TEST_F(FirstLookTest, ItsEndStopsTheQuestions) {
  open_ = false;
  { const FirstLook look(ask(), path()); }
  EXPECT_EQ(asked_, 2);
}

}  // namespace
}  // namespace cli
