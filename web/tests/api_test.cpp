// The API's road: who may call what, and the status of every kind of bad
// request, on both engines.
#include <gtest/gtest.h>

#include "velqua/store/users.h"
#include "velqua/web/users.h"
#include "web_test_support.h"

namespace velqua_web_testing {
namespace {

class ApiTest : public WebTest {};

// Each row: who asks (no session, a viewer, an admin), the request, and the
// status the server must give.
TEST_P(ApiTest, EveryRequestGetsItsStatus) {
  Start();
  struct Row {
    const char* who;  // "", "vic" or "ann"
    const char* method;
    const char* path;
    std::string body;
    const char* type;
    bool csrf;
    int status;
  };
  const std::string big(5000, 'x');
  const Row rows[] = {
      // clang-format off
      {"", "GET", "/api/calls", "", "", true, 401},
      {"", "GET", "/api/session", "", "", true, 401},
      {"", "POST", "/api/login", "{\"name\": ", "application/json", true, 400},
      {"", "POST", "/api/login", "name=ann&password=secret-password", "application/x-www-form-urlencoded", true, 400},
      {"", "POST", "/api/login", R"({"name":"ann","password":"wrong-password"})", "application/json", true, 401},
      {"", "POST", "/api/login", R"({"name":"nobody","password":"secret-password"})", "application/json", true, 401},
      {"", "POST", "/api/login", "{\"name\":\"" + big + "\"}", "application/json", true, 413},
      {"vic", "GET", "/api/calls", "", "", true, 200},
      {"vic", "GET", "/api/calls?limit=0", "", "", true, 400},
      {"vic", "GET", "/api/calls?type=sideways", "", "", true, 400},
      {"vic", "GET", "/api/calls?from=2026-13-45", "", "", true, 400},
      {"vic", "GET", "/api/users", "", "", true, 403},
      {"vic", "POST", "/api/logout", "{}", "application/json", false, 403},
      {"ann", "GET", "/api/users", "", "", true, 200},
      {"ann", "GET", "/api/nothing-here", "", "", true, 404},
      {"ann", "GET", "/../../etc/passwd", "", "", true, 404},
      {"ann", "GET", "/%2e%2e/%2e%2e/etc/passwd", "", "", true, 404},
      {"ann", "GET", "/index.html/../../CMakeLists.txt", "", "", true, 404},
      {"ann", "GET", "/", "", "", true, 200},
      {"ann", "GET", "/app.js", "", "", true, 200},
      {"ann", "POST", "/api/logout", "{}", "application/json", true, 200},
      // clang-format on
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.who) + " " + row.method + " " + row.path);
    ApiClient client(server_->port());
    if (*row.who != '\0') {
      ASSERT_EQ(client.Login(row.who, "secret-password"), 200);
    }
    const httplib::Result r = client.Send(row.method, row.path, row.body, row.type, row.csrf);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->status, row.status) << r->body;
    if (std::string(row.path).rfind("/api/", 0) == 0 && r->status >= 400) {
      EXPECT_TRUE(nlohmann::json::parse(r->body, nullptr, false).contains("error")) << r->body;
    }
  }
  // After all that, the server still serves.
  EXPECT_EQ(client_->Login("vic", "secret-password"), 200);
}

TEST_P(ApiTest, SessionCookieIsHttpOnlyAndStrict) {
  Start();
  const httplib::Result r =
      client_->Send("POST", "/api/login", R"({"name":"ann","password":"secret-password"})");
  ASSERT_TRUE(r);
  const std::string cookie = r->get_header_value("Set-Cookie");
  EXPECT_NE(cookie.find("HttpOnly"), std::string::npos) << cookie;
  EXPECT_NE(cookie.find("SameSite=Strict"), std::string::npos) << cookie;
  EXPECT_EQ(r->get_header_value("Content-Security-Policy").rfind("default-src 'self'", 0), 0u);
}

TEST_P(ApiTest, RemovedUserLosesSessionAndChangedRoleAppliesAtOnce) {
  Start();
  ASSERT_EQ(client_->Login("vic", "secret-password"), 200);
  ASSERT_EQ(client_->Send("GET", "/api/users")->status, 403);
  velqua_web::AddUser(*store_, "vic", "admin", "secret-password");
  EXPECT_EQ(client_->Send("GET", "/api/users")->status, 200);
  velqua_store::RemoveUser(*store_, "vic");
  EXPECT_EQ(client_->Send("GET", "/api/calls")->status, 401);
}

TEST_P(ApiTest, LoginsAreThrottledPerAddress) {
  Start();
  for (int i = 0; i < 5; ++i) ASSERT_EQ(client_->Login("ann", "wrong-password"), 401);
  EXPECT_EQ(client_->Login("ann", "secret-password"), 429);
}

TEST_P(ApiTest, StoreWithoutUsersIsOpenOnLoopbackUntilOneIsAdded) {
  Start(false);
  ASSERT_EQ(client_->Login("", ""), 200);
  const nlohmann::json me = client_->Json("/api/session");
  EXPECT_EQ(me["role"], "admin");
  EXPECT_EQ(me["open"], true);
  velqua_web::AddUser(*store_, "ann", "admin", "secret-password");
  EXPECT_EQ(client_->Send("GET", "/api/calls")->status, 401);
  EXPECT_EQ(client_->Send("GET", "/api/session")->status, 401);
}

TEST_P(ApiTest, OtherAddressThanLoopbackNeedsUsers) {
  velqua_web::ServeOptions options;
  options.db = url_;
  options.listen = "0.0.0.0:0";
  try {
    velqua_web::Server server(options);
    FAIL() << "a store without users was served on 0.0.0.0";
  } catch (const velqua_web::ServeError& e) {
    EXPECT_NE(std::string(e.what()).find("velqua user add"), std::string::npos) << e.what();
  }
  velqua_web::AddUser(*store_, "ann", "admin", "secret-password");
  EXPECT_NO_THROW(velqua_web::Server server(options));
}

INSTANTIATE_TEST_SUITE_P(Engines, ApiTest, BothEngines(), EngineName);

}  // namespace
}  // namespace velqua_web_testing
