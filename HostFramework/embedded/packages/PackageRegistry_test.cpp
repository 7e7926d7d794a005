#include "HostFramework/embedded/packages/PackageRegistry.h"

#include <string>

#include <gtest/gtest.h>

#include "HostFramework/FileMessages.h"

namespace {

constexpr GUID kEchoId = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};

// Answers call 2000 with the file name it was sent.
class EchoProxy : public PackageProxy {
 public:
  using PackageProxy::PackageProxy;
  int OnCallSynchronous(unsigned short method, const VSerializable& request,
                        VSerializable& response) override {
    QantServerCallContext::SetCaller(this);
    const auto* file = dynamic_cast<const FileOpenRequest*>(&request);
    auto* text = dynamic_cast<TextWizardDacStringResponse*>(&response);
    if (method != 2000 || !file || !text)
      return PackageProxy::OnCallSynchronous(method, request, response);
    *text = TextWizardDacStringResponse({}, file->GetFileName(), 5);
    return 0;
  }
  int OnCallAsynchronous(unsigned short method, const VSerializable&) override {
    return method == 2001 ? 0 : 1;
  }
};

PackageProxy* MakeEcho(ROTBase* rot) { return new EchoProxy(rot); }

bool Register(unsigned reason) {
  return PackageRegistration::ClassObjectRegistration(
      reason, kEchoId, MakeEcho, PackageInstance::FCreate, "Echo", "Echo.1", 1, 3);
}

class PackageRegistryTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(Register(PackageRegistration::kAttach)); }
  void TearDown() override { Register(PackageRegistration::kDetach); }
};

TEST_F(PackageRegistryTest, AClassIsFoundByBothNamesAndItsIdentifier) {
  embedded::PackageClass found;
  EXPECT_TRUE(embedded::FindPackageClass("Echo", &found));
  EXPECT_EQ(found.threading, 1);
  EXPECT_EQ(found.flags, 3);
  EXPECT_TRUE(embedded::FindPackageClass("Echo.1", &found));
  EXPECT_TRUE(embedded::FindPackageClass(kEchoId, &found));
  EXPECT_FALSE(embedded::FindPackageClass("Echo.2", &found));
}

TEST_F(PackageRegistryTest, RegisteringAgainReplacesAndDetachRemoves) {
  EXPECT_TRUE(Register(PackageRegistration::kAttach));
  EXPECT_TRUE(Register(PackageRegistration::kDetach));
  embedded::PackageClass found;
  EXPECT_FALSE(embedded::FindPackageClass("Echo", &found));
  EXPECT_FALSE(Register(PackageRegistration::kDetach));
  EXPECT_FALSE(Register(7));
}

TEST_F(PackageRegistryTest, ACallTravelsAsBytesBothWays) {
  const auto connection = embedded::PackageConnection::Open("Echo.1");
  ASSERT_TRUE(connection);
  TextWizardDacStringResponse response;
  EXPECT_EQ(connection->Call(2000, FileOpenRequest("name", "", false), response), 0);
  EXPECT_EQ(response.GetText(), "name");
  EXPECT_EQ(response.GetNumber(), 5U);
  EXPECT_NE(QantServerCallContext::GetCaller(), nullptr);
}

TEST_F(PackageRegistryTest, TheBaseProxyHandlesNothing) {
  const auto connection = embedded::PackageConnection::Open("Echo");
  ASSERT_TRUE(connection);
  TextWizardDacStringResponse response;
  EXPECT_EQ(connection->Call(5, FileOpenRequest(), response), 1);
}

TEST_F(PackageRegistryTest, AsynchronousCallsHaveNoAnswer) {
  const auto connection = embedded::PackageConnection::Open("Echo");
  ASSERT_TRUE(connection);
  EXPECT_EQ(connection->CallAsynchronous(2001, FileOpenRequest()), 0);
  EXPECT_EQ(connection->CallAsynchronous(2002, FileOpenRequest()), 1);
}

