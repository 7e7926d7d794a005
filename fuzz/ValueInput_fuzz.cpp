// Value input: the first byte names the format, the others are the text. Blanks around a text
// change nothing, a failure leaves the value alone, and plain numbers are what the standard reads.

#include <charconv>
#include <cstring>
#include <string>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/HostText.h"
#include "fuzz/FuzzTarget.h"

namespace {

constexpr double kUntouched = -12345.678;

bool SameValue(double left, double right) { return std::memcmp(&left, &right, sizeof left) == 0; }

bool IsPlain(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789.") == std::string::npos &&
         text.front() != '.' && text.find('.') == text.rfind('.');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr int kFormats[] = {0,  1,  3,  4,  5,  16, 17, 20, 21, 22, 23, 24, 25,
                              26, 27, 28, 29, 30, 31, 32, 38, 39, 85, 86, 87, 9999};
  if (size == 0) return 0;
  embedded::SetCodePage(nullptr);
  const int format = kFormats[data[0] % std::size(kFormats)];
  if (data[0] & 0x80) {
    iocvsetdeccharcomma_();
  } else {
    iocvsetdecchardot_();
  }
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  double value = kUntouched;
  const int result = IocvConvertInput(text.data(), text.size(), format, 0, &value);
  fuzz::Require(result == 0 || SameValue(value, kUntouched), "a failure that set the value");

  const std::string padded = " \t" + text + "  ";
  double again = kUntouched;
  fuzz::Require(IocvConvertInput(padded.data(), padded.size(), format, 0, &again) == result &&
                    SameValue(value, again),
                "blanks around the text matter");
  if (format == 5 && iocvgetdecchar_() == '.' && IsPlain(text)) {
    double standard = 0.0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), standard);
    if (read.ec == std::errc()) {
      fuzz::Require(result == 0 && SameValue(value, standard),
                    "another number than the standard's");
    }
  }
  return 0;
}
