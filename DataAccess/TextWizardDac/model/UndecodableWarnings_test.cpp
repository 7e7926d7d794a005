// Every warning is the catalogue's text with its numbers, whatever was told before.
#include "model/UndecodableWarnings.h"

#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/embedded/messages/Catalogue.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "model/MessageText.h"
#include "model/testing/MessageKeeper.h"

namespace textwizard {
namespace {

struct Place {
  std::int64_t caseNumber;
  std::size_t position;
  std::size_t count;
};

void ExpectWarnings(const std::vector<Place>& places) {
  UndecodableWarnings warnings;
  MessageKeeper kept;
  std::vector<std::string> expected;
  for (const Place& place : places) {
    warnings.Report(kept, place.caseNumber, place.position, place.count);
    for (std::size_t i = 0; i < place.count; ++i) {
      expected.push_back(UndecodableWarning(place.caseNumber, place.position + i).text);
    }
  }
  EXPECT_EQ(kept.Texts(kMessageWarning), expected);
  EXPECT_EQ(kept.messages.size(), expected.size());
  for (const ErrorText& message : kept.messages) EXPECT_EQ(message.value, 0);
}

const std::vector<Place> kPlaces = {{1, 0, 1},
                                    {1, 7, 5},
                                    {1, 12, 90},
                                    {1, 2147483646, 3},
                                    {1, 3, 0},
                                    {2, 98, 4},
                                    {2, 5, 1},
                                    {1000000, 9999, 3},
                                    {2, 5, 2},
                                    {3, 123456789, 1},
                                    {3, 1, 1},
                                    {std::int64_t{1} << 32 | 5, 1, 1},
                                    {7, std::size_t{1} << 32 | 9, 2}};

TEST(UndecodableWarnings, EveryByteOfARunHasItsOwn) { ExpectWarnings(kPlaces); }

TEST(UndecodableWarnings, ACatalogueOfAnotherWording) {
  for (const char* const text :
       {"100%% wrong: %d, %i", "%d%d", "%d and %d", "no numbers", "one number: %d"}) {
    const std::string path = embedded::TestFile("lorvane.err");
    FILE* const file = std::fopen(path.c_str(), "w");
    ASSERT_NE(file, nullptr);
    std::fprintf(file, "2279 [2279] %s\n", text);
    std::fclose(file);
    std::string problems;
    embedded::LoadCatalogue(path.c_str(), &problems);
    ExpectWarnings(kPlaces);
    ASSERT_TRUE(embedded::LoadCatalogue(embedded::DefaultCataloguePath().c_str(), &problems));
    std::remove(path.c_str());
  }
}

}  // namespace
}  // namespace textwizard
