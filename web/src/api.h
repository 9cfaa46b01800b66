// The JSON API's one road: every route is registered through Api, which
// checks the session, the CSRF token and the role, parses a JSON body, lends
// a store connection and turns what a handler throws into a status, so that
// a route's handler holds only what it does.
#pragma once

#include <httplib.h>

#include <functional>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "sessions.h"
#include "velqua/store/store.h"

namespace velqua_web {

class StorePool;

// Who may call a route.
enum class Access {
  kPublic,  // anyone (the login)
  kViewer,  // a session of a viewer or an admin
  kAdmin,   // an admin's session
};

// A failure a handler reports with its status (400, 403, 404, 409 ...):
// the client gets {"error": message}.
class ApiError : public std::runtime_error {
 public:
  ApiError(int status, const std::string& message) : std::runtime_error(message), status_(status) {}
  int status() const { return status_; }

 private:
  int status_;
};

// A request's query parameter, or `fallback` when absent.
std::string QueryParam(const httplib::Request& http, const std::string& name,
                       const std::string& fallback = "");
// An integer query parameter in [low, high]; absent: `fallback`. Throws
// ApiError 400 naming the parameter.
int64_t QueryInt(const httplib::Request& http, const std::string& name, int64_t fallback,
                 int64_t low, int64_t high);

// The server's local date today, YYYY-MM-DD: the default day and period of
// the pages that ask for none.
std::string Today();

// One request as a handler sees it.
struct ApiRequest {
  const httplib::Request& http;
  httplib::Response& response;
  const Session* session;  // null on a public route without a session
  velqua_store::Store& store;
  nlohmann::json body;  // a JSON body (Content-Type application/json), else null

  // A query parameter, or `fallback` when absent.
  std::string Param(const std::string& name, const std::string& fallback = "") const;
  // An integer query parameter in [low, high]; absent: `fallback`.
  // Throws ApiError 400 naming the parameter.
  int64_t IntParam(const std::string& name, int64_t fallback, int64_t low, int64_t high) const;
  // Sends a JSON value with the status.
  void Reply(const nlohmann::json& value, int status = 200);
};

using ApiHandler = std::function<void(ApiRequest&)>;

struct ServerState;

class Api {
 public:
  Api(httplib::Server& server, ServerState& state) : server_(server), state_(state) {}

  // Registers a handler for a path pattern under /api/ (httplib's regular
  // expressions: "/api/calls/(\\d+)" gives matches[1]).
  void Get(const std::string& pattern, Access access, ApiHandler handler);
  void Post(const std::string& pattern, Access access, ApiHandler handler);
  void Put(const std::string& pattern, Access access, ApiHandler handler);
  void Delete(const std::string& pattern, Access access, ApiHandler handler);

  ServerState& state() { return state_; }

 private:
  httplib::Server::Handler Wrap(bool changes_state, Access access, ApiHandler handler);

  httplib::Server& server_;
  ServerState& state_;
};

// Sends {"error": message} with the status.
void ReplyError(httplib::Response& response, int status, const std::string& message);

}  // namespace velqua_web
