// Dates and times with all parts at fixed places: read at once, they have the values of the
// calendar, and what is not quite in such a layout is read as it is part by part.
#include "HostFramework/embedded/values/FixedLayout.h"

#include <chrono>
#include <cstdio>
#include <random>
#include <string>

#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

constexpr char kSeparators[] = "-/.,";

std::string Padded(int number, int digits) {
  char text[16];
  std::snprintf(text, sizeof text, "%0*d", digits, number);
  return text;
}

// By the standard's calendar; nothing for a date that does not exist or lies before the first day.
std::optional<double> Expected(int year, int month, int day) {
  const std::chrono::year_month_day date{std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok()) return std::nullopt;
  const double seconds = Day1970(std::chrono::sys_days(date).time_since_epoch().count());
  if (seconds < kDaySeconds) return std::nullopt;
  return seconds;
}

TEST(FixedLayout, WhatMatches) {
  constexpr FixedLayout kLayout("00-aaT:0");
  std::uint64_t places = 0;
  ASSERT_TRUE(kLayout.Matches("12/x~T:9", &places));
  EXPECT_EQ(FixedLayout::TwoDigits(places, 0), 12);
  EXPECT_EQ(places >> 56, 9U);
  const std::string good = "12/x~T:9";
  for (std::size_t place = 0; place < good.size(); ++place) {
    const std::string_view allowed = place == 2                 ? kSeparators
                                     : place == 5               ? "T"
                                     : place == 6               ? ":"
                                     : place == 3 || place == 4 ? ""
                                                                : "0123456789";
    for (int byte = 0; byte < 256; ++byte) {
      std::string text = good;
      text[place] = static_cast<char>(byte);
      const bool expected =
          allowed.empty() ? byte < 0x80 : allowed.find(text[place]) != std::string_view::npos;
      EXPECT_EQ(kLayout.Matches(text.c_str(), &places), expected) << place << ' ' << byte;
    }
  }
}

TEST(FixedLayout, NumbersOfPlaces) {
  constexpr FixedLayout kDigits("00000000");
  for (int number = 0; number <= 9999; ++number) {
    const std::string text = Padded(number, 4) + Padded(9999 - number, 4);
    std::uint64_t places = 0;
    ASSERT_TRUE(kDigits.Matches(text.c_str(), &places));
    ASSERT_EQ(FixedLayout::FourDigits(places, 0), number);
    ASSERT_EQ(FixedLayout::FourDigits(places, 4), 9999 - number);
    ASSERT_EQ(FixedLayout::TwoDigits(places, 2), number % 100);
  }
}

TEST(FixedLayout, EveryDayAndMonthOfSomeYears) {
  constexpr const char* kNames[] = {"jan", "FEB", "Mar", "apr", "may", "JUN",
                                    "jul", "AUG", "sep", "Oct", "nov", "dec"};
  int dates = 0;
  for (const int year : {0, 1, 1581, 1582, 1583, 1600, 1700, 1899, 1900, 1999, 2000, 2019, 2020,
                         2100, 2400, 9998, 9999}) {
    for (int month = 0; month < 100; month = month < 20 ? month + 1 : month + 9) {
      for (int day = 0; day < 100; ++day) {
        const auto expected = Expected(year, month, day);
        const std::string d = Padded(day, 2), m = Padded(month, 2), y = Padded(year, 4);
        const char one = kSeparators[(day + month) % 4];
        const char two = kSeparators[day % 4];
        dates += expected.has_value();
        EXPECT_EQ(Read(d + one + m + two + y, kFormatDate), expected);
        EXPECT_EQ(Read(d + one + m + two + y, kFormatEDate), expected);
        EXPECT_EQ(Read(m + one + d + two + y, kFormatADate), expected);
        EXPECT_EQ(Read(y + one + m + two + d, kFormatSDate), expected);
        const auto later = expected ? std::optional(*expected + 86399) : std::nullopt;
        EXPECT_EQ(Read(d + one + m + two + y + " 23:59:59", kFormatDateTime), later);
        EXPECT_EQ(Read(y + one + m + two + d + "T23:59:59", kFormatYmdhms), later);
        EXPECT_EQ(Read(y + one + m + two + d + " 24:00:00", kFormatYmdhms), kNoValue);
        if (month < 1 || month > 12) continue;
        const std::string named = d + one + kNames[month - 1] + two + y;
        EXPECT_EQ(Read(named, kFormatDate), expected) << named;
        EXPECT_EQ(Read(named + "t23:59:59", kFormatDateTime), later) << named;
        ASSERT_FALSE(testing::Test::HasFailure()) << d << '.' << m << '.' << y;
      }
    }
  }
  // Thirteen years with four leap days among them, and the last 78 days of 1582.
  EXPECT_EQ(dates, 13 * 365 + 4 + 78);
}

