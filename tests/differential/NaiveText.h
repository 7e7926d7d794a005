// Host text for the naive reader: what it is, and what makes host text of a file.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace naive {

// Host text that stands for some bytes of a record.
struct Piece {
  std::string text;
  std::size_t bytes = 0;
  // The text stands in for bytes that are no character, or for one that host text lacks.
  bool substitute = false;
};

// This host text is UTF-8 and takes 8-bit records as they are.
class HostText {
 public:
  // A character of UTF-16 that is none.
  static constexpr char32_t kInvalid = 0xFFFFFFFF;

  HostText() = default;
  HostText(const HostText&) = delete;
  HostText& operator=(const HostText&) = delete;
  virtual ~HostText() = default;

  // Length of the character at `at`, 0 when the bytes there are none.
  virtual std::size_t Decode(const std::string& text, std::size_t at, char32_t* ch) const;
  // Bytes at the end of the text that begin a character without ending it.
  virtual std::size_t UnfinishedTail(const std::string& text) const;
  // An 8-bit record that is not empty, piece by piece.
  virtual std::vector<Piece> Pieces(const std::string& raw) const;
  // False when what was appended only stands in for the character.
  virtual bool Append(std::string& text, char32_t ch) const;
};

}  // namespace naive
