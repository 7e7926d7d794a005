#include "library/parts/FilledPlaces.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace library {
namespace {

std::string MaskOf(const std::vector<std::string>& records) {
  FilledPlaces places;
  for (const std::string& record : records) places.Add(record);
  return places.Take();
}

std::string Shown(const std::string& mask, std::size_t places) {
  std::string shown;
  for (std::size_t i = 0; i < places; ++i) shown += FilledPlaces::Holds(mask, i) ? 'x' : '.';
  return shown;
}

TEST(FilledPlaces, AreThoseThatHoldTextInSomeRecord) {
  EXPECT_EQ(Shown(MaskOf({"ab  12", " c   3 ", ""}), 9), "xx..xx...");
  EXPECT_EQ(Shown(MaskOf({}), 3), "...");
  EXPECT_EQ(Shown(MaskOf({"\t\xC3"}), 3), "xx.");
}

TEST(FilledPlaces, BlanksAtTheEndAreNotKept) {
  EXPECT_EQ(MaskOf({"a" + std::string(100, ' ')}), MaskOf({"a"}));
  EXPECT_EQ(MaskOf({"   "}), "");
}

TEST(FilledPlaces, FarPlacesCountAsFilled) {
  const std::string mask = MaskOf({std::string(FilledPlaces::kMost + 10, ' ') + "a"});
  EXPECT_FALSE(FilledPlaces::Holds(mask, FilledPlaces::kMost - 1));
  EXPECT_TRUE(FilledPlaces::Holds(mask, FilledPlaces::kMost));
  EXPECT_LE(MaskOf({std::string(1'000'000, 'x')}).size(), FilledPlaces::kMost / 8);
}

TEST(FilledPlaces, MasksOfPartsBecomeThatOfAllInAnyGrouping) {
  std::mt19937 random(3);
  for (int round = 0; round < 200; ++round) {
    std::vector<std::string> records;
    for (int i = 0; i < 9; ++i) {
      std::string record(random() % 70, ' ');
      for (char& byte : record) byte = random() % 9 == 0 ? 'x' : ' ';
      records.push_back(record);
    }
    const auto of = [&records](std::size_t from, std::size_t to) {
      return MaskOf({records.begin() + static_cast<std::ptrdiff_t>(from),
                     records.begin() + static_cast<std::ptrdiff_t>(to)});
    };
    std::string left = of(0, 3);
    FilledPlaces::Append(of(3, 6), &left);
    FilledPlaces::Append(of(6, 9), &left);
    std::string right = of(3, 6);
    FilledPlaces::Append(of(6, 9), &right);
    std::string all = of(0, 3);
    FilledPlaces::Append(right, &all);
    EXPECT_EQ(left, of(0, 9));
    EXPECT_EQ(all, left);
  }
}

}  // namespace
}  // namespace library
