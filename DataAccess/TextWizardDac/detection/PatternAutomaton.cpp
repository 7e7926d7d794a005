#include "detection/PatternAutomaton.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace textwizard {

namespace {

// More states than any table needs by far; a table that would have more is left to the library.
constexpr std::size_t kMaxStates = 20000;

using StateSet = std::vector<std::uint32_t>;

}  // namespace

// All patterns side by side in one nondeterministic automaton.
struct PatternAutomaton::Construction {
  struct State {
    CharacterSet characters;
    std::uint32_t next = 0;
    std::vector<std::uint32_t> alternatives;
    std::uint64_t accepts = 0;
    std::uint64_t pattern = 0;
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

  // The states that `seeds` stand for, of those that matter: with a character or accepting.
  StateSet Closure(StateSet seeds) {
    reached.assign(states.size(), false);
    StateSet closed;
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

  StateSet Step(const StateSet& from, std::size_t character) {
    StateSet seeds;
    for (const std::uint32_t state : from) {
      if (states[state].characters.test(character)) seeds.push_back(states[state].next);
    }
    return Closure(std::move(seeds));
  }

  std::vector<State> states;
  StateSet starts;
  std::vector<bool> reached;
};

// Characters that every edge treats alike share a class.
void PatternAutomaton::SetClasses(const Construction& construction) {
  std::array<std::uint8_t, kAsciiCount> classOf{};
  std::size_t count = 1;
  for (const Construction::State& state : construction.states) {
    if (state.characters.none()) continue;
    // Splits every class into the characters that the edge takes and those that it does not.
    std::map<std::pair<std::uint8_t, bool>, std::uint8_t> split;
    for (std::size_t c = 0; c < kAsciiCount; ++c) {
      const auto key = std::make_pair(classOf[c], state.characters.test(c));
      classOf[c] = split.emplace(key, static_cast<std::uint8_t>(split.size())).first->second;
    }
    count = split.size();
  }
  // Class 0 is that of the bytes beyond ASCII.
  for (std::size_t c = 0; c < kAsciiCount; ++c) {
    classOf_[c] = static_cast<std::uint8_t>(classOf[c] + 1);
  }
  classCount_ = count + 1;
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
  std::array<std::size_t, kAsciiCount + 1> member{};
  for (std::size_t c = 0; c < kAsciiCount; ++c) member[classOf_[c]] = c;

  std::map<StateSet, std::uint16_t> numbers;
  std::vector<StateSet> sets;
  const auto number = [&](StateSet set) {
    const auto [place, isNew] =
        numbers.emplace(std::move(set), static_cast<std::uint16_t>(sets.size()));
    if (isNew) sets.push_back(place->first);
    return place->second;
  };
  number({});  // kDead
  if (number(construction.Closure(construction.starts)) == kDead) sets.emplace_back();
  for (std::size_t from = 0; from < sets.size() && sets.size() <= kMaxStates; ++from) {
    const StateSet set = sets[from];
    std::uint64_t accepted = 0, beyondAscii = 0;
    for (const std::uint32_t state : set) {
      accepted |= construction.states[state].accepts;
      if (construction.states[state].characters.test(kBeyondAscii)) {
        beyondAscii |= construction.states[state].pattern;
      }
    }
    accepted_.push_back(accepted);
    beyondAscii_.push_back(beyondAscii);
    next_.push_back(kDead);  // the class of bytes beyond ASCII, never looked up
    for (std::size_t c = 1; c < classCount_; ++c) {
      next_.push_back(number(construction.Step(set, member[c])));
    }
  }
  if (sets.size() > kMaxStates) {
    // Everything is undecided from the first byte on.
    for (std::size_t i = 0; i < patterns.size() && i < kMaxPatterns; ++i) {
      uncompiled_ |= std::uint64_t{1} << i;
    }
    next_.assign(2 * classCount_, kDead);
    accepted_.assign(2, 0);
    beyondAscii_.assign(2, 0);
  }
}

PatternAutomaton::ByteClasses PatternAutomaton::Classes(
    const std::array<unsigned char, 256>& mapping) const {
  ByteClasses classes{};
  for (std::size_t byte = 0; byte < classes.size(); ++byte) {
    const unsigned char mapped = mapping[byte];
    classes[byte] = mapped < kAsciiCount ? classOf_[mapped] : kBeyondAsciiClass;
  }
  return classes;
}

std::shared_ptr<const PatternAutomaton> PatternAutomaton::Shared(
    const std::vector<std::string>& patterns) {
  static std::mutex mutex;
  static std::map<std::vector<std::string>, std::shared_ptr<const PatternAutomaton>> known;
  const std::lock_guard<std::mutex> guard(mutex);
  std::shared_ptr<const PatternAutomaton>& entry = known[patterns];
  if (!entry) entry = std::make_shared<const PatternAutomaton>(patterns);
  return entry;
}

}  // namespace textwizard
