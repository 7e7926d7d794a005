#include "library/rewriting/StandIns.h"

#include <cstring>

namespace library {
namespace {

// The control characters that may stand in, those first that no reader of values takes for a blank.
// Not among them: 1A and 1C, which code pages of the DOS family confuse.
constexpr std::string_view kCandidates =
    "\x01\x02\x03\x04\x05\x06\x07\x08\x0E\x0F\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1B\x1D\x1E"
    "\x1F\x0B\x0C";

constexpr unsigned kControls = 0x20;

unsigned Number(char byte) { return static_cast<unsigned char>(byte); }

}  // namespace

std::optional<StandIns> ChooseStandIns(const ControlSet& held) {
  std::array<char, 3> chosen{};
  std::size_t count = 0;
  for (const char candidate : kCandidates) {
    if (held.test(Number(candidate))) continue;
    chosen[count++] = candidate;
    if (count == chosen.size()) return StandIns{chosen[0], chosen[1], chosen[2]};
  }
  return std::nullopt;
}

TextRestorer::TextRestorer(const StandIns& standIns) : nothing_(standIns.nothing) {
  for (unsigned byte = 0; byte < restored_.size(); ++byte) {
    restored_[byte] = static_cast<char>(byte);
  }
  restored_[Number(standIns.lineFeed)] = '\n';
  restored_[Number(standIns.carriageReturn)] = '\r';
  for (const char standIn : {standIns.lineFeed, standIns.carriageReturn, standIns.nothing}) {
    suspects_ |= 1U << Number(standIn);
  }
}

// Place of the first stand-in; the size when there is none.
std::size_t TextRestorer::FindStandIn(std::string_view text) const {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::size_t at = 0;
  // Most texts hold no control character at all.
  for (; at + 8 <= text.size(); at += 8) {
    std::uint64_t word;
    std::memcpy(&word, text.data() + at, sizeof word);
    if (((word - kOnes * kControls) & ~word & kHighBits) != 0) break;
  }
  for (; at < text.size(); ++at) {
    const unsigned byte = Number(text[at]);
    if (byte < kControls && ((suspects_ >> byte) & 1U) != 0) return at;
  }
  return at;
}

std::size_t TextRestorer::RestoreInPlace(char* text, std::size_t size) const {
  const std::size_t first = FindStandIn({text, size});
  char* out = text + first;
  for (const char* at = out; at != text + size; ++at) {
    if (*at == nothing_) continue;
    *out++ = restored_[Number(*at)];
  }
  return static_cast<std::size_t>(out - text);
}

std::string_view TextRestorer::Restore(std::string_view text, std::string& room) const {
  if (FindStandIn(text) == text.size()) return text;
  room.assign(text);
  room.resize(RestoreInPlace(room.data(), room.size()));
  return room;
}

CaseRestorer::CaseRestorer(const StandIns& standIns, const QANT_DataSource& source)
    : text_(standIns), caseBytes_(source.GetObsAreaSize()) {
  for (std::size_t index = 0; index < source.GetNVariables(); ++index) {
    const QANT_Variable& variable = *source.GetVariable(index);
    if (variable.GetType() == 0) continue;
    strings_.push_back(
        {variable.ObsIndex() * sizeof(OBS), static_cast<std::size_t>(variable.GetType())});
  }
}

void CaseRestorer::Restore(OBS* cases, std::size_t count) const {
  char* at = reinterpret_cast<char*>(cases);
  for (; count > 0; --count, at += caseBytes_) {
    for (const Place& place : strings_) {
      char* const text = at + place.offset;
      const std::size_t size = text_.RestoreInPlace(text, place.bytes);
      std::memset(text + size, ' ', place.bytes - size);
    }
  }
}

}  // namespace library
