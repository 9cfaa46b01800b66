#include "api.h"

#include <ctime>

#include "auth.h"
#include "server_state.h"
#include "store_pool.h"

namespace velqua_web {

std::string QueryParam(const httplib::Request& http, const std::string& name,
                       const std::string& fallback) {
  return http.has_param(name.c_str()) ? http.get_param_value(name.c_str()) : fallback;
}

int64_t QueryInt(const httplib::Request& http, const std::string& name, int64_t fallback,
                 int64_t low, int64_t high) {
  if (!http.has_param(name.c_str())) return fallback;
  const std::string text = http.get_param_value(name.c_str());
  size_t used = 0;
  int64_t value = 0;
  try {
    value = std::stoll(text, &used);
  } catch (const std::exception&) {
    used = 0;
  }
  if (text.empty() || used != text.size() || value < low || value > high) {
    throw ApiError(400, "parameter '" + name + "': an integer from " + std::to_string(low) +
                            " to " + std::to_string(high) + " is expected, not '" + text + "'");
  }
  return value;
}

std::string ApiRequest::Param(const std::string& name, const std::string& fallback) const {
  return QueryParam(http, name, fallback);
}

int64_t ApiRequest::IntParam(const std::string& name, int64_t fallback, int64_t low,
                             int64_t high) const {
  return QueryInt(http, name, fallback, low, high);
}

// JSON answers name their charset: the HTTP library compresses a plain
// "application/json" answer with Brotli at its slowest setting whenever the
// browser accepts it, seconds for a large answer on a loopback connection
// that gains nothing from it. Text that is not UTF-8 is sent replaced, never
// refused halfway through an answer.
namespace {

constexpr const char* kJsonType = "application/json; charset=utf-8";

std::string JsonText(const nlohmann::json& value) {
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

void ApiRequest::Reply(const nlohmann::json& value, int status) {
  response.status = status;
  response.set_content(JsonText(value), kJsonType);
}

void ReplyError(httplib::Response& response, int status, const std::string& message) {
  response.status = status;
  response.set_content(JsonText(nlohmann::json{{"error", message}}), kJsonType);
}

namespace {

bool IsJson(const httplib::Request& request) {
  const std::string type = request.get_header_value("Content-Type");
  return type.rfind("application/json", 0) == 0;
}

// Checks what every route checks, in the order a client can fix it: who it
// is (401), then whether its request is its own (CSRF, 403), then whether
// its role may (403), then what it sent (400).
void Admit(const httplib::Request& http, const Session* session, bool changes_state,
           Access access) {
  if (access == Access::kPublic) return;
  if (session == nullptr) throw ApiError(401, "log in first");
  if (changes_state && !SameSecret(http.get_header_value("X-CSRF-Token"), session->csrf)) {
    throw ApiError(403, "missing or wrong X-CSRF-Token header");
  }
  if (access == Access::kAdmin && session->role != "admin") {
    throw ApiError(403, "only an admin may do this");
  }
}

nlohmann::json ParseBody(const httplib::Request& http) {
  if (http.body.empty() || !IsJson(http)) return nullptr;
  try {
    return nlohmann::json::parse(http.body);
  } catch (const nlohmann::json::exception& e) {
    throw ApiError(400, std::string("malformed JSON: ") + e.what());
  }
}

}  // namespace

httplib::Server::Handler Api::Wrap(bool changes_state, Access access, ApiHandler handler) {
  // The Api is gone once the routes are registered: the handler holds the
  // state itself.
  ServerState& state = state_;
  return [&state, changes_state, access, handler](const httplib::Request& http,
                                                  httplib::Response& response) {
    response.set_header("Cache-Control", "no-store");
    try {
      StorePool::Lease store = state.pool.Borrow();
      const std::optional<Session> session = CurrentSession(state, *store, http);
      Admit(http, session ? &*session : nullptr, changes_state, access);
      ApiRequest request{http, response, session ? &*session : nullptr, *store, ParseBody(http)};
      handler(request);
    } catch (const ApiError& e) {
      ReplyError(response, e.status(), e.what());
    } catch (const velqua_store::StoreError& e) {
      ReplyError(response, 503, e.what());
    } catch (const velqua_records::Failure& e) {
      ReplyError(response, 400, e.what());
    } catch (const nlohmann::json::exception& e) {
      ReplyError(response, 400, std::string("unexpected JSON: ") + e.what());
    }
  };
}

void Api::Get(const std::string& pattern, Access access, ApiHandler handler) {
  server_.Get(pattern, Wrap(false, access, std::move(handler)));
}

void Api::Post(const std::string& pattern, Access access, ApiHandler handler) {
  server_.Post(pattern, Wrap(true, access, std::move(handler)));
}

void Api::Put(const std::string& pattern, Access access, ApiHandler handler) {
  server_.Put(pattern, Wrap(true, access, std::move(handler)));
}

void Api::Delete(const std::string& pattern, Access access, ApiHandler handler) {
  server_.Delete(pattern, Wrap(true, access, std::move(handler)));
}

std::string Today() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[16];
  std::strftime(text, sizeof text, "%Y-%m-%d", &local);
  return text;
}

}  // namespace velqua_web
