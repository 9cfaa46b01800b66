// Logging in and out, and who the page is talking to.
#include "api.h"
#include "auth.h"
#include "routes.h"
#include "server_state.h"
#include "velqua/store/users.h"
#include "velqua/web/users.h"

namespace velqua_web {
namespace {

nlohmann::json Describe(const Session& s) {
  return {{"user", s.user}, {"role", s.role}, {"csrf", s.csrf}, {"open", s.user.empty()}};
}

// A hash checked when the user does not exist, so that a wrong name takes
// as long to refuse as a wrong password.
const std::string& DecoyHash() {
  static const std::string hash = HashPassword(RandomToken());
  return hash;
}

void Login(ServerState& state, ApiRequest& r) {
  const std::string address = r.http.remote_addr;
  if (const int64_t wait = state.throttle.WaitSeconds(address)) {
    r.response.set_header("Retry-After", std::to_string(wait));
    throw ApiError(429, "too many failed logins: try again in " + std::to_string(wait) + " s");
  }
  if (!r.body.is_object() || !r.body.value("name", nlohmann::json()).is_string() ||
      !r.body.value("password", nlohmann::json()).is_string()) {
    throw ApiError(400, "send {\"name\": ..., \"password\": ...} as application/json");
  }
  const std::string name = r.body["name"];
  const std::string password = r.body["password"];
  const auto user = velqua_store::FindUser(r.store, name);
  const bool good = CheckPassword(user ? user->password_hash : DecoyHash(), password) && user;
  if (!good) {
    state.throttle.Failed(address);
    throw ApiError(401, "wrong user name or password");
  }
  state.throttle.Succeeded(address);
  const Session session = state.sessions.Open(user->name, user->role);
  r.response.set_header("Set-Cookie", SessionCookie(state, session.token));
  r.Reply(Describe(session));
}

}  // namespace

void RegisterSessionRoutes(Api& api) {
  ServerState& state = api.state();
  // The page asks first: a session it has, or the open one of a loopback
  // server without users; otherwise 401 and the page shows the login.
  api.Get("/api/session", Access::kPublic, [&state](ApiRequest& r) {
    if (r.session != nullptr) return r.Reply(Describe(*r.session));
    if (!state.loopback || velqua_store::CountUsers(r.store) > 0) {
      throw ApiError(401, "log in first");
    }
    const Session session = state.sessions.Open("", "admin");
    r.response.set_header("Set-Cookie", SessionCookie(state, session.token));
    r.Reply(Describe(session));
  });
  api.Post("/api/login", Access::kPublic, [&state](ApiRequest& r) { Login(state, r); });
  // Who may log in (names, roles, since when; never the hashes).
  api.Get("/api/users", Access::kAdmin, [](ApiRequest& r) {
    nlohmann::json list = nlohmann::json::array();
    for (const velqua_store::User& u : velqua_store::ListUsers(r.store)) {
      list.push_back({{"name", u.name}, {"role", u.role}, {"created_utc", u.created_utc}});
    }
    r.Reply(list);
  });
  api.Post("/api/logout", Access::kViewer, [&state](ApiRequest& r) {
    state.sessions.Close(r.session->token);
    r.response.set_header("Set-Cookie", SessionCookie(state, ""));
    r.Reply({{"ok", true}});
  });
}

}  // namespace velqua_web
