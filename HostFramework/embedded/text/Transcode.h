// The one conversion loop: a source hands out runs of ASCII and characters, a target makes codes of
// them, a sink takes these. All three are small values that live for one conversion.
#pragma once

#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include "HostFramework/embedded/text/CodePage.h"

namespace embedded {

// An encoding on one side of a conversion: a page, or else whatever ICU converts.
struct Codec {
  const CodePage* page;
  UConverter* icu;
};

// 8-bit text in a page, decoded by `Decode` (text, available).
template <class Decoder>
class ByteSource {
 public:
  ByteSource(std::string_view text, Decoder decode) : rest_(text), decode_(decode) {}
  bool AtEnd() const { return rest_.empty(); }
  std::string_view AsciiRun() {
    const std::string_view run = rest_.substr(0, AsciiPrefix(rest_.data(), rest_.size()));
    rest_.remove_prefix(run.size());
    return run;
  }
  Character Next() {
    const Character character = decode_(rest_.data(), rest_.size());
    rest_.remove_prefix(static_cast<std::size_t>(character.length));
    return character;
  }

 private:
  std::string_view rest_;
  Decoder decode_;
};

// UTF-16 in either byte order. A surrogate without its partner and an odd last byte are no
// character.
class Utf16Source {
 public:
  Utf16Source(std::string_view text, bool bigEndian) : rest_(text), bigEndian_(bigEndian) {}
  bool AtEnd() const { return rest_.empty(); }
  std::string_view AsciiRun() {
    std::size_t count = 0;
    for (; count < run_.size() && rest_.size() >= 2 * (count + 1); ++count) {
      const char16_t unit = Unit(count);
      if (unit >= 0x80) break;
      run_[count] = static_cast<char>(unit);
    }
    rest_.remove_prefix(2 * count);
    return {run_.data(), count};
  }
  Character Next();

 private:
  char16_t Unit(std::size_t index) const {
    const auto byte = [&](std::size_t at) {
      return static_cast<unsigned>(static_cast<unsigned char>(rest_[2 * index + at]));
    };
    return static_cast<char16_t>(bigEndian_ ? byte(0) << 8 | byte(1) : byte(1) << 8 | byte(0));
  }

  std::string_view rest_;
  bool bigEndian_;
  std::array<char, 64> run_;
};

// Any encoding, by ICU.
class IcuSource {
 public:
  IcuSource(UConverter* converter, std::string_view text);
  bool AtEnd() const { return next_ == count_ && !invalidNext_; }
  std::string_view AsciiRun() { return {}; }
  Character Next();

 private:
  void Fill();
  char16_t Take();

  UConverter* converter_;
  const char* source_;
  const char* end_;
  std::size_t next_ = 0;
  std::size_t count_ = 0;
  // Bytes that are no character follow the units at hand.
  bool invalidNext_ = false;
  bool finished_ = false;
  std::array<UChar, 256> units_;
};

using Code = std::array<char, 64>;

class Utf8Target {
 public:
  std::string_view Encode(const Character& character, Code& code) {
    if (!character.IsCharacter()) return CodePage::Utf8().Substitute();
    return {code.data(), EncodeUtf8(character.code, code.data())};
  }
  std::string_view Finish(Code&) { return {}; }
};

class PageTarget {
 public:
  explicit PageTarget(const CodePage& page) : page_(page) {}
  std::string_view Encode(const Character& character, Code& code) {
    const std::size_t length =
        character.IsCharacter() ? page_.Encode(character.code, code.data()) : 0;
    return length > 0 ? std::string_view(code.data(), length) : page_.Substitute();
  }
  std::string_view Finish(Code&) { return {}; }

 private:
  const CodePage& page_;
};

// Any encoding, by ICU, which may hold a character back until it sees the next.
class IcuTarget {
 public:
  explicit IcuTarget(UConverter* converter);
  ~IcuTarget();
  IcuTarget(const IcuTarget&) = delete;
  IcuTarget& operator=(const IcuTarget&) = delete;
  std::string_view Encode(const Character& character, Code& code);
  std::string_view Finish(Code& code);

