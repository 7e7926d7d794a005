#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "HostFramework/Messages.h"
#include "HostFramework/embedded/messages/Catalogue.h"
#include "TreePaths.h"

namespace {

using embedded::LoadCatalogue;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* kShipped = TEXTWIZARD_SOURCE_DIR "/HostFramework/catalogue/lorvane.err";

std::string TextOf(long id) { return QantServerErrorText("lorvane.err", id).GetText(); }

// What a caller that fills the text's placeholder gets.
template <typename... Arguments>
std::string Formatted(long id, Arguments... arguments) {
  char text[2048];
  std::snprintf(text, sizeof text, TextOf(id).c_str(), arguments...);
  return text;
}

// Comes first: the catalogue is not in use yet.
TEST(FirstText, WithoutADescriptorDoesNotSpoilTheNext) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer's check of object types needs descriptors itself";
#endif
  rlimit before;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  rlimit none = before;
  none.rlim_cur = 0;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const std::string first = TextOf(2258);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_THAT(first, StartsWith("[2258] "));
  EXPECT_THAT(TextOf(2258), StartsWith("[2258] ARRANGEMENT"));
  EXPECT_THAT(embedded::CatalogueProblems(), IsEmpty());
}

class ServerErrorText : public testing::Test {
 protected:
  void TearDown() override {
    std::remove(path_.c_str());
    std::string error;
    EXPECT_TRUE(LoadCatalogue(kShipped, &error)) << error;
  }
  const char* Write(const std::string& text) {
    std::ofstream(path_, std::ios::binary) << text;
    return path_.c_str();
  }
  // Tests of other processes run at the same time.
  std::string path_ = testing::TempDir() + "catalogue-test-" + std::to_string(getpid()) + ".err";
};

TEST_F(ServerErrorText, TheHostsOwnCatalogueIsFoundBesideItsLibrary) {
  EXPECT_THAT(embedded::DefaultCataloguePath(), EndsWith("/../share/textwizard/lorvane.err"));
  std::string error;
  EXPECT_TRUE(LoadCatalogue(embedded::DefaultCataloguePath().c_str(), &error)) << error;
  EXPECT_THAT(TextOf(2258), StartsWith("[2258] "));
  EXPECT_THAT(embedded::CatalogueProblems(), IsEmpty());
}

TEST_F(ServerErrorText, TheShippedCatalogueHasATextForEveryNumberThatIsPosted) {
  std::string error;
  ASSERT_TRUE(LoadCatalogue(kShipped, &error)) << error;
  for (long id = 2251; id <= 2297; ++id) {
    if (id == 2282) continue;  // never posted
    EXPECT_THAT(TextOf(id), StartsWith("[" + std::to_string(id) + "] "));
    EXPECT_THAT(TextOf(id), testing::Not(HasSubstr("no text for this message")));
    EXPECT_THAT(TextOf(id), testing::Not(EndsWith(" ")));
  }
}

TEST_F(ServerErrorText, TheShippedFormatsTakeTheirArguments) {
  std::string error;
  ASSERT_TRUE(LoadCatalogue(kShipped, &error)) << error;
  EXPECT_THAT(Formatted(2271, 32767), HasSubstr("32767"));
  EXPECT_THAT(Formatted(2272, 64), HasSubstr("64"));
  EXPECT_THAT(Formatted(2273, 64), HasSubstr("64"));
  EXPECT_THAT(Formatted(2274, 40), HasSubstr("40"));
  EXPECT_THAT(Formatted(2279, 17, 4), testing::AllOf(HasSubstr("17"), HasSubstr("4")));
  for (const long id : {2284, 2285, 2287, 2288, 2289, 2291, 2293, 2294, 2296, 2297}) {
    EXPECT_THAT(Formatted(id, "TOKEN"), EndsWith("TOKEN")) << id;
  }
}

TEST_F(ServerErrorText, TheShippedTextsWithoutATokenAreSentences) {
  std::string error;
  ASSERT_TRUE(LoadCatalogue(kShipped, &error)) << error;
  for (const long id :
       {2251, 2263, 2264, 2265, 2268, 2270, 2275, 2276, 2279, 2280, 2281, 2283, 2286, 2290, 2295}) {
    EXPECT_THAT(TextOf(id), EndsWith(".")) << id;
  }
}

TEST_F(ServerErrorText, ANumberWithoutATextSaysSo) {
  EXPECT_EQ(TextOf(2282), "[2282] (no text for this message)");
  EXPECT_EQ(TextOf(-1), "[-1] (no text for this message)");
  EXPECT_STREQ(QantServerErrorText("other.err", 2258).GetText(),
               "[2258] (no text for this message)");
  EXPECT_STREQ(QantServerErrorText(nullptr, 2258).GetText(), "[2258] (no text for this message)");
}

TEST_F(ServerErrorText, AWrongPlaceholderIsReportedAndItsTextIsSafe) {
  std::string error;
  EXPECT_FALSE(LoadCatalogue(Write("2258 [2258] Good.\n2297 [2297] %s%s%s%n\n"), &error));
  EXPECT_THAT(error, HasSubstr(path_));
  EXPECT_THAT(error, HasSubstr("line 2, message 2297"));
  EXPECT_EQ(embedded::CatalogueProblems(), error);
  EXPECT_EQ(TextOf(2258), "[2258] Good.");
  EXPECT_EQ(Formatted(2297, "TOKEN"), "[2297] (no text for this message)");
}

TEST_F(ServerErrorText, ACatalogueThatCannotBeReadLeavesTheOneInUse) {
  ASSERT_TRUE(LoadCatalogue(Write("2258 [2258] Mine.\n"), nullptr));
  std::string error;
  EXPECT_FALSE(LoadCatalogue("/nowhere/lorvane.err", &error));
  EXPECT_THAT(error, HasSubstr("/nowhere/lorvane.err"));
  EXPECT_FALSE(LoadCatalogue(testing::TempDir().c_str(), &error));
  EXPECT_THAT(error, HasSubstr("directory"));
  EXPECT_FALSE(LoadCatalogue(nullptr, &error));
  EXPECT_EQ(TextOf(2258), "[2258] Mine.");
}

TEST_F(ServerErrorText, AFileTooLargeForACatalogueIsRefused) {
  std::string error;
  EXPECT_FALSE(LoadCatalogue(Write(std::string((1 << 20) + 1, '\n')), &error));
  EXPECT_THAT(error, HasSubstr("too large"));
  EXPECT_FALSE(LoadCatalogue("/dev/zero", &error));
  EXPECT_THAT(error, HasSubstr("too large"));
}

TEST_F(ServerErrorText, AnEmptyCatalogueGivesNoTexts) {
  EXPECT_TRUE(LoadCatalogue(Write(""), nullptr));
  EXPECT_EQ(TextOf(2258), "[2258] (no text for this message)");
}

TEST_F(ServerErrorText, TextsAndLoadsMayMeetOnManyThreads) {
  const std::string path = Write("2258 [2258] Mine.\n");
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&path, t] {
      for (int i = 0; i < 200; ++i) {
        if (t == 0) LoadCatalogue(i % 2 ? kShipped : path.c_str(), nullptr);
        EXPECT_THAT(TextOf(2258), StartsWith("[2258] "));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
