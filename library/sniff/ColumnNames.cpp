#include "library/sniff/ColumnNames.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include <fmt/format.h>
#include <unicode/unistr.h>

#include "HostFramework/Names.h"
#include "library/sniff/Utf8.h"

namespace library {
namespace {

constexpr std::size_t kLongestName = 64;
// What ValidateQANTName says of a reserved word.
constexpr int kReserved = 5;

bool IsValid(const std::string& name) { return ValidateQANTName(name.c_str()) == 0; }

// Cuts at a character's beginning.
void CutTo(std::string* name, std::size_t bytes) {
  if (name->size() <= bytes) return;
  while (bytes > 0 && IsUtf8Continuation((*name)[bytes])) --bytes;
  name->resize(bytes);
}

void DropBehind(std::string* name) {
  while (!name->empty() && (name->back() == '.' || name->back() == '_')) name->pop_back();
}

// The name as the host compares it.
std::string Folded(const std::string& name) {
  std::string folded = name;
  bool ascii = true;
  for (char& byte : folded) {
    ascii = ascii && static_cast<unsigned char>(byte) < 0x80;
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte + ('a' - 'A'));
  }
  if (ascii) return folded;
  folded.clear();
  icu::UnicodeString::fromUTF8(name).foldCase().toUTF8String(folded);
  return folded;
}

// A name that the host accepts, whether it was there before or not.
std::string NameOf(const std::string& label, std::size_t number) {
  if (IsValid(label)) return label;
  std::string name;
  for (const std::string& character : Utf8Characters(label)) {
    // What may stand within a name is what may follow a letter and a letter.
    if (IsValid("A" + character + "A")) {
      name += character;
    } else if (!name.empty() && name.back() != '_') {
      name += '_';
    }
    if (name.size() > 2 * kLongestName) break;
  }
  CutTo(&name, kLongestName);
  DropBehind(&name);
  if (name.empty()) return fmt::format("V{}", number);
  const int fault = ValidateQANTName(name.c_str());
  if (fault == 0) return name;
  name = fault == kReserved ? name + "_" : "V" + name;
  CutTo(&name, kLongestName);
  return IsValid(name) ? name : fmt::format("V{}", number);
}

}  // namespace

std::vector<std::string> NamesOf(const std::vector<std::string>& labels) {
  std::vector<std::string> names;
  std::unordered_set<std::string> taken;
  // The number that the next copy of a name gets.
  std::unordered_map<std::string, std::size_t> copies;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const std::string base = NameOf(labels[i], i + 1);
    std::string name = base;
    std::size_t& copy = copies.try_emplace(Folded(base), 2).first->second;
    for (; !taken.insert(Folded(name)).second; ++copy) {
      const std::string suffix = fmt::format("_{}", copy);
      name = base;
      CutTo(&name, kLongestName - suffix.size());
      name += suffix;
    }
    names.push_back(name);
  }
  return names;
}

}  // namespace library