TEST_F(PackageRegistryTest, BytesThatAreNoWholeKnownMessageAreRefused) {
  const auto connection = embedded::PackageConnection::Open("Echo");
  ASSERT_TRUE(connection);
  VStream stream;
  FileOpenRequest("f", "e", true).Write(stream);
  const std::string good = stream.bytes();
  const std::string response = TextWizardDacStringResponse().GetSignature();
  std::string answer;
  EXPECT_EQ(connection->Serve(2000, good, response, &answer), 0);
  EXPECT_FALSE(answer.empty());
  answer.clear();
  EXPECT_EQ(connection->Serve(2000, good + "x", response, &answer), 1);
  EXPECT_EQ(connection->Serve(2000, "", response, &answer), 1);
  EXPECT_EQ(connection->Serve(2000, good, "VSerializable::Unknown", &answer), 1);
  for (std::size_t length = 0; length < good.size(); ++length) {
    EXPECT_EQ(connection->Serve(2000, good.substr(0, length), response, &answer), 1) << length;
  }
  EXPECT_TRUE(answer.empty());
}

// A class of messages that the host has never heard of.
class Weather : public VSerializable {
 public:
  const char* GetSignature() const override { return "VSerializable::Weather"; }
  std::uint32_t GetVersion() const override { return 3; }
  std::uint32_t degrees = 20;

 protected:
  void WriteFields(VStream& stream) const override { stream.WriteUInt32(degrees); }
  bool ReadFields(VStream& stream) override { return stream.ReadUInt32(&degrees); }
};

class Thermometer : public PackageProxy {
 public:
  using PackageProxy::PackageProxy;
  int OnCallSynchronous(unsigned short, const VSerializable& request,
                        VSerializable& response) override {
    const auto* asked = dynamic_cast<const Weather*>(&request);
    auto* told = dynamic_cast<Weather*>(&response);
    if (!asked || !told) return 1;
    told->degrees = asked->degrees + 1;
    return 0;
  }
};

TEST(MessageTypes, AreKnownWhileTheyAreRegistered) {
  constexpr GUID kId = {9, 9, 9, {}};
  const auto make = [](ROTBase* rot) -> PackageProxy* { return new Thermometer(rot); };
  ASSERT_TRUE(PackageRegistration::ClassObjectRegistration(PackageRegistration::kAttach, kId, make,
                                                           PackageInstance::FCreate, "Thermometer",
                                                           "Thermometer.1", 1, 3));
  {
    const auto connection = embedded::PackageConnection::Open("Thermometer");
    ASSERT_TRUE(connection);
    Weather response;
    EXPECT_EQ(connection->Call(1, Weather(), response), 1) << "nobody can make the message";
    {
      const MessageType type = MessageType::Of<Weather>();
      EXPECT_EQ(connection->Call(1, Weather(), response), 0);
      EXPECT_EQ(response.degrees, 21U);
      EXPECT_NE(MessageType::MakeMessage("VSerializable::Weather"), nullptr);
    }
    EXPECT_EQ(connection->Call(1, Weather(), response), 1);
    EXPECT_EQ(MessageType::MakeMessage("VSerializable::Weather"), nullptr);
  }
  PackageRegistration::ClassObjectRegistration(PackageRegistration::kDetach, kId, nullptr, nullptr,
                                               "", "", 0, 0);
}

TEST(MessageTypes, TheHostsOwnAreKnown) {
  for (const char* name : {"DACErrorResponse", "FileOpenRequest", "FileOpenResponse",
                           "TextWizardDacStringRequest", "TextWizardDacStringResponse"}) {
    const std::string signature = std::string("VSerializable::") + name;
    const auto message = MessageType::MakeMessage(signature);
    ASSERT_TRUE(message) << name;
    EXPECT_EQ(message->GetSignature(), signature);
  }
}

TEST(PackageRegistry, AnUnknownPackageDoesNotOpen) {
  EXPECT_EQ(embedded::PackageConnection::Open("NoSuchPackage"), nullptr);
}

}  // namespace
