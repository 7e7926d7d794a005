// Values converted one after the other, by format and kind of text, in bytes of text a second.
#include "HostFramework/ValueInput.h"

#include <algorithm>
#include <charconv>
#include <clocale>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "HostFramework/Formats.h"

namespace {

constexpr std::size_t kTexts = 4096;

class Texts {
 public:
  using Make = std::function<std::string(std::mt19937_64&)>;

  explicit Texts(const Make& make) {
    std::mt19937_64 random(42);
    for (std::size_t i = 0; i < kTexts; ++i) {
      texts_.push_back(make(random));
      bytes_ += texts_.back().size();
    }
  }

  auto begin() const { return texts_.begin(); }
  auto end() const { return texts_.end(); }
  std::size_t bytes() const { return bytes_; }

 private:
  std::vector<std::string> texts_;
  std::size_t bytes_ = 0;
};

std::string Number(std::mt19937_64& random, unsigned digits, unsigned places) {
  std::string text = random() % 4 == 0 ? "-" : "";
  for (unsigned i = 0; i < digits; ++i) text += static_cast<char>('0' + random() % 10);
  if (places > 0) text += '.';
  for (unsigned i = 0; i < places; ++i) text += static_cast<char>('0' + random() % 10);
  return text;
}

std::string TwoDigits(std::uint64_t number) {
  return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

std::string ShortNumber(std::mt19937_64& random) {
  return Number(random, 1 + static_cast<unsigned>(random() % 5),
                static_cast<unsigned>(random() % 4));
}
std::string SmallInteger(std::mt19937_64& random) { return std::to_string(random() % 1000); }
std::string LongNumber(std::mt19937_64& random) { return Number(random, 6, 9); }
std::string FullDouble(std::mt19937_64& random) {
  char text[32];
  const double value = std::uniform_real_distribution<double>(-1, 1)(random);
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}
std::string GroupedNumber(std::mt19937_64& random) {
  return std::to_string(1 + random() % 999) + "," + std::to_string(100 + random() % 900) + "." +
         TwoDigits(random() % 100);
}
std::string DollarAmount(std::mt19937_64& random) { return "$" + GroupedNumber(random); }
std::string Exponent(std::mt19937_64& random) {
  return Number(random, 1, 5) + "E" + std::to_string(static_cast<int>(random() % 30) - 15);
}

std::string Day(std::mt19937_64& random) { return TwoDigits(1 + random() % 28); }
std::string Month(std::mt19937_64& random) { return TwoDigits(1 + random() % 12); }
std::string Year(std::mt19937_64& random) { return std::to_string(1900 + random() % 150); }
std::string MonthName(std::mt19937_64& random) {
  constexpr const char* kNames[] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                    "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
  return kNames[random() % 12];
}
std::string Clock(std::mt19937_64& random) {
  return TwoDigits(random() % 24) + ":" + TwoDigits(random() % 60) + ":" + TwoDigits(random() % 60);
}
std::string NamedDate(std::mt19937_64& random) {
  return Day(random) + "-" + MonthName(random) + "-" + Year(random);
}
std::string NumericDate(std::mt19937_64& random) {
  return Month(random) + "/" + Day(random) + "/" + Year(random);
}
std::string IsoDate(std::mt19937_64& random) {
  return Year(random) + "-" + Month(random) + "-" + Day(random);
}
std::string DateTime(std::mt19937_64& random) { return NamedDate(random) + " " + Clock(random); }
std::string DateTimeFraction(std::mt19937_64& random) {
  return DateTime(random) + "." + TwoDigits(random() % 100);
}
std::string IsoDateTime(std::mt19937_64& random) { return IsoDate(random) + "T" + Clock(random); }

std::string Word(std::mt19937_64& random) {
  constexpr const char* kWords[] = {"Hamburg", "New York",   "yes",    "no",
                                    "unknown", "Mueller",    "A-17-B", "m",
                                    "June",    "Ostfriesen", "x42",    "total"};
  return kWords[random() % std::size(kWords)];
}
std::string Amount(std::mt19937_64& random) { return Number(random, 3, 2); }
std::string Identifier(std::mt19937_64& random) {
  return std::string(1, static_cast<char>('A' + random() % 26)) +
         std::to_string(100000 + random() % 900000);
}

constexpr FormatCode kFormats[] = {
    kFormatF,        kFormatComma, kFormatDot,   kFormatDollar, kFormatPct,   kFormatE,
    kFormatN,        kFormatDate,  kFormatADate, kFormatEDate,  kFormatSDate, kFormatJDate,
    kFormatQyr,      kFormatMoyr,  kFormatWkyr,  kFormatWkday,  kFormatMonth, kFormatTime,
    kFormatDateTime, kFormatDTime, kFormatMTime, kFormatYmdhms};

void Convert(benchmark::State& state, FormatCode format, const Texts::Make& make) {
  const Texts texts(make);
  for (auto _ : state) {
    double sum = 0;
    for (const std::string& text : texts) {
      double value = 0;
      if (IocvConvertInput(text.data(), text.size(), format, 0, &value) != 0) {
        state.SkipWithError(text.c_str());
        break;
      }
      sum += value;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(texts.bytes()));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTexts));
}

// Under a user's locale with numbers of their own, as a program that calls setlocale runs.
void ConvertInLocale(benchmark::State& state, const char* locale, FormatCode format,
                     const Texts::Make& make) {
  if (std::setlocale(LC_ALL, locale) == nullptr) {
    state.SkipWithError("the locale is not there; tools/install-packages generates it");
    return;
  }
  std::setlocale(LC_NUMERIC, "C");
  Convert(state, format, make);
  std::setlocale(LC_ALL, "C");
}

// Texts of one kind under each format that takes none of them: how fast a format is found to be
// another one.
void Refuse(benchmark::State& state, const Texts::Make& make) {
  const Texts texts(make);
  std::vector<int> formats;
  for (const FormatCode format : kFormats) {
    const auto isRefused = [format](const std::string& text) {
      double value = 0;
      return IocvConvertInput(text.data(), text.size(), format, 0, &value) != 0;
    };
    if (std::all_of(texts.begin(), texts.end(), isRefused)) formats.push_back(format);
  }
  for (auto _ : state) {
    int refused = 0;
    for (const std::string& text : texts) {
      for (const int format : formats) {
        double value = 0;
        refused += IocvConvertInput(text.data(), text.size(), format, 0, &value) != 0;
      }
    }
    benchmark::DoNotOptimize(refused);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTexts * formats.size()));
}

