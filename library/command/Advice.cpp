#include "library/command/Advice.h"

#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <unicode/uchar.h>

#include "command/TxtWzParser.h"
#include "library/command/HostCharacter.h"
#include "reading/RecordReader.h"

namespace library {
namespace {

using textwizard::ImportSource;

std::string NameOf(const HostCharacter& character) {
  switch (character.code) {
    case ' ':
      return "blank";
    case '\t':
      return "tab";
    case '\\':
      return "backslash";
    case ',':
      return "comma";
    case '\'':
      return "apostrophe";
    case '"':
      return "quotation mark";
    default:
      break;
  }
  if (u_isalpha(static_cast<UChar32>(character.code))) {
    return "the letter " + std::string(character.bytes);
  }
  return std::string(character.bytes);
}

// "a, b and c".
std::string Listed(const std::vector<std::string>& names) {
  std::string list;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) list += i + 1 < names.size() ? ", " : " and ";
    list += names[i];
  }
  return list;
}

std::string Lines(std::int64_t count) {
  return fmt::format("{} line{}", count, count == 1 ? "" : "s");
}

// The lines of the file, as far as the data goes.
struct LineCounts {
  std::int64_t all = 0;
  std::int64_t beforeData = 0;
  std::int64_t emptyInData = 0;
};

LineCounts CountLines(const ImportSource& source) {
  textwizard::RecordReader reader(source.stream());
  reader.SeekBegin();
  reader.HandleByteOrderMark();
  LineCounts lines;
  while (reader.Read(true)) {
    ++lines.all;
    if (lines.all < source.settings().firstCase) {
      ++lines.beforeData;
    } else if (reader.record().empty()) {
      ++lines.emptyInData;
    }
  }
  return lines;
}

}  // namespace

std::string DelimiterAdvice(const CommandOutline& outline) {
  const OutlinedSubcommand* delimiters = outline.Find("DELIMITERS");
  if (delimiters == nullptr || !delimiters->accepted) return {};
  // What the parser makes of the text, and how much of that an escape at its start stands for.
  std::string value = delimiters->value;
  textwizard::TxtWzParser::ConvertSlashTab(value);
  const std::size_t announced = delimiters->value.size() - value.size();
  bool suspicious = false;
  std::vector<std::string> names;
  for (std::string_view left = value; !left.empty();) {
    const HostCharacter character = FirstCharacter(left);
    const auto place = static_cast<std::size_t>(left.data() - value.data());
    const bool isBackslash = character.code == '\\' && place >= announced;
    suspicious |= isBackslash || u_isalpha(static_cast<UChar32>(character.code));
    names.push_back(NameOf(character));
    left.remove_prefix(character.bytes.size());
  }
  if (!suspicious) return {};
  return fmt::format(
      "{} means {}; a tab is \\t and a backslash \\\\, and only at the start of the text",
      delimiters->place.words, Listed(names));
}

std::string NoCaseAdvice(const ImportSource& source, const std::string& file) {
  const LineCounts lines = CountLines(source);
  const std::int64_t firstCase = source.settings().firstCase;
  if (lines.all == 0) return file + " is empty: there are no cases";
  if (firstCase > lines.all) {
    return fmt::format("FIRSTCASE is {}, but {} has only {}: there are no cases", firstCase, file,
                       Lines(lines.all));
  }
  const std::int64_t inData = lines.all - lines.beforeData;
  const std::string from = firstCase > 1 ? fmt::format(" from line {} on", firstCase) : "";
  if (lines.emptyInData == inData) {
    return fmt::format("{} has only empty lines{}: there are no cases", file, from);
  }
  return fmt::format("none of the {} of {}{} gave a case", Lines(inData), file, from);
}

}  // namespace library
