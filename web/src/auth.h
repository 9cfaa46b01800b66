// Who a request comes from: its session cookie, checked against the users
// as they are now (a user removed or given another role since the login is
// seen at once).
#pragma once

#include <httplib.h>

#include <optional>
#include <string>

#include "sessions.h"
#include "velqua/store/store.h"

namespace velqua_web {

struct ServerState;

// The cookie that names a session.
constexpr const char* kSessionCookie = "velqua_session";

// The value of the cookie `name` in a Cookie header ("a=1; velqua_session=x"),
// "" when it has none.
std::string CookieValue(const std::string& header, const std::string& name);

// The request's session, if it has a live one: a user's session whose user
// still exists (with the user's current role), or the open session of a
// loopback server whose store still has no users.
std::optional<Session> CurrentSession(ServerState& state, velqua_store::Store& store,
                                      const httplib::Request& request);

// The Set-Cookie value that gives the browser the session (or, for "",
// takes it away).
std::string SessionCookie(const ServerState& state, const std::string& token);

}  // namespace velqua_web
