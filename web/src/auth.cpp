#include "auth.h"

#include "server_state.h"
#include "velqua/store/users.h"

namespace velqua_web {

std::string CookieValue(const std::string& header, const std::string& name) {
  size_t at = 0;
  while (at < header.size()) {
    size_t end = header.find(';', at);
    if (end == std::string::npos) end = header.size();
    size_t start = header.find_first_not_of(' ', at);
    if (start != std::string::npos && start < end &&
        header.compare(start, name.size() + 1, name + "=") == 0) {
      return header.substr(start + name.size() + 1, end - start - name.size() - 1);
    }
    at = end + 1;
  }
  return "";
}

std::optional<Session> CurrentSession(ServerState& state, velqua_store::Store& store,
                                      const httplib::Request& request) {
  const std::string token = CookieValue(request.get_header_value("Cookie"), kSessionCookie);
  if (token.empty()) return std::nullopt;
  std::optional<Session> session = state.sessions.Find(token);
  if (!session) return std::nullopt;
  if (session->user.empty()) {
    if (state.loopback && velqua_store::CountUsers(store) == 0) return session;
  } else if (const auto user = velqua_store::FindUser(store, session->user)) {
    session->role = user->role;
    return session;
  }
  state.sessions.Close(token);
  return std::nullopt;
}

std::string SessionCookie(const ServerState& state, const std::string& token) {
  std::string cookie =
      std::string(kSessionCookie) + "=" + token + "; Path=/; HttpOnly; SameSite=Strict";
  if (token.empty()) cookie += "; Max-Age=0";
  if (state.tls) cookie += "; Secure";
  return cookie;
}

}  // namespace velqua_web
