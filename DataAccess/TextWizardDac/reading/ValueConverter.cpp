#include "reading/ValueConverter.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace textwizard {
namespace {

// A compact text with its separators put in. The longest is HH:MM:SS.hh.
class SeparatedText {
 public:
  // Takes `text` apart: `lengths` are the lengths of its parts, `separators` what stands between.
  SeparatedText(std::string_view text, std::string_view lengths, std::string_view separators) {
    for (std::size_t part = 0; part < lengths.size(); ++part) {
      if (part > 0) text_[size_++] = separators[part - 1];
      const auto length = static_cast<std::size_t>(lengths[part] - '0');
      std::memcpy(text_.data() + size_, text.data(), length);
      size_ += length;
      text.remove_prefix(length);
    }
  }
  std::string_view view() const { return {text_.data(), size_}; }

 private:
  std::array<char, 16> text_;
  std::size_t size_ = 0;
};

// How a compact text of one length and format is taken apart. An unlisted length is not guessed at.
struct CompactForm {
  std::uint32_t formatType;
  std::size_t size;
  std::string_view lengths;
  std::string_view separators;
};

constexpr CompactForm kCompactForms[] = {
    {kFormatDate, 6, "222", "//"},   {kFormatADate, 6, "222", "//"}, {kFormatEDate, 6, "222", "//"},
    {kFormatSDate, 6, "222", "//"},  {kFormatDate, 8, "224", "//"},  {kFormatADate, 8, "224", "//"},
    {kFormatEDate, 8, "224", "//"},  {kFormatSDate, 8, "422", "//"}, {kFormatDate, 7, "232", "--"},
    {kFormatDate, 9, "234", "--"},   {kFormatTime, 4, "22", ":"},    {kFormatTime, 6, "222", "::"},
    {kFormatTime, 8, "2222", "::."},
};

constexpr bool SeparatesDate(char ch) {
  return ch == '/' || ch == '.' || ch == ',' || ch == '-' || ch == '\\';
}
constexpr bool SeparatesTime(char ch) { return ch == ':' || ch == '.'; }

// Whether the field has none of the separators of its format.
bool IsCompact(std::string_view field, std::uint32_t formatType) {
  return formatType == kFormatTime ? std::none_of(field.begin(), field.end(), SeparatesTime)
                                   : std::none_of(field.begin(), field.end(), SeparatesDate);
}

bool Convert(std::string_view text, std::uint32_t formatType, double* value) {
  return IocvConvertInput(text.data(), text.size(), static_cast<int>(formatType), 0, value) == 0;
}

bool IsEnclosed(std::string_view text) {
  return (text.front() == '"' || text.front() == '\'') && text.front() == text.back();
}

}  // namespace

bool ConvertDateOrTime(std::string_view field, std::uint32_t formatType, double* value) {
  if (!IsCompact(field, formatType)) return Convert(field, formatType, value);
  for (const CompactForm& form : kCompactForms) {
    if (form.formatType == formatType && form.size == field.size()) {
      return Convert(SeparatedText(field, form.lengths, form.separators).view(), formatType, value);
    }
  }
  return Convert({"", 0}, formatType, value);
}

StringValue ConvertLongString(std::string_view field, std::size_t width, const StringRules& rules) {
  StringValue result{field, false};
  if (rules.leadingSpaces) {
    result.text.remove_prefix(std::min(field.find_first_not_of(' '), field.size()));
  }
  const std::size_t size = result.text.size();
  result.truncated =
      size > width && !(rules.enclosedFitsUnmarked && size == width + 2 && IsEnclosed(result.text));
  return result;
}

}  // namespace textwizard
