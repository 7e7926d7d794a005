// The import wizard's requests as bytes: whatever arrives, the answer is a result, or a response
// that reads back; the same bytes are answered alike by two objects.

#include <string>

#include "HostFramework/FileMessages.h"
#include "HostFramework/embedded/packages/PackageRegistry.h"
#include "HostFramework/embedded/text/HostText.h"
#include "fuzz/FuzzTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  embedded::SetCodePage(nullptr);
  const auto method = static_cast<unsigned short>(data[0] < 250 ? 1001 + data[0] % 6 : data[0]);
  const std::string request(reinterpret_cast<const char*>(data) + 1, size - 1);
  FileOpenResponse file;
  TextWizardDacStringResponse text;
  VSerializable& response = method == 1004 ? static_cast<VSerializable&>(text) : file;
  std::string answers[2];
  int results[2] = {};
  for (int i = 0; i < 2; ++i) {
    const auto wizard = embedded::PackageConnection::Open("TextWizardDACPkg");
    fuzz::Require(wizard != nullptr, "the package is not registered");
    results[i] = wizard->Serve(method, request, response.GetSignature(), &answers[i]);
    if (results[i] == 0) {
      VStream stream(answers[i]);
      fuzz::Require(response.Read(stream) && stream.AtEnd(), "an answer that cannot be read");
    } else {
      fuzz::Require(answers[i].empty(), "an answer to what was refused");
    }
  }
  fuzz::Require(results[0] == results[1] && answers[0] == answers[1], "two answers");
  return 0;
}
