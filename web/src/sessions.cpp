#include "sessions.h"

#include <sodium.h>

#include <algorithm>

namespace velqua_web {

std::string RandomToken() {
  unsigned char bytes[32];
  randombytes_buf(bytes, sizeof bytes);
  char hex[sizeof bytes * 2 + 1];
  sodium_bin2hex(hex, sizeof hex, bytes, sizeof bytes);
  return hex;
}

bool SameSecret(const std::string& a, const std::string& b) {
  return a.size() == b.size() && sodium_memcmp(a.data(), b.data(), a.size()) == 0;
}

Session SessionTable::Open(const std::string& user, const std::string& role) {
  Session s{RandomToken(), RandomToken(), user, role, std::chrono::steady_clock::now()};
  std::lock_guard<std::mutex> lock(mutex_);
  // Sessions left unused are dropped as new ones open, so the table stays
  // as small as the sessions in use.
  const auto now = s.last_used;
  for (auto it = sessions_.begin(); it != sessions_.end();) {
    it = now - it->second.last_used > idle_ ? sessions_.erase(it) : std::next(it);
  }
  sessions_[s.token] = s;
  return s;
}

std::optional<Session> SessionTable::Find(const std::string& token) {
  std::lock_guard<std::mutex> lock(mutex_);
  const auto it = sessions_.find(token);
  if (it == sessions_.end()) return std::nullopt;
  const auto now = std::chrono::steady_clock::now();
  if (now - it->second.last_used > idle_) {
    sessions_.erase(it);
    return std::nullopt;
  }
  it->second.last_used = now;
  return it->second;
}

void SessionTable::Close(const std::string& token) {
  std::lock_guard<std::mutex> lock(mutex_);
  sessions_.erase(token);
}

int64_t LoginThrottle::WaitSeconds(const std::string& address) {
  std::lock_guard<std::mutex> lock(mutex_);
  auto& times = failures_[address];
  const auto now = std::chrono::steady_clock::now();
  times.erase(
      std::remove_if(times.begin(), times.end(), [&](auto t) { return now - t >= window_; }),
      times.end());
  if (static_cast<int>(times.size()) < limit_) return 0;
  const auto wait = std::chrono::duration_cast<std::chrono::seconds>(times.front() + window_ - now);
  return std::max<int64_t>(1, wait.count());
}

void LoginThrottle::Failed(const std::string& address) {
  std::lock_guard<std::mutex> lock(mutex_);
  failures_[address].push_back(std::chrono::steady_clock::now());
}

void LoginThrottle::Succeeded(const std::string& address) {
  std::lock_guard<std::mutex> lock(mutex_);
  failures_.erase(address);
}

}  // namespace velqua_web
