#include "library/import/CommandImport.h"

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/command/Adapter.h"
#include "HostFramework/embedded/messages/Attention.h"
#include "library/import/testing/KeptErrors.h"
#include "library/testing/TestFolder.h"

namespace library {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Keeps the number in the first cell of each case; stops when asked to.
class KeptNumbers : public CaseReceiver {
 public:
  void Take(const OBS* obs) override {
    double number = 0;
    std::memcpy(&number, obs[0].bytes, sizeof number);
    numbers.push_back(number);
  }
  bool GoesOn(long long taken) override {
    asked.push_back(taken);
    if (interrupts) embedded::RequestAttention();
    return !stops;
  }
  std::vector<double> numbers;
  std::vector<long long> asked;
  bool stops = false;
  bool interrupts = false;
};

class ACommandImport : public testing::Test {
 protected:
  ~ACommandImport() override { embedded::ClearAttention(); }

  // The numbers 1 to `count`, a line each.
  void WriteNumbers(int count) {
    std::string text;
    for (int number = 1; number <= count; ++number) text += std::to_string(number) + "\n";
    folder_.Write("numbers.csv", text);
  }
  std::vector<embedded::CommandToken> Tokens(const std::string& more = "",
                                             const std::string& file = "numbers.csv") {
    const std::string text = "GET DATA /TYPE=TXT /FILE='" + (folder_ / file) + "' " + more +
                             " /DELIMITERS=',' /VARIABLES=n F8.0.";
    embedded::CommandReader reader(text);
    embedded::ParsedCommand command;
    EXPECT_TRUE(reader.Next(command) && command.ok) << command.error;
    return command.tokens;
  }

