// What the web layer's tests share: a store of either engine with a few
// calls, a server on a free loopback port serving it from its own thread,
// and a client that keeps the session cookie and CSRF token as the page
// does.
#pragma once

#include <httplib.h>

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>

#include "store_test_support.h"
#include "velqua/rating/directory.h"
#include "velqua/web/server.h"

namespace velqua_web_testing {

using velqua_store_testing::BothEngines;
using velqua_store_testing::Engine;
using velqua_store_testing::EngineName;

// A directory's entry of an extension: who has it, in which department,
// from which day ("" = always).
inline velqua_rating::DirectoryEntry Person(const std::string& extension, const std::string& person,
                                            const std::string& department,
                                            const std::string& from = "") {
  velqua_rating::DirectoryEntry e;
  e.key = extension;
  e.person = person;
  e.department = department;
  e.from = from;
  return e;
}

// A running server; stopped and joined when it goes.
class RunningServer {
 public:
  explicit RunningServer(const velqua_web::ServeOptions& options);
  ~RunningServer();
  int port() const { return server_.port(); }

 private:
  velqua_web::Server server_;
  std::thread thread_;
};

// A client of the API: JSON in and out, the session's cookie and CSRF token
// kept from /api/session and /api/login.
class ApiClient {
 public:
  explicit ApiClient(int port) : http_("127.0.0.1", port) {}

  // Sends a request; `body` as given with `type` ("" = no body).
  httplib::Result Send(const std::string& method, const std::string& path,
                       const std::string& body = "", const std::string& type = "application/json",
                       bool with_csrf = true);
  // Logs in (or, with an empty name, takes the open session); the status.
  int Login(const std::string& name, const std::string& password);
  // GET of a JSON answer; fails the test unless the status is 200.
  nlohmann::json Json(const std::string& path);
  // The session's cookie and CSRF token as request headers.
  httplib::Headers Headers() const;

 private:
  httplib::Client http_;
  std::string cookie_, csrf_;
};

// The fixture: a new store of the engine, with users "ann" (admin) and
// "vic" (viewer), both with password "secret-password", and a server on it.
class WebTest : public velqua_store_testing::StoreTest {
 protected:
  // Starts the server (after the test has filled the store as it needs);
  // `adjust` changes the test's options first.
  void Start(bool with_users = true,
             const std::function<void(velqua_web::ServeOptions&)>& adjust = {});

  std::unique_ptr<RunningServer> server_;
  std::unique_ptr<ApiClient> client_;
};

}  // namespace velqua_web_testing
