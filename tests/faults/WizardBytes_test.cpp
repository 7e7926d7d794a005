// Requests to the wizard's handler as bytes from outside the process: cut, lengthened, of another
// class or version, damaged at random. Each is answered by result 1, or by a whole response.

#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HostFramework/FileMessages.h"
#include "HostFramework/embedded/packages/PackageRegistry.h"
#include "HostFramework/embedded/text/HostText.h"
#include "library/testing/TestFolder.h"
#include "tests/support/Effort.h"

namespace whole {
namespace {

constexpr unsigned short kMethods[] = {1002, 1003, 1004, 1005};
constexpr unsigned short kOpen = 1002;
constexpr unsigned short kRecord = 1004;

std::string BytesOf(const VSerializable& message) {
  VStream stream;
  message.Write(stream);
  return stream.bytes();
}

// Where the parts of a serialized message with `signature` begin.
std::size_t VersionAt(const std::string& signature) { return 4 + signature.size(); }

void PutUInt32(std::string& bytes, std::size_t at, std::uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8) {
    bytes[at++] = static_cast<char>(value >> shift & 0xFFU);
  }
}

class WizardBytes : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(embedded::SetCodePage(nullptr));
    wizard_ = embedded::PackageConnection::Open("TextWizardDACPkg.1");
    ASSERT_NE(wizard_, nullptr);
    path_ = folder_.Write("data.txt", "one\ntwo\n");
  }

  std::string Request() const { return BytesOf(FileOpenRequest(path_, "UTF-8", false)); }
  static std::string ResponseTo(unsigned short method) {
    return method == kRecord ? TextWizardDacStringResponse().GetSignature()
                             : FileOpenResponse().GetSignature();
  }

  // The result of the call; a result of 0 must come with one whole response, any other with none.
  int Serve(unsigned short method, const std::string& request, const std::string& response) {
    std::string answer = "before";
    const int result = wizard_->Serve(method, request, response, &answer);
    if (result != 0) {
      EXPECT_EQ(result, 1);
      EXPECT_EQ(answer, "before");
      return result;
    }
    EXPECT_EQ(answer.rfind("before", 0), 0u);
    const std::string sent = answer.substr(6);
    VStream stream(sent);
    FileOpenResponse file;
    TextWizardDacStringResponse text;
    VSerializable& message = response == file.GetSignature() ? static_cast<VSerializable&>(file)
                                                             : static_cast<VSerializable&>(text);
    EXPECT_TRUE(message.Read(stream) && stream.AtEnd());
    return result;
  }

  // The handler still does its work.
  void ExpectAlive() {
    FileOpenResponse answer;
    TextWizardDacStringResponse record;
    const FileOpenRequest request(path_, "UTF-8", false);
    wizard_->Call(1005, request, answer);
    ASSERT_EQ(wizard_->Call(1002, request, answer), 0);
    ASSERT_FALSE(answer.HasError());
    ASSERT_EQ(wizard_->Call(1004, request, record), 0);
    EXPECT_EQ(record.GetText(), "one");
    ASSERT_EQ(wizard_->Call(1005, request, answer), 0);
    EXPECT_FALSE(answer.HasError());
  }

  library::TestFolder folder_;
  std::string path_;
  std::unique_ptr<embedded::PackageConnection> wizard_;
};

TEST_F(WizardBytes, AWholeRequestIsServed) {
  for (const unsigned short method : kMethods) {
    EXPECT_EQ(Serve(method, Request(), ResponseTo(method)), 0) << method;
  }
  ExpectAlive();
}

TEST_F(WizardBytes, EveryTruncationIsRefused) {
  const std::string request = Request();
  for (const unsigned short method : kMethods) {
    for (std::size_t length = 0; length < request.size(); ++length) {
      EXPECT_EQ(Serve(method, request.substr(0, length), ResponseTo(method)), 1) << length;
    }
    EXPECT_EQ(Serve(method, request + '\0', ResponseTo(method)), 1);
  }
  ExpectAlive();
}