TEST(FixedLayout, EveryTimeOfDay) {
  for (int hour = 0; hour < 100; ++hour) {
    for (int minute = 0; minute < 100; minute += hour % 3 + 1) {
      for (int second = 0; second < 100; second += minute % 7 + 1) {
        const std::string text =
            Padded(hour, 2) + ":" + Padded(minute, 2) + ":" + Padded(second, 2);
        std::optional<double> expected;
        if (minute < 60 && second < 60) expected = hour * 3600 + minute * 60 + second;
        ASSERT_EQ(Read(text, kFormatTime), expected) << text;
        const auto ofDay = hour < 24 ? expected : std::nullopt;
        const auto dated = ofDay ? std::optional(Day1970(18292) + *ofDay) : std::nullopt;
        ASSERT_EQ(Read("31.01.2020 " + text, kFormatDateTime), dated) << text;
        ASSERT_EQ(Read("2020-01-31 " + text, kFormatYmdhms), dated) << text;
      }
    }
  }
}

// A blank behind a separator of a date, and a fraction of zero behind a time, change nothing, but
// take a text out of its fixed layout.
TEST(FixedLayout, NearlyFixedTextsAreReadAsPartByPart) {
  const HostEncoding encoding("UTF-8");
  std::mt19937_64 random(11);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  const auto spaced = [](const std::string& text) {
    std::string result;
    for (const char c : text) {
      result += c;
      if (std::string_view(kSeparators).find(c) != std::string_view::npos) result += ' ';
    }
    return result;
  };
  struct Layout {
    const char* text;
    int formats[3];
  };
  constexpr Layout kLayouts[] = {{"12/31/2020", {kFormatDate, kFormatADate, kFormatEDate}},
                                 {"07.08.1999", {kFormatDate, kFormatADate, kFormatEDate}},
                                 {"2020-02-29", {kFormatSDate, kFormatDate, kFormatSDate}},
                                 {"28-feb-2019", {kFormatDate, kFormatEDate, kFormatADate}},
                                 {"31-DEC-1999", {kFormatDate, kFormatEDate, kFormatDate}}};
  const std::string pieces[] = {"0",        "1",    "2", "3",  "9",   "-", "/", ".",
                                ",",        " ",    "j", "n",  "i",   "x", ":", "\xD9\xA1",
                                "\xC2\xA0", "\xFF", "",  "00", "may", "\t"};
  int values = 0;
  for (int i = 0; i < 300'000; ++i) {
    const Layout& layout = kLayouts[below(std::size(kLayouts))];
    std::string text = layout.text;
    for (std::size_t n = below(4); n > 0; --n) {
      text.replace(below(text.size()), 1, pieces[below(std::size(pieces))]);
    }
    const int format = layout.formats[below(3)];
    const auto value = Read(text, format);
    ASSERT_EQ(value, Read(spaced(text), format)) << text << " under " << format;
    values += value.has_value();

    const std::string clock = [&] {
      std::string parts;
      for (int part = 0; part < 3; ++part) {
        if (part > 0) parts += ':';
        for (std::size_t n = 1 + below(3); n > 0; --n) parts += pieces[below(5)];
      }
      return parts;
    }();
    const int clockFormat = below(2) ? kFormatTime : kFormatDTime;
    const std::string days = clockFormat == kFormatDTime ? "5 " : "";
    ASSERT_EQ(Read(days + clock, clockFormat), Read(days + clock + ".0", clockFormat)) << clock;
    const std::string dated =
        (below(2) ? "2020-01-31" : "2020/1/31") + std::string(1, " Tt-"[below(4)]) + clock;
    ASSERT_EQ(Read(dated, kFormatYmdhms), Read(dated + ".0", kFormatYmdhms)) << dated;
    const std::string named = text + " " + clock;
    ASSERT_EQ(Read(named, kFormatDateTime),
              Read(spaced(text) + " " + clock + ".0", kFormatDateTime))
        << named;
  }
  EXPECT_GT(values, 50'000);
}

}  // namespace
}  // namespace embedded
