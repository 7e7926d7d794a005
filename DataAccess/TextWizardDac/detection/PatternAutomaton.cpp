#include "detection/PatternAutomaton.h"

#include <algorithm>
#include <bit>
#include <bitset>
#include <map>
#include <unordered_map>

#include <unicode/uchar.h>

#include "HostFramework/Threads.h"

namespace textwizard {

namespace {

// More states than any table needs by far; a table that would have more is left to the library.
constexpr std::size_t kMaxStates = 20000;

using StateSet = std::vector<std::uint32_t>;

struct HashOfSet {
  std::size_t operator()(const StateSet& set) const {
    constexpr std::size_t kPrime = 0x9E3779B97F4A7C15;
    std::size_t hash = set.size();
    for (const std::uint32_t state : set) hash = (std::rotl(hash, 5) ^ state) * kPrime;
    return hash;
  }
};

// Characters that share all bytes of their UTF-8 but the last.
constexpr std::size_t kBlockSize = 64;
constexpr std::size_t kTwoByteBlocks = 0x800 / kBlockSize;
constexpr std::size_t kThreeByteBlocks = 0x10000 / kBlockSize;
constexpr UChar32 kLastControl = 0x9F;

// The blocks before character `end` with a digit or a space among them, by the library that decides
// about the patterns.
std::bitset<kThreeByteBlocks> FindDigitAndSpaceBlocks(UChar32 end) {
  std::bitset<kThreeByteBlocks> blocks;
  const auto note = [&blocks](UChar32 c) { blocks.set(static_cast<std::size_t>(c) / kBlockSize); };
  // Spaces that are no separators are control characters.
  for (UChar32 c = 0; c <= kLastControl; ++c) {
    if (u_isUWhiteSpace(c) || u_isspace(c)) note(c);
  }
  for (UChar32 c = 0; c < end; ++c) {
    if ((U_GET_GC_MASK(c) & (U_GC_ND_MASK | U_GC_Z_MASK)) != 0) note(c);
  }
  return blocks;
}

// Those of characters of at most two bytes, and of three, which few files have.
const std::bitset<kThreeByteBlocks>& TwoByteBlocks() {
  static const auto known = FindDigitAndSpaceBlocks(kTwoByteBlocks * kBlockSize);
  return known;
}
const std::bitset<kThreeByteBlocks>& ThreeByteBlocks() {
  static const auto known = FindDigitAndSpaceBlocks(kThreeByteBlocks * kBlockSize);
  return known;
}

constexpr unsigned char kFirstTwoByteLead = 0xC2;
constexpr unsigned char kFirstThreeByteLead = 0xE0;
constexpr unsigned char kFirstFourByteLead = 0xF0;
constexpr unsigned char kFirstInvalid = 0xF5;

}  // namespace

// All patterns side by side in one nondeterministic automaton.
struct PatternAutomaton::Construction {
  struct State {
    CharacterSet characters;
    std::uint32_t next = 0;
    std::vector<std::uint32_t> alternatives;
    std::uint64_t accepts = 0;
    std::uint64_t pattern = 0;
    // The classes of its ASCII characters: those of its place among the sets of characters.
    std::size_t set = 0;
  };

  void Add(const PatternNfa& nfa, std::uint64_t pattern) {
    const auto base = static_cast<std::uint32_t>(states.size());
    for (const PatternNfa::State& from : nfa.states) {
      State state;
      state.pattern = pattern;
      state.characters = from.characters;
      if (from.next != PatternNfa::kNone) {
        state.next = base + static_cast<std::uint32_t>(from.next);
      }
      for (const std::size_t to : from.alternatives) {
        state.alternatives.push_back(base + static_cast<std::uint32_t>(to));
      }
      states.push_back(std::move(state));
    }
    states[base + nfa.accept].accepts = pattern;
    starts.push_back(base);
  }

  // The states that `seed` stands for, of those that matter: with a character or accepting.
  const StateSet& Closure(std::uint32_t seed) {
    const auto [place, isNew] = closures.try_emplace(seed);
    StateSet& closed = place->second;
    if (!isNew) return closed;
    StateSet seeds = {seed};
    reached.assign(states.size(), false);
    while (!seeds.empty()) {
      const std::uint32_t state = seeds.back();
      seeds.pop_back();
      if (reached[state]) continue;
      reached[state] = true;
      if (states[state].characters.any() || states[state].accepts) closed.push_back(state);
      const auto& alternatives = states[state].alternatives;
      seeds.insert(seeds.end(), alternatives.begin(), alternatives.end());
    }
    std::sort(closed.begin(), closed.end());
    return closed;
  }

