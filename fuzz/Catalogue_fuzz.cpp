// The message catalogue: the bytes are a catalogue file. A plain reading of the lines finds the
// same texts and the same bad lines; the good lines written back are a catalogue without problems
// and with the same texts; the file put in use gives the same texts, and messages with arguments
// are those texts filled. A first byte of 0xFF makes the file larger than a catalogue may be.

#include <climits>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/Messages.h"
#include "HostFramework/embedded/messages/Catalogue.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/MemoryFile.h"
#include "model/MessageText.h"

namespace {

using embedded::Catalogue;
using Texts = std::map<long, std::string>;

constexpr long kFirstId = 2251;
constexpr long kLastId = 2297;
constexpr std::size_t kLargestFile = std::size_t{1} << 20;

// The arguments of a message's text: what each placeholder is filled with. Null for a plain text.
const std::vector<std::string>* ArgumentsOf(long id) {
  static const std::string token = "a%s%n token";
  static const std::map<long, std::vector<std::string>> arguments = {
      {2271, {"32767"}}, {2272, {"64"}},  {2273, {"64"}},  {2274, {"40"}},  {2279, {"7", "9"}},
      {2284, {token}},   {2285, {token}}, {2287, {token}}, {2288, {token}}, {2289, {token}},
      {2291, {token}},   {2293, {token}}, {2294, {token}}, {2296, {token}}, {2297, {token}}};
  const auto found = arguments.find(id);
  return found == arguments.end() ? nullptr : &found->second;
}

bool TakesToken(long id) { return id >= 2284 && ArgumentsOf(id) != nullptr; }

// The text with its arguments filled in. False when it asks for others.
bool Fill(long id, const std::string& text, std::string* filled) {
  const std::vector<std::string>* const arguments = ArgumentsOf(id);
  *filled = text;
  if (!arguments) return true;
  filled->clear();
  std::size_t next = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      *filled += text[i];
      continue;
    }
    const char kind = ++i < text.size() ? text[i] : '\0';
    if (kind == '%') {
      *filled += '%';
      continue;
    }
    if (!(TakesToken(id) ? kind == 's' : kind == 'd' || kind == 'i')) return false;
    if (next == arguments->size()) return false;
    *filled += (*arguments)[next++];
  }
  return next == arguments->size();
}

// The number and the text of a line. False when it is not an entry.
bool ReadEntry(const std::string& line, long* id, std::string* text) {
  std::size_t digits = 0;
  *id = 0;
  for (; digits < line.size() && line[digits] >= '0' && line[digits] <= '9'; ++digits) {
    const int digit = line[digits] - '0';
    if (*id > (LONG_MAX - digit) / 10) return false;
    *id = *id * 10 + digit;
  }
  if (*id == 0 || digits == line.size() || line[digits] != ' ') return false;
  *text = line.substr(digits + 1);
  std::string filled;
  return text->rfind("[" + std::to_string(*id) + "] ", 0) == 0 && text->size() <= 500 &&
         text->find('\0') == std::string::npos && Fill(*id, *text, &filled);
}

// The texts of a catalogue, read line by line, and the numbers of its bad lines.
Texts ReadPlainly(std::string text, std::vector<std::size_t>* badLines) {
  if (text.rfind("\xEF\xBB\xBF", 0) == 0) text.erase(0, 3);
  Texts texts;
  std::istringstream lines(text);
  std::string line;
  for (std::size_t number = 1; std::getline(lines, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;
    long id = 0;
    std::string entry;
    if (!ReadEntry(line, &id, &entry) || !texts.emplace(id, entry).second) {
      badLines->push_back(number);
    }
  }
  return texts;
}

void RequireTexts(const Catalogue& catalogue, const Texts& texts, const std::string& where) {
  for (const auto& [id, text] : texts) {
    const std::string* const found = catalogue.Find(id);
    fuzz::Require(found && *found == text, where + ", text " + std::to_string(id));
    for (const long other : {id - 1, id == LONG_MAX ? 0 : id + 1, -id}) {
      fuzz::Require((catalogue.Find(other) != nullptr) == texts.contains(other),
                    where + ", text " + std::to_string(other));
    }
  }
  for (long id = kFirstId; id <= kLastId; ++id) {
    fuzz::Require((catalogue.Find(id) != nullptr) == texts.contains(id),
                  where + ", number " + std::to_string(id));
  }
}

void CompareProblems(const std::string& problems, const std::vector<std::size_t>& badLines) {
  std::istringstream lines(problems);
  std::string line;
  std::size_t count = 0;
  while (std::getline(lines, line)) {
    const std::string start =
        "line " + std::to_string(count < badLines.size() ? badLines[count] : 0);
    fuzz::Require(
        line.rfind(start, 0) == 0 && (line[start.size()] == ':' || line[start.size()] == ','),
        "a problem that is none: " + line);
    ++count;
  }
  fuzz::Require(count == badLines.size(), "bad lines are not named: " + problems);
}

std::string TextInUse(long id) { return QantServerErrorText("lorvane.err", id).GetText(); }

void RequireInUse(const Texts& texts) {
  for (long id = kFirstId; id <= kLastId; ++id) {
    const auto place = texts.find(id);
    const std::string text = place != texts.end()
                                 ? place->second
                                 : "[" + std::to_string(id) + "] (no text for this message)";
    fuzz::Require(TextInUse(id) == text, "another text in use of " + std::to_string(id));
    std::string filled;
    if (place == texts.end()) {
      filled = text;
    } else {
      fuzz::Require(Fill(id, text, &filled), "a text that cannot be filled");
    }
    const std::string token = "a%s%n token";
    if (id == textwizard::kUndecodable) {
      fuzz::Require(textwizard::UndecodableWarning(7, 9).text == filled, "another warning 2279");
      continue;
    }
    if (!TakesToken(id)) filled += " " + token;
    fuzz::Require(textwizard::MessageText(static_cast<std::uint32_t>(id), token.c_str()) == filled,
                  "another message: " + filled);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const bool tooLarge = size > 0 && data[0] == 0xFF;
  const std::string text(reinterpret_cast<const char*>(data) + tooLarge, size - tooLarge);
  std::vector<std::size_t> badLines;
  const Texts texts = ReadPlainly(text, &badLines);

  std::string problems;
  const Catalogue catalogue = Catalogue::Parse(text, &problems);
  RequireTexts(catalogue, texts, "parsed");
  CompareProblems(problems, badLines);

  std::string unix, windows = "\xEF\xBB\xBF";
  for (const auto& [id, entry] : texts) {
    unix += std::to_string(id) + " " + entry + "\n";
    windows += "\r\n" + std::to_string(id) + " " + entry + "\r\n";
  }
  for (const std::string& again : {unix, windows}) {
    RequireTexts(Catalogue::Parse(again, &problems), texts, "written back");
    fuzz::Require(problems.empty(), "written back: " + problems);
  }

  const fuzz::MemoryFile file(text);
  const bool loaded = embedded::LoadCatalogue(file.path().c_str(), &problems);
  fuzz::Require(loaded == badLines.empty() && loaded == problems.empty() &&
                    embedded::CatalogueProblems() == problems,
                "loaded, with problems: " + problems);
  RequireInUse(texts);
  if (tooLarge) {
    // What cannot be a catalogue leaves the one in use.
    const fuzz::MemoryFile large(std::string(kLargestFile + 1, '\n') + text);
    fuzz::Require(!embedded::LoadCatalogue(large.path().c_str(), &problems) && !problems.empty(),
                  "too large a file was taken");
    RequireInUse(texts);
  }
  return 0;
}
