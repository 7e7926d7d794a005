// Messages between packages: a signature, a version, then the fields in declaration order.
// Integers are little-endian; a string is a 32-bit length and its bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

// A byte sequence that messages are written to or read from. One thread.
class VStream {
 public:
  // Empty, for writing.
  VStream() = default;
  // For reading `bytes`, which outlive the stream.
  explicit VStream(std::string_view bytes) : input_(bytes) {}

  void WriteUInt8(std::uint8_t value);
  void WriteUInt32(std::uint32_t value);
  // A text of 4 GiB or more is cut.
  void WriteString(std::string_view text);

  // Each is false, with *value left alone, when the stream ends before the value does.
  bool ReadUInt8(std::uint8_t* value);
  bool ReadUInt32(std::uint32_t* value);
  // Takes memory only once the whole text is known to be there.
  bool ReadString(std::string* text);

  // Everything was read.
  bool AtEnd() const { return at_ == input_.size(); }
  // What was written.
  const std::string& bytes() const { return output_; }

 private:
  std::string output_;
  std::string_view input_;
  std::size_t at_ = 0;
};

// A message that can be written to a stream and read back.
class VSerializable {
 public:
  virtual ~VSerializable();
  virtual const char* GetSignature() const = 0;
  virtual std::uint32_t GetVersion() const = 0;

  void Write(VStream& stream) const;
  // False when the stream holds another signature or version, or ends early; the message is then
  // not to be used.
  bool Read(VStream& stream);

 protected:
  virtual void WriteFields(VStream& stream) const = 0;
  virtual bool ReadFields(VStream& stream) = 0;
};

// Makes a class of messages known by its signature while this lives, so that messages which arrive
// as bytes can be made. One object of each class, beside the class's own code:
//   const MessageType kFileOpenRequest = MessageType::Of<FileOpenRequest>();
class MessageType {
 public:
  using Maker = std::unique_ptr<VSerializable> (*)();

  explicit MessageType(Maker make);
  ~MessageType();
  MessageType(const MessageType&) = delete;
  MessageType& operator=(const MessageType&) = delete;

  template <typename Message>
  static MessageType Of() {
    return MessageType(
        []() -> std::unique_ptr<VSerializable> { return std::make_unique<Message>(); });
  }

  // An empty message of the class with that signature; null when none is known. Any thread.
  static std::unique_ptr<VSerializable> MakeMessage(std::string_view signature);

 private:
  Maker make_;
  std::string signature_;
};