TEST_F(WizardBytes, LengthsBeyondTheBytesAreRefused) {
  const std::string request = Request();
  const std::string signature = FileOpenRequest().GetSignature();
  const std::size_t name = VersionAt(signature) + 4;
  const std::size_t encoding = name + 4 + path_.size();
  for (const std::size_t field : {std::size_t{0}, name, encoding}) {
    const auto left = static_cast<std::uint32_t>(request.size() - field - 4);
    for (const std::uint32_t length : {left + 1, left + 2, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
      std::string bytes = request;
      PutUInt32(bytes, field, length);
      for (const unsigned short method : kMethods) {
        EXPECT_EQ(Serve(method, bytes, ResponseTo(method)), 1) << field << ", " << length;
      }
    }
  }
  ExpectAlive();
}

TEST_F(WizardBytes, OtherSignaturesAndVersionsAreRefused) {
  const std::string request = Request();
  const std::string signature = FileOpenRequest().GetSignature();
  for (std::size_t i = 4; i < VersionAt(signature); ++i) {
    std::string bytes = request;
    bytes[i] = static_cast<char>(bytes[i] ^ 0x20);
    EXPECT_EQ(Serve(kOpen, bytes, ResponseTo(kOpen)), 1) << i;
  }
  for (const std::uint32_t version : {0U, 2U, 256U, 0x01000000U, 0xFFFFFFFFU}) {
    std::string bytes = request;
    PutUInt32(bytes, VersionAt(signature), version);
    EXPECT_EQ(Serve(kOpen, bytes, ResponseTo(kOpen)), 1) << version;
  }
  ExpectAlive();
}

TEST_F(WizardBytes, MessagesOfTheWrongClassAreRefused) {
  const std::vector<std::string> others = {
      BytesOf(FileOpenResponse()), BytesOf(FileOpenResponse(DACErrorResponse(1, "x"))),
      BytesOf(DACErrorResponse(2004, path_)), BytesOf(TextWizardDacStringRequest(path_)),
      BytesOf(TextWizardDacStringResponse(DACErrorResponse(), path_, 1))};
  for (const unsigned short method : kMethods) {
    for (const std::string& other : others) {
      EXPECT_EQ(Serve(method, other, ResponseTo(method)), 1) << method;
    }
    // A response of the other kind, of no kind that answers a call, and of no class at all.
    const unsigned short otherMethod = method == kRecord ? kOpen : kRecord;
    EXPECT_EQ(Serve(method, Request(), ResponseTo(otherMethod)), 1);
    EXPECT_EQ(Serve(method, Request(), DACErrorResponse().GetSignature()), 1);
    EXPECT_EQ(Serve(method, Request(), FileOpenRequest().GetSignature()), 1);
    EXPECT_EQ(Serve(method, Request(), "VSerializable::Nothing"), 1);
    EXPECT_EQ(Serve(method, Request(), ""), 1);
  }
  ExpectAlive();
}

TEST_F(WizardBytes, NumbersThatNobodyAnswersAreRefused) {
  for (unsigned method = 0; method <= 0xFFFF; method += method < 1100 ? 1 : 977) {
    if (method >= 1002 && method <= 1005) continue;
    EXPECT_EQ(Serve(static_cast<unsigned short>(method), Request(), ResponseTo(kOpen)), 1)
        << method;
  }
  ExpectAlive();
}

TEST_F(WizardBytes, NamesOfAllKindsAreAnsweredByAnError) {
  const std::vector<std::string> names = {
      "",          std::string("\0", 1), path_ + std::string("\0.txt", 5), folder_.path().string(),
      path_ + "/", "/no/such/file",      std::string(100000, 'x'),         "\xFF\xFE\xC0",
      "%s%n%d"};
  for (const std::string& name : names) {
    FileOpenResponse answer;
    ASSERT_EQ(wizard_->Call(kOpen, FileOpenRequest(name, "UTF-8", false), answer), 0);
    if (name.rfind(path_, 0) == 0 && name[path_.size()] == '\0') continue;
    ASSERT_TRUE(answer.HasError()) << testing::PrintToString(name);
    EXPECT_EQ(answer.GetError().GetCode(), 2004u);
    EXPECT_EQ(answer.GetError().GetText(), name);
  }
  ExpectAlive();
}

TEST_F(WizardBytes, RandomDamageIsBorne) {
  std::mt19937_64 random(20);
  const std::string request = Request();
  std::size_t served = 0;
  std::size_t refused = 0;
  const std::size_t rounds = Rounds(40000);
  for (std::size_t i = 0; i < rounds; ++i) {
    std::string bytes = request;
    for (std::size_t changes = random() % 4; changes > 0; --changes) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    if (random() % 4 == 0) bytes.erase(random() % bytes.size(), 1 + random() % 8);
    if (random() % 4 == 0) bytes.insert(random() % bytes.size(), 1 + random() % 8, '\xFF');
    if (random() % 64 == 0) {
      for (char& byte : bytes) byte = static_cast<char>(random());
    }
    const unsigned short method = kMethods[random() % 4];
    (Serve(method, bytes, ResponseTo(method)) == 0 ? served : refused) += 1;
  }
  // Undamaged ones are served, and most damage is noticed.
  EXPECT_GT(served, rounds / 20);
  EXPECT_GT(refused, rounds / 2);
  ExpectAlive();
}

}  // namespace
}  // namespace whole
