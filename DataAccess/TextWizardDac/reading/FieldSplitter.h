// Records into fields: delimiters, qualifier, doubled qualifiers and the space options.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "HostFramework/Text.h"
#include "reading/CharacterKinds.h"
#include "reading/FieldRules.h"
#include "reading/MarkedText.h"
#include "reading/UndecodableScan.h"

namespace textwizard {

// Learns of bytes that are no character.
class UndecodableListener {
 public:
  // A run of them in the record. Runs come in the order of the record, those of a field before the
  // field is delivered; each byte of a run is taken as one character.
  virtual void OnUndecodable(const UndecodableRun& run) = 0;

 protected:
  ~UndecodableListener() = default;
};

// Who asks for a field: the two uses differ in one rule.
enum class SplitUse {
  // A blank at the start of a field is held when either space option is set.
  kReading,
  // The dictionary's cut of a record that the caller supplies: only MULTIPLESPACES holds it.
  kSuppliedRecord,
};

// Cuts one record after another. One thread; the rules and the listener (may be null) outlive it.
//
// Text whose characters need no decoding is cut by bytes: the bytes that can cut are marked in
// blocks, and fields are what lies between marks. So is UTF-8 with bytes that are no character,
// which are looked for behind the cut. Other text is decoded character by character. The rules of
// qualifiers and blanks are those of Walk, over characters of either kind; what stands in front of
// it gives the same fields of what most records hold.
class FieldSplitter {
 public:
  FieldSplitter(const FieldRules& rules, SplitUse use, UndecodableListener* listener);
  ~FieldSplitter();
  FieldSplitter(const FieldSplitter&) = delete;
  FieldSplitter& operator=(const FieldSplitter&) = delete;

  // Takes the rules in again after they changed. Between records.
  void UseRules();

  // Starts a record at its first byte; the text outlives the cutting of its fields.
  void SetRecord(std::string_view record);
  // The same when the caller has found (CutsByBytes) that the text can be cut byte by byte.
  void SetByteRecord(std::string_view record);
  // Names a text that holds many records, all of which can be cut byte by byte. Its bytes are then
  // marked once, across records. The text stays unchanged while its records are cut.
  void SetByteText(std::string_view text);
  // Starts a record that lies within that text.
  void SetRecordOfText(std::string_view record);
  // Whether `text` can be cut byte by byte; see CharacterKinds.
  bool CutsByBytes(std::string_view text) const { return kinds_.CutsByBytes(text); }
  const CharacterKinds& kinds() const { return kinds_; }

  // Cuts the next field: a view into the record, or into a buffer of the splitter's when the field
  // differs from the record's bytes; valid until the next call. False, with an empty field, when
  // the record was used up before the call.
  bool Next(std::string_view& field);
  // Cuts the next `count` fields (at least one) at once; those that the record does not have are
  // empty. Returns how many were cut: fewer when the last of them, valid until the next call, is
  // not a view into the record.
  std::size_t Cut(std::string_view* fields, std::size_t count);

  // --- What was found on the way, for whoever watches the fields
  enum Quotes : unsigned {
    // A qualifier in a field that does not begin with one (blanks before it aside), or other text
    // than blanks behind the closing one.
    kStrayQuote = 1,
    // The record ended inside a field that begins with a qualifier.
    kOpenQuote = 2,
    // It ended inside a qualified stretch of any field.
    kInsideQuote = 4,
  };
  bool MetQuotes() const { return quotes_ != 0; }
  // What was found since the latest call.
  unsigned TakeQuotes() { return std::exchange(quotes_, 0U); }
  // Of a record that is used up: a delimiter ended its last field. Before TakeQuotes.
  bool EndsInDelimiter() const {
    if (mode_ == Mode::kCharacters || spaceOptions_) return delimited_;
    return (quotes_ & kInsideQuote) == 0 && begin_ != end_ &&
           kinds_.OfByte(end_[-1]) >= Kind::kDelimiter;
  }
  // Nothing but delimiters and blanks is left of the record.
  bool RestIsEmpty() const;

