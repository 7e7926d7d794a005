// Records into fields: delimiters, qualifier, doubled qualifiers and the space options.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "HostFramework/Text.h"
#include "plan/ImportSettings.h"

namespace textwizard {

// The characters that cut a record, decoded once. Constant after construction.
class FieldRules {
 public:
  static constexpr std::size_t kMaxDelimiters = 10;

  FieldRules() = default;
  explicit FieldRules(const ImportSettings& settings);

  // Decodes the delimiter characters (host text; null is none): at most ten, stopping at bytes that
  // are not a character. Returns the number of slots filled.
  int SetWideDelimiters(const char* delimiters);
  bool IsDelimiter(std::uint32_t ch) const;
  bool IsQualifier(std::uint32_t ch) const { return ch != 0 && ch == qualifier_; }

  const std::array<std::uint32_t, kMaxDelimiters + 1>& delimiters() const { return delimiters_; }
  std::uint32_t qualifier() const { return qualifier_; }
  bool leadingSpaces() const { return leadingSpaces_; }
  bool multipleSpaces() const { return multipleSpaces_; }

 private:
  std::uint32_t qualifier_ = 0;
  std::array<std::uint32_t, kMaxDelimiters + 1> delimiters_{};
  bool leadingSpaces_ = false;
  bool multipleSpaces_ = false;
};

// Learns of bytes that are no character.
class UndecodableListener {
 public:
  // `position`: byte offset in the record.
  virtual void OnUndecodable(std::size_t position) = 0;

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

// Cuts one record after another. One thread; the rules and the listener outlive it.
class FieldSplitter {
 public:
  FieldSplitter(const FieldRules& rules, SplitUse use, UndecodableListener* listener);
  ~FieldSplitter();
  FieldSplitter(const FieldSplitter&) = delete;
  FieldSplitter& operator=(const FieldSplitter&) = delete;

  // Starts a record at its first byte; the text outlives the cutting of its fields.
  void SetRecord(std::string_view record);
  // The same when the caller has found (CutsByBytes) that the text can be cut byte by byte.
  void SetByteRecord(std::string_view record);
  // True when no character of `text` needs decoding to be cut: all ASCII, or valid UTF-8 in UTF-8
  // mode, with every delimiter and the qualifier in ASCII.
  bool CutsByBytes(std::string_view text) const;

  // Cuts the next field: a view into the record, or into a buffer of the splitter's when the field
  // differs from the record's bytes; valid until the next call. False, with an empty field, when
  // the record was used up before the call.
  bool Next(std::string_view& field);

  // Byte offset in the record where the next field begins.
  std::size_t offset() const { return offset_; }
  void SetOffset(std::size_t offset);

 private:
  const FieldRules& rules_;
  SplitUse use_;
  UndecodableListener* listener_;
  QANTMBConverter* converter_;
  std::string_view record_;
  std::size_t offset_ = 0;
  std::string buffer_;
};

}  // namespace textwizard