  // The same of several, put into `closed`.
  void Close(const StateSet& seeds, StateSet& closed) {
    closed.clear();
    for (const std::uint32_t seed : seeds) {
      const StateSet& ofSeed = Closure(seed);
      closed.insert(closed.end(), ofSeed.begin(), ofSeed.end());
    }
    Order(closed);
  }

  static void Order(StateSet& set) {
    std::sort(set.begin(), set.end());
    set.erase(std::unique(set.begin(), set.end()), set.end());
  }

  std::vector<State> states;
  StateSet starts;
  // Per set of characters that states have: its classes. Few sets are different ones.
  std::vector<std::vector<std::uint8_t>> classes;
  std::vector<bool> reached;
  // Of single states: the same few are met again and again.
  std::unordered_map<std::uint32_t, StateSet> closures;
};

// Gives each set of states a number, in the order in which they are met. A step leads to few sets
// from many: the places that it leads to are looked up before what they stand for is made.
class PatternAutomaton::Numbering {
 public:
  explicit Numbering(Construction& construction) : construction_(construction) {
    OfClosed();  // kDead
  }

  std::size_t size() const { return sets_.size(); }
  const StateSet& set(std::size_t number) const { return *sets_[number]; }
  // A number of its own, for no state at all.
  void AddEmpty() { sets_.push_back(sets_.front()); }

  // The set that `seeds`, which is left in order, stands for.
  std::uint16_t Of(StateSet& seeds) {
    Construction::Order(seeds);
    const auto known = ofSeeds_.find(seeds);
    if (known != ofSeeds_.end()) return known->second;
    construction_.Close(seeds, closed_);
    return ofSeeds_.emplace(seeds, OfClosed()).first->second;
  }

 private:
  using Numbers = std::unordered_map<StateSet, std::uint16_t, HashOfSet>;

  std::uint16_t OfClosed() {
    const auto [place, isNew] =
        numbers_.try_emplace(closed_, static_cast<std::uint16_t>(sets_.size()));
    if (isNew) sets_.push_back(&place->first);
    return place->second;
  }

