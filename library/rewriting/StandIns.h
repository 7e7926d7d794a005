// Characters that a record shows in the place of what it cannot hold, and how values get back what
// the file holds.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/DataSource.h"

namespace library {

// Control characters (ASCII), all different. They occur nowhere else in the file, so that what
// they stand for comes back exactly; being ASCII, they are one byte of host text each and one unit
// of any encoding.
struct StandIns {
  char lineFeed = '\x01';
  char carriageReturn = '\x02';
  // Stands for no character at all: an escaping backslash.
  char nothing = '\x03';
  bool operator==(const StandIns&) const = default;
};

// The control characters 00 to 1F that a file holds; TAB, LF and CR need not be in it.
using ControlSet = std::bitset<32>;

// Stand-ins that are not in `held`; nothing when the file leaves too few control characters.
std::optional<StandIns> ChooseStandIns(const ControlSet& held);

// Puts back what the stand-ins stand for. Any thread.
class TextRestorer {
 public:
  explicit TextRestorer(const StandIns& standIns);

  // The text as the file means it: `text` itself when it shows no stand-in, else `room`.
  std::string_view Restore(std::string_view text, std::string& room) const;
  // The same in place; returns the new size.
  std::size_t RestoreInPlace(char* text, std::size_t size) const;

 private:
  std::size_t FindStandIn(std::string_view text) const;

  // What a byte becomes: itself, or what it stands for.
  std::array<char, 256> restored_;
  // By a byte's low five bits: it may be a stand-in.
  std::uint32_t suspects_ = 0;
  char nothing_;
};

// Puts back what stand-ins stand for in the strings of cases.
class CaseRestorer {
 public:
  CaseRestorer(const StandIns& standIns, const QANT_DataSource& source);

  // Changes the strings of `count` cases that lie one behind the other. A second time changes
  // nothing. Any thread, as long as no other uses the cases.
  void Restore(OBS* cases, std::size_t count) const;

 private:
  struct Place {
    std::size_t offset;  // bytes from the case's first
    std::size_t bytes;
  };

  TextRestorer text_;
  std::vector<Place> strings_;
  std::size_t caseBytes_;
};

}  // namespace library
