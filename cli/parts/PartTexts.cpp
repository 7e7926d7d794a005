#include "cli/parts/PartTexts.h"

#include <charconv>
#include <map>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

namespace cli {
namespace {

// Takes the digits that `text` begins with.
bool TakeNumber(std::string_view& text, std::int64_t* number) {
  if (text.empty() || text.front() < '0' || text.front() > '9') return false;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, *number);
  text = {read.ptr, static_cast<std::size_t>(end - read.ptr)};
  return read.ec == std::errc();
}

bool TakeCharacter(std::string_view& text, char character) {
  if (!text.starts_with(character)) return false;
  text.remove_prefix(1);
  return true;
}

}  // namespace

bool ReadSize(const std::string& text, std::int64_t* bytes, std::string* error) {
  static const std::map<std::string_view, std::int64_t> kUnits = {
      {"", 1},        {"B", 1},         {"k", 1 << 10},    {"K", 1 << 10},   {"KiB", 1 << 10},
      {"kB", 1000},   {"KB", 1000},     {"M", 1 << 20},    {"MiB", 1 << 20}, {"MB", 1000000},
      {"G", 1 << 30}, {"GiB", 1 << 30}, {"GB", 1000000000}};
  std::string_view rest = text;
  std::int64_t number = 0;
  const bool isNumber = TakeNumber(rest, &number);
  const auto unit = kUnits.find(rest);
  if (isNumber && unit != kUnits.end() && number > 0 &&
      !__builtin_mul_overflow(number, unit->second, bytes)) {
    return true;
  }
  *error = fmt::format("{} is no size such as 1000000, 64MB or 64MiB", text);
  return false;
}

bool ReadPartNumber(const std::string& text, PartNumber* part, std::string* error) {
  std::string_view rest = text;
  const bool isPart = TakeNumber(rest, &part->number) && TakeCharacter(rest, '/') &&
                      TakeNumber(rest, &part->count) && rest.empty();
  // More parts than that are no parts of any file.
  constexpr std::int64_t kMostParts = 1'000'000'000;
  if (isPart && part->number >= 1 && part->number <= part->count && part->count <= kMostParts) {
    return true;
  }
  *error = fmt::format("{} is no part such as 1/4, the first of four", text);
  return false;
}

bool ReadPartRange(const std::string& text, library::PartRange* range, std::string* error) {
  std::string_view rest = text;
  const bool isRange = TakeNumber(rest, &range->from) && TakeCharacter(rest, '-') &&
                       TakeNumber(rest, &range->to) && rest.empty();
  if (isRange && range->from < range->to) return true;
  *error = fmt::format("{} is no range of bytes such as 0-1000", text);
  return false;
}

}  // namespace cli
