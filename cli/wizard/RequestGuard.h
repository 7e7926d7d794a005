// Which requests the wizard's server answers: those of the page that this program opened, and no
// others on this machine or elsewhere.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace cli {

// What a request says of itself. Empty where it says nothing.
struct RequestOrigin {
  std::string_view method;
  std::string_view host;         // the Host header
  std::string_view origin;       // the Origin header
  std::string_view fetchSite;    // the Sec-Fetch-Site header
  std::string_view cookie;       // the Cookie header
  std::string_view contentType;  // the Content-Type header
};

enum class Admission : std::uint8_t {
  kAdmitted,
  kUnauthorized,   // 401: it has not the session's cookie
  kForbidden,      // 403: it comes for another host or from another page
  kNotJson,        // 415: a request that does something and is not JSON
  kMethodRefused,  // 405: neither GET nor POST
};

// One server's token and the session that it is exchanged for. Any thread.
class RequestGuard {
 public:
  // Draws the token and the session from the system's random numbers. Throws std::runtime_error
  // when there are none.
  explicit RequestGuard(int port);

  // Part of the address that the program prints.
  const std::string& token() const { return token_; }
  // The Set-Cookie header's value for who has shown the token.
  std::string SessionCookie() const;
  // Whether `token` is the one; compares in a time that does not tell how much of it is right.
  bool IsToken(std::string_view token) const;

  // Whether the server speaks with who sent this at all; the first thing asked of every request.
  Admission AdmitHost(const RequestOrigin& request) const;
  // Whether it belongs to the session. After AdmitHost.
  Admission AdmitSession(const RequestOrigin& request) const;

 private:
  bool IsOwnHost(std::string_view host) const;

  const int port_;
  const std::string token_;
  const std::string session_;
};

}  // namespace cli
