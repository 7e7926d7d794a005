// Every way by which a request is not the page's, one by one.
#include "cli/wizard/RequestGuard.h"

#include <gtest/gtest.h>

namespace cli {
namespace {

class RequestGuardTest : public testing::Test {
 protected:
  RequestGuardTest() {
    const std::string cookie = guard_.SessionCookie();
    cookie_ = cookie.substr(0, cookie.find(';'));
    own_ = {.method = "POST",
            .host = "127.0.0.1:4711",
            .origin = "http://127.0.0.1:4711",
            .fetchSite = "same-origin",
            .cookie = cookie_,
            .contentType = "application/json"};
  }
  const RequestGuard guard_{4711};
  std::string cookie_;
  RequestOrigin own_;
};

TEST_F(RequestGuardTest, ThePageItselfIsAdmitted) {
  EXPECT_EQ(guard_.AdmitHost(own_), Admission::kAdmitted);
  EXPECT_EQ(guard_.AdmitSession(own_), Admission::kAdmitted);
}

TEST_F(RequestGuardTest, ItsThreeNamesAreAdmittedAndNoOther) {
  for (const char* host : {"127.0.0.1:4711", "localhost:4711", "[::1]:4711"}) {
    const std::string origin = std::string("http://") + host;
    own_.host = host;
    own_.origin = origin;
    EXPECT_EQ(guard_.AdmitHost(own_), Admission::kAdmitted) << host;
  }
  own_.origin = "";
  for (const char* host :
       {"", "127.0.0.1", "127.0.0.1:4712", "evil.example:4711", "evil.example",
        "localhost.evil.example:4711", "127.0.0.1:4711.evil.example", "127.0.0.1:4711@evil.example",
        "[::1]", "0.0.0.0:4711", "LOCALHOST:4711x", "127.1:4711"}) {
    own_.host = host;
    EXPECT_EQ(guard_.AdmitHost(own_), Admission::kForbidden) << host;
  }
}

TEST_F(RequestGuardTest, OtherPagesAreForbidden) {
  for (const char* origin :
       {"http://evil.example", "https://127.0.0.1:4711", "null", "http://127.0.0.1:4712",
        "http://localhost:4711", "http://127.0.0.1:4711.evil.example", "file://"}) {
    own_.origin = origin;
    EXPECT_EQ(guard_.AdmitHost(own_), Admission::kForbidden) << origin;
  }
}

TEST_F(RequestGuardTest, APostWithoutAnOriginIsForbidden) {
  own_.origin = "";
  EXPECT_EQ(guard_.AdmitSession(own_), Admission::kForbidden);
  own_.method = "GET";
  EXPECT_EQ(guard_.AdmitSession(own_), Admission::kAdmitted);
}

TEST_F(RequestGuardTest, WithoutTheSessionsCookieNothingIsAnswered) {
  std::string wrong = cookie_;
  wrong.back() = wrong.back() == '0' ? '1' : '0';
  for (const std::string& cookie :
       {std::string(), std::string("textwizard_session="), wrong, cookie_ + "0",
        "other=" + cookie_.substr(cookie_.find('=') + 1)}) {
    own_.cookie = cookie;
    EXPECT_EQ(guard_.AdmitSession(own_), Admission::kUnauthorized) << cookie;
  }
  const std::string among = "a=b; " + cookie_ + "; c=d";
  own_.cookie = among;
  EXPECT_EQ(guard_.AdmitSession(own_), Admission::kAdmitted);
}

TEST_F(RequestGuardTest, RequestsThatABrowserMarksAsAnotherSitesAreForbidden) {
  own_.fetchSite = "cross-site";
  EXPECT_EQ(guard_.AdmitSession(own_), Admission::kForbidden);
  own_.fetchSite = "same-site";
  EXPECT_EQ(guard_.AdmitSession(own_), Admission::kForbidden);
}

TEST_F(RequestGuardTest, OnlyJsonDoesSomething) {
  for (const char* type : {"", "text/plain", "application/x-www-form-urlencoded",
                           "multipart/form-data", "application/jsonp"}) {
    own_.contentType = type;
    EXPECT_EQ(guard_.AdmitSession(own_), Admission::kNotJson) << type;
  }
  own_.contentType = "application/json; charset=utf-8";
  EXPECT_EQ(guard_.AdmitSession(own_), Admission::kAdmitted);
}

TEST_F(RequestGuardTest, OtherMethodsAreRefused) {
  for (const char* method : {"PUT", "DELETE", "OPTIONS", "PATCH", "HEAD", "TRACE"}) {
    own_.method = method;
    EXPECT_EQ(guard_.AdmitHost(own_), Admission::kMethodRefused) << method;
  }
}

TEST_F(RequestGuardTest, TheTokenIsLongRandomAndTheOnlyOne) {
  const RequestGuard other(4711);
  EXPECT_EQ(guard_.token().size(), 64U);
  EXPECT_NE(guard_.token(), other.token());
  EXPECT_TRUE(guard_.IsToken(guard_.token()));
  EXPECT_FALSE(guard_.IsToken(other.token()));
  EXPECT_FALSE(guard_.IsToken(""));
  EXPECT_EQ(guard_.SessionCookie().find(guard_.token()), std::string::npos);
}

TEST_F(RequestGuardTest, TheCookieIsOutOfReachOfScriptsAndOtherSites) {
  EXPECT_NE(guard_.SessionCookie().find("HttpOnly"), std::string::npos);
  EXPECT_NE(guard_.SessionCookie().find("SameSite=Strict"), std::string::npos);
}

}  // namespace
}  // namespace cli
