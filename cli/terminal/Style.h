// Weights and colours of text on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace cli {

// What it returns is as wide as the text (UTF-8), and the text itself where colours are not wanted.
class Style {
 public:
  // Plain text everywhere.
  Style() = default;
  explicit Style(bool coloured) : coloured_(coloured) {}
  // Of what is written to `descriptor`: plain where that is no terminal, or a dumb one (TERM), and
  // where NO_COLOR is set and not empty.
  static Style Of(int descriptor);

  std::string Strong(std::string_view text) const { return Painted("1", text); }
  std::string Faint(std::string_view text) const { return Painted("2", text); }
  std::string Good(std::string_view text) const { return Painted("32", text); }
  std::string Doubtful(std::string_view text) const { return Painted("33", text); }
  std::string Bad(std::string_view text) const { return Painted("31", text); }

 private:
  std::string Painted(std::string_view code, std::string_view text) const;

  bool coloured_ = false;
};

}  // namespace cli