  // Byte offset in the record where the next field begins.
  std::size_t offset() const { return static_cast<std::size_t>(cursor_ - begin_); }
  // The same of a field that was cut without space options and is a view into the record: its
  // qualifier belongs to it.
  std::size_t OffsetOf(std::string_view field) const {
    const char* const text = field.data();
    const bool enclosed = text != begin_ && kinds_.OfByte(text[-1]) == Kind::kQualifier;
    return static_cast<std::size_t>(text - begin_) - (enclosed ? 1 : 0);
  }
  // At most the record's size.
  void SetOffset(std::size_t offset) { cursor_ = told_ = begin_ + offset; }

 private:
  using Kind = CharacterKind;
  // What the next character of a field means.
  enum class State { kStart, kPlain, kQualified, kAfterQualifier };

  // How the record is cut; found out by its first Next. Broken text is UTF-8 that is cut by bytes
  // though some are no character.
  enum class Mode { kUnknown, kBytes, kBroken, kCharacters };

  // The rest of the record as Walk takes it.
  class ByteCharacters;
  class DecodedCharacters;

  Mode ModeOf(std::string_view record) const;
  // After an unqualified blank that is a delimiter: is it dropped, since another delimiter follows?
  // The next byte is compared as it stands, whatever character it is or begins.
  bool DropsBlankBefore(const char* next) const {
    return rules_.multipleSpaces() && next != end_ && kinds_.HasDelimitersNumber(*next);
  }
  // After a field's first qualifier: does the next one, at `close` (the record's end: there is
  // none), end the field?
  bool ClosesField(const char* close) const {
    return close == end_ || close + 1 == end_ || kinds_.OfByte(close[1]) >= Kind::kDelimiter;
  }
  // The first byte at `from` or behind it that can cut, or that is the qualifier; the record's end
  // when there is none.
  const char* NextMark(const char* from) { return text_.Next(from, end_); }
  [[gnu::noinline]] const char* NextQualifier(const char* from);

  std::size_t CutViews(std::string_view* fields, std::size_t count);
  const char* TakeEnclosed(const char* open, const char* close, std::string_view& field);
  void NextOfBytes(std::string_view& field);
  [[gnu::noinline]] void NextOfOther(std::string_view& field);
  // Cuts the next field into buffer_, one character after another.
  template <class Characters>
  void Walk(std::string_view& field);
  // A qualifier was met in a plain stretch of the field that is walked. `qualified`: the field
  // begins with one; so it does when it was blank so far. Whether it is only a character of it.
  bool KeepsQualifier(bool& qualified);
  // Tells of what the fields cut since then had of bytes that are no character.
  void TellBroken();
  // The space options, once the field has ended. `unqualified`: no two blanks after its first
  // character that is none.
  void Finish(std::string_view& field, bool unqualified);

  // The record, or the text that it lies in, with marks at the bytes that are not data.
  MarkedText text_;

  // Constant between calls of UseRules.
  const FieldRules& rules_;
  const SplitUse use_;
  UndecodableListener* const listener_;
  const ConverterHandle converter_;
  CharacterKinds kinds_;
  bool spaceOptions_ = false;
  bool blankDelimits_ = false;
  // Blanks at the start of a field belong to it; and they are left out of its text.
  bool holdsBlanks_ = false;
  bool dropsBlanks_ = false;

  // The record, and where its next field begins.
  const char* begin_ = nullptr;
  const char* end_ = nullptr;
  const char* cursor_ = nullptr;
  // In broken text, the bytes before are told of.
  const char* told_ = nullptr;
  Mode mode_ = Mode::kBytes;

  unsigned quotes_ = 0;
  // Kept where fields are walked and with the space options: a delimiter ended the field.
  bool delimited_ = false;

  std::string buffer_;
  // Byte lengths of the characters in buffer_ when it begins with a blank: a qualifier may take the
  // last one away.
  std::string lengths_;
};

}  // namespace textwizard
