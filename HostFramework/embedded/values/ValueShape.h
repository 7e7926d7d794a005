// Telling by a look at a text that it is no value of a format. An import tries many formats on a
// text, and nearly all of them fail: most are found here, without reading.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "HostFramework/Formats.h"

namespace embedded {

class ValueShape {
 public:
  // False when no value of `format` begins or ends as `text` (not empty, without blanks and tabs
  // around it) does, is as short, or lacks what separates its parts. True of any text for a format
  // that is not a value's. Any thread.
  static bool MayBe(std::string_view text, int format) {
    const auto code = static_cast<unsigned>(format);
    const Shape& shape = kShapes[code < kShapes.size() ? code : 0];
    if (text.size() < shape.shortest || !Is(text.front(), shape.first)) return false;
    if (!Is(text.back(), shape.last)) {
      // Behind the first byte of a longer code any byte can be the second.
      if (text.size() == 1 || !Is(text[text.size() - 2], kWide)) return false;
    }
    return shape.inside == kAny || Holds(text, shape.inside);
  }

 private:
  using Kinds = std::uint16_t;
  static constexpr Kinds kDigit = 1;
  static constexpr Kinds kSign = 2;
  static constexpr Kinds kPoint = 4;  // or a comma
  static constexpr Kinds kDollarSign = 8;
  static constexpr Kinds kPercentSign = 16;
  static constexpr Kinds kBlank = 32;
  static constexpr Kinds kColon = 64;
  static constexpr Kinds kWide = 128;  // not ASCII
  static constexpr Kinds kOther = 256;
  static constexpr Kinds kAny = 511;

  struct Shape {
    Kinds first;
    Kinds last;
    Kinds inside;  // one of these stands somewhere
    std::uint16_t shortest;
  };

  static bool Is(char c, Kinds kinds) {
    return (kKinds[static_cast<unsigned char>(c)] & kinds) != 0;
  }
  static bool Holds(std::string_view text, Kinds kinds) {
    // What is looked for stands near the end of most values.
    for (std::size_t at = text.size(); at-- > 0;) {
      if (Is(text[at], kinds)) return true;
    }
    return false;
  }

  static constexpr auto kKinds = [] {
    std::array<Kinds, 256> kinds{};
    kinds.fill(kOther);
    for (std::size_t byte = '0'; byte <= '9'; ++byte) kinds[byte] = kDigit;
    for (std::size_t byte = '\t'; byte <= '\r'; ++byte) kinds[byte] = kBlank;
    for (std::size_t byte = 0x80; byte < kinds.size(); ++byte) kinds[byte] = kWide;
    kinds[' '] = kBlank;
    kinds['+'] = kinds['-'] = kSign;
    kinds['.'] = kinds[','] = kPoint;
    kinds['$'] = kDollarSign;
    kinds['%'] = kPercentSign;
    kinds[':'] = kColon;
    return kinds;
  }();

  static constexpr auto kShapes = [] {
    std::array<Shape, kFormatYmdhms + 1> shapes{};
    shapes.fill({kAny, kAny, kAny, 1});
    constexpr Kinds kNumeral = kDigit | kWide;
    constexpr Kinds kBegin = kNumeral | kSign | kPoint;
    constexpr Kinds kEnd = kNumeral | kPoint;
    shapes[kFormatF] = shapes[kFormatE] = {kBegin, kEnd, kAny, 1};
    shapes[kFormatPct] = {kBegin, kEnd | kPercentSign, kAny, 1};
    shapes[kFormatComma] = shapes[kFormatDot] = {kBegin, kEnd | kBlank, kAny, 1};
    shapes[kFormatDollar] = {kBegin | kDollarSign, kEnd | kBlank, kAny, 1};
    shapes[kFormatN] = {kNumeral, kNumeral, kAny, 1};
    // The shortest have a month of one letter, 1I20 or 20I1. Where a name stands first, it can
    // begin with anything.
    shapes[kFormatDate] = shapes[kFormatEDate] =
        shapes[kFormatSDate] = {kNumeral, kNumeral, kAny, 4};
    shapes[kFormatADate] = {kAny, kNumeral, kAny, 4};
    shapes[kFormatMoyr] = {kAny, kNumeral, kAny, 3};
    shapes[kFormatJDate] = shapes[kFormatWkyr] = {kNumeral, kNumeral, kAny, 5};
    shapes[kFormatQyr] = {kNumeral, kNumeral, kAny, 4};
    shapes[kFormatDateTime] = {kNumeral, kNumeral, kColon, 8};
    shapes[kFormatYmdhms] = {kNumeral, kNumeral, kColon | kPoint | kBlank | kWide, 8};
    shapes[kFormatTime] = {kNumeral | kSign, kNumeral, kColon, 3};
    shapes[kFormatMTime] = {kNumeral | kSign, kNumeral, kAny, 3};
    shapes[kFormatDTime] = {kNumeral | kSign, kNumeral, kColon, 5};
    return shapes;
  }();
};

}  // namespace embedded
