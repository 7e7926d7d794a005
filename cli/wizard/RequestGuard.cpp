#include "cli/wizard/RequestGuard.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>

#include <fmt/format.h>
#include <sys/random.h>

namespace cli {
namespace {

constexpr std::size_t kSecretBytes = 32;
constexpr std::string_view kCookieName = "textwizard_session";

std::string RandomHex() {
  std::array<unsigned char, kSecretBytes> bytes{};
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw std::runtime_error("the system gives no random numbers for the address of the page");
  }
  std::string text;
  for (const unsigned char byte : bytes) text += fmt::format("{:02x}", byte);
  return text;
}

bool SameSecret(std::string_view one, std::string_view other) {
  if (one.size() != other.size()) return false;
  unsigned difference = 0;
  for (std::size_t i = 0; i < one.size(); ++i) {
    difference |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
  }
  return difference == 0;
}

// The value of a cookie among those of a Cookie header.
std::string_view CookieValue(std::string_view header, std::string_view name) {
  while (!header.empty()) {
    const std::size_t end = std::min(header.find(';'), header.size());
    std::string_view pair = header.substr(0, end);
    header.remove_prefix(std::min(end + 1, header.size()));
    while (pair.starts_with(' ')) pair.remove_prefix(1);
    if (pair.starts_with(name) && pair.substr(name.size()).starts_with('=')) {
      return pair.substr(name.size() + 1);
    }
  }
  return {};
}

}  // namespace

RequestGuard::RequestGuard(int port) : port_(port), token_(RandomHex()), session_(RandomHex()) {}

std::string RequestGuard::SessionCookie() const {
  return fmt::format("{}={}; HttpOnly; SameSite=Strict; Path=/", kCookieName, session_);
}

bool RequestGuard::IsToken(std::string_view token) const { return SameSecret(token, token_); }

bool RequestGuard::IsOwnHost(std::string_view host) const {
  for (const std::string_view name : {"127.0.0.1", "localhost", "[::1]"}) {
    if (host == fmt::format("{}:{}", name, port_)) return true;
  }
  return false;
}

Admission RequestGuard::AdmitHost(const RequestOrigin& request) const {
  // A name that was bent to this machine's address does not become this server's.
  if (!IsOwnHost(request.host)) return Admission::kForbidden;
  if (request.method != "GET" && request.method != "POST") return Admission::kMethodRefused;
  if (!request.origin.empty()) {
    constexpr std::string_view kScheme = "http://";
    if (!request.origin.starts_with(kScheme) ||
        request.origin.substr(kScheme.size()) != request.host) {
      return Admission::kForbidden;
    }
  }
  return Admission::kAdmitted;
}

Admission RequestGuard::AdmitSession(const RequestOrigin& request) const {
  if (!SameSecret(CookieValue(request.cookie, kCookieName), session_)) {
    return Admission::kUnauthorized;
  }
  if (request.fetchSite == "cross-site" || request.fetchSite == "same-site") {
    return Admission::kForbidden;
  }
  if (request.method == "POST") {
    // Browsers name the page that posts; and no form can send this type.
    if (request.origin.empty()) return Admission::kForbidden;
    const std::string_view type = request.contentType.substr(0, request.contentType.find(';'));
    if (type != "application/json") return Admission::kNotJson;
  }
  return Admission::kAdmitted;
}

}  // namespace cli