 private:
  std::string_view Put(const UChar* units, std::size_t count, bool last, Code& code);
  UConverter* converter_;
};

// Appends to a string.
class StringSink {
 public:
  explicit StringSink(std::string& out) : out_(out) {}
  bool PutCode(std::string_view code) {
    out_.append(code);
    return true;
  }
  bool PutText(const CodePage&, std::string_view text) { return PutCode(text); }

 private:
  std::string& out_;
};

// Fills a buffer; takes whole characters only, and false is the end.
class BufferSink {
 public:
  BufferSink(char* out, std::size_t size) : out_(out), size_(size) {}
  std::size_t Written() const { return written_; }
  bool PutCode(std::string_view code) { return code.size() <= size_ - written_ && Copy(code); }
  bool PutText(const CodePage& page, std::string_view text) {
    const std::size_t whole = page.WholePrefix(text.data(), text.size(), size_ - written_);
    return Copy(text.substr(0, whole)) && whole == text.size();
  }

 private:
  bool Copy(std::string_view text) {
    if (!text.empty()) std::memcpy(out_ + written_, text.data(), text.size());
    written_ += text.size();
    return true;
  }

  char* out_;
  std::size_t size_;
  std::size_t written_ = 0;
};

template <class Source, class Target, class Sink>
void Transcode(Source& source, Target& target, Sink& sink) {
  Code code;
  while (!source.AtEnd()) {
    const std::string_view run = source.AsciiRun();
    if (!run.empty()) {
      if constexpr (std::is_same_v<Target, IcuTarget>) {
        for (const char byte : run) {
          const Character character{static_cast<unsigned char>(byte), 1};
          if (!sink.PutCode(target.Encode(character, code))) return;
        }
      } else if (!sink.PutText(CodePage::Utf8(), run)) {
        return;
      }
      continue;
    }
    if (!sink.PutCode(target.Encode(source.Next(), code))) return;
  }
  sink.PutCode(target.Finish(code));
}

// Copies text that stays in its page; only bytes that are no character change.
template <class Sink>
void Repair(const CodePage& page, std::string_view text, Sink& sink) {
  while (!text.empty()) {
    std::size_t valid = 0;
    std::size_t invalid = 0;
    while (invalid == 0) {
      valid += AsciiPrefix(text.data() + valid, text.size() - valid);
      if (valid == text.size()) break;
      const Character character = page.Decode(text.data() + valid, text.size() - valid);
      (character.IsCharacter() ? valid : invalid) += static_cast<std::size_t>(character.length);
    }
    if (valid > 0 && !sink.PutText(page, text.substr(0, valid))) return;
    if (invalid > 0 && !sink.PutCode(page.Substitute())) return;
    text.remove_prefix(valid + invalid);
  }
}

template <class Source, class Sink>
void TranscodeTo(Source source, const Codec& to, Sink& sink) {
  if (to.page == nullptr) {
    IcuTarget target(to.icu);
    Transcode(source, target, sink);
  } else if (to.page->IsUtf8()) {
    Utf8Target target;
    Transcode(source, target, sink);
  } else {
    PageTarget target(*to.page);
    Transcode(source, target, sink);
  }
}

template <class Sink>
void Convert(const Codec& from, const Codec& to, std::string_view text, Sink& sink) {
  if (from.page == nullptr) {
    TranscodeTo(IcuSource(from.icu, text), to, sink);
  } else if (from.page == to.page) {
    Repair(*from.page, text, sink);
  } else if (from.page->IsUtf8()) {
    TranscodeTo(ByteSource(text, DecodeUtf8), to, sink);
  } else {
    const auto decode = [page = from.page](const char* at, std::size_t available) {
      return page->Decode(at, available);
    };
    TranscodeTo(ByteSource(text, decode), to, sink);
  }
}

}  // namespace embedded
