// Sessions of the web page, kept in the server's memory: a restart logs
// everyone out. A session is named by a random token (the cookie) and
// carries its own CSRF token, which every state-changing request repeats in
// the X-CSRF-Token header: a page of another site can make the browser send
// the cookie, never read the token.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace velqua_web {

struct Session {
  std::string token;  // the cookie's value
  std::string csrf;
  std::string user;  // "" for the open session of a store without users
  std::string role;  // "admin" or "viewer"
  std::chrono::steady_clock::time_point last_used;
};

class SessionTable {
 public:
  explicit SessionTable(std::chrono::minutes idle) : idle_(idle) {}

  // A new session for the user (two fresh random tokens).
  Session Open(const std::string& user, const std::string& role);
  // The session of a token, still in use (marked used now), if any.
  std::optional<Session> Find(const std::string& token);
  void Close(const std::string& token);

 private:
  std::chrono::minutes idle_;
  std::mutex mutex_;
  std::map<std::string, Session> sessions_;
};

// 32 random bytes as 64 hexadecimal digits.
std::string RandomToken();

// Whether two texts are equal, in a time that does not tell where they differ.
bool SameSecret(const std::string& a, const std::string& b);

// Failed logins per client address: after `limit` failures within
// `window`, further attempts are refused until the oldest failure leaves it.
class LoginThrottle {
 public:
  LoginThrottle(int limit, std::chrono::seconds window) : limit_(limit), window_(window) {}
  // Seconds to wait before the address may try again (0: it may now).
  int64_t WaitSeconds(const std::string& address);
  void Failed(const std::string& address);
  void Succeeded(const std::string& address);

 private:
  int limit_;
  std::chrono::seconds window_;
  std::mutex mutex_;
  std::map<std::string, std::vector<std::chrono::steady_clock::time_point>> failures_;
};

}  // namespace velqua_web
