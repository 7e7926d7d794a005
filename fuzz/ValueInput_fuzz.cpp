// Value input: the first byte names the format, the others are the text. The value is what the
// naive reader gives; blanks around a text, which keep it from the fast ways, change nothing; a
// failure leaves the value alone.

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/HostText.h"
#include "fuzz/FuzzTarget.h"
#include "tests/differential/NaiveValue.h"

namespace {

constexpr double kUntouched = -12345.678;
constexpr int kValueFormats[] = {3,  4,  5,  16, 17, 20, 21, 22, 23, 24, 25,
                                 26, 27, 28, 29, 30, 31, 32, 38, 39, 85, 86};
constexpr int kOtherFormats[] = {0, 1, 87, 9999, -1};

struct Reading {
  explicit Reading(const std::string& text, int format)
      : result(IocvConvertInput(text.data(), text.size(), format, 0, &value)) {}
  bool operator==(const Reading& other) const {
    return result == other.result &&
           std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(other.value);
  }

  double value = kUntouched;
  int result;
};

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

// What the rules say of the text; what was read when the naive reader cannot tell.
Reading Expected(const Reading& reading, std::string_view text, int format) {
  Reading expected = reading;
  const std::string_view trimmed = Trimmed(text);
  if (trimmed.empty()) {
    expected.result = 1;
  } else if (const auto naive =
                 naive::ReadValue(trimmed, format, static_cast<char>(iocvgetdecchar_()))) {
    expected.result = naive->number ? 0 : 2;
    expected.value = naive->number.value_or(kUntouched);
  }
  if (expected.result != 0) expected.value = kUntouched;
  return expected;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  embedded::SetCodePage(nullptr);
  if (data[0] & 0x80) {
    iocvsetdeccharcomma_();
  } else {
    iocvsetdecchardot_();
  }
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::string padded = " \t" + text + "  ";
  const std::size_t choice = data[0] & 0x7F;
  if (choice >= 0x70) {
    const int format = kOtherFormats[choice % std::size(kOtherFormats)];
    const Reading reading(text, format);
    fuzz::Require(reading.result == (Trimmed(text).empty() ? 1 : 3) && reading.value == kUntouched,
                  "a value of a format without values");
    return 0;
  }
  const int format = kValueFormats[choice % std::size(kValueFormats)];
  const Reading reading(text, format);
  const std::string place = "format " + std::to_string(format) + ", result " +
                            std::to_string(reading.result) + ", value " +
                            std::to_string(reading.value) + ": ";
  fuzz::Require(reading == Reading(padded, format), place + "blanks around the text matter");
  const Reading expected = Expected(reading, text, format);
  fuzz::Require(reading == expected, place + "the naive reader gives result " +
                                         std::to_string(expected.result) + ", value " +
                                         std::to_string(expected.value));
  return 0;
}
