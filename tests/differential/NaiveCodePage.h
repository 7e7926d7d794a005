// Host text and records in code pages for the naive reader, by ICU alone: one character, or one
// whole text, at a time.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <unicode/ucnv.h>

#include "tests/differential/NaiveText.h"

namespace naive {

// What the 8-bit records of a file are in.
enum class Records { kHostText, kLocale, kUtf8 };

// Pages are stateless supersets of ASCII. One thread.
class CodePageText : public HostText {
 public:
  // `host`: the host's code page, null for UTF-8. `locale`: the locale's code page where that is
  // not the host's.
  CodePageText(const char* host, Records records, const char* locale);

  std::size_t Decode(const std::string& text, std::size_t at, char32_t* ch) const override;
  std::size_t UnfinishedTail(const std::string& text) const override;
  std::vector<Piece> Pieces(const std::string& raw) const override;
  bool Append(std::string& text, char32_t ch) const override;

  // An 8-bit record that is not empty.
  std::string FromRecord(const std::string& raw) const;

  // A UTF-8 text as host text.
  std::string FromUtf8(const std::string& text) const;

 private:
  struct Close {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
  };
  using Converter = std::unique_ptr<UConverter, Close>;

  static Converter Open(const char* page);
  std::string ToHost(UConverter* from, const std::string& text) const;
  // As Decode; *unfinished: the text ends within the character.
  std::size_t DecodeByPage(const std::string& text, std::size_t at, char32_t* ch,
                           bool* unfinished) const;

  const bool utf8Host_;
  const Records records_;
  // Of the host's page, which has another callback where characters are decoded.
  const Converter page_;
  const Converter host_;
  const Converter utf8_;
  // Of the records; null when they stay as they are.
  const Converter source_;
};

}  // namespace naive
