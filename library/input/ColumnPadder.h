// Fixed columns that count characters, laid out so that bytes count them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace library {

// Copies UTF-8 text and puts blanks in front of certain places of its lines: the character at place
// p then stands at byte p x kBytesPerCharacter of its line, whatever characters are before it. A
// line that ends before a place is not made longer for it. NUL bytes count for nothing, nor does a
// byte-order mark at the text's start. One thread.
class ColumnPadder {
 public:
  // No character has more.
  static constexpr std::int64_t kBytesPerCharacter = 4;

  // Blanks in front of the byte `at` of those that were handed in.
  struct Padding {
    std::size_t at;
    std::int64_t blanks;
  };

  // `places`: rising, in characters from 0; above 0.
  explicit ColumnPadder(std::vector<std::int64_t> places)
      : places_(std::make_shared<const std::vector<std::int64_t>>(std::move(places))) {}

  // Appends the copy of the next bytes of the text, whole characters or not, to *copy, and where
  // it put blanks to *paddings, which may be null.
  void Copy(std::string_view bytes, std::string* copy, std::vector<Padding>* paddings = nullptr);
  // Appends what the last line needs when no line end follows; returns how many blanks that are.
  std::int64_t Finish(std::string* copy);

 private:
  std::int64_t MissingBlanks();
  std::size_t CopyMark(std::string_view bytes);
  void BeginLine();

  // Copies of the padder go on from where it stands.
  std::shared_ptr<const std::vector<std::int64_t>> places_;
  // Of the line: the next place; characters and bytes of the copy so far.
  std::size_t next_ = 0;
  std::int64_t characters_ = 0;
  std::int64_t bytes_ = 0;
  // Bytes of the mark that the text has begun with so far; negative behind it.
  int markBytes_ = 0;
};

// Places as people write them, counted from 1 with commas between: "13,18". Nothing where they are
// no numbers that rise from 2 on; *problem is then a sentence (UTF-8).
std::optional<std::vector<std::int64_t>> ParsePlaces(std::string_view text, std::string* problem);
std::string PlacesText(const std::vector<std::int64_t>& places);

}  // namespace library