  TestFolder folder_;
  KeptErrors messages_;
  KeptNumbers receiver_;
};

TEST_F(ACommandImport, GivesTheSourceAndItsCases) {
  WriteNumbers(3);
  CommandImport import({}, messages_);
  ASSERT_EQ(import.Open(Tokens()), ImportEnd::kDone);
  EXPECT_EQ(import.source().GetNVariables(), 1U);
  EXPECT_EQ(import.Read(receiver_), ImportEnd::kDone);
  EXPECT_THAT(receiver_.numbers, ElementsAre(1, 2, 3));
  EXPECT_EQ(import.stats().cases, 3);
  EXPECT_EQ(import.stats().variables, 1);
  EXPECT_EQ(import.stats().bytes, 6);
  EXPECT_GE(import.stats().threads, 1);
  // Nothing is left.
  EXPECT_EQ(import.Read(receiver_), ImportEnd::kDone);
  EXPECT_EQ(receiver_.numbers.size(), 3U);
  EXPECT_THAT(messages_.errors, IsEmpty());
}

TEST_F(ACommandImport, ReadsOnWhereTheReceiverStopped) {
  WriteNumbers(600);
  CommandImport import({}, messages_);
  ASSERT_EQ(import.Open(Tokens()), ImportEnd::kDone);
  receiver_.stops = true;
  EXPECT_EQ(import.Read(receiver_), ImportEnd::kStopped);
  EXPECT_THAT(receiver_.asked, ElementsAre(256));
  EXPECT_EQ(receiver_.numbers.size(), 256U);
  receiver_.stops = false;
  EXPECT_EQ(import.Read(receiver_), ImportEnd::kDone);
  EXPECT_THAT(receiver_.asked, ElementsAre(256, 512));
  ASSERT_EQ(receiver_.numbers.size(), 600U);
  EXPECT_EQ(receiver_.numbers[256], 257);
  EXPECT_EQ(import.stats().cases, 600);
}

TEST_F(ACommandImport, TheUserInterruptsIt) {
  WriteNumbers(600);
  CommandImport import({}, messages_);
  ASSERT_EQ(import.Open(Tokens()), ImportEnd::kDone);
  receiver_.interrupts = true;
  EXPECT_EQ(import.Read(receiver_), ImportEnd::kInterrupted);
  EXPECT_EQ(import.stats().cases, 512);
}

TEST_F(ACommandImport, ACommandThatFailsIsAMessage) {
  CommandImport import({}, messages_);
  EXPECT_EQ(import.Open(Tokens("/FIRSTCASE=0")), ImportEnd::kFailed);
  EXPECT_THAT(messages_.errors, ElementsAre(HasSubstr("[2259]")));
}

TEST_F(ACommandImport, AFileThatIsNotThereIsAMessage) {
  CommandImport import({}, messages_);
  EXPECT_EQ(import.Open(Tokens("", "none.csv")), ImportEnd::kFailed);
  EXPECT_THAT(messages_.errors, ElementsAre(HasSubstr("[2269]")));
}

TEST_F(ACommandImport, ACaseWithoutMemoryIsAMessage) {
  WriteNumbers(1);
  CommandImport import({}, messages_);
  ASSERT_EQ(import.Open(Tokens()), ImportEnd::kDone);
  embedded::SetCaseBufferLimit(1);
  EXPECT_EQ(import.Read(receiver_), ImportEnd::kFailed);
  embedded::SetCaseBufferLimit(0);
  EXPECT_THAT(messages_.errors, ElementsAre("no memory for a case of 8 bytes"));
}

TEST_F(ACommandImport, KeepsTheShareOfASample) {
  WriteNumbers(2000);
  ImportOptions options;
  options.seed = 7;
  std::vector<double> first;
  for (const int workers : {1, 3}) {
    options.workers = workers;
    CommandImport import(options, messages_);
    ASSERT_EQ(import.Open(Tokens("/IMPORTCASE=PERCENT 25")), ImportEnd::kDone);
    KeptNumbers receiver;
    EXPECT_EQ(import.Read(receiver), ImportEnd::kDone);
    EXPECT_GT(receiver.numbers.size(), 400U);
    EXPECT_LT(receiver.numbers.size(), 600U);
    EXPECT_EQ(import.stats().cases, static_cast<long long>(receiver.numbers.size()));
    if (first.empty()) first = receiver.numbers;
    EXPECT_EQ(receiver.numbers, first);
  }
}

TEST_F(ACommandImport, LivesBesideOthers) {
  WriteNumbers(3);
  folder_.Write("others.csv", "10\n20\n");
  CommandImport first({}, messages_);
  ASSERT_EQ(first.Open(Tokens()), ImportEnd::kDone);
  KeptNumbers others;
  {
    CommandImport second({}, messages_);
    ASSERT_EQ(second.Open(Tokens("", "others.csv")), ImportEnd::kDone);
    EXPECT_EQ(first.Read(receiver_), ImportEnd::kDone);
    EXPECT_EQ(second.Read(others), ImportEnd::kDone);
  }
  EXPECT_THAT(receiver_.numbers, ElementsAre(1, 2, 3));
  EXPECT_THAT(others.numbers, ElementsAre(10, 20));
  first.Restart();
  receiver_.numbers.clear();
  EXPECT_EQ(first.Read(receiver_), ImportEnd::kDone);
  EXPECT_THAT(receiver_.numbers, ElementsAre(1, 2, 3));
  EXPECT_THAT(messages_.errors, IsEmpty());
}

TEST_F(ACommandImport, BeginsAgainFromWhereverItStood) {
  WriteNumbers(600);
  CommandImport import({}, messages_);
  ASSERT_EQ(import.Open(Tokens()), ImportEnd::kDone);
  receiver_.stops = true;
  EXPECT_EQ(import.Read(receiver_), ImportEnd::kStopped);
  import.Restart();
  EXPECT_EQ(import.casesRead(), 0);
  receiver_.stops = false;
  receiver_.numbers.clear();
  EXPECT_EQ(import.Read(receiver_), ImportEnd::kDone);
  EXPECT_EQ(receiver_.numbers.size(), 600U);
  EXPECT_EQ(receiver_.numbers.front(), 1);
  EXPECT_EQ(import.stats().cases, 600);
}

TEST_F(ACommandImport, LeavesNoDataSourceBehind) {
  WriteNumbers(1);
  std::string name;
  {
    embedded::Adapter adapter(Tokens(), nullptr, nullptr, 1, 0);
    const ActiveSource source(adapter);
    ASSERT_NE(source.get(), nullptr);
    name = source.Name();
    EXPECT_EQ(ServerDataManager::GetInstance()->Find(name.c_str()), source.get());
    EXPECT_EQ(ServerDataManager::GetInstance()->Find(""), nullptr);
  }
  EXPECT_EQ(ServerDataManager::GetInstance()->Find(name.c_str()), nullptr);
}

}  // namespace
}  // namespace library
