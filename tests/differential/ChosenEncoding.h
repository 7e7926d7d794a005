// An encoding of a file and the code pages of a host, chosen by a number, for random imports.
#pragma once

#include <cstddef>

#include "tests/differential/NaiveCodePage.h"
#include "tests/differential/RandomImport.h"

namespace naive {

class ChosenEncoding {
 public:
  // `choice`: below kChoices.
  static constexpr unsigned kChoices = 256;
  explicit ChosenEncoding(unsigned choice);

  bool utf8Host() const { return host_ == nullptr; }
  // Sets the host's code page and the locale's; false when one is unknown.
  bool SetPages() const;
  // What makes host text of the file.
  const CodePageText& text() const;
  // Puts the encoding and the host's text into an import that was made for UTF-8.
  void Adapt(RandomImport& import) const;

 private:
  enum Named { kNone, kLocale, kUtf16, kUtf8 };

  Records records() const;
  // How much wider than a string its field may be.
  std::size_t growth() const;

  unsigned choice_;
  const char* host_;
  Named named_;
  const char* locale_;
};

}  // namespace naive
