#include "HostFramework/Serialization.h"

#include <algorithm>
#include <limits>

void VStream::WriteUInt8(std::uint8_t value) { output_ += static_cast<char>(value); }

void VStream::WriteUInt32(std::uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8) {
    WriteUInt8(static_cast<std::uint8_t>(value >> shift & 0xFFU));
  }
}

void VStream::WriteString(std::string_view text) {
  const std::size_t length =
      std::min<std::size_t>(text.size(), std::numeric_limits<std::uint32_t>::max());
  WriteUInt32(static_cast<std::uint32_t>(length));
  output_.append(text.data(), length);
}

bool VStream::ReadUInt8(std::uint8_t* value) {
  if (at_ == input_.size()) return false;
  *value = static_cast<std::uint8_t>(input_[at_++]);
  return true;
}

bool VStream::ReadUInt32(std::uint32_t* value) {
  if (input_.size() - at_ < 4) return false;
  std::uint32_t read = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    read |= std::uint32_t{static_cast<std::uint8_t>(input_[at_++])} << shift;
  }
  *value = read;
  return true;
}

bool VStream::ReadString(std::string* text) {
  std::uint32_t length = 0;
  if (!ReadUInt32(&length)) return false;
  if (input_.size() - at_ < length) {
    at_ -= 4;
    return false;
  }
  text->assign(input_.substr(at_, length));
  at_ += length;
  return true;
}

VSerializable::~VSerializable() = default;

void VSerializable::Write(VStream& stream) const {
  stream.WriteString(GetSignature());
  stream.WriteUInt32(GetVersion());
  WriteFields(stream);
}

bool VSerializable::Read(VStream& stream) {
  std::string signature;
  std::uint32_t version = 0;
  return stream.ReadString(&signature) && signature == GetSignature() &&
         stream.ReadUInt32(&version) && version == GetVersion() && ReadFields(stream);
}
