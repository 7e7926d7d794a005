#include "HostFramework/Serialization.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/FileMessages.h"

namespace {

std::string Bytes(const VSerializable& message) {
  VStream stream;
  message.Write(stream);
  return stream.bytes();
}

bool Reads(VSerializable& message, const std::string& bytes) {
  VStream stream(bytes);
  return message.Read(stream) && stream.AtEnd();
}

TEST(Serialization, IntegersAreLittleEndianAndTextsCarryTheirLength) {
  VStream stream;
  stream.WriteUInt32(0x01020304);
  stream.WriteUInt8(0xAB);
  stream.WriteString("hi");
  EXPECT_EQ(stream.bytes(), std::string("\x04\x03\x02\x01\xAB\x02\0\0\0hi", 11));
}

TEST(Serialization, AMessageIsItsSignatureItsVersionAndItsFieldsInOrder) {
  const std::string signature = "VSerializable::FileOpenRequest";
  std::string expected = std::string("\x1E\0\0\0", 4) + signature + std::string("\1\0\0\0", 4);
  expected += std::string("\1\0\0\0f\2\0\0\0en\1", 12);
  ASSERT_EQ(signature.size(), 0x1EU);
  EXPECT_EQ(Bytes(FileOpenRequest("f", "en", true)), expected);
}

TEST(Serialization, TheStringMessagesHaveTheirSignaturesAndVersions) {
  EXPECT_STREQ(TextWizardDacStringRequest().GetSignature(),
               "VSerializable::TextWizardDacStringRequest");
  EXPECT_EQ(TextWizardDacStringRequest().GetVersion(), 1U);
  EXPECT_STREQ(TextWizardDacStringResponse().GetSignature(),
               "VSerializable::TextWizardDacStringResponse");
  EXPECT_EQ(TextWizardDacStringResponse().GetVersion(), 2U);
}

TEST(Serialization, EveryMessageReadsBackWhatItWrote) {
  FileOpenRequest request;
  ASSERT_TRUE(Reads(request, Bytes(FileOpenRequest("a", "UTF-8", true))));
  EXPECT_EQ(request.GetFileName(), "a");
  EXPECT_EQ(request.GetOpenEncoding(), "UTF-8");
  EXPECT_TRUE(request.GetValidateOnly());

  FileOpenResponse response;
  ASSERT_TRUE(Reads(response, Bytes(FileOpenResponse())));
  EXPECT_FALSE(response.HasError());
  ASSERT_TRUE(Reads(response, Bytes(FileOpenResponse(DACErrorResponse(2004, "x")))));
  EXPECT_TRUE(response.HasError());
  EXPECT_EQ(response.GetError().GetCode(), 2004U);
  EXPECT_EQ(response.GetError().GetText(), "x");

  TextWizardDacStringRequest text;
  ASSERT_TRUE(Reads(text, Bytes(TextWizardDacStringRequest("abc"))));
  EXPECT_EQ(text.GetText(), "abc");

  TextWizardDacStringResponse record;
  ASSERT_TRUE(Reads(record, Bytes(TextWizardDacStringResponse(DACErrorResponse(7, "e"), "r", 1))));
  EXPECT_EQ(record.GetError().GetCode(), 7U);
  EXPECT_EQ(record.GetText(), "r");
  EXPECT_EQ(record.GetNumber(), 1U);
}

TEST(Serialization, AnotherSignatureOrVersionIsRefused) {
  FileOpenRequest request;
  EXPECT_FALSE(Reads(request, Bytes(FileOpenResponse())));
  std::string bytes = Bytes(FileOpenRequest("f", "e", false));
  bytes[4 + 30] = 2;
  EXPECT_FALSE(Reads(request, bytes));
}

TEST(Serialization, EveryTruncationIsRefused) {
  const std::string bytes =
      Bytes(TextWizardDacStringResponse(DACErrorResponse(1006, "why"), "text", 1));
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    TextWizardDacStringResponse response;
    EXPECT_FALSE(Reads(response, bytes.substr(0, length))) << length;
  }
}

TEST(Serialization, ALengthBeyondTheEndTakesNoMemoryAndChangesNothing) {
  const std::string bytes("\xFF\xFF\xFF\xFFx", 5);
  VStream stream(bytes);
  std::string text = "before";
  EXPECT_FALSE(stream.ReadString(&text));
  EXPECT_EQ(text, "before");
  std::uint32_t length = 0;
  EXPECT_TRUE(stream.ReadUInt32(&length));
  EXPECT_EQ(length, 0xFFFFFFFFU);
}

TEST(Serialization, AFlagIsZeroOrOne) {
  std::string bytes = Bytes(FileOpenRequest("f", "e", false));
  bytes.back() = 2;
  FileOpenRequest request;
  EXPECT_FALSE(Reads(request, bytes));
}

TEST(Serialization, DamagedMessagesAreReadWithoutHarm) {
  std::mt19937 random(7);
  const std::string good = Bytes(FileOpenResponse(DACErrorResponse(2004, "name")));
  int refused = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string bytes = good;
    for (auto change = 1 + random() % 3; change > 0; --change) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    bytes.resize(random() % (bytes.size() + 1));
    FileOpenResponse response;
    if (!Reads(response, bytes)) ++refused;
  }
  EXPECT_GT(refused, 19000);
}

}  // namespace