  Construction& construction_;
  Numbers ofSeeds_;
  Numbers numbers_;
  std::vector<const StateSet*> sets_;
  StateSet closed_;
};

// Characters that every edge treats alike share a class.
void PatternAutomaton::SetClasses(Construction& construction) {
  std::unordered_map<CharacterSet, std::size_t> places;
  std::vector<CharacterSet> sets;
  for (Construction::State& state : construction.states) {
    const auto [place, isNew] = places.try_emplace(state.characters, sets.size());
    if (isNew) sets.push_back(state.characters);
    state.set = place->second;
  }
  std::array<std::uint8_t, kAsciiCount> classOf{};
  std::size_t count = 1;
  for (const CharacterSet& characters : sets) {
    // Splits every class into the characters that the edge takes and those that it does not.
    constexpr std::uint8_t kNoClass = 0xFF;
    std::array<std::uint8_t, 2 * kAsciiCount> split;
    split.fill(kNoClass);
    count = 0;
    for (std::size_t c = 0; c < kAsciiCount; ++c) {
      std::uint8_t& part = split[std::size_t{2} * classOf[c] + characters.test(c)];
      if (part == kNoClass) part = static_cast<std::uint8_t>(count++);
      classOf[c] = part;
    }
  }
  for (std::size_t c = 0; c < kAsciiCount; ++c) {
    classOf_[c] = static_cast<std::uint8_t>(classOf[c] + kWideClasses);
  }
  classCount_ = count + kWideClasses;
  classBits_ = static_cast<unsigned>(std::bit_width(classCount_ - 1));
  for (const CharacterSet& characters : sets) {
    std::bitset<kAsciiCount + kWideClasses> known;
    for (std::size_t c = 0; c < kAsciiCount; ++c) {
      if (characters.test(c)) known.set(classOf_[c]);
    }
    std::vector<std::uint8_t>& classes = construction.classes.emplace_back();
    for (std::size_t c = kWideClasses; c < classCount_; ++c) {
      if (known.test(c)) classes.push_back(static_cast<std::uint8_t>(c));
    }
  }
}

PatternAutomaton::PatternAutomaton(const std::vector<std::string>& patterns) {
  Construction construction;
  for (std::size_t i = 0; i < patterns.size() && i < kMaxPatterns; ++i) {
    const std::uint64_t bit = std::uint64_t{1} << i;
    const std::optional<PatternNfa> nfa = CompilePattern(patterns[i]);
    if (nfa) {
      construction.Add(*nfa, bit);
    } else {
      uncompiled_ |= bit;
    }
  }
  SetClasses(construction);
  Numbering numbers(construction);
  if (numbers.Of(construction.starts) == kDead) numbers.AddEmpty();
  // Where each class leads to from the set that is looked at.
  std::vector<StateSet> seeds(classCount_);
  for (std::size_t from = 0; from < numbers.size() && numbers.size() <= kMaxStates; ++from) {
    std::uint64_t accepted = 0, wide = 0, wideOther = 0;
    for (const std::uint32_t index : numbers.set(from)) {
      const Construction::State& state = construction.states[index];
      accepted |= state.accepts;
      if (state.characters.test(kWideDigitOrSpace)) wide |= state.pattern;
      if (state.characters.test(kWideOther)) wideOther |= state.pattern;
      for (const std::uint8_t byteClass : construction.classes[state.set]) {
        seeds[byteClass].push_back(state.next);
      }
    }
    accepted_.push_back(accepted);
    wide_.push_back(wide | wideOther);
    wideOther_.push_back(wideOther);
    next_.insert(next_.end(), kWideClasses, kDead);  // never looked up
    for (std::size_t c = kWideClasses; c < classCount_; ++c) {
      const std::size_t to = seeds[c].empty() ? kDead : numbers.Of(seeds[c]);
      next_.push_back(static_cast<std::uint32_t>(to << classBits_));
      seeds[c].clear();
    }
    next_.resize((from + 1) << classBits_, kDead);
  }
  if (numbers.size() > kMaxStates) {
    // Everything is undecided from the first byte on.
    for (std::size_t i = 0; i < patterns.size() && i < kMaxPatterns; ++i) {
      uncompiled_ |= std::uint64_t{1} << i;
    }
    next_.assign(std::size_t{2} << classBits_, kDead);
    accepted_.assign(2, 0);
    wide_.assign(2, 0);
    wideOther_.assign(2, 0);
  }
}

PatternAutomaton::ByteClasses PatternAutomaton::Classes(
    const std::array<unsigned char, 256>& mapping, bool utf8) const {
  ByteClasses classes{};
  for (std::size_t byte = 0; byte < classes.size(); ++byte) {
    const unsigned char mapped = mapping[byte];
    if (mapped < kAsciiCount) {
      classes[byte] = classOf_[mapped];
    } else if (!utf8 || (mapped >= kFirstFourByteLead && mapped < kFirstInvalid)) {
      classes[byte] = kUnknownWide;
    } else if (mapped >= kFirstThreeByteLead && mapped < kFirstFourByteLead) {
      classes[byte] = kWideBySecond;
    } else if (mapped >= kFirstTwoByteLead && mapped < kFirstThreeByteLead) {
      const bool known = TwoByteBlocks().test(mapped % kTwoByteBlocks);
      classes[byte] = known ? kUnknownWide : kOtherWide;
    } else {
      // No character begins with it: a replacement character stands for it.
      classes[byte] = kOtherWide;
    }
  }
  return classes;
}

std::uint64_t PatternAutomaton::GoingOn(std::size_t state, std::uint8_t wideClass,
                                        std::string_view rest) const {
  if (wideClass == kUnknownWide) return wide_[state];
  if (wideClass == kWideBySecond && rest.size() > 1) {
    constexpr unsigned kLeadBits = 0xF, kContinuationBits = 0x3F;
    const auto byte = [rest](std::size_t i) { return static_cast<unsigned char>(rest[i]); };
    const std::size_t block = (byte(0) & kLeadBits) * kBlockSize + (byte(1) & kContinuationBits);
    if (ThreeByteBlocks().test(block)) return wide_[state];
  }
  return wideOther_[state];
}

std::shared_ptr<const PatternAutomaton> PatternAutomaton::Shared(
    const std::vector<std::string>& patterns) {
  struct Known {
    sfMutex mutex;
    std::map<std::vector<std::string>, std::shared_ptr<const PatternAutomaton>> automata
        SF_GUARDED_BY(mutex);
  };
  static Known known;
  const sfGuard guard(known.mutex);
  std::shared_ptr<const PatternAutomaton>& entry = known.automata[patterns];
  if (!entry) entry = std::make_shared<const PatternAutomaton>(patterns);
  return entry;
}

}  // namespace textwizard