// The library's parser alone, to compare with.
void Standard(benchmark::State& state, const Texts::Make& make) {
  const Texts texts(make);
  for (auto _ : state) {
    double sum = 0;
    for (const std::string& text : texts) {
      double value = 0;
      std::from_chars(text.data(), text.data() + text.size(), value);
      sum += value;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(texts.bytes()));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTexts));
}

BENCHMARK_CAPTURE(Convert, F_small_integers, kFormatF, SmallInteger);
BENCHMARK_CAPTURE(Standard, small_integers, SmallInteger);
BENCHMARK_CAPTURE(Convert, F_short, kFormatF, ShortNumber);
BENCHMARK_CAPTURE(Standard, short, ShortNumber);
BENCHMARK_CAPTURE(Convert, F_long, kFormatF, LongNumber);
BENCHMARK_CAPTURE(Standard, long, LongNumber);
BENCHMARK_CAPTURE(Convert, F_full_doubles, kFormatF, FullDouble);
BENCHMARK_CAPTURE(Standard, full_doubles, FullDouble);
BENCHMARK_CAPTURE(Convert, E, kFormatE, Exponent);
BENCHMARK_CAPTURE(Standard, exponents, Exponent);
BENCHMARK_CAPTURE(Convert, COMMA, kFormatComma, GroupedNumber);
BENCHMARK_CAPTURE(Convert, DOLLAR, kFormatDollar, DollarAmount);
BENCHMARK_CAPTURE(Convert, DATE_names, kFormatDate, NamedDate);
BENCHMARK_CAPTURE(ConvertInLocale, DATE_names_de, "de_DE.UTF-8", kFormatDate, NamedDate);
BENCHMARK_CAPTURE(Convert, ADATE, kFormatADate, NumericDate);
BENCHMARK_CAPTURE(Convert, SDATE, kFormatSDate, IsoDate);
BENCHMARK_CAPTURE(Convert, TIME, kFormatTime, Clock);
BENCHMARK_CAPTURE(Convert, DATETIME, kFormatDateTime, DateTime);
BENCHMARK_CAPTURE(Convert, DATETIME_fraction, kFormatDateTime, DateTimeFraction);
BENCHMARK_CAPTURE(Convert, YMDHMS, kFormatYmdhms, IsoDateTime);
BENCHMARK_CAPTURE(Refuse, words, Word);
BENCHMARK_CAPTURE(Refuse, identifiers, Identifier);
BENCHMARK_CAPTURE(Refuse, small_integers, SmallInteger);
BENCHMARK_CAPTURE(Refuse, amounts, Amount);
BENCHMARK_CAPTURE(Refuse, SDATE, IsoDate);
BENCHMARK_CAPTURE(Refuse, ADATE, NumericDate);
BENCHMARK_CAPTURE(Refuse, DATE_names, NamedDate);
BENCHMARK_CAPTURE(Refuse, TIME, Clock);
BENCHMARK_CAPTURE(Refuse, YMDHMS, IsoDateTime);

}  // namespace
